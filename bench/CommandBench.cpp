#include <chrono>
#include <memory>
#include <vector>

#include <benchmark/benchmark.h>

#include "BareScript.h"
#include "BenchDevice.h"
#include "Measure.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr const char* kScript = "({ F: function(a) { return a } })";
constexpr int kBlocks = 100;
constexpr int kRoundTripsOfBlock = 100;
constexpr int kQueued = 1000;

double Microseconds(Clock::time_point begin) {
    return std::chrono::duration<double, std::micro>(Clock::now() - begin).count();
}

/// Alternates blocks of bare and real round trips on one core and compares what they took.
std::vector<double> MeasureRoundTrip() {
    PinToOneCore();
    BareRelay bare(QString::fromLatin1(kScript));
    BenchDevice device(kScript);
    const auto params = plain::Params::ForFunction("F", {"a"});
    std::vector<double> bareTimes;
    std::vector<double> realTimes;
    for (int block = 0; block < kBlocks; ++block) {
        for (int i = 0; i < kRoundTripsOfBlock; ++i) {
            const auto begin = Clock::now();
            bare.RoundTrip();
            bareTimes.push_back(Microseconds(begin));
        }
        for (int i = 0; i < kRoundTripsOfBlock; ++i) {
            const auto begin = Clock::now();
            device.Call(*params);
            realTimes.push_back(Microseconds(begin));
        }
    }
    return {Median(bareTimes), Median(realTimes), Percentile(bareTimes, 0.99), Percentile(realTimes, 0.99)};
}

std::vector<double> MeasureQueued() {
    PinToOneCore();
    BareRelay bare(QString::fromLatin1(kScript));
    BenchDevice device(kScript);
    std::vector<std::unique_ptr<plain::Params>> params;
    params.reserve(kQueued);
    for (int i = 0; i < kQueued; ++i)
        params.push_back(plain::Params::ForFunction("F", {"a"}));
    std::vector<double> realRates;
    std::vector<double> bareRates;
    for (int round = 0; round < 20; ++round) {
        std::vector<plain::Context> contexts(kQueued);
        auto begin = Clock::now();
        for (int i = 0; i < kQueued; ++i)
            device.Device().ExecuteCommand(3, params[static_cast<std::size_t>(i)].get(),
                                           &contexts[static_cast<std::size_t>(i)]);
        contexts.back().WaitForEnd();
        realRates.push_back(kQueued / Microseconds(begin) * 1e6);
        begin = Clock::now();
        for (int i = 0; i < kQueued; ++i)
            bare.RoundTrip();
        bareRates.push_back(kQueued / Microseconds(begin) * 1e6);
    }
    return {Median(bareRates), Median(realRates)};
}

const bool kAdded = [] {
    AddMeasurement("roundtrip", &MeasureRoundTrip);
    AddMeasurement("queued", &MeasureQueued);
    return true;
}();

void CommandRoundTrip(benchmark::State& state) {
    for (auto _ : state) {
        const std::vector<double> n = InFreshProcess("roundtrip");
        state.counters["bare_us"] = n.at(0);
        state.counters["command_us"] = n.at(1);
        state.counters["ratio_median"] = n.at(1) / n.at(0);
        state.counters["bare_p99_us"] = n.at(2);
        state.counters["command_p99_us"] = n.at(3);
        state.counters["ratio_p99"] = n.at(3) / n.at(2);
    }
}
BENCHMARK(CommandRoundTrip)->Iterations(1)->Repetitions(5)->Unit(benchmark::kMillisecond);

void ThousandQueuedCommands(benchmark::State& state) {
    for (auto _ : state) {
        const std::vector<double> n = InFreshProcess("queued");
        state.counters["bare_per_s"] = n.at(0);
        state.counters["commands_per_s"] = n.at(1);
        state.counters["ratio"] = n.at(1) / n.at(0);
    }
}
BENCHMARK(ThousandQueuedCommands)->Iterations(1)->Repetitions(3)->Unit(benchmark::kMillisecond);

} // namespace
