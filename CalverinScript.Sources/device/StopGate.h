#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

/// Lets a start wait for the stops in which other threads still are: a host sees that nothing runs, and may start anew,
/// before a stop has ended all that belonged to its run.
///
/// - A stop never waits here. A start waits for kPatience at most, since a stop may wait for the very thread that starts.
/// - A start inside a stop of the same thread does not wait.
/// - Nothing is allocated, and no lock is held outside these calls.   [thread: any]
class StopGate {
public:
    static constexpr std::chrono::milliseconds kPatience{2000};

    /// One stop, from construction to destruction, on one thread.
    class Stop {
    public:
        explicit Stop(StopGate& gate);
        ~Stop();
        Stop(const Stop&) = delete;
        Stop& operator=(const Stop&) = delete;

    private:
        friend class StopGate;
        StopGate& m_gate;
        const std::thread::id m_thread = std::this_thread::get_id();
        Stop* m_next = nullptr; ///< under the gate's lock
    };

    StopGate() = default;
    StopGate(const StopGate&) = delete;
    StopGate& operator=(const StopGate&) = delete;

    /// Waits until no other thread is in a stop.
    void AwaitStops();

    /// From here on nobody waits.
    void Open();

private:
    bool IsInside() const;

    std::mutex m_lock; ///< guards what follows
    std::condition_variable m_changed;
    Stop* m_stops = nullptr;
    bool m_isOpen = false;
};
