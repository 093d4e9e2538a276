#pragma once

#include <QScriptValue>

#include "BacklogCounter.h"
#include "DropLog.h"
#include "ScriptCallbacks.h"
#include "ScriptTimers.h"

class MScriptCommonEvent;
class MScriptParamList;
class MyAsyncDeviceExecContext;
class QObject;
class QString;
class ScriptEntrance;
class ScriptWorld;

/// The functions that a script has left to be called later: by its timers, by answers of the host, by events of its
/// objects and by changes. Each call enters the script.   [script, where nothing else is said]
class ScriptHandlers {
public:
    /// All are borrowed for this object's life. @param timerOwner gets the timers' events and passes them
    /// to OnTimer.   [host main]
    ScriptHandlers(QObject& timerOwner, ScriptWorld& world, ScriptEntrance& entrance);
    ScriptHandlers(const ScriptHandlers&) = delete;
    ScriptHandlers& operator=(const ScriptHandlers&) = delete;

    /// As ScriptTimers has it; a delay that starts nothing leaves a line in the log.
    int StartTimer(ScriptTimers::Kind kind, const QScriptValue& function, int delayMs);
    void ClearTimer(ScriptTimers::Kind kind, int id) { m_timers.Clear(kind, id); }
    /// A timer has come due. While the script runs it waits for FireDeferred.
    void OnTimer(int id);
    /// Calls what came due while the script ran.
    void FireDeferred();

    /// Makes the context of an asynchronous request and notes the function for its answer.
    /// @return null when the value is no function.
    MyAsyncDeviceExecContext* MakeRequest(const QScriptValue& function);
    void ForgetRequest(MyAsyncDeviceExecContext* request) { m_callbacks.Forget(request); }
    /// Calls the function of an answer. Does nothing for a request that is gone.
    void OnAnswer(MyAsyncDeviceExecContext* request);
    /// The answer of a request will never be delivered: the request goes at once, its function as soon as the script
    /// thread is free. Nothing of a request that is gone already is touched.   [any]
    void DropAnswer(MyAsyncDeviceExecContext* request);

    /// Calls the listener of an event. Does nothing when its object is gone.
    void OnEvent(const QString& name, const MScriptParamList& params, MScriptCommonEvent* source);

    void SetOnChange(const QScriptValue& function) { m_callbacks.SetOnChange(function); }
    void OnChange(const QString& object, const QString& value);
    /// A change is about to wait for OnChange. @param bytes what it takes. @return false when too many
    /// wait already, since the script does not keep up: then it is dropped, and the log tells how many were.
    /// [any host thread]
    bool NoteChange(std::uint64_t bytes);
    /// One that was noted waits no more.   [script]
    void ForgetChange(std::uint64_t bytes) { m_changes.Leave(bytes); }

    /// Forgets all timers, requests and the function for changes.   [script; also where the script thread has ended]
    void ClearAll();

private:
    void Fire(int id);

    ScriptWorld& m_world;
    ScriptEntrance& m_entrance;
    ScriptTimers m_timers;
    ScriptCallbacks m_callbacks;
    DropLog m_droppedChanges;
    BacklogCounter m_changes; ///< that wait for OnChange
};
