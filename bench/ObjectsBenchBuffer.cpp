#include <cstdio>
#include <cstdlib>
#include <vector>

#include <benchmark/benchmark.h>

#include <QScriptEngine>

#include "Measure.h"
#include "ScriptClasses.h"

namespace {

constexpr int kBytes = 1000000;
constexpr int kRounds = 11;

/// An engine with the script classes and a few things to work on.
class BufferScript {
public:
    BufferScript() {
        PinToOneCore();
        InstallScriptClasses(m_engine);
        Function("var n = 1000000, b = new Buffer(n), c = new Buffer(n), a = []; b.fill(65);"
                 "for (var i = 0; i < n; ++i) a[i] = 65;"
                 "for (i = 0; i < n; ++i) c[i] = i % 94 + 32");
    }

    QScriptValue Function(const char* script) { return m_engine.evaluate(QString::fromLatin1(script)); }

    /// Median processor time of one call in nanoseconds.
    double Time(const char* script) {
        QScriptValue function = Function((std::string("(function () {") + script + "})").c_str());
        std::vector<double> times;
        for (int i = 0; i < kRounds; ++i) {
            const double begin = ProcessorSeconds();
            function.call();
            times.push_back((ProcessorSeconds() - begin) * 1e9);
        }
        if (m_engine.hasUncaughtException()) {
            std::fprintf(stderr, "%s: %s\n", script, qPrintable(m_engine.uncaughtException().toString()));
            std::abort();
        }
        return Median(times);
    }

private:
    QScriptEngine m_engine;
};

/// One indexed byte: of an array, read, written, and copied from one Buffer to another.
std::vector<double> MeasureElements() {
    BufferScript script;
    const double loop = script.Time("for (var i = 0; i < 1000000; ++i) {}");
    const auto perByte = [&](const char* text) { return (script.Time(text) - loop) / kBytes; };
    return {perByte("var s = 0; for (var i = 0; i < 1000000; ++i) s += a[i]"),
            perByte("var s = 0; for (var i = 0; i < 1000000; ++i) s += b[i]"),
            perByte("for (var i = 0; i < 1000000; ++i) b[i] = i"),
            perByte("for (var i = 0; i < 1000000; ++i) b[i] = c[i]")};
}

/// Megabytes in a second of the operations on whole Buffers.
std::vector<double> MeasureBlocks() {
    BufferScript script;
    std::vector<double> speeds;
    for (const char* text : {"b.fill(7)", "b.concat([b, c])", "c.copy(b)", "c.toString('utf8')", "c.toString('ascii')",
                             "c.toString('base64')", "c.toString('hex')"})
        speeds.push_back(kBytes * 1000.0 / script.Time(text));
    return speeds;
}

/// The same in plain C++ with Qt's own functions.
std::vector<double> MeasureBareBlocks() {
    PinToOneCore();
    QByteArray b(kBytes, 'A');
    QByteArray c(kBytes, 'B');
    const auto speed = [](auto work) {
        std::vector<double> times;
        for (int i = 0; i < kRounds; ++i) {
            const double begin = ProcessorSeconds();
            work();
            times.push_back((ProcessorSeconds() - begin) * 1e9);
        }
        return kBytes * 1000.0 / Median(times);
    };
    return {speed([&] { b.fill(7); }),
            speed([&] { benchmark::DoNotOptimize(b + c); }),
            speed([&] { b.replace(0, kBytes, c); }),
            speed([&] { benchmark::DoNotOptimize(QString::fromUtf8(c)); }),
            speed([&] { benchmark::DoNotOptimize(QString::fromLatin1(c)); }),
            speed([&] { benchmark::DoNotOptimize(QString::fromLatin1(c.toBase64())); }),
            speed([&] { benchmark::DoNotOptimize(QString::fromLatin1(c.toHex())); })};
}

const bool kAdded = [] {
    AddMeasurement("elements", &MeasureElements);
    AddMeasurement("blocks", &MeasureBlocks);
    AddMeasurement("bareBlocks", &MeasureBareBlocks);
    return true;
}();

void OneIndexedByte(benchmark::State& state) {
    for (auto _ : state) {
        const std::vector<double> n = InFreshProcess("elements");
        state.counters["array_ns"] = n.at(0);
        state.counters["read_ns"] = n.at(1);
        state.counters["write_ns"] = n.at(2);
        state.counters["copied_ns"] = n.at(3);
    }
}
BENCHMARK(OneIndexedByte)->Iterations(1)->Repetitions(3)->Unit(benchmark::kMillisecond);

void WholeBuffersInMBps(benchmark::State& state) {
    static constexpr const char* kNames[] = {"fill", "concat", "copy", "utf8", "ascii", "base64", "hex"};
    for (auto _ : state) {
        const std::vector<double> real = InFreshProcess("blocks");
        const std::vector<double> bare = InFreshProcess("bareBlocks");
        for (std::size_t i = 0; i < std::size(kNames); ++i) {
            state.counters[kNames[i]] = real.at(i);
            state.counters[std::string(kNames[i]) + "_ratio"] = real.at(i) / bare.at(i);
        }
    }
}
BENCHMARK(WholeBuffersInMBps)->Iterations(1)->Unit(benchmark::kMillisecond);

} // namespace
