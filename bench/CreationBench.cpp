#include <chrono>
#include <memory>
#include <thread>
#include <vector>

#include <benchmark/benchmark.h>

#include "BareScript.h"
#include "BenchDevice.h"
#include "Measure.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kDevices = 200;
constexpr int kIdleSeconds = 3;

/// Time and memory of making many of something after a first one has loaded what all share.
template <typename Make>
std::vector<double> MeasureMaking(Make make) {
    make();
    const double before = ResidentKilobytes();
    const auto begin = Clock::now();
    for (int i = 0; i < kDevices; ++i)
        make();
    const std::chrono::duration<double, std::micro> took = Clock::now() - begin;
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    return {took.count() / kDevices, (ResidentKilobytes() - before) / kDevices};
}

std::vector<double> MeasureBareCreation() {
    static std::vector<std::unique_ptr<BareEngineThread>> made;
    return MeasureMaking([] { made.push_back(std::make_unique<BareEngineThread>()); });
}

std::vector<double> MeasureDeviceCreation() {
    BenchModule();
    static std::vector<IKXPDevice*> made;
    return MeasureMaking([] {
        IKXPDevice* device = nullptr;
        BenchModule().CreateDevice(nullptr, &device);
        made.push_back(device);
    });
}

std::vector<double> MeasureIdle() {
    std::vector<std::unique_ptr<BenchDevice>> devices;
    devices.reserve(kDevices);
    for (int i = 0; i < kDevices; ++i)
        devices.push_back(std::make_unique<BenchDevice>("({ F: function(a) { return a } })"));
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    const double before = ProcessorSeconds();
    std::this_thread::sleep_for(std::chrono::seconds(kIdleSeconds));
    return {(ProcessorSeconds() - before) / kIdleSeconds * 100.0};
}

const bool kAdded = [] {
    AddMeasurement("bare-creation", &MeasureBareCreation);
    AddMeasurement("device-creation", &MeasureDeviceCreation);
    AddMeasurement("idle", &MeasureIdle);
    return true;
}();

void DeviceCreation(benchmark::State& state) {
    for (auto _ : state) {
        const std::vector<double> bare = InFreshProcess("bare-creation");
        const std::vector<double> device = InFreshProcess("device-creation");
        state.counters["bare_us"] = bare.at(0);
        state.counters["device_us"] = device.at(0);
        state.counters["ratio_time"] = device.at(0) / bare.at(0);
        state.counters["bare_kB"] = bare.at(1);
        state.counters["device_kB"] = device.at(1);
        state.counters["ratio_memory"] = device.at(1) / bare.at(1);
    }
}
BENCHMARK(DeviceCreation)->Iterations(1)->Repetitions(5)->Unit(benchmark::kMillisecond);

void IdleDevices(benchmark::State& state) {
    for (auto _ : state)
        state.counters["percent_of_a_core"] = InFreshProcess("idle").at(0);
}
BENCHMARK(IdleDevices)->Iterations(1)->Unit(benchmark::kMillisecond);

} // namespace
