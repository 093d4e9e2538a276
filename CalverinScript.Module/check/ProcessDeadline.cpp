#include "ProcessDeadline.h"

#include <cstdlib>

ProcessDeadline::ProcessDeadline(std::chrono::milliseconds limit, int exitCode, std::function<void()> onMissed)
    : m_watcher([this, limit, exitCode, missed = std::move(onMissed)] { Watch(limit, exitCode, missed); }) {}

ProcessDeadline::~ProcessDeadline() {
    Meet();
    m_watcher.join();
}

bool ProcessDeadline::Meet() {
    const std::lock_guard<std::mutex> guard(m_lock);
    if (m_state == State::Open)
        m_state = State::Met;
    m_changed.notify_all();
    return m_state == State::Met;
}

void ProcessDeadline::Watch(std::chrono::milliseconds limit, int exitCode, const std::function<void()>& onMissed) {
    std::unique_lock<std::mutex> guard(m_lock);
    if (m_changed.wait_for(guard, limit, [this] { return m_state != State::Open; }))
        return;
    m_state = State::Missed;
    guard.unlock();
    onMissed();
    std::_Exit(exitCode);
}
