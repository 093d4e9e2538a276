#pragma once

#include <atomic>

#include <QObject>
#include <QScriptValue>

#include "ContextRegistry.h"
#include "IAsyncDeviceExecContextHandler.h"
#include "IHostServices.h"
#include "IManagerRemote.h"
#include "IMScriptManagerRemoteLogger.h"
#include "MIObjectMap.h"
#include "MyAsyncDeviceExecContext.h"
#include "MyDeviceExecContext.h"

class IScriptDevice;
class MScriptCommonEvent;
class MyPostponedObject;
class QScriptEngine;

/// The object behind the script global `QCalverin`: the host as a script sees it. One for each device, owned by the
/// device.
///
/// It owns what a script makes through it and the requests that are on their way to the host, and ends them all when
/// the device stops. Each of the host's links may be missing; what needs it then gives its neutral result.
class MScriptMngRemote : public QObject,
                         public IManagerRemoteHandler,
                         public IAsyncDeviceExecContextHandler,
                         public IMScriptManagerRemoteLogger {
    Q_OBJECT

public:
    /// All but the engine may be null and are borrowed for the object's life.   [host main]
    MScriptMngRemote(IScriptDevice* device, IManagerRemote* remote, IManagerRemote2* remote2,
                     IVariableManager* variables, QScriptEngine* engine);
    ~MScriptMngRemote() override;

    // The device's life
    /// Before the script starts: gives up the asynchronous requests of the last run.   [any host thread]
    void OnDeviceStart();
    /// Ends every request that is on its way, so that whoever waits for one wakes.   [any]
    void EndContexts();
    /// Drops what the script made: pending results and objects.   [any host thread, script]
    void ReleaseScriptObjects();
    /// Periodic service while the device runs.   [tick]
    void Tick();

    // The group granted to this device
    KXPCode RegisterRootGroup();
    KXPCode UnregisterRootGroup();

    // Postponed results of user commands
    /// Allows or ends postponing around one user command. The postponed result itself, if any, stays open.   [script,
    /// command]
    void SetPostponeAllowed(bool allowed);
    /// Whether the user command in execution has postponed its result.   [script, command]
    bool HasPostponed() const { return currentPostponed != nullptr; }
    /// Keeps the user command in execution open until SetResult.
    /// @return the id for SetResult, 0 when there is nothing to postpone.   [script]
    int PostponeResult();
    /// Answers a postponed user command. Unknown ids and 0 do nothing.   [script]
    void SetResult(int id, const QString& text);
    /// Ends every postponed user command without an answer.   [any host thread, script]
    void ResetPostponed();

    // Script objects
    /// Whether an object that raised an event is still there.   [script]
    bool IsLiveObject(const MScriptCommonEvent* object) const;

    /// The list that asynchronous contexts join.   [script]
    const SharedContextRegistry<MyAsyncDeviceExecContext>& GetAsyncContexts() const { return asyncContexts; }

    // IManagerRemoteHandler
    KXPCode QueryInterface(const char* name, void** out) override;
    KXPCode Release() override;
    KXPCode OnPropertyChange(const char* object, const char* property, const char* value, std::uint32_t flag,
                             std::uint32_t reserved) override;
    KXPCode Reserved2(void* argument1, void* argument2, void* argument3) override;

    // IAsyncDeviceExecContextHandler
    void OnAsyncContextDone(MyAsyncDeviceExecContext* context) override;

    // IMScriptManagerRemoteLogger
    void TraceMessage(const QString& message, const QString& messageType) override;

private:
    /// Runs one operation of the newer link with a synchronous context and waits when it is pending.
    /// @param operation takes the context and gives the host's code.
    /// @return the final code; on 0 the result text goes to text, which may be null.   [script]
    template <typename Operation>
    KXPCode CallAndWait(Operation operation, MString* text = nullptr);
    void ReleaseAsyncContexts();

    IScriptDevice* const device;
    IManagerRemote* const remote;
    IManagerRemote2* const remote2;
    IVariableManager* const variableManager;
    QScriptEngine* const engine;

    const SharedContextRegistry<MyDeviceExecContext> syncContexts;
    const SharedContextRegistry<MyAsyncDeviceExecContext> asyncContexts;

    bool postponeAllowed = false; ///< under the device's command in execution: script, command
    std::atomic<MyPostponedObject*>
        currentPostponed{}; ///< written by the script thread in a command, read by the command thread
    MIObjectMap postponedMap;
};
