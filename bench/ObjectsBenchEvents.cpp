#include <functional>
#include <future>
#include <memory>
#include <thread>
#include <vector>

#include <benchmark/benchmark.h>

#include <QMetaObject>
#include <QScriptEngine>

#include "BareScript.h"
#include "MCalverinScript_Device.h"
#include "Measure.h"
#include "MScriptMngRemote.h"
#include "ScriptView.h"

namespace {

constexpr int kEvents = 50000;
constexpr int kRounds = 11;
constexpr const char* kListener = "(function () { var count = 0; return function () {"
                                  "  if (++count === 50000) { count = 0; done() } } })()";

class BenchSource : public QObject, public MScriptCommonEvent {
public:
    BenchSource() { m_type = ScriptObjectType::Udp; }
};

/// A function `done` for the script, and the wait for it.
class Done {
public:
    void Install(QScriptEngine& engine) {
        engine.setProperty("done", QVariant::fromValue(static_cast<void*>(this)));
        const auto tell = [](QScriptContext*, QScriptEngine* caller) {
            static_cast<Done*>(caller->property("done").value<void*>())->m_promise.set_value();
            return QScriptValue();
        };
        engine.globalObject().setProperty(QStringLiteral("done"), engine.newFunction(tell));
    }
    /// Events in a second of processor time when a thread raises all of them with the function.
    double Rate(const std::function<void()>& raise) {
        m_promise = std::promise<void>();
        std::future<void> over = m_promise.get_future();
        const double begin = ProcessorSeconds();
        std::thread raiser([&] {
            for (int i = 0; i < kEvents; ++i)
                raise();
        });
        over.wait();
        raiser.join();
        return kEvents / (ProcessorSeconds() - begin);
    }

private:
    std::promise<void> m_promise;
};

/// One queued call to an object on the engine's thread, and there one call of the function with one value.
class BareEvents {
public:
    BareEvents() {
        Run([this] {
            done.Install(*m_script.engine);
            m_function = m_script.engine->evaluate(QString::fromLatin1(kListener));
        });
        m_target.moveToThread(&m_script.thread);
    }
    ~BareEvents() {
        Run([this] { m_function = QScriptValue(); });
    }
    void Raise(const QVariant& value) {
        QMetaObject::invokeMethod(
            &m_target,
            [this, value] { m_function.call(QScriptValue(), QScriptValueList{m_script.engine->toScriptValue(value)}); },
            Qt::QueuedConnection);
    }

    Done done;

private:
    void Run(const std::function<void()>& work) {
        QMetaObject::invokeMethod(m_script.engine, work, Qt::BlockingQueuedConnection);
    }

    BareEngineThread m_script;
    QObject m_target;
    QScriptValue m_function;
};

class DeviceEvents {
public:
    DeviceEvents()
        : m_device(new MCalverinScript_Device(nullptr, nullptr, "Bench")) {
        m_device->GetStoredSetup().SetScript(QString(), QStringLiteral("({})"));
        m_device->Start();
        std::promise<void> ready;
        m_device->PostTask([&] {
            QScriptEngine* engine = m_device->GetEngine();
            done.Install(*engine);
            auto source = std::make_unique<BenchSource>();
            m_source = source.get();
            m_source->SetListener(QStringLiteral("data"), engine->evaluate(QString::fromLatin1(kListener)));
            m_device->GetRemote()->GetEventSources().Own(std::move(source));
            ready.set_value();
        });
        ready.get_future().wait();
    }
    ~DeviceEvents() {
        m_device->Stop();
        m_device->Release();
    }
    void Raise(const QVariant& value) {
        MScriptParamList params;
        params.Add(value);
        m_device->GetRemote()->PostScriptEvent(QStringLiteral("data"), &params, m_source);
    }

    Done done;

private:
    MCalverinScript_Device* const m_device;
    BenchSource* m_source = nullptr;
};

std::vector<double> MeasureEvents(const QVariant& value) {
    PinToOneCore();
    BareEvents bare;
    DeviceEvents device;
    std::vector<double> bareRates;
    std::vector<double> deviceRates;
    std::vector<double> ratios;
    for (int i = 0; i < kRounds; ++i) {
        bareRates.push_back(bare.done.Rate([&] { bare.Raise(value); }));
        deviceRates.push_back(device.done.Rate([&] { device.Raise(value); }));
        ratios.push_back(deviceRates.back() / bareRates.back());
    }
    return {Median(bareRates), Median(deviceRates), Median(ratios)};
}

const bool kAdded = [] {
    AddMeasurement("events", [] { return MeasureEvents(true); });
    AddMeasurement("dataEvents", [] { return MeasureEvents(QByteArray(64, 'x')); });
    return true;
}();

void Events(benchmark::State& state, const char* measurement) {
    for (auto _ : state) {
        const std::vector<double> n = InFreshProcess(measurement);
        state.counters["bare_per_s"] = n.at(0);
        state.counters["device_per_s"] = n.at(1);
        state.counters["ratio"] = n.at(2);
    }
}
BENCHMARK_CAPTURE(Events, boolean, "events")->Iterations(1)->Repetitions(3)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Events, bytes, "dataEvents")->Iterations(1)->Repetitions(3)->Unit(benchmark::kMillisecond);

} // namespace
