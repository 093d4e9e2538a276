#pragma once

#include <functional>
#include <string>
#include <vector>

class MCommandObject;
class MScriptCommonEvent;
class MScriptParamList;
class MScriptResource;
class MyAsyncDeviceExecContext;
class QScriptValue;
class QString;
class VisitGate;

/// What the bridge needs of the device above it.
class IScriptDevice {
public:
    /// The device's name in the host's 8-bit text.   [any]
    virtual std::string GetScriptDeviceName() = 0;

    /// Queues the delivery of an asynchronous result to the script. When nothing can be queued the
    /// context stays unreleased.   [any]
    virtual void PostAsyncResult(MyAsyncDeviceExecContext* context) = 0;

    /// Queues a change for the script's callback. Null texts are dropped.   [any host thread]
    virtual void PostPropertyChange(const char* object, const char* property, const char* value,
                                    bool objectFollows) = 0;

    /// Delivers an event of a script object to its listener, later. Does nothing without both pointers. @return 1.   [any]
    virtual int PostScriptEvent(const QString& name, const MScriptParamList* params, MScriptCommonEvent* event) = 0;

    /// The same for several events of one name, in their order.   [any]
    virtual void PostScriptEvents(const QString& name, std::vector<MScriptParamList> events,
                                  MScriptCommonEvent* event) = 0;

    /// Leaves a task for the script thread. It runs outside the script, behind what was left before it.
    /// @return false when the device is ending.   [any]
    virtual bool PostTask(std::function<void()> task) = 0;

    /// Hands the user command in execution over: it belongs to the caller and stays open when its function returns.
    /// @return null outside one, and when it has been handed over already.   [script]
    virtual MCommandObject* TakeExecutingCommand() = 0;

    /// Writes a text into the result of a user command that is still open.   [script]
    virtual void WriteCommandResult(MCommandObject* command, const QString& text) = 0;

    /// Entered around each use of a value that the host may replace with the device's definition; null where values stay.   [any]
    virtual VisitGate* GetValueGate() { return nullptr; }

    /// Whether the device is on its way out: nothing of the host may be called any more.   [any]
    virtual bool IsEnding() const = 0;

    /// The object of a resource that a setting of the device names; null when none names it. Lives until the next task
    /// of the script thread at least.   [script]
    virtual MScriptResource* FindResource(const QScriptValue& signature) = 0;

    // Script timers; ids are unique in the device. -1 for a value that is no function.   [script]
    virtual int SetInterval(const QScriptValue& function, int delayMs) = 0;
    virtual void ClearInterval(int id) = 0;
    virtual int SetTimeout(const QScriptValue& function, int delayMs) = 0;
    virtual void ClearTimeout(int id) = 0;

    /// Replaces the function that hears of changes. @return 0, 19 when the value is no function.   [script]
    virtual unsigned int SetPropertyChangeCallback(const QScriptValue& function) = 0;

    /// Makes the context of an asynchronous request and notes the function for its result.
    /// @return null when the value is no function.   [script]
    virtual MyAsyncDeviceExecContext* MakeAsyncContext(const QScriptValue& function) = 0;

    /// Forgets the function of a request that the host has refused.   [script]
    virtual void ForgetAsyncContext(MyAsyncDeviceExecContext* context) = 0;

protected:
    ~IScriptDevice() = default;
};
