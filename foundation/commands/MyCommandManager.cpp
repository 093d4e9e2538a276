#include "MyCommandManager.h"

#include <algorithm>
#include <mutex>
#include <utility>

MyCommandManager::MyCommandManager(std::uint32_t defaultTimeoutMs, bool directExecute, bool holdLockDuringExecute,
                                   MillisecondSource clock)
    : m_defaultTimeoutMs(defaultTimeoutMs)
    , m_directExecute(directExecute)
    , m_holdLockDuringExecute(holdLockDuringExecute)
    , m_clock(clock ? std::move(clock) : &MillisecondClock) {}

MyCommandManager::~MyCommandManager() {
    ClearCommands();
}

bool MyCommandManager::WaitForCommand(std::uint32_t timeoutMs) {
    return m_wakeEvent.Wait(timeoutMs);
}

void MyCommandManager::WakeCommandThread() {
    m_wakeEvent.Set();
}

// Cleared before the queue is looked at: a post in between leaves
// the event set, and at worst the thread wakes for nothing.
std::int32_t MyCommandManager::TakeNextCommand() {
    const std::lock_guard<MLock> guard(m_lock);
    m_wakeEvent.Reset();
    if (m_current)
        return kCommandBusy;
    m_current = m_queue.TakeOldest();
    return m_current ? kCommandDone : kCommandNothing;
}

std::int32_t MyCommandManager::ExecuteCurrentCommand() {
    m_lock.Enter();
    if (!m_current) {
        m_lock.Leave();
        return kCommandNothing;
    }
    ExecuteAndUnlock();
    return kCommandDone;
}

void MyCommandManager::ExecuteAndUnlock() {
    m_startTimeMs = StartTime();
    MCommandObject* command = m_current.get();
    std::unique_lock<MLock> lock(m_lock, std::adopt_lock);
    if (!m_holdLockDuringExecute)
        lock.unlock();
    ExecuteCommand(command);
}

std::int32_t MyCommandManager::FinishCurrentCommand(MCommandObject* keep) {
    std::unique_ptr<MCommandObject> finished;
    {
        const std::lock_guard<MLock> guard(m_lock);
        if (!m_current)
            return kCommandNothing;
        m_startTimeMs = 0;
        finished = std::move(m_current);
    }
    if (keep != nullptr)
        static_cast<void>(finished.release());
    finished.reset();
    if (!m_queue.IsEmpty())
        m_wakeEvent.Set();
    return kCommandDone;
}

std::int32_t MyCommandManager::HoldCurrentCommand() {
    const std::lock_guard<MLock> guard(m_lock);
    if (!m_current)
        return kCommandNothing;
    m_wakeEvent.Reset();
    return kCommandDone;
}

std::int32_t MyCommandManager::PostCommand(MCommandObject* command) {
    std::unique_ptr<MCommandObject> dropped;
    return PostCommand(command, dropped);
}

std::int32_t MyCommandManager::PostCommand(MCommandObject* command, std::unique_ptr<MCommandObject>& dropped) {
    if (command == nullptr)
        return kCommandNull;
    ApplyDefaultTimeout(*command);
    if (m_directExecute && TryExecuteDirectly(command))
        return kCommandRan;
    dropped = m_queue.Append(std::unique_ptr<MCommandObject>(command), m_maxQueued);
    m_wakeEvent.Set();
    return dropped ? kCommandQueuedDropping : kCommandQueued;
}

std::int32_t MyCommandManager::PostCommandNow(MCommandObject* command) {
    if (command == nullptr)
        return kCommandNull;
    ApplyDefaultTimeout(*command);
    return TryExecuteDirectly(command) ? kCommandRan : kCommandBusy;
}

bool MyCommandManager::TryExecuteDirectly(MCommandObject* command) {
    if (!m_lock.TryEnter())
        return false;
    if (m_current || !m_queue.IsEmpty()) {
        m_lock.Leave();
        return false;
    }
    m_current.reset(command);
    ExecuteAndUnlock();
    return true;
}

bool MyCommandManager::CheckCommandTimeout(MCommandObject** outCurrent) {
    std::unique_lock<MLock> lock(m_lock, std::try_to_lock);
    if (!lock)
        return false;
    if (outCurrent != nullptr)
        *outCurrent = m_current.get();
    if (!m_current)
        return false;
    const std::uint32_t timeoutMs = m_current->GetTimeout();
    const bool expired = m_startTimeMs != 0 && timeoutMs != 0 && m_clock() - m_startTimeMs >= timeoutMs;
    if (expired && outCurrent != nullptr)
        static_cast<void>(lock.release()); // the caller holds it now
    return expired;
}

bool MyCommandManager::ExecuteCommand(MCommandObject* /*command*/) {
    return true;
}

void MyCommandManager::SetMaxQueued(std::int32_t count) {
    m_maxQueued = std::max(count, 0);
}

std::int32_t MyCommandManager::GetMaxQueued() const {
    return m_maxQueued;
}

MCommandObject* MyCommandManager::LockCurrentCommand() {
    m_lock.Enter();
    MCommandObject* current = m_current.get();
    if (current == nullptr)
        m_lock.Leave();
    return current;
}

void MyCommandManager::UnlockCurrentCommand() {
    m_lock.Leave();
}

void MyCommandManager::ClearCommands() {
    std::unique_ptr<MCommandObject> current;
    {
        const std::lock_guard<MLock> guard(m_lock);
        current = std::move(m_current);
        m_startTimeMs = 0;
    }
    m_queue.Clear();
}

// A clock that reads 0, which happens once in 49.7 days, must not switch the watchdog off.
std::uint32_t MyCommandManager::StartTime() const {
    return std::max<std::uint32_t>(m_clock(), 1);
}

void MyCommandManager::ApplyDefaultTimeout(MCommandObject& command) const {
    if (command.GetTimeout() == 0)
        command.SetTimeout(m_defaultTimeoutMs);
}
