#include "MThread.h"

#include "RunWithinMemory.h"

namespace {

constexpr auto kNormalPriority = static_cast<std::uint32_t>(ThreadPriority::Normal);
constexpr auto kLastPriority = static_cast<std::uint32_t>(ThreadPriority::TimeCritical);

} // namespace

MThread::MThread(IThreadHandler* handler)
    : m_priority(kNormalPriority)
    , m_handler(handler) {}

MThread::~MThread() {
    StopAndWait();
}

std::uint32_t MThread::Run() {
    return 0;
}

void MThread::SetStackSize(std::size_t bytes) {
    const std::lock_guard<std::mutex> guard(m_lock);
    m_stackSize = bytes;
}

std::size_t MThread::GetStackSize() const {
    const std::lock_guard<std::mutex> guard(m_lock);
    return m_stackSize;
}

bool MThread::Start(bool waitForStart, std::uint32_t timeoutMs) {
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        if (m_running)
            return true;
        if (!CreateThread())
            return false;
    }
    if (waitForStart)
        m_startedEvent.Wait(timeoutMs);
    return true;
}

bool MThread::CreateThread() {
    m_thread.Join(); // the one before is past its cleanup and takes no lock any more
    m_startedEvent.Reset();
    m_wakeEvent.Reset();
    m_stopRequested = false;
    m_thread = SystemThread::Create([this] { return Body(); }, m_stackSize, static_cast<ThreadPriority>(m_priority));
    m_running = static_cast<bool>(m_thread);
    m_stopRequested = !m_running;
    return m_running;
}

std::uint32_t MThread::Body() {
    m_started = true;
    m_startedEvent.Set();
    std::uint32_t value = 0;
    if (!StopRequested())
        RunWithinMemory([&] { value = m_handler != nullptr ? m_handler->ThreadRun(this) : Run(); });
    m_exitValue = value;
    const std::lock_guard<std::mutex> guard(m_lock);
    m_running = false;
    m_stopRequested = true;
    m_started = false;
    return value;
}

bool MThread::Stop(bool /*terminate*/) {
    const std::lock_guard<std::mutex> guard(m_lock);
    if (!m_running)
        return false;
    m_stopRequested = true;
    m_wakeEvent.Set();
    return true;
}

bool MThread::IsCurrent() const {
    const std::lock_guard<std::mutex> guard(m_lock);
    return m_running && m_thread.IsCurrent();
}

void MThread::TakeStopBack() {
    if (IsCurrent())
        m_stopRequested = false;
}

bool MThread::Wait(std::uint32_t timeoutMs) {
    SystemThread thread;
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        thread = m_thread;
    }
    return thread.Join(timeoutMs);
}

void MThread::SetPriority(std::uint32_t priority) {
    const std::lock_guard<std::mutex> guard(m_lock);
    m_priority = priority > kLastPriority ? kNormalPriority : priority;
    if (m_running)
        m_thread.SetPriority(static_cast<ThreadPriority>(m_priority));
}

std::uint32_t MThread::GetPriority() const {
    const std::lock_guard<std::mutex> guard(m_lock);
    return m_priority;
}

std::uint32_t MThread::GetExitValue() const {
    return m_exitValue;
}

void MThread::StopAndWait() {
    Stop();
    Wait();
}

void MThread::Sleep(std::uint32_t timeoutMs) {
    if (!StopRequested() && m_wakeEvent.Wait(timeoutMs))
        m_wakeEvent.Reset();
}
