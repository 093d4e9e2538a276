#include "SocketValues.h"

#include <QScriptEngine>

#include "EventRecords.h"
#include "HostText.h"
#include "MScriptParamList.h"
#include "MWSAData.h"

QScriptValue SocketAddressValue(QScriptEngine* engine, int port, const std::string& address) {
    if (engine == nullptr)
        return QScriptValue();
    QScriptValue object = engine->newObject();
    object.setProperty(QStringLiteral("port"), port);
    object.setProperty(QStringLiteral("family"), QStringLiteral("IPv4"));
    object.setProperty(QStringLiteral("address"), FromHostText(address.c_str()));
    return object;
}

MScriptParamList SocketErrorValues(MWSAData& socket, std::int32_t code) {
    MScriptParamList values;
    values.Add(QVariant::fromValue(SocketErrorInfo(code, FromHostText(socket.GetErrorText(code)))));
    return values;
}
