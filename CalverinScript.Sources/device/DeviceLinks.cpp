#include "DeviceLinks.h"

#include <mutex>
#include <optional>

#include <QScriptEngine>

#include "DeviceTexts.h"
#include "HostText.h"
#include "IModuleServices.h"
#include "Log.h"
#include "LogLines.h"
#include "MLockedList.h"
#include "MScriptMngRemote.h"
#include "RunWithinMemory.h"
#include "ScriptProgram.h"
#include "ScriptWorld.h"

namespace {

constexpr int kExceptionLevel = 5;
constexpr int kRemarkLevel = 7;

} // namespace

bool MCalverinScript_Device::Links::Run(const ScriptRequest& request) {
    ScriptRequest own = request;
    switch (request.id) {
    case kLoadFromFile:
        return m_device.LoadScriptCommand(request.text, false);
    case kLoadFromText:
        return m_device.EvaluateScriptCommand(FromHostText(request.text), false);
    case kExecuteFunction:
        return m_device.ExecuteScriptFunction(request.text, nullptr, nullptr);
    case kExecuteFunctionWithParams:
        return m_device.ExecuteScriptFunction(request.text, request.result, own.params.data());
    case kScriptCallback:
        return m_device.ExecuteCallBack(request.answer);
    default:
        return false;
    }
}

void MCalverinScript_Device::Links::ShowStatus(DeviceStatus status) {
    m_device.values.SetStatus(status);
}

void MCalverinScript_Device::Links::ShowError(const char* text) {
    m_device.ReportError(FromHostText(text), false);
}

/// It is kept before it is told, for those who look when they hear of it.
void MCalverinScript_Device::Links::ReportScriptFile(const QString& fileName) {
    m_device.shown.SetFileName(fileName);
    Q_EMIT m_device.SignalNotifyScriptFileNameChange(fileName);
}

void MCalverinScript_Device::Links::ReportScriptText(const QString& text) {
    m_device.shown.SetText(text);
    Q_EMIT m_device.SignalNotifyScriptChange(text);
}

void MCalverinScript_Device::Links::OnCommandOver() {
    m_device.world->Remote().SetPostponeAllowed(false);
}

MLockedList<MCalverinScript_Device*>* MCalverinScript_Device::Links::AllDevices() const {
    return m_device.module != nullptr ? m_device.module->GetDeviceList() : nullptr;
}

bool MCalverinScript_Device::Links::IsFirstDevice() const {
    MLockedList<MCalverinScript_Device*>* devices = AllDevices();
    MCalverinScript_Device* first = nullptr;
    return devices == nullptr || !devices->Get(0, first) || first == &m_device;
}

ScriptCommands MCalverinScript_Device::Links::CommandsOfAllDevices() const {
    ScriptCommands all;
    if (auto* devices = AllDevices()) {
        const std::lock_guard<MLockedList<MCalverinScript_Device*>> guard(*devices);
        for (const MCalverinScript_Device* device : *devices) {
            const ScriptCommands own = device->GetCommands();
            all.insert(all.end(), own.begin(), own.end());
        }
    }
    return all;
}

/// The engine calls it, and cannot carry a C++ exception.
void MCalverinScript_Device::SlotHandlerException(const QScriptValue& exception) {
    if (!RunWithinMemory([&] { TellException(exception); }))
        TellWantOfMemory("the report of an exception");
}

void MCalverinScript_Device::TellException(const QScriptValue& exception) {
    const bool isError = exception.isError();
    const QString message = isError ? MessageOf(exception) : exception.toString();
    if (program->IsStopRepeated()) {
        if (IsLogOn(false))
            WriteLog(LogHandle(), kRemarkLevel,
                     "CalverinScript_ [%s] the script that was stopped, _mStop once more: %s", CopyName().c_str(),
                     ToHostText(message).constData());
        return;
    }
    const QString line = isError ? exception.property(QStringLiteral("lineNumber")).toString()
                                 : QString::number(world->Engine().uncaughtExceptionLineNumber());
    ReportError(ScriptFailure(message), false);
    if (!IsLogOn(false))
        return;
    LogFailure(UncaughtForLog(line, message), world->PlaceOf(exception));
}

/// One line for the failure and one for each that says more.
void MCalverinScript_Device::LogFailure(const QString& text, const QStringList& details) {
    const std::string name = CopyName();
    WriteLog(LogHandle(), kExceptionLevel, "CalverinScript_ [%s] %s", name.c_str(), ToHostText(text).constData());
    for (const QString& detail : details)
        WriteLog(LogHandle(), kExceptionLevel, "CalverinScript_ [%s] %s%s", name.c_str(), KXP_LOG_DETAIL,
                 ToHostText(detail).constData());
}

void MCalverinScript_Device::Links::ReportStopped(const QStringList& lines) {
    if (IsLogOn(false))
        m_device.LogFailure(QLatin1String(KXP_LOG_STOPPED), lines);
}

void MCalverinScript_Device::ReportError(const QString& text, bool stopMode) {
    if (text.isNull())
        return;
    if (!stopMode) {
        shown.SetError(text);
        values.SetText(DefaultVariable::Error, text);
    }
    Q_EMIT SignalNotifyErrorChange(text);
}

void MCalverinScript_Device::TellWantOfMemory(const char* work) {
    RunWithinMemory([this] { ReportError(QLatin1String(DeviceText::kNoMemory), false); });
    RunWithinMemory([=] { LogWantOfMemory(CopyName().c_str(), work); });
}

MScriptResource* MCalverinScript_Device::FindResource(const QScriptValue& signature) {
    const std::optional<ResourceRequest> request = RequestOf(ReadResourceSignature(signature, world->Engine()));
    return request ? world->Resources().Find(*request) : nullptr;
}
