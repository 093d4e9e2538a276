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
    : m_engine(scriptEngine)
    , m_global(m_engine.globalObject())
    , m_bufferName(m_engine.toStringHandle(QStringLiteral("Buffer")))
    , m_port(m_engine.toStringHandle(QStringLiteral("port")))
    , m_address(m_engine.toStringHandle(QStringLiteral("address")))
    , m_errorCode(m_engine.toStringHandle(QStringLiteral("errorCode")))
    , m_errorText(m_engine.toStringHandle(QStringLiteral("errorText")))
    , m_data(m_engine.toStringHandle(QStringLiteral("data")))
    , m_statusCode(m_engine.toStringHandle(QStringLiteral("statusCode")))
    , m_headers(m_engine.toStringHandle(QStringLiteral("headers")))
    , m_ownBuffer(m_global.property(m_bufferName))
    , m_buffers(qscriptvalue_cast<ByteArrayClass*>(m_ownBuffer.data())) {}

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
        arguments.append(source->GetView(m_engine));
    return arguments;
}

QScriptValue EventArguments::Record(std::initializer_list<Member> members) {
    QScriptValue object = m_engine.newObject();
    for (const Member& member : members)
        object.setProperty(member.name, member.value, QScriptValue::KeepExistingFlags);
    return object;
}

/// A script may have put something else in the place of `Buffer`; then the engine's conversion decides.
QScriptValue EventArguments::Buffer(const QByteArray& bytes) {
    if (m_buffers != nullptr && m_global.property(m_bufferName).strictlyEquals(m_ownBuffer))
        return m_buffers->NewInstance(bytes);
    return m_engine.toScriptValue(bytes);
}

QScriptValue EventArguments::AddressText(const QString& text) {
    if (!m_lastAddressText.isValid() || m_lastAddress != text) {
        m_lastAddress = text;
        m_lastAddressText = QScriptValue(&m_engine, text);
    }
    return m_lastAddressText;
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
    return Record({{m_port, info.GetPort()}, {m_address, AddressText(info.GetAddress())}});
}

QScriptValue EventArguments::FromSocketError(const QVariant& value) {
    const auto info = value.value<SocketErrorInfo>();
    return Record({{m_errorCode, info.GetErrorCode()}, {m_errorText, info.GetErrorText()}});
}

QScriptValue EventArguments::FromResponse(const QVariant& value) {
    const auto response = value.value<HTTPResponse>();
    return Record({{m_data, Buffer(response.GetData())},
                   {m_statusCode, response.GetStatusCode()},
                   {m_headers, response.GetHeaders()}});
}
