#include <array>
#include <cstdint>
#include <vector>

#include <benchmark/benchmark.h>

#include <QScriptEngine>

#include "Measure.h"
#include "ScriptClasses.h"

namespace {

constexpr int kBytes = 4000000;
constexpr int kRounds = 11;

/// Megabytes in a second of processor time of a work over kBytes.
template <typename Work>
double Speed(Work work) {
    std::vector<double> times;
    for (int i = 0; i < kRounds; ++i) {
        const double begin = ProcessorSeconds();
        work();
        times.push_back((ProcessorSeconds() - begin) * 1e9);
    }
    return kBytes * 1000.0 / Median(times);
}

template <typename Register>
std::array<Register, 256> Table(Register mask) {
    std::array<Register, 256> table = {};
    for (unsigned byte = 0; byte < 256; ++byte) {
        unsigned value = byte;
        for (int bit = 0; bit < 8; ++bit)
            value = (value & 1u) != 0 ? (value >> 1) ^ mask : value >> 1;
        table[byte] = static_cast<Register>(value);
    }
    return table;
}

template <typename Register>
double PlainCrc(Register mask, const std::vector<unsigned char>& data) {
    const std::array<Register, 256> table = Table(mask);
    return Speed([&] {
        Register value = 0;
        for (unsigned char byte : data)
            value = static_cast<Register>((value >> 8) ^ table[(byte ^ value) & 0xFFu]);
        benchmark::DoNotOptimize(value);
    });
}

/// CRC-16, CRC-8 and sum in a script, then in a plain loop.
std::vector<double> MeasureChecksums() {
    PinToOneCore();
    QScriptEngine engine;
    InstallScriptClasses(engine);
    engine.evaluate(QStringLiteral("var data = new Buffer(4000000), c = new Checksum();"
                                   "for (var i = 0; i < 4000000; i += 7) data[i] = i"));
    std::vector<double> speeds;
    for (const char* type : {"Crc16", "Crc8", "Sum"}) {
        engine.evaluate(QStringLiteral("c.Init('%1')").arg(QString::fromLatin1(type)));
        QScriptValue function = engine.evaluate(QStringLiteral("(function () { c.UpdateChecksumToCompute(data) })"));
        speeds.push_back(Speed([&] { function.call(); }));
    }
    std::vector<unsigned char> data(kBytes);
    for (std::size_t i = 0; i < data.size(); i += 7)
        data[i] = static_cast<unsigned char>(i);
    speeds.push_back(PlainCrc<std::uint16_t>(0xA001, data));
    speeds.push_back(PlainCrc<std::uint8_t>(0x8C, data));
    speeds.push_back(Speed([&] {
        std::uint8_t sum = 0;
        for (unsigned char byte : data)
            sum = static_cast<std::uint8_t>(sum + byte);
        benchmark::DoNotOptimize(sum);
    }));
    return speeds;
}

const bool kAdded = [] {
    AddMeasurement("checksums", &MeasureChecksums);
    return true;
}();

void ChecksumInMBps(benchmark::State& state) {
    for (auto _ : state) {
        const std::vector<double> n = InFreshProcess("checksums");
        static constexpr const char* kNames[] = {"crc16", "crc8", "sum"};
        for (std::size_t i = 0; i < std::size(kNames); ++i) {
            state.counters[kNames[i]] = n.at(i);
            state.counters[std::string(kNames[i]) + "_ratio"] = n.at(i) / n.at(i + std::size(kNames));
        }
    }
}
BENCHMARK(ChecksumInMBps)->Iterations(1)->Repetitions(3)->Unit(benchmark::kMillisecond);

} // namespace
