#include "ScriptHandlers.h"

#include <memory>
#include <mutex>

#include "DeviceTexts.h"
#include "MScriptCommonEvent.h"
#include "MScriptMngRemote.h"
#include "MyAsyncDeviceExecContext.h"
#include "ScriptEntrance.h"
#include "ScriptWorld.h"

ScriptHandlers::ScriptHandlers(QObject& timerOwner, ScriptWorld& world, ScriptEntrance& entrance)
    : m_world(world)
    , m_entrance(entrance)
    , m_timers(timerOwner)
    , m_droppedChanges(TellOfSlowScript(&world.Remote(), [] { return QStringLiteral("changes below groups"); }))
    , m_changes([this] { m_droppedChanges.TellRest(); }) {}

int ScriptHandlers::StartTimer(ScriptTimers::Kind kind, const QScriptValue& function, int delayMs) {
    const int id = m_timers.Start(kind, function, delayMs);
    if (id == 0)
        m_world.Remote().TraceMessage(NoTimerFor(delayMs), QStringLiteral("ALARM"));
    return id;
}

void ScriptHandlers::OnTimer(int id) {
    if (!m_entrance.IsInside()) {
        Fire(id);
    } else {
        m_timers.Defer(id);
        m_entrance.Defer();
    }
}

void ScriptHandlers::FireDeferred() {
    while (m_timers.HasDeferred() && !m_world.IsEnding())
        Fire(*m_timers.TakeDeferred());
}

void ScriptHandlers::Fire(int id) {
    const ScriptEntrance::Entry entry(m_entrance);
    const QScriptValue function = m_timers.Take(id);
    if (function.isFunction())
        m_world.Call(function, {});
    m_world.CheckUncaught();
}

MyAsyncDeviceExecContext* ScriptHandlers::MakeRequest(const QScriptValue& function) {
    if (!function.isFunction())
        return nullptr;
    MScriptMngRemote& remote = m_world.Remote();
    auto* request = new MyAsyncDeviceExecContext(&remote, remote.GetAsyncContexts());
    m_callbacks.Note(request, function);
    return request;
}

void ScriptHandlers::OnAnswer(MyAsyncDeviceExecContext* request) {
    MScriptMngRemote& remote = m_world.Remote();
    const std::shared_ptr<MyAsyncDeviceExecContext> held = remote.HoldAsyncContext(request);
    if (!held)
        return;
    if (const auto call = m_callbacks.Take(*held)) {
        m_world.Call(call->function, call->arguments);
        m_world.CheckUncaught();
    }
    if (held->IsOver())
        remote.SettleAsyncContext(request);
}

void ScriptHandlers::DropAnswer(MyAsyncDeviceExecContext* request) {
    MScriptMngRemote& remote = m_world.Remote();
    const std::shared_ptr<MyAsyncDeviceExecContext> held = remote.HoldAsyncContext(request);
    if (!held)
        return;
    remote.SettleAsyncContext(request);
    m_entrance.Post([this, held] {
        const ScriptEntrance::Entry entry(m_entrance);
        m_callbacks.Forget(held.get());
    });
}

void ScriptHandlers::OnEvent(const QString& name, const MScriptParamList& params, MScriptCommonEvent* source) {
    if (m_world.IsEnding())
        return;
    const ScriptEntrance::Entry entry(m_entrance);
    if (!m_world.Remote().TakeRaised(source))
        return;
    {
        const std::lock_guard<MScriptCommonEvent> guard(*source);
        const QScriptValue listener = source->GetListener(name);
        if (listener.isFunction())
            m_world.Call(listener, m_world.ArgumentsOf(params));
    }
    m_world.CheckUncaught();
}

bool ScriptHandlers::NoteChange(std::uint64_t bytes) {
    const bool waits = m_changes.Enter(bytes);
    if (!waits)
        m_droppedChanges.Note(1);
    return waits;
}

void ScriptHandlers::OnChange(const QString& object, const QString& value) {
    if (m_world.IsEnding())
        return;
    const ScriptEntrance::Entry entry(m_entrance);
    const QScriptValue function = m_callbacks.GetOnChange();
    if (!function.isFunction())
        return;
    m_world.Call(function, {QScriptValue(object), QScriptValue(value)});
    m_world.CheckUncaught();
}

void ScriptHandlers::ClearAll() {
    m_timers.ClearAll();
    m_callbacks.Clear();
}
