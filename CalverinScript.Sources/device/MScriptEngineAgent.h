#pragma once

#include <QScriptEngineAgent>

class MCalverinScript_Device;

/// Tells the device of an exception that no script code will catch, at the moment it is thrown. Installed while the
/// debugger is enabled only: any agent makes an engine leave its compiled mode. Owned by its engine.
class MScriptEngineAgent : public QScriptEngineAgent {
public:
    MScriptEngineAgent(QScriptEngine* engine, MCalverinScript_Device* scriptDevice);

    void exceptionThrow(qint64 scriptId, const QScriptValue& exception, bool hasHandler) override;

private:
    MCalverinScript_Device* const m_device;
};
