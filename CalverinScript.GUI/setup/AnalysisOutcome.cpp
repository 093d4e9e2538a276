#include "AnalysisOutcome.h"

#include <functional>

#include <QThread>

#include "BusyCursor.h"
#include "DeviceTexts.h"
#include "HostText.h"
#include "MCalverinScript_Device.h"
#include "ScriptAnalysis.h"

namespace {

/// Hears what the device says while something is done on this thread. The device's running script speaks on a thread of its own,
/// and is not what is meant.
AnalysisOutcome Hear(MCalverinScript_Device& device, const std::function<bool()>& work) {
    AnalysisOutcome heard;
    const QThread* here = QThread::currentThread();
    QObject listener;
    QObject::connect(
        &device, &MCalverinScript_Device::SignalNotifyErrorChange, &listener,
        [&heard, here](const QString& text) {
            if (QThread::currentThread() == here)
                heard.text = text;
        },
        Qt::DirectConnection);
    QObject::connect(
        &device, &MCalverinScript_Device::SignalNotifyLineErrorChange, &listener,
        [&heard, here](int line) {
            if (QThread::currentThread() == here)
                heard.line = line;
        },
        Qt::DirectConnection);
    const BusyCursor busy;
    heard.succeeded = work();
    return heard;
}

} // namespace

AnalysisOutcome AnalyseScript(MCalverinScript_Device& device, const QString& text, QScriptEngine& engine) {
    return Hear(device, [&] { return device.EvaluateScript(text, &engine); });
}

std::optional<AnalysisOutcome> RecallAnalysis(const MCalverinScript_Device& device, const QString& text) {
    if (!device.GetAnalysis().Knows(text))
        return std::nullopt;
    return AnalysisOutcome{true, QLatin1String(DeviceText::kAnalysed), 0};
}

AnalysisOutcome LoadForAnalysis(MCalverinScript_Device& device, const QString& path) {
    return Hear(device, [&] { return device.LoadScriptCommand(ToHostText(path).constData(), true); });
}
