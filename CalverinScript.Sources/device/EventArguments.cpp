#include "EventArguments.h"

#include <algorithm>
#include <initializer_list>
#include <iterator>

#include <QScriptEngine>
#include <QVariant>

#include "ByteArrayClass.h"
#include "EventRecords.h"
#include "MScriptCommonEvent.h"
#include "MScriptParamList.h"

struct EventArguments::Kind {
    int (*type)();
    QScriptValue (EventArguments::*toScript)(const QVariant&);
};

const EventArguments::Kind EventArguments::kKinds[] = {
    {&qMetaTypeId<QByteArray>, &EventArguments::FromBytes},
    {&qMetaTypeId<bool>, &EventArguments::FromBool},
    {&qMetaTypeId<int>, &EventArguments::FromInt},
    {&qMetaTypeId<IPInfo>, &EventArguments::FromAddress},
    {&qMetaTypeId<SocketErrorInfo>, &EventArguments::FromSocketError},
    {&qMetaTypeId<HTTPResponse>, &EventArguments::FromResponse},
};

EventArguments::EventArguments(QScriptEngine& scriptEngine)
    : engine(scriptEngine)
    , global(engine.globalObject())
    , bufferName(engine.toStringHandle(QStringLiteral("Buffer")))
    , port(engine.toStringHandle(QStringLiteral("port")))
    , address(engine.toStringHandle(QStringLiteral("address")))
    , errorCode(engine.toStringHandle(QStringLiteral("errorCode")))
    , errorText(engine.toStringHandle(QStringLiteral("errorText")))
    , data(engine.toStringHandle(QStringLiteral("data")))
    , statusCode(engine.toStringHandle(QStringLiteral("statusCode")))
    , headers(engine.toStringHandle(QStringLiteral("headers")))
    , ownBuffer(global.property(bufferName))
    , buffers(qscriptvalue_cast<ByteArrayClass*>(ownBuffer.data())) {}

const EventArguments::Kind* EventArguments::KindOf(const QVariant& value) {
    const int type = value.userType();
    const Kind* kind =
        std::find_if(std::begin(kKinds), std::end(kKinds), [type](const Kind& k) { return k.type() == type; });
    return kind != std::end(kKinds) ? kind : nullptr;
}

QScriptValueList EventArguments::Of(const MScriptParamList& params) {
    QScriptValueList arguments;
    arguments.reserve(params.Count() + 1);
    for (int i = 0; i < params.Count(); ++i) {
        const QVariant& value = params.At(i);
        if (const Kind* kind = KindOf(value))
            arguments.append((this->*kind->toScript)(value));
    }
    if (MScriptCommonEvent* source = params.GetSource())
        arguments.append(source->GetView(engine));
    return arguments;
}

QScriptValue EventArguments::Record(std::initializer_list<Member> members) {
    QScriptValue object = engine.newObject();
    for (const Member& member : members)
        object.setProperty(member.name, member.value, QScriptValue::KeepExistingFlags);
    return object;
}

/// A script may have put something else in the place of `Buffer`; then the engine's conversion decides.
QScriptValue EventArguments::Buffer(const QByteArray& bytes) {
    if (buffers != nullptr && global.property(bufferName).strictlyEquals(ownBuffer))
        return buffers->NewInstance(bytes);
    return engine.toScriptValue(bytes);
}

QScriptValue EventArguments::AddressText(const QString& text) {
    if (!lastAddressText.isValid() || lastAddress != text) {
        lastAddress = text;
        lastAddressText = QScriptValue(&engine, text);
    }
    return lastAddressText;
}

QScriptValue EventArguments::FromBytes(const QVariant& value) {
    return Buffer(*static_cast<const QByteArray*>(value.constData()));
}

QScriptValue EventArguments::FromBool(const QVariant& value) {
    return QScriptValue(value.toBool());
}

/// A number reaches a listener as a boolean, true when it is not zero. That is how listeners have always got it.
QScriptValue EventArguments::FromInt(const QVariant& value) {
    return QScriptValue(value.toInt() != 0);
}

QScriptValue EventArguments::FromAddress(const QVariant& value) {
    const auto info = value.value<IPInfo>();
    return Record({{port, info.GetPort()}, {address, AddressText(info.GetAddress())}});
}

QScriptValue EventArguments::FromSocketError(const QVariant& value) {
    const auto info = value.value<SocketErrorInfo>();
    return Record({{errorCode, info.GetErrorCode()}, {errorText, info.GetErrorText()}});
}

QScriptValue EventArguments::FromResponse(const QVariant& value) {
    const auto response = value.value<HTTPResponse>();
    return Record(
        {{data, Buffer(response.GetData())}, {statusCode, response.GetStatusCode()}, {headers, response.GetHeaders()}});
}
