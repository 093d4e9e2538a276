#include "Ledger.h"

#include <algorithm>
#include <cmath>
#include <numeric>

void Latencies::Add(double milliseconds) {
    const double step = std::log(std::max(milliseconds, kLeast) / kLeast) / std::log(kStep);
    ++m_counts[std::min(static_cast<std::size_t>(step), m_counts.size() - 1)];
}

std::uint64_t Latencies::Count() const {
    return std::accumulate(m_counts.begin(), m_counts.end(), std::uint64_t{0});
}

double Latencies::Percentile(double share) const {
    const double wanted = share * static_cast<double>(Count());
    std::uint64_t seen = 0;
    for (std::size_t step = 0; step < m_counts.size(); ++step) {
        seen += m_counts[step];
        if (seen > 0 && static_cast<double>(seen) >= wanted)
            return kLeast * std::pow(kStep, static_cast<double>(step) + 0.5);
    }
    return 0;
}

void Ledger::Count(const std::string& answer) {
    const auto* found = std::find(std::begin(kAnswers), std::end(kAnswers), answer);
    if (found != std::end(kAnswers))
        ++answers.at(static_cast<std::size_t>(found - kAnswers));
}

std::uint64_t Ledger::AnswersOfAllKinds() const {
    return std::accumulate(answers.begin(), answers.end(), std::uint64_t{0});
}

Request::Request(Ledger& ledger, bool isTimed, const std::string& function, const std::string& argument)
    : m_ledger(ledger)
    , m_isTimed(isTimed)
    , m_params(plain::Params::ForFunction(function, {argument})) {}

bool Request::Send(IKXPDevice& device) {
    constexpr std::int32_t kExecuteFunctionWithParams = 3;
    Ledger& ledger = m_ledger;
    ++ledger.sent;
    if (device.ExecuteCommand(kExecuteFunctionWithParams, m_params.get(), this) == KXP_OK)
        return true;
    ++ledger.refused;
    delete this;
    return false;
}

KXPCode Request::QueryInterface(const char* name, void** out) {
    if (name == nullptr || out == nullptr)
        return KXP_BAD_INTERFACE_ARG;
    const bool isOurs = std::string(name) == "IExecContext";
    *out = isOurs ? static_cast<IExecContext*>(this) : nullptr;
    return isOurs ? KXP_OK : KXPCode{KXP_NO_INTERFACE};
}

KXPCode Request::Begin() {
    ++m_ledger.open;
    return KXP_OK;
}

KXPCode Request::End() {
    const std::chrono::duration<double, std::milli> took = Ledger::Clock::now() - m_begin;
    Latencies* latencies = m_ledger.latencies;
    if (m_isTimed && latencies != nullptr && !Result().empty())
        latencies->Add(took.count());
    m_ledger.Count(Result());
    Done();
    --m_ledger.open;
    delete this;
    return KXP_OK;
}
