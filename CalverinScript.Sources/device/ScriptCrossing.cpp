#include "ScriptCrossing.h"

#include <utility>

#include <QThread>

#include "MCalverinScript_Device.h"
#include "MScriptThread.h"
#include "RequestedStack.h"
#include "RunWithinMemory.h"

namespace {

constexpr unsigned long kThreadEndMs = 50; ///< what the end of a device grants its script

} // namespace

ScriptCrossing::ScriptCrossing(std::recursive_mutex& lock, const std::atomic<bool>& ending,
                               std::function<void()> runDeferred, std::function<void()> onHung,
                               std::function<void()> onShortage, QObject* home)
    : m_onHung(std::move(onHung))
    , m_onShortage(std::move(onShortage))
    , m_homeThread(QThread::currentThread())
    , m_entrance(lock, ending, std::move(runDeferred), m_onShortage, home) {}

ScriptCrossing::~ScriptCrossing() = default;

void ScriptCrossing::StartThread(MCalverinScript_Device& device) {
    m_thread = std::make_unique<MScriptThread>();
    m_thread->SetRequestedStackSize(kRequestedStackSize);
    m_thread->SetDevice(&device);
    m_entrance.SetThread(m_thread.get());
    device.moveToThread(m_thread.get());
    m_thread->start(QThread::InheritPriority);
}

bool ScriptCrossing::IsUsable() const {
    return !m_thread || m_thread->isRunning();
}

void ScriptCrossing::OnThreadEnding(QObject& device) {
    m_entrance.LeaveThread();
    device.moveToThread(m_homeThread);
    m_threadLeft = true;
}

bool ScriptCrossing::Run(const std::shared_ptr<Call>& call, std::uint32_t limitMs, bool& result) {
    const auto run = [this, call] {
        bool given = false;
        if (!RunWithinMemory([&] { given = call->Run(); }))
            m_onShortage();
        m_gate.Complete(call->m_completion, given);
    };
    result = false;
    return m_entrance.Post(run) && m_gate.Wait(call->m_completion, limitMs, result);
}

void ScriptCrossing::End() {
    if (!EndThread())
        m_onHung();
    m_gate.Abandon();
}

/// @return whether it has ended in its time.
bool ScriptCrossing::EndThread() {
    if (!m_thread)
        return true;
    m_entrance.WakeUp();
    m_thread->quit();
    return m_thread->wait(kThreadEndMs) && m_threadLeft;
}

bool ScriptCrossing::HasEnded() const {
    return m_thread ? m_thread->isFinished() && m_threadLeft : !m_entrance.IsInside();
}
