#include "TimerPasses.h"

#include <algorithm>
#include <utility>

#include "RunWithinMemory.h"

bool TimerPasses::Add(IThreadTimerHandler* handler) {
    const Guard guard(m_shared->lock);
    auto& entries = m_shared->entries;
    const auto isSame = [handler](const std::shared_ptr<Entry>& entry) { return entry->handler == handler; };
    if (handler == nullptr || std::any_of(entries.begin(), entries.end(), isSame))
        return false;
    entries.push_back(std::make_shared<Entry>(handler));
    return entries.size() == 1;
}

bool TimerPasses::Remove(IThreadTimerHandler* handler) {
    Guard guard(m_shared->lock);
    Shared& shared = *m_shared;
    const bool fromPass = IsCaller();
    shared.changed.wait(guard, [&, pass = shared.pass] { return fromPass || !shared.running || shared.pass != pass; });
    const auto found =
        std::find_if(shared.entries.begin(), shared.entries.end(),
                     [handler](const std::shared_ptr<Entry>& entry) { return entry->handler == handler; });
    if (found == shared.entries.end())
        return true;
    const std::shared_ptr<Entry> removed = *found;
    if (static_cast<std::size_t>(found - shared.entries.begin()) < shared.next)
        --shared.next;
    shared.entries.erase(found);
    removed->removed = true;
    shared.changed.wait(guard, [&] { return fromPass || !removed->inCall || removed->isLeft; });
    return fromPass || !removed->inCall;
}

bool TimerPasses::Run(std::uint32_t nowMs, const std::function<bool()>& isStopped, std::size_t stackSize,
                      ThreadPriority priority) {
    Guard guard(m_shared->lock);
    Shared& shared = *m_shared;
    if (shared.entries.empty())
        return false;
    ++shared.pass;
    shared.next = 0;
    shared.nowMs = nowMs;
    shared.isStopped = &isStopped;
    shared.running = true;
    // Without a thread the rest of the pass is left out: the system may have one again for the next pass.
    while (shared.running && EnsureCaller(stackSize, priority))
        WaitForPass(guard);
    shared.running = false;
    shared.isStopped = nullptr;
    shared.next = 0;
    shared.changed.notify_all();
    return !shared.entries.empty();
}

void TimerPasses::WaitForPass(Guard& guard) {
    Shared& shared = *m_shared;
    shared.changed.notify_all();
    const Clock::time_point end = (shared.inCall ? shared.callBegan : Clock::now()) + m_patience;
    shared.changed.wait_until(guard, end, [&] { return !shared.running; });
    if (shared.running && shared.inCall && Clock::now() - shared.callBegan >= m_patience)
        LeaveCaller();
}

/// From here on the thread belongs to the handler in which it sits.
void TimerPasses::LeaveCaller() {
    ++m_shared->caller;
    m_shared->hasCaller = false;
    m_shared->inCall = false;
    m_shared->current->isLeft = true;
    m_shared->changed.notify_all();
    m_caller.Detach();
}

bool TimerPasses::EnsureCaller(std::size_t stackSize, ThreadPriority priority) {
    if (m_shared->hasCaller)
        return true;
    const auto body = [shared = m_shared, number = m_shared->caller] {
        Call(shared, number);
        return 0U;
    };
    RunWithinMemory([&] { m_caller = SystemThread::Create(body, stackSize, priority); });
    m_shared->hasCaller = static_cast<bool>(m_caller);
    return m_shared->hasCaller;
}

void TimerPasses::End() {
    SystemThread caller;
    {
        const Guard guard(m_shared->lock);
        ++m_shared->caller;
        m_shared->hasCaller = false;
        caller = std::exchange(m_caller, SystemThread());
        m_shared->changed.notify_all();
    }
    caller.Join();
}

bool TimerPasses::IsCaller() const {
    return m_shared->hasCaller && m_caller.IsCurrent();
}

void TimerPasses::Call(const std::shared_ptr<Shared>& shared, std::uint64_t number) {
    Guard guard(shared->lock);
    while (true) {
        shared->changed.wait(guard, [&] { return shared->caller != number || shared->running; });
        if (shared->caller != number || !CallAll(*shared, number, guard))
            return;
        shared->running = false;
        shared->changed.notify_all();
    }
}

/// A handler that finds no memory has done what it could, and is called again in the next pass.
void TimerPasses::CallOne(IThreadTimerHandler& handler, std::uint32_t nowMs) {
    RunWithinMemory([&] { handler.OnTimer(nowMs); });
}

/// @return false when this thread has been left, and another one calls the handlers behind.
bool TimerPasses::CallAll(Shared& shared, std::uint64_t number, Guard& guard) {
    while (shared.next < shared.entries.size() && !(*shared.isStopped)()) {
        const std::shared_ptr<Entry> entry = shared.entries[shared.next++];
        if (entry->inCall)
            continue;
        entry->inCall = true;
        shared.inCall = true;
        shared.current = entry;
        shared.callBegan = Clock::now();
        const std::uint32_t nowMs = shared.nowMs;
        guard.unlock();
        CallOne(*entry->handler, nowMs);
        guard.lock();
        entry->inCall = entry->isLeft = false;
        if (entry->removed || shared.caller != number)
            shared.changed.notify_all();
        if (shared.caller != number)
            return false;
        shared.inCall = false;
    }
    return true;
}
