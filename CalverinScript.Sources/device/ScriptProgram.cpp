#include "ScriptProgram.h"

#include <algorithm>
#include <mutex>
#include <optional>
#include <utility>

#include <QScriptEngine>

#include "CommandNumbers.h"
#include "DeviceTexts.h"
#include "HostServices.h"
#include "HostText.h"
#include "HostValues.h"
#include "IProgramOwner.h"
#include "MScriptMngRemote.h"
#include "ScriptDebugger.h"
#include "ScriptEvaluation.h"
#include "ScriptHandlers.h"
#include "ScriptWorld.h"
#include "StoredSetup.h"
#include "VariableLookup.h"

namespace {

/// The value of a setting as its type asks for it; invalid for types that settings do not have.
QScriptValue SettingValue(const MScriptSetting& setting) {
    if (setting.type == QLatin1String("IntegerData") || setting.type == QLatin1String("EnumData"))
        return QScriptValue(setting.value.toInt());
    if (setting.type == QLatin1String("RealData"))
        return QScriptValue(setting.value.toDouble());
    if (setting.type == QLatin1String("StringData") || setting.type == QLatin1String("DateData") ||
        setting.type == QLatin1String("TimeData"))
        return QScriptValue(setting.value);
    return QScriptValue();
}

QScriptValueList TextsOf(const char** params) {
    QScriptValueList texts;
    for (int i = 0; i < kArgumentCount && params[i] != nullptr; ++i)
        texts.append(QScriptValue(FromHostText(params[i])));
    return texts;
}

} // namespace

ScriptProgram::ScriptProgram(const Parts& parts)
    : m_parts(parts) {
    parts.values.Accessors().TellMisfits([this](const QString& name, const QString& text, const QString& why) {
        m_parts.world.Remote().TellMisfit(name, text, why, m_parts.world.EnumFunctions().ItemsOf(name));
    });
}

ScriptSet& ScriptProgram::Set() const {
    return m_parts.world.GetSet();
}

bool ScriptProgram::LoadFile(const char* fileName) {
    return ReadScriptFile(Set(), fileName, m_parts.owner) && RunLoaded();
}

bool ScriptProgram::LoadText(const QString& text) {
    Show(QStringLiteral(""), text);
    const bool result = RunLoaded();
    m_parts.owner.ReportScriptFile(Set().scriptFileName);
    m_parts.owner.ReportScriptText(Set().scriptText);
    return result;
}

void ScriptProgram::Show(const QString& fileName, const QString& text) {
    Set().scriptFileName = fileName;
    Set().scriptText = text;
}

/// Shows the script that is loaded now, evaluates it and shows its functions.
bool ScriptProgram::RunLoaded() {
    m_parts.values.SetText(DefaultVariable::ScriptFileName, Set().scriptFileName);
    m_parts.values.SetText(DefaultVariable::ScriptText, Set().scriptText);
    const bool result = m_parts.owner.EvaluateProgram(Set().scriptText);
    PublishFunctionList();
    return result;
}

void ScriptProgram::PublishFunctionList() {
    QString list;
    for (const MScriptCommand& function : Set().functions.Snapshot())
        list += function.name + QLatin1Char('\n');
    m_parts.values.SetText(DefaultVariable::Functions, list);
}

bool ScriptProgram::Evaluate(const QString& text) {
    ScriptWorld& world = m_parts.world;
    if (world.Debugger() != nullptr) {
        m_parts.owner.ShowDebugger();
        world.Debugger()->BeginEvaluation();
    }
    RegisterGroups();
    EndLastScript();
    world.Evaluate(text);
    if (world.Debugger() != nullptr)
        world.Debugger()->EndEvaluation();
    if (world.IsEnding())
        return false;
    world.ReportUncaught();
    if (const std::optional<EvaluationFailure> failure = TakeFailure(world.Engine(), Set().global)) {
        Report(*failure, false, m_parts.owner);
        return false;
    }
    Scan();
    StartScript();
    return true;
}

void ScriptProgram::RegisterGroups() {
    MScriptMngRemote& remote = m_parts.world.Remote();
    remote.UnregisterRootGroup();
    if (m_parts.setup.GetChoices().registerAllUserGroups)
        remote.RegisterRootGroup();
}

/// As a stop would, but for the threads.
void ScriptProgram::EndLastScript() {
    m_parts.world.Remote().AllowWaits();
    m_parts.handlers.ClearAll();
    m_isStopRepeated = std::exchange(m_wasStopped, false);
    m_parts.owner.StopProgram();
    m_isStopRepeated = false;
    m_hasStopFunction = false;
    m_parts.world.Remote().ReleaseScriptObjects();
}

void ScriptProgram::Scan() {
    VariableLookup lookup(m_parts.services, m_parts.values, m_parts.setup.Variables());
    ScanRequest request;
    request.stopMode = false;
    request.removeDefaults = m_parts.setup.IsRemovalApplied();
    request.host = &lookup;
    request.accessors = &m_parts.values.Accessors();
    request.enumHelpers = &m_parts.world.EnumFunctions();
    Publish(Set(), ScanPublished(Set(), request));
}

void ScriptProgram::StartScript() {
    const bool wasStarting = m_startPending.exchange(false);
    m_hasStopFunction = false;
    GiveSettings();
    const QScriptValue start = Set().global.property(QStringLiteral("_mStart"));
    if (start.isFunction())
        m_parts.world.Call(start, {QScriptValue(!wasStarting)});
    m_hasStopFunction = Set().global.property(QStringLiteral("_mStop")).isFunction();
}

void ScriptProgram::GiveSettings() {
    QScriptValue setup = Set().global.property(QStringLiteral("Setup"));
    if (!setup.isObject())
        return;
    for (const MScriptSetting& setting : m_parts.setup.GetSettings()) {
        const QScriptValue value = SettingValue(setting);
        if (value.isValid() && setup.property(setting.name).isValid())
            setup.setProperty(setting.name, value);
    }
}

bool ScriptProgram::CallStop() {
    const bool wasStopping = m_stopPending.exchange(false);
    if (wasStopping)
        m_parts.world.Remote().AllowWaitsOfStop();
    const QScriptValue function = Set().global.property(QStringLiteral("_mStop"));
    const bool callable = !Set().global.isError() && function.isFunction();
    if (callable)
        m_parts.world.Call(function, {QScriptValue(!wasStopping)});
    m_wasStopped = m_wasStopped || wasStopping;
    AskForStop();
    return callable;
}

/// @return invalid when there is none, which has been reported.
QScriptValue ScriptProgram::FindFunction(const char* name) {
    if (Set().global.isError()) {
        m_parts.owner.ReportError(ScriptFailure(MessageOf(Set().global)), false);
        return QScriptValue();
    }
    if (name == nullptr) {
        m_parts.owner.ReportError(QLatin1String(DeviceText::kNoFunctionName), false);
        return QScriptValue();
    }
    const QString functionName = FromHostText(name);
    const QScriptValue function = Set().global.property(functionName);
    if (!function.isError() && function.isFunction())
        return function;
    m_parts.owner.ReportError(
        function.isError() ? FailedMember(functionName, MessageOf(function)) : NoSuchFunction(functionName), false);
    return QScriptValue();
}

bool ScriptProgram::CallFunction(const char* name, IData* result, const char** params) {
    const QScriptValue function = FindFunction(name);
    if (!function.isValid())
        return false;
    QScriptValueList arguments;
    if (params != nullptr) {
        arguments = TextsOf(params);
        m_parts.world.Remote().SetPostponeAllowed(true);
    }
    const QScriptValue value = m_parts.world.Call(function, arguments);
    AskForStop();
    if (params != nullptr)
        DeliverResult(value, result);
    m_parts.world.Engine().clearExceptions();
    return true;
}

/// What a function gave becomes the command's result, unless the script failed or answers later.
void ScriptProgram::DeliverResult(const QScriptValue& value, IData* result) {
    const ScriptWorld& world = m_parts.world;
    if (world.IsEnding() || result == nullptr || world.Engine().hasUncaughtException())
        return;
    if (value.isError())
        m_parts.owner.ReportError(ScriptFailure(MessageOf(value)), false);
    else if (!world.Remote().HasPostponed() && !value.isUndefined()) {
        const QString text = value.toString();
        world.Remote().TellLostCharacters(text);
        result->SetValueFromString(ToHostText(text).constData(), 0, 0);
    }
}

void ScriptProgram::BeginStart() {
    m_startPending = true;
    m_stopPending = false;
    m_parts.world.Remote().OnDeviceStart();
}

void ScriptProgram::BeginStop() {
    m_stopPending = true;
}

void ScriptProgram::EndRequests() {
    m_parts.world.Remote().EndContexts();
}

bool ScriptProgram::EndStop() {
    m_parts.world.Remote().RefuseWaits();
    m_stopPending = false;
    ScriptDebugger* const debugger = m_parts.world.Debugger();
    const bool isHeld = debugger != nullptr && m_parts.world.IsInside();
    const bool isOwn = debugger == nullptr && m_parts.world.IsCallersOwn();
    m_stopDone = !isHeld && !isOwn;
    m_stopRequested = isOwn;
    if (isHeld)
        debugger->RequestAbort();
    return m_stopDone;
}

void ScriptProgram::ReleaseObjects() {
    m_parts.world.Remote().ReleaseScriptObjects();
}

bool ScriptProgram::HasFunction(const char* name) {
    if (name == nullptr)
        return false;
    const QLatin1String wanted(name);
    MLockedList<MScriptCommand>& functions = Set().functions;
    const std::lock_guard<MLockedList<MScriptCommand>> guard(functions);
    return std::any_of(functions.begin(), functions.end(),
                       [&](const MScriptCommand& function) { return function.name == wanted; });
}

void ScriptProgram::AskForStop() {
    if (!m_stopDone)
        m_stopRequested = true;
}

bool ScriptProgram::FinishStop(const std::function<void()>& endCommands) {
    const std::unique_lock<std::mutex> turn(m_finishing, std::try_to_lock);
    if (!turn.owns_lock() || m_stopDone)
        return false;
    endCommands();
    m_stopRequested = false;
    m_stopDone = true;
    return true;
}

void ScriptProgram::ServeDebugger() {
    if (m_parts.world.Debugger() != nullptr)
        m_parts.world.Debugger()->Tick();
}

void ScriptProgram::ServeBridge() {
    m_parts.world.Remote().Tick();
}
