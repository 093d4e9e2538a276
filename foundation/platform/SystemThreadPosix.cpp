#include "SystemThread.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <new>
#include <utility>

#include <pthread.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

// Nice values relative to the program's own, in the order of ThreadPriority.
constexpr std::array<int, 7> kNiceOffsets = {19, 10, 5, 0, -5, -10, -20};
static_assert(kNiceOffsets.size() == static_cast<std::size_t>(ThreadPriority::TimeCritical) + 1);

bool ApplyPriority(pid_t systemId, ThreadPriority priority) {
    const int base = getpriority(PRIO_PROCESS, static_cast<id_t>(getpid()));
    const int nice = std::clamp(base + kNiceOffsets.at(static_cast<std::size_t>(priority)), -20, 19);
    errno = 0;
    if (getpriority(PRIO_PROCESS, static_cast<id_t>(systemId)) == nice && errno == 0)
        return true;
    return setpriority(PRIO_PROCESS, static_cast<id_t>(systemId), nice) == 0;
}

/// Thread attributes that free themselves.
class Attributes {
public:
    Attributes() { m_valid = pthread_attr_init(&m_value) == 0; }
    ~Attributes() {
        if (m_valid)
            pthread_attr_destroy(&m_value);
    }
    Attributes(const Attributes&) = delete;
    Attributes& operator=(const Attributes&) = delete;

    bool SetStackSize(std::size_t bytes) {
        if (!m_valid || bytes == 0)
            return m_valid;
        const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
        bytes = std::max(bytes, kLeastStackSize);
        if (bytes > static_cast<std::size_t>(PTRDIFF_MAX) - page)
            return false;
        return pthread_attr_setstacksize(&m_value, (bytes + page - 1) / page * page) == 0;
    }
    const pthread_attr_t* Get() const { return &m_value; }

private:
    pthread_attr_t m_value{};
    bool m_valid = false;
};

} // namespace

/// Shared by the handles and the thread itself, so that whoever is last frees it. All fields under `mutex`; the creator
/// holds it until `thread` is written.
struct SystemThread::Run {
    std::mutex mutex;
    std::condition_variable endReached;
    Body body;
    ThreadPriority priority = ThreadPriority::Normal;
    pthread_t thread{};
    pid_t systemId = 0; // 0 until the thread runs
    std::uint32_t exitValue = 0;
    bool created = false;
    bool ended = false;
    bool joined = false;

    Run() = default;
    ~Run() {
        if (created && !joined)
            pthread_detach(thread);
    }
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;

    bool IsCurrent() const { return created && !ended && (pthread_equal(thread, pthread_self()) != 0); }
    void Execute();
    static void* Main(void* argument);
};

void SystemThread::Run::Execute() {
    Body work;
    {
        const std::lock_guard<std::mutex> guard(mutex);
        systemId = static_cast<pid_t>(syscall(SYS_gettid));
        ApplyPriority(systemId, priority);
        work = std::move(body);
    }
    std::uint32_t value = 0;
    try {
        value = work();
    } catch (const std::bad_alloc&) {
        value = 0; // of a body without memory nothing is left to tell
    }
    work = nullptr; // what the body holds goes before anybody hears of the end
    const std::lock_guard<std::mutex> guard(mutex);
    exitValue = value;
    ended = true;
    endReached.notify_all();
}

void* SystemThread::Run::Main(void* argument) {
    const std::unique_ptr<std::shared_ptr<Run>> self(static_cast<std::shared_ptr<Run>*>(argument));
    (*self)->Execute();
    return nullptr;
}

SystemThread SystemThread::Create(Body body, std::size_t stackSize, ThreadPriority priority) {
    try {
        return Start(std::move(body), stackSize, priority);
    } catch (const std::bad_alloc&) {
        return {};
    }
}

SystemThread SystemThread::Start(Body body, std::size_t stackSize, ThreadPriority priority) {
    SystemThread handle;
    Attributes attributes;
    if (!body || !attributes.SetStackSize(stackSize))
        return handle;
    auto run = std::make_shared<Run>();
    run->body = std::move(body);
    run->priority = priority;
    auto ownership = std::make_unique<std::shared_ptr<Run>>(run);
    {
        const std::lock_guard<std::mutex> guard(run->mutex);
        run->created = pthread_create(&run->thread, attributes.Get(), &Run::Main, ownership.get()) == 0;
    }
    if (run->created) {
        static_cast<void>(ownership.release()); // the thread owns it now
        handle.m_run = std::move(run);
    }
    return handle;
}

bool SystemThread::Join(std::uint32_t timeoutMs) const {
    const std::shared_ptr<Run> run = m_run;
    if (!run)
        return true;
    std::unique_lock<std::mutex> lock(run->mutex);
    if (run->IsCurrent())
        return false;
    const auto ended = [&run] { return run->ended; };
    if (timeoutMs == kInfinite)
        run->endReached.wait(lock, ended);
    else if (!run->endReached.wait_for(lock, std::chrono::milliseconds(timeoutMs), ended))
        return false;
    if (!std::exchange(run->joined, true))
        pthread_join(run->thread, nullptr);
    return true;
}

std::uint32_t SystemThread::GetExitValue() const {
    if (!m_run)
        return 0;
    const std::lock_guard<std::mutex> guard(m_run->mutex);
    return m_run->exitValue;
}

bool SystemThread::IsCurrent() const {
    if (!m_run)
        return false;
    const std::lock_guard<std::mutex> guard(m_run->mutex);
    return m_run->IsCurrent();
}

bool SystemThread::SetPriority(ThreadPriority priority) const {
    if (!m_run)
        return false;
    const std::lock_guard<std::mutex> guard(m_run->mutex);
    if (m_run->ended)
        return false;
    m_run->priority = priority; // a thread that does not run yet applies it when it does
    return m_run->systemId == 0 || ApplyPriority(m_run->systemId, priority);
}
