#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include <benchmark/benchmark.h>

#include "BareScript.h"
#include "BenchDevice.h"
#include "Measure.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr const char* kScript =
    "({ F: function() {"
    "     function fib(n) { return n < 2 ? n : fib(n - 1) + fib(n - 2) }"
    "     var sum = fib(22); for (var i = 0; i < 2000000; ++i) sum = (sum * 31 + i) % 1000003;"
    "     var parts = []; for (var k = 0; k < 20000; ++k) parts.push('x' + k); return sum + parts.join('').length } })";

/// The same computation inside a device and in a bare engine on a thread with an event loop, in turn.
std::vector<double> MeasureComputation() {
    PinToOneCore();
    BareRelay bare(QString::fromLatin1(kScript));
    BenchDevice device(kScript);
    const auto params = plain::Params::ForFunction("F", {});
    std::vector<double> bareTimes;
    std::vector<double> realTimes;
    std::vector<double> ratios;
    for (int i = 0; i < 41; ++i) {
        auto begin = Clock::now();
        const QString bareResult = bare.RoundTrip();
        const std::chrono::duration<double, std::milli> bareTook = Clock::now() - begin;
        begin = Clock::now();
        const std::string result = device.Call(*params);
        const std::chrono::duration<double, std::milli> realTook = Clock::now() - begin;
        if (result.empty() || bareResult.toStdString() != result) {
            std::fprintf(stderr, "bare %s, device %s\n", qPrintable(bareResult), result.c_str());
            std::abort();
        }
        bareTimes.push_back(bareTook.count());
        realTimes.push_back(realTook.count());
        ratios.push_back(realTook.count() / bareTook.count());
    }
    return {Median(bareTimes), Median(realTimes), Median(ratios)};
}

const bool kAdded = [] {
    AddMeasurement("computation", &MeasureComputation);
    return true;
}();

void ComputationInAScript(benchmark::State& state) {
    for (auto _ : state) {
        const std::vector<double> n = InFreshProcess("computation");
        state.counters["bare_ms"] = n.at(0);
        state.counters["device_ms"] = n.at(1);
        state.counters["ratio"] = n.at(2);
    }
}
BENCHMARK(ComputationInAScript)->Iterations(1)->Repetitions(3)->Unit(benchmark::kMillisecond);

} // namespace
