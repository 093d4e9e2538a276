#include "MScriptEngineAgent.h"

#include "MCalverinScript_Device.h"

MScriptEngineAgent::MScriptEngineAgent(QScriptEngine* engine, MCalverinScript_Device* scriptDevice)
    : QScriptEngineAgent(engine)
    , m_device(scriptDevice) {}

void MScriptEngineAgent::exceptionThrow(qint64 /*scriptId*/, const QScriptValue& exception, bool hasHandler) {
    if (!hasHandler)
        m_device->SlotHandlerException(exception);
}
