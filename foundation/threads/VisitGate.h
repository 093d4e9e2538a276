#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

/// Keeps visitors out while something that they use is replaced.
///
/// - A replacement begins when nobody is inside, and nobody comes in until it is over.
/// - Neither side waits for long, since each may be what the other waits for: a visitor that does not leave holds a
///   replacement up for kReplaceWait, and a visitor is turned away after kVisitWait of waiting.
/// - A visitor is turned away at once on the thread that replaces, and on each other one during a Standstill.
/// - A visit inside another one of the same thread never waits: the replacement waits for both.
/// - No lock is held during a visit or a replacement.   [thread: any]
class VisitGate {
public:
    static constexpr std::chrono::milliseconds kReplaceWait{500};
    static constexpr std::chrono::milliseconds kVisitWait{2000};

    /// One visit, from construction to destruction. Who was not allowed in touches nothing.
    class Visit {
    public:
        explicit Visit(VisitGate& gate);
        /// A null gate lets everybody in.
        explicit Visit(VisitGate* gate);
        ~Visit();
        Visit(const Visit&) = delete;
        Visit& operator=(const Visit&) = delete;
        bool IsAllowed() const { return m_allowed; }

    private:
        VisitGate* const m_gate;
        bool m_allowed = true;
    };

    /// Says, on the thread that replaces, that it waits for others from here to the end of this object: none of them
    /// may wait for it. Says nothing on any other thread.
    class Standstill {
    public:
        explicit Standstill(VisitGate& gate);
        ~Standstill();
        Standstill(const Standstill&) = delete;
        Standstill& operator=(const Standstill&) = delete;

    private:
        VisitGate& m_gate;
        const bool m_counts;
    };

    VisitGate() = default;
    VisitGate(const VisitGate&) = delete;
    VisitGate& operator=(const VisitGate&) = delete;

    /// Runs work while nobody is inside. One replacement at a time: that of another thread waits for its end, one
    /// inside work just runs.
    void Replace(const std::function<void()>& work);

private:
    bool IsReplacer();
    bool Enter();
    void Leave();
    bool IsInside(std::thread::id thread) const;

    std::mutex m_replaceLock; ///< held by the replacement; no visitor takes it
    std::mutex m_lock;        ///< guards what follows
    std::condition_variable m_changed;
    bool m_replacing = false;
    std::thread::id m_replacer;
    int m_standstills = 0;
    std::vector<std::thread::id> m_inside; ///< a thread once for each visit
};
