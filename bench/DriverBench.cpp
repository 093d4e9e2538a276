#include <chrono>
#include <cstdlib>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include <QByteArray>
#include <QScriptContext>
#include <QScriptEngine>

#include "BenchShow.h"
#include "Measure.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kRounds = 21;
constexpr int kAccesses = 300000; // half of them writes
constexpr int kDriverLines = 2000;

double Milliseconds(Clock::time_point begin) {
    return std::chrono::duration<double, std::milli>(Clock::now() - begin).count();
}

void Expect(bool condition) {
    if (!condition)
        std::abort();
}

IData* bareVariable = nullptr;

/// The least that makes a member of an object a variable of the host.
QScriptValue BareAccess(QScriptContext* context, QScriptEngine*) {
    if (context->argumentCount() == 0)
        return QScriptValue(bareVariable->GetIntValue());
    bareVariable->SetIntValue(context->argument(0).toInt32(), 0, 0);
    return context->argument(0);
}

/// Writes and reads of a published variable's member, half each,
/// beside a native getter and setter in an engine of this thread.
std::vector<double> MeasureAccessor() {
    PinToOneCore();
    BenchShow show;
    const std::string loop = "var x = 0, c = this.Calverin; for (var i = 0; i < " + std::to_string(kAccesses / 2) +
                             "; ++i) { c.v = i; x = c.v } return x";
    const std::string script =
        "({ Calverin: { v: 0 }, F: function() { " + loop + " }, W: function() { return this.Calverin.v = 7 } })";
    bareVariable = show.FindVariable("v");
    QScriptEngine engine;
    QScriptValue bare = engine.evaluate(QString::fromStdString(script));
    bare.property(QStringLiteral("Calverin")).setProperty(QStringLiteral("v"), QScriptValue());
    bare.property(QStringLiteral("Calverin"))
        .setProperty(QStringLiteral("v"), engine.newFunction(&BareAccess),
                     QScriptValue::PropertyGetter | QScriptValue::PropertySetter);
    QScriptValue bareFunction = bare.property(QStringLiteral("F"));
    BenchDevice device(script);
    const auto params = plain::Params::ForFunction("F", {});
    const auto oneWrite = plain::Params::ForFunction("W", {});
    const std::string last = std::to_string(kAccesses / 2 - 1);
    std::vector<double> bareTimes;
    std::vector<double> ourTimes;
    std::vector<double> ratios;
    for (int round = 0; round < kRounds; ++round) {
        auto begin = Clock::now();
        Expect(bareFunction.call(bare).toString().toStdString() == last);
        bareTimes.push_back(Milliseconds(begin));
        begin = Clock::now();
        Expect(device.Call(*params) == last);
        ourTimes.push_back(Milliseconds(begin));
        ratios.push_back(ourTimes.back() / bareTimes.back());
        show.variable.SetIntValue(-1, 0, 0);
        Expect(device.Call(*oneWrite) == "7" && show.variable.GetIntValue() == 7);
    }
    return {Median(bareTimes), Median(ourTimes), Median(ratios)};
}

/// A driver of some two thousand lines, most of them inside of functions.
std::string LongDriver() {
    std::string info;
    std::string functions;
    for (int i = 0; i < kDriverLines / 10; ++i) {
        const std::string n = std::to_string(i);
        info += "f" + n + ": { Params: { a: { Type: 'Integer', MinValue: 0 } } }, ";
        functions += "f" + n + ": function(a, b) {\n";
        for (int line = 0; line < 8; ++line)
            functions += "    a = Number(a) + " + std::to_string(line) + " * (b ? 1 : 2);\n";
        functions += "    return a; },\n";
    }
    return "({ " + functions + "Info: { Commands: { " + info +
           "none: 0 } },\nDevice: { Level: 1 }, Setup: { port: 1 } })";
}

/// A stored setup with that driver: the engine alone has to evaluate the script twice.
std::vector<double> MeasureAnalysis() {
    PinToOneCore();
    BenchShow show;
    const std::string script = LongDriver();
    const std::string setup = "<DeviceData Version='1000' Name='Bench'><Setup><Script EncodedBase64='1'>" +
                              QByteArray::fromStdString(script).toBase64().toStdString() +
                              "</Script></Setup></DeviceData>";
    BenchDevice device("({})");
    std::vector<double> bareTimes;
    std::vector<double> ourTimes;
    std::vector<double> ratios;
    for (int round = 0; round < kRounds; ++round) {
        auto begin = Clock::now();
        {
            QScriptEngine engine;
            Expect(engine.evaluate(QString::fromStdString(script)).isObject());
            Expect(engine.evaluate(QString::fromStdString(script)).isObject());
        }
        bareTimes.push_back(Milliseconds(begin));
        begin = Clock::now();
        Expect(device.Device().SetSetup(setup.c_str()) == KXP_OK);
        ourTimes.push_back(Milliseconds(begin));
        ratios.push_back(ourTimes.back() / bareTimes.back());
    }
    return {Median(bareTimes), Median(ourTimes), Median(ratios)};
}

const bool kAdded = [] {
    AddMeasurement("accessor", &MeasureAccessor);
    AddMeasurement("analysis", &MeasureAnalysis);
    return true;
}();

void Report(benchmark::State& state, const char* measurement) {
    for (auto _ : state) {
        const std::vector<double> n = InFreshProcess(measurement);
        state.counters["bare_ms"] = n.at(0);
        state.counters["device_ms"] = n.at(1);
        state.counters["ratio"] = n.at(2);
    }
}

void PublishedVariable(benchmark::State& state) {
    Report(state, "accessor");
}
BENCHMARK(PublishedVariable)->Iterations(1)->Repetitions(3)->Unit(benchmark::kMillisecond);

void AnalysisOfALongDriver(benchmark::State& state) {
    Report(state, "analysis");
}
BENCHMARK(AnalysisOfALongDriver)->Iterations(1)->Repetitions(3)->Unit(benchmark::kMillisecond);

} // namespace
