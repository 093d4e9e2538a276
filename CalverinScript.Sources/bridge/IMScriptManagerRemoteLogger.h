#pragma once

class QString;

/// Writes lines of scripts and script objects to the module's log.
class IMScriptManagerRemoteLogger {
public:
    /// Writes a message under the device's name. The type names the level: "NORMALPLUS" 1, "INFO" 2, "COMMENT" 3,
    /// "ALARM" 4, "ERROR" 5, "FATAL" 6, "DEBUG" 7; anything else is level 0.   [any]
    virtual void TraceMessage(const QString& message, const QString& messageType) = 0;

protected:
    ~IMScriptManagerRemoteLogger() = default;
};
