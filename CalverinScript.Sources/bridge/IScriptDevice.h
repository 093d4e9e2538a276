#pragma once

class MCommandObject;
class MyAsyncDeviceExecContext;
class QString;

/// What the bridge needs of the device above it.
class IScriptDevice {
public:
    /// The device's name in the host's 8-bit text.   [any]
    virtual const char* GetScriptDeviceName() = 0;

    /// Queues the delivery of an asynchronous result to the script. When nothing can be queued the context stays
    /// unreleased.   [any]
    virtual void PostAsyncResult(MyAsyncDeviceExecContext* context) = 0;

    /// Queues a change for the script's callback. Null texts are dropped.   [any host thread]
    virtual void PostPropertyChange(const char* object, const char* property, const char* value,
                                    bool objectFollows) = 0;

    /// The user command in execution, null outside one.   [script]
    virtual MCommandObject* GetExecutingCommand() = 0;

    /// Writes a text into the result of a user command that is still open.   [script]
    virtual void WriteCommandResult(MCommandObject* command, const QString& text) = 0;

protected:
    ~IScriptDevice() = default;
};
