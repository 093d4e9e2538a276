#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <future>
#include <vector>

#include <benchmark/benchmark.h>

#include <QTimer>

#include "BareScript.h"
#include "BareVariables.h"
#include "BenchShow.h"
#include "Measure.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kRounds = 21;
constexpr int kVariableCalls = 20000;
constexpr int kPerforms = 200;
constexpr int kChanges = 20000;
constexpr int kTicks = 300;
constexpr int kTickMs = 10;

double Seconds(Clock::time_point begin) {
    return std::chrono::duration<double>(Clock::now() - begin).count();
}

/// What a round of each takes, in turn: {bare median, ours median, median of ratios ours to bare}, in seconds.
template <typename Bare, typename Ours>
std::vector<double> InTurn(Bare bare, Ours ours) {
    std::vector<double> bareTimes;
    std::vector<double> ourTimes;
    std::vector<double> ratios;
    for (int round = 0; round < kRounds; ++round) {
        auto begin = Clock::now();
        bare();
        bareTimes.push_back(Seconds(begin));
        begin = Clock::now();
        ours();
        ourTimes.push_back(Seconds(begin));
        ratios.push_back(ourTimes.back() / bareTimes.back());
    }
    return {Median(bareTimes), Median(ourTimes), Median(ratios)};
}

void Expect(bool condition) {
    if (!condition)
        std::abort();
}

/// Writes and reads of a variable, half each, beside an object of the given kind.
template <typename Variables>
std::vector<double> MeasureVariablesBeside() {
    PinToOneCore();
    BenchShow show;
    const std::string loop = "for (var i = 0; i < " + std::to_string(kVariableCalls / 2) +
                             "; ++i) { QCalverin.SetValueAsInteger('v', i); QCalverin.GetValueAsInteger('v') }";
    const std::string script = "({ F: function() { " + loop + " return QCalverin.GetValueAsInteger('v') } })";
    BareRelay bare(QString::fromStdString(script));
    Variables variables(show);
    bare.Offer(QStringLiteral("QCalverin"), variables);
    BenchDevice device(script);
    const auto params = plain::Params::ForFunction("F", {});
    const std::string last = std::to_string(kVariableCalls / 2 - 1);
    return InTurn([&] { Expect(bare.RoundTrip().toStdString() == last); },
                  [&] { Expect(device.Call(*params) == last); });
}

std::vector<double> MeasureVariables() {
    return MeasureVariablesBeside<BareVariables>();
}

std::vector<double> MeasureCrowdedVariables() {
    return MeasureVariablesBeside<CrowdedVariables>();
}

/// One script runs a function of another device's script and waits for its text.
std::vector<double> MeasurePerform() {
    PinToOneCore();
    BenchShow show;
    const std::string answer = "({ F: function(a) { return a } })";
    BareRelay bareTarget(QString::fromStdString(answer));
    BareEngineThread bareCaller;
    BenchDevice target(answer);
    show.target = &target;
    BenchDevice caller(
        "({ F: function() { for (var i = 0; i < " + std::to_string(kPerforms) +
        "; ++i) if (QCalverin.Perform('Target', 'F', 'XML', 'a') != 'a') return 'wrong'; return 'a' } })");
    const auto params = plain::Params::ForFunction("F", {});
    const auto bareLoop = [&] {
        for (int i = 0; i < kPerforms; ++i)
            Expect(bareTarget.RoundTrip() == QLatin1String("a"));
    };
    return InTurn([&] { QMetaObject::invokeMethod(bareCaller.engine, bareLoop, Qt::BlockingQueuedConnection); },
                  [&] { Expect(caller.Call(*params) == "a"); });
}

/// Changes from a host thread until the script has heard of the last one.
std::vector<double> MeasureChanges() {
    PinToOneCore();
    BenchShow show;
    std::promise<void> heard;
    show.variable.onWrite = [&](std::int32_t) { heard.set_value(); };
    const std::string count = "function(name, value) { if (++n == " + std::to_string(kChanges) +
                              ") { n = 0; QCalverin.SetValueAsInteger('v', 1) } }";
    BenchDevice device("var n = 0; QCalverin.RegisterGroup('G', true); QCalverin.OnVariableChange(" + count +
                       "); ({})");
    BareEngineThread bare;
    BareVariables variables(show);
    QScriptValue function;
    const auto prepare = [&] {
        bare.engine->globalObject().setProperty(QStringLiteral("QCalverin"), bare.engine->newQObject(&variables));
        function = bare.engine->evaluate(QString::fromStdString("var n = 0; (" + count + ")"));
    };
    QMetaObject::invokeMethod(bare.engine, prepare, Qt::BlockingQueuedConnection);
    const auto callBare = [&](const QString& name, const QString& value) {
        QMetaObject::invokeMethod(
            bare.engine,
            [&function, name, value] {
                function.call(QScriptValue(), QScriptValueList{name, value});
            },
            Qt::QueuedConnection);
    };
    const auto wait = [&] {
        heard.get_future().wait();
        heard = std::promise<void>();
    };
    std::vector<double> result = InTurn(
        [&] {
            for (int i = 0; i < kChanges; ++i)
                callBare(QStringLiteral("name"), QStringLiteral("value"));
            wait();
        },
        [&] {
            for (int i = 0; i < kChanges; ++i)
                show.handler->OnPropertyChange("name", "Value", "value", 1, 0);
            wait();
        });
    QMetaObject::invokeMethod(
        bare.engine, [&] { function = QScriptValue(); }, Qt::BlockingQueuedConnection);
    return result;
}

/// How late the ticks of a timer are on a grid of its period, laid through its earliest tick. In milliseconds.
std::vector<double> Lateness(const std::vector<double>& ticks) {
    std::vector<double> offsets;
    for (std::size_t i = 0; i < ticks.size(); ++i)
        offsets.push_back(ticks[i] * 1e3 - static_cast<double>(i) * kTickMs);
    const double earliest = *std::min_element(offsets.begin(), offsets.end());
    for (double& offset : offsets)
        offset -= earliest;
    return offsets;
}

double Mean(const std::vector<double>& samples) {
    double sum = 0;
    for (const double sample : samples)
        sum += sample;
    return sum / static_cast<double>(samples.size());
}

/// Notes when ticks come, and lets somebody wait for the last.
class TickLog {
public:
    void Tick() {
        if (m_ticks.size() == kTicks)
            return;
        m_ticks.push_back(Seconds(m_begin));
        if (m_ticks.size() == kTicks)
            m_done.set_value();
    }
    std::vector<double> Wait() {
        m_done.get_future().wait();
        return Lateness(m_ticks);
    }

private:
    const Clock::time_point m_begin = Clock::now();
    std::vector<double> m_ticks;
    std::promise<void> m_done;
};

std::vector<double> MeasureTimer() {
    BenchShow show;
    TickLog ours;
    show.variable.onWrite = [&](std::int32_t) { ours.Tick(); };
    std::vector<double> late;
    {
        const BenchDevice device("QCalverin.SetInterval(function() { QCalverin.SetValueAsInteger('v', 1) }, " +
                                 std::to_string(kTickMs) + "); ({})");
        late = ours.Wait();
    }
    TickLog bareTicks;
    show.variable.onWrite = [&](std::int32_t) { bareTicks.Tick(); };
    BareRelay bare(QStringLiteral("({ F: function() { QCalverin.SetValueAsInteger('v', 1) } })"));
    BareVariables variables(show);
    bare.Offer(QStringLiteral("QCalverin"), variables);
    bare.StartTimer(kTickMs);
    std::vector<double> bareLate = bareTicks.Wait();
    bare.StopTimer();
    return {Mean(bareLate), Mean(late), Percentile(bareLate, 0.99), Percentile(late, 0.99)};
}

const bool kAdded = [] {
    AddMeasurement("variables", &MeasureVariables);
    AddMeasurement("crowded_variables", &MeasureCrowdedVariables);
    AddMeasurement("perform", &MeasurePerform);
    AddMeasurement("changes", &MeasureChanges);
    AddMeasurement("timer", &MeasureTimer);
    return true;
}();

/// Runs a measurement of rounds with so many operations each and shows rates.
void ShowRates(benchmark::State& state, const char* measurement, int operations) {
    for (auto _ : state) {
        const std::vector<double> n = InFreshProcess(measurement);
        state.counters["bare_per_s"] = operations / n.at(0);
        state.counters["ours_per_s"] = operations / n.at(1);
        state.counters["time_ratio"] = n.at(2);
    }
}

void VariableReadsAndWrites(benchmark::State& state) {
    ShowRates(state, "variables", kVariableCalls);
}
BENCHMARK(VariableReadsAndWrites)->Iterations(1)->Repetitions(3)->Unit(benchmark::kMillisecond);

/// Beside a bare object with as many methods: what is left is the module's own.
void VariableReadsAndWritesBesideAsManyMethods(benchmark::State& state) {
    ShowRates(state, "crowded_variables", kVariableCalls);
}
BENCHMARK(VariableReadsAndWritesBesideAsManyMethods)->Iterations(1)->Repetitions(3)->Unit(benchmark::kMillisecond);

void PerformBetweenTwoDevices(benchmark::State& state) {
    ShowRates(state, "perform", kPerforms);
}
BENCHMARK(PerformBetweenTwoDevices)->Iterations(1)->Repetitions(3)->Unit(benchmark::kMillisecond);

void ChangesToAScript(benchmark::State& state) {
    ShowRates(state, "changes", kChanges);
}
BENCHMARK(ChangesToAScript)->Iterations(1)->Repetitions(3)->Unit(benchmark::kMillisecond);

void LatenessOfATimer(benchmark::State& state) {
    for (auto _ : state) {
        const std::vector<double> n = InFreshProcess("timer");
        state.counters["bare_mean_ms"] = n.at(0);
        state.counters["ours_mean_ms"] = n.at(1);
        state.counters["bare_p99_ms"] = n.at(2);
        state.counters["ours_p99_ms"] = n.at(3);
    }
}
BENCHMARK(LatenessOfATimer)->Iterations(1)->Repetitions(3)->Unit(benchmark::kMillisecond);

} // namespace
