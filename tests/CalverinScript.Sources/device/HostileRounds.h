#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <string>
#include <thread>
#include <vector>

/// How often each row of a table of hostile peers is played: a few times, or CALVERIN_HOSTILE times by hand.
int HostileRounds();

/// What the process takes while hostile peers are at work, and how fast others are served meanwhile. Between construction and `Tell` a
/// thread of its own does a piece of work again and again, such as a command to another device, and times it.
class Bystander {
public:
    /// @param work returns whether it went well; called on that thread alone.
    template <typename Work>
    explicit Bystander(Work work)
        : m_thread([this, work] {
            while (!m_ends)
                Time(work);
        }) {}
    ~Bystander();
    Bystander(const Bystander&) = delete;
    Bystander& operator=(const Bystander&) = delete;

    /// Ends the work and prints the figures in one line.
    /// @return how many times it did not go well.
    std::size_t Tell(const std::string& what);

private:
    struct Memory {
        double residentMegabytes = 0;
        double heapMegabytes = 0;
        static Memory Now();
    };

    template <typename Work>
    void Time(Work work) {
        const double begin = Milliseconds();
        m_failures += work() ? 0 : 1;
        m_took.push_back(Milliseconds() - begin);
        std::this_thread::sleep_for(std::chrono::milliseconds(2)); // a load that others do not notice
    }
    static double Milliseconds();
    void End();

    const Memory m_before = Memory::Now();
    std::atomic<bool> m_ends{false};
    std::vector<double> m_took; ///< of the thread while it runs, as is the next
    std::size_t m_failures = 0;
    std::thread m_thread;
};
