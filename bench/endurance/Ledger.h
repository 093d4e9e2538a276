#pragma once

#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>

#include "PlainHost.h"

/// How long commands took, in steps of two percent. As large after an hour as at the beginning, so that memory can be
/// measured beside it.
class Latencies {
public:
    void Add(double milliseconds);         // [any]
    double Percentile(double share) const; ///< in milliseconds; 0 when there are none
    std::uint64_t Count() const;

private:
    static constexpr double kLeast = 0.001; ///< ms
    static constexpr double kStep = 1.02;
    std::array<std::atomic<std::uint64_t>, 1000> m_counts{};
};

/// What functions of the script answer that go to others for it. The last two are the answers of those that had no
/// luck.
inline constexpr const char* kAnswers[] = {"datagram", "line", "page", "from a neighbour", "later", "no page", "late"};
inline constexpr std::size_t kLuckyAnswers = 5;

/// Every request of the host to the devices: how many were taken on, how many have ended, and how long that took. [any]
class Ledger {
public:
    using Clock = std::chrono::steady_clock;

    std::atomic<std::uint64_t> sent{0};
    std::atomic<std::uint64_t> refused{0}; ///< answered with a code
    std::atomic<std::int64_t> open{0};     ///< begun and not ended
    std::array<std::atomic<std::uint64_t>, std::size(kAnswers)> answers{};
    std::atomic<Latencies*> latencies{nullptr}; ///< what is filled now; not owned, may be null

    /// Counts an answer, if it is one of those above.
    void Count(const std::string& answer);
    std::uint64_t AnswersOfAllKinds() const;
};

/// One request, with the values that it works on. It deletes itself as a host may: at its end, with all values.
class Request : public IExecContext {
public:
    /// @param isTimed whether it counts among the latencies.
    Request(Ledger& ledger, bool isTimed, const std::string& function, const std::string& argument);
    virtual ~Request() = default;

    /// Sends it. @return whether the device has taken it on; if not, it is gone.
    bool Send(IKXPDevice& device);

    KXPCode QueryInterface(const char* name, void** out) override;
    KXPCode Release() override { return KXP_OK; }
    KXPCode SetErrorCode(KXPCode) override { return KXP_OK; }
    KXPCode Begin() override;
    KXPCode End() override;
    KXPCode Reserved4(void*) override { return KXP_OK; }
    KXPCode Reserved5(void*) override { return KXP_OK; }

protected:
    /// The text that the function gave.
    std::string Result() { return m_params->At(1).Text(); }
    /// Called at the end, while the values are still there.
    virtual void Done() {}

private:
    Ledger& m_ledger;
    const bool m_isTimed;
    const Ledger::Clock::time_point m_begin = Ledger::Clock::now();
    const std::unique_ptr<plain::Params> m_params;
};
