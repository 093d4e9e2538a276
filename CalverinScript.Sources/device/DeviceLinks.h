#pragma once

#include "CommandRoad.h"
#include "IProgramOwner.h"
#include "MCalverinScript_Device.h"
#include "SetupDesk.h"

/// What the rooms need of the device that they are in: its calls to the script thread, and its signals.
class MCalverinScript_Device::Links final : public ICommandWork, public IProgramOwner, public ISetupOwner {
public:
    explicit Links(MCalverinScript_Device& device)
        : m_device(device) {}

    // ICommandWork
    std::string GetRoadName() override { return m_device.CopyName(); }
    bool MayPost() const override { return m_device.MayPost(); }
    bool Run(const ScriptRequest& request) override;
    void ShowStatus(DeviceStatus status) override;
    void ShowError(const char* text) override;
    void OnCommandOver() override;
    void DropAnswer(MyAsyncDeviceExecContext* answer) override { m_device.DropAsyncResult(answer); }

    // IProgramOwner
    void ReportError(const QString& text, bool stopMode) override { m_device.ReportError(text, stopMode); }
    void ReportLine(int line) override { Q_EMIT m_device.SignalNotifyLineErrorChange(line); }
    void ReportScriptFile(const QString& fileName) override;
    void ReportScriptText(const QString& text) override;
    void ReportException(const QScriptValue& exception) override { m_device.SlotHandlerException(exception); }
    void ReportLeftBehind(const QScriptValue& exception) override { Q_EMIT m_device.SignalScriptError(exception); }
    bool EvaluateProgram(const QString& text) override { return m_device.EvaluateScript(text, nullptr); }
    void StopProgram() override { m_device.ExecuteStopFunction(); }
    void ReportStopped(const QStringList& lines) override;
    void ShowDebugger() override { Q_EMIT m_device.SignalShowDebugger(); }

    // ISetupOwner
    std::string GetSetupName() override { return m_device.CopyName(); }
    void SetSetupName(const char* name) override { m_device.MKXPDeviceBase::SetName(name); }
    bool IsFirstDevice() const override;
    ScriptCommands CommandsOfAllDevices() const override;
    void ShowScript(const QString& fileName, const QString& text) override { m_device.ShowScript(fileName, text); }

private:
    MLockedList<MCalverinScript_Device*>* AllDevices() const;

    MCalverinScript_Device& m_device;
};

/// What an analysis tells: the dialogs hear of it, but the script that the device shows stays.
class MCalverinScript_Device::AnalysisReports final : public IScriptReports {
public:
    explicit AnalysisReports(MCalverinScript_Device& device)
        : m_device(device) {}

    void ReportError(const QString& text, bool stopMode) override { m_device.ReportError(text, stopMode); }
    void ReportLine(int line) override { Q_EMIT m_device.SignalNotifyLineErrorChange(line); }
    void ReportScriptFile(const QString& fileName) override {
        Q_EMIT m_device.SignalNotifyScriptFileNameChange(fileName);
    }
    void ReportScriptText(const QString& text) override { Q_EMIT m_device.SignalNotifyScriptChange(text); }
    void ReportException(const QScriptValue& exception) override { m_device.SlotHandlerException(exception); }
    void ReportLeftBehind(const QScriptValue& exception) override { Q_EMIT m_device.SignalScriptError(exception); }

private:
    MCalverinScript_Device& m_device;
};
