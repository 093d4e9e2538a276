#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>

/// The seven priorities of a thread, from the least urgent on.
enum class ThreadPriority { Idle, Lowest, BelowNormal, Normal, AboveNormal, Highest, TimeCritical };

/// A time-out that never comes.
inline constexpr std::uint32_t kInfinite = 0xFFFFFFFF;

/// The least stack, in bytes, that a thread with a stack size of its own gets:
/// threads here run script engines and parse documents, and the system takes the
/// thread-local data of every loaded library from it. Unused stack costs no memory.
inline constexpr std::size_t kLeastStackSize = std::size_t{2} << 20;

/// A handle to one thread of the system. Copies are handles to the same thread, which may be used on different threads
/// at once; the single handle object is no safer than an int. Dropping the last handle lets the thread go on alone and
/// frees what it used when it ends.
class SystemThread {
public:
    using Body = std::function<std::uint32_t()>;

    SystemThread() = default;

    /// Starts a thread that calls body once. stackSize is in bytes: 0 is the system's default, any other value is
    /// raised to kLeastStackSize. The priority is a wish, see SetPriority.
    /// @return the handle, or one without a thread when the system has none left, no memory for one, or cannot give
    /// such a stack.
    static SystemThread Create(Body body, std::size_t stackSize = 0, ThreadPriority priority = ThreadPriority::Normal);

    /// True for a handle that has a thread, running or ended.
    explicit operator bool() const { return m_run != nullptr; }

    /// Waits until the thread is gone, with its thread-local data,
    /// or timeoutMs have passed. Any number of threads may wait.
    /// @return true when it is gone or there never was one; false
    /// after the time-out, and at once for the thread itself.
    bool Join(std::uint32_t timeoutMs = kInfinite) const;

    /// What the body returned; 0 before its end.
    std::uint32_t GetExitValue() const;

    /// True when the caller is this thread.
    bool IsCurrent() const;

    /// Changes the priority, relative to that of the program. Raising it needs a privilege that a program may lack,
    /// also for going back up after lowering it.
    /// @return false when the system refuses or the thread has ended: it then runs on as before.
    bool SetPriority(ThreadPriority priority) const;

    /// Lets go of the thread: it runs on alone.
    void Detach() { m_run.reset(); }

private:
    struct Run;
    static SystemThread Start(Body body, std::size_t stackSize,
                              ThreadPriority priority); // may throw for want of memory

    std::shared_ptr<Run> m_run;
};
