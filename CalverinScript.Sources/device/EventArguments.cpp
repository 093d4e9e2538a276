#include "EventArguments.h"

#include <algorithm>
#include <iterator>

#include <QScriptEngine>
#include <QVariant>

#include "EventRecords.h"
#include "MScriptCommonEvent.h"
#include "MScriptParamList.h"

namespace {

QScriptValue FromBool(QScriptEngine& /*engine*/, const QVariant& value) {
    return QScriptValue(value.toBool());
}

/// A number reaches a listener as a boolean, true when it is not zero. That is how listeners have always got it.
QScriptValue FromInt(QScriptEngine& /*engine*/, const QVariant& value) {
    return QScriptValue(value.toInt() != 0);
}

QScriptValue FromBytes(QScriptEngine& engine, const QVariant& value) {
    return engine.toScriptValue(value.toByteArray());
}

QScriptValue FromAddress(QScriptEngine& engine, const QVariant& value) {
    const auto info = value.value<IPInfo>();
    QScriptValue object = engine.newObject();
    object.setProperty(QStringLiteral("port"), info.GetPort(), QScriptValue::KeepExistingFlags);
    object.setProperty(QStringLiteral("address"), info.GetAddress(), QScriptValue::KeepExistingFlags);
    return object;
}

QScriptValue FromSocketError(QScriptEngine& engine, const QVariant& value) {
    const auto info = value.value<SocketErrorInfo>();
    QScriptValue object = engine.newObject();
    object.setProperty(QStringLiteral("errorCode"), info.GetErrorCode(), QScriptValue::KeepExistingFlags);
    object.setProperty(QStringLiteral("errorText"), info.GetErrorText(), QScriptValue::KeepExistingFlags);
    return object;
}

QScriptValue FromResponse(QScriptEngine& engine, const QVariant& value) {
    const auto response = value.value<HTTPResponse>();
    QScriptValue object = engine.newObject();
    object.setProperty(QStringLiteral("data"), engine.toScriptValue(response.GetData()),
                       QScriptValue::KeepExistingFlags);
    object.setProperty(QStringLiteral("statusCode"), response.GetStatusCode(), QScriptValue::KeepExistingFlags);
    object.setProperty(QStringLiteral("headers"), response.GetHeaders(), QScriptValue::KeepExistingFlags);
    return object;
}

struct EventArgumentKind {
    const char* typeName;
    QScriptValue (*toScript)(QScriptEngine&, const QVariant&);
};

constexpr EventArgumentKind kEventArgumentKinds[] = {{"QByteArray", &FromBytes},
                                                     {"bool", &FromBool},
                                                     {"int", &FromInt},
                                                     {"IPInfo", &FromAddress},
                                                     {"SocketErrorInfo", &FromSocketError},
                                                     {"HTTPResponse", &FromResponse}};

/// The row of a value's type, null when there is none.
const EventArgumentKind* KindOf(const QVariant& value) {
    const auto* kind =
        std::find_if(std::begin(kEventArgumentKinds), std::end(kEventArgumentKinds),
                     [&](const EventArgumentKind& k) { return qstrcmp(k.typeName, value.typeName()) == 0; });
    return kind != std::end(kEventArgumentKinds) ? kind : nullptr;
}

} // namespace

QScriptValueList EventArguments(QScriptEngine& engine, const MScriptParamList& params) {
    QScriptValueList arguments;
    arguments.reserve(params.Count() + 1);
    for (int i = 0; i < params.Count(); ++i) {
        const QVariant value = params.At(i);
        if (const EventArgumentKind* kind = KindOf(value))
            arguments.append(kind->toScript(engine, value));
    }
    if (MScriptCommonEvent* source = params.GetSource())
        arguments.append(source->GetView(engine));
    return arguments;
}
