#include "MCalverinScript_Device.h"

#include <chrono>

#include <QFile>
#include <QScriptEngine>
#include <QSet>

#include "CommandNumbers.h"
#include "ConfigFile.h"
#include "DeviceMarshalling.h"
#include "DeviceTexts.h"
#include "EvaluationFailure.h"
#include "FaceAnswer.h"
#include "HostText.h"
#include "IModuleServices.h"
#include "LimitedRun.h"
#include "MScriptMngRemote.h"
#include "ScriptDebugger.h"
#include "ScriptGlobals.h"
#include "ScriptScan.h"

namespace {

constexpr std::size_t kLongestConfigPath = 1024;

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

QScriptValue EvaluateText(QScriptEngine& engine, const QString& text) {
    engine.pushContext();
    const QScriptValue value = engine.evaluate(text, QStringLiteral(""), 1);
    engine.popContext();
    return value;
}

/// What a scan asks of the device. Whether a name is one of its own variables is known at once, however many there are; its value is
/// asked of the host each time, which may have replaced it since.
class VariableLookup final : public IScanHost {
public:
    VariableLookup(IVariableManager* manager, IObjectNameTools* names, IDeviceVariables* values,
                   MLockedList<MScriptVariable>& own)
        : m_manager(manager)
        , m_names(names)
        , m_values(values) {
        const std::lock_guard<MLockedList<MScriptVariable>> guard(own);
        for (const MScriptVariable& variable : own)
            if (variable.data != nullptr)
                m_own.insert(variable.name);
    }
    IData* FindHostVariable(const QString& name) override {
        return m_manager != nullptr ? m_manager->FindVariable(ToHostText(name).constData()) : nullptr;
    }
    IData* FindDeviceVariable(const QString& name) override {
        return m_values != nullptr && m_own.contains(name) ? m_values->GetVariable(ToHostText(name).constData())
                                                           : nullptr;
    }
    bool IsValidName(const QString& name) override {
        return m_names == nullptr || m_names->IsValidName(ToHostText(name).constData()) != 0;
    }

private:
    IVariableManager* const m_manager;
    IObjectNameTools* const m_names;
    IDeviceVariables* const m_values;
    QSet<QString> m_own;
};

/// The same for a scan on another thread: the host is asked on the thread that waits for it.
class LookupOnCallersThread final : public IScanHost {
public:
    LookupOnCallersThread(LimitedRun& run, IScanHost& host)
        : m_run(run)
        , m_host(host) {}
    IData* FindHostVariable(const QString& name) override {
        return Ask<IData*>([&] { return m_host.FindHostVariable(name); });
    }
    IData* FindDeviceVariable(const QString& name) override {
        return Ask<IData*>([&] { return m_host.FindDeviceVariable(name); });
    }
    bool IsValidName(const QString& name) override {
        return Ask<bool>([&] { return m_host.IsValidName(name); });
    }

private:
    template <typename Answer, typename Question>
    Answer Ask(Question question) {
        Answer answer{};
        m_run.OnCallersThread([&] { answer = question(); });
        return answer;
    }

    LimitedRun& m_run;
    IScanHost& m_host;
};

} // namespace

/// Forgets the exception of a failed evaluation. Its text may run script.   [the engine's thread]
std::optional<MCalverinScript_Device::EvaluationFailure>
MCalverinScript_Device::FindFailure(QScriptEngine& engine, const QScriptValue& value) {
    if (engine.hasUncaughtException()) {
        const int line = engine.uncaughtExceptionLineNumber();
        const QString text = UncaughtAtLine(line, engine.uncaughtException().toString());
        engine.clearExceptions();
        return EvaluationFailure{text, line};
    }
    if (value.isError())
        return EvaluationFailure{ScriptFailure(MessageOf(value)), std::nullopt};
    return std::nullopt;
}

/// As with an analysis, what is loaded for one touches nothing of the running script and does not wait for it.
bool MCalverinScript_Device::SlotLoadScriptCommand(const char* fileName, bool stopMode) {
    if (stopMode)
        return LoadScriptFile(stop, fileName);
    return RunSlot(MarshalledCallTable::kLoadScriptCommand,
                   [&] { return LoadScriptFile(live, fileName) && RunLoadedScript(); });
}

bool MCalverinScript_Device::LoadScriptFile(ScriptSet& set, const char* fileName) {
    const QString path = FromHostText(fileName);
    QFile file(path);
    const bool read = fileName != nullptr && file.open(QIODevice::ReadOnly);
    set.scriptText = read ? FromScriptBytes(file.readAll()) : QStringLiteral("");
    if (!read)
        ReportError(QLatin1String(DeviceText::kUnreadableFile), false);
    set.scriptFileName = path;
    Q_EMIT SignalNotifyScriptFileNameChange(set.scriptFileName);
    Q_EMIT SignalNotifyScriptChange(set.scriptText);
    return read;
}

bool MCalverinScript_Device::SlotEvaluateScriptCommand(const QString& text, bool stopMode) {
    return RunSlot(MarshalledCallTable::kEvaluateScriptCommand, [&] {
        ScriptSet& set = stopMode ? stop : live;
        set.scriptFileName = QStringLiteral("");
        set.scriptText = text;
        const bool result = stopMode || RunLoadedScript();
        Q_EMIT SignalNotifyScriptFileNameChange(set.scriptFileName);
        Q_EMIT SignalNotifyScriptChange(set.scriptText);
        return result;
    });
}

/// Shows the script that is loaded now, evaluates it and shows its functions.
bool MCalverinScript_Device::RunLoadedScript() {
    values.SetText(DefaultVariable::ScriptFileName, live.scriptFileName);
    values.SetText(DefaultVariable::ScriptText, live.scriptText);
    const bool result = EvaluateScript(live.scriptText, nullptr);
    PublishFunctionList();
    return result;
}

void MCalverinScript_Device::PublishFunctionList() {
    QString list;
    for (const MScriptCommand& function : live.functions.Snapshot())
        list += function.name + QLatin1Char('\n');
    values.SetText(DefaultVariable::Functions, list);
}

/// An analysis touches nothing of the running script, so it does not wait for it, and it completes no call that somebody else
/// waits for.
bool MCalverinScript_Device::SlotEvaluateScript(const QString& text, bool stopMode) {
    if (stopMode)
        return AnalyseText(text);
    return RunSlot(MarshalledCallTable::kEvaluateScript, [&] { return EvaluateLive(text); });
}

bool MCalverinScript_Device::EvaluateLive(const QString& text) {
    if (debugger) {
        Q_EMIT SignalShowDebugger();
        debugger->BeginEvaluation();
    }
    remote->UnregisterRootGroup();
    if (storedSetup.GetChoices().registerAllUserGroups)
        remote->RegisterRootGroup();
    CleanupBeforeEvaluate();
    live.global = EvaluateText(*engine, text);
    if (debugger)
        debugger->EndEvaluation();
    if (ending)
        return false;
    if (engine->hasUncaughtException())
        ReportUncaught();
    if (const std::optional<EvaluationFailure> failure = FindFailure(*engine, live.global)) {
        ReportFailure(*failure, false);
        return false;
    }
    VariableLookup lookup(services.variables, services.names, values.GetVariables(), storedSetup.Variables());
    Publish(live, ScanPublished(live, lookup, false));
    AfterEvaluate();
    return true;
}

/// A script that never comes back must not keep the host's main thread, which waits here.
bool MCalverinScript_Device::AnalyseText(const QString& text) {
    const std::chrono::milliseconds limit = AnalysisLimit();
    LimitedRun run(*stop.engine, limit);
    VariableLookup lookup(services.variables, services.names, values.GetVariables(), storedSetup.Variables());
    LookupOnCallersThread host(run, lookup);
    std::optional<EvaluationFailure> failure;
    ScanResult found;
    const LimitedRun::Outcome outcome = run.Run([&] {
        stop.global = EvaluateText(*stop.engine, text);
        failure = FindFailure(*stop.engine, stop.global);
        if (!failure)
            found = ScanPublished(stop, host, true);
    });
    analysisEnded = outcome == LimitedRun::Outcome::InTime;
    if (!analysisEnded)
        failure = EvaluationFailure{ScriptFailure(AnalysisFailure(outcome, limit)), std::nullopt};
    if (failure) {
        ReportFailure(*failure, true);
        return false;
    }
    storedSetup.SetScriptsRemoval(found.removeDefaults);
    Publish(stop, found);
    ReportError(QLatin1String(DeviceText::kAnalysed), true);
    return true;
}

/// The configuration file's word, in seconds.
std::chrono::milliseconds MCalverinScript_Device::AnalysisLimit() const {
    char path[kLongestConfigPath] = {};
    if (module != nullptr)
        module->GetConfigFilePath(path);
    const int seconds = ReadConfigInt(path, "ANALYSIS", "limit", 0);
    return seconds > 0 ? std::chrono::milliseconds(std::chrono::seconds(seconds)) : kAnalysisLimit;
}

ScanResult MCalverinScript_Device::ScanPublished(const ScriptSet& set, IScanHost& host, bool stopMode) {
    ScanRequest request;
    request.published = set.global;
    request.stopMode = stopMode;
    request.removeDefaults = stopMode ? storedSetup.GetRemovalForAnalysis() : storedSetup.IsRemovalApplied();
    request.hiddenNames = set.global.strictlyEquals(set.engine->globalObject()) ? &BuiltInNames() : nullptr;
    request.host = &host;
    request.accessors = &values.Accessors();
    request.enumHelpers = &enumHelpers;
    return ScanGlobal(request);
}

void MCalverinScript_Device::Publish(ScriptSet& set, const ScanResult& found) {
    ReplaceAll(set.variables, found.variables);
    ReplaceAll(set.monitors, found.monitors);
    ReplaceAll(set.settings, found.settings);
    ReplaceAll(set.functions, found.functions);
}

/// The functions on `Device` know a variable of the device by its name without the device's. The host may have made it anew since
/// the script was scanned, so it is asked each time.
EnumHelpers::Target MCalverinScript_Device::EnumTarget() {
    const auto enumNamed = [this](const QString& name) -> IEnumData* {
        MScriptVariable known;
        if (ending || !FindMonitoredEnum(name, known))
            return nullptr;
        IData* data = values.Find(name);
        const bool isOwn = data != nullptr &&
                           (data->GetInstanceID() == known.instanceId || FromHostText(data->GetName()) == known.name);
        if (!isOwn)
            data = services.variables != nullptr ? services.variables->FindVariable(ToHostText(known.name).constData())
                                                 : nullptr;
        return QueryFace<IEnumData>(data, "IEnumData");
    };
    return {[this] { return live.global; }, enumNamed, &values.Gate()};
}

/// The enumeration that the scan has found under a name without its owner's. @return false when there is none.
bool MCalverinScript_Device::FindMonitoredEnum(const QString& name, MScriptVariable& found) {
    const std::lock_guard<MLockedList<MScriptVariable>> guard(live.monitors);
    for (const MScriptVariable& variable : live.monitors) {
        found = variable;
        if (variable.name.mid(variable.name.indexOf(QLatin1Char('.')) + 1) == name &&
            variable.type == QLatin1String("EnumData"))
            return true;
    }
    return false;
}

/// Ends the script that has run so far, as a stop would, but for the threads.
void MCalverinScript_Device::CleanupBeforeEvaluate() {
    remote->AllowWaits();
    ClearTimers();
    ExecuteStopFunction();
    runState.hasStopFunction = false;
    remote->ReleaseScriptObjects();
}

void MCalverinScript_Device::AfterEvaluate() {
    const bool wasStarting = runState.startPending.exchange(false);
    runState.hasStopFunction = false;
    GiveSettingsToScript();
    const QScriptValue start = live.global.property(QStringLiteral("_mStart"));
    if (start.isFunction())
        CallScript(start, {QScriptValue(!wasStarting)});
    runState.hasStopFunction = live.global.property(QStringLiteral("_mStop")).isFunction();
}

void MCalverinScript_Device::GiveSettingsToScript() {
    QScriptValue setup = live.global.property(QStringLiteral("Setup"));
    if (!setup.isObject())
        return;
    for (const MScriptSetting& setting : storedSetup.GetSettings()) {
        const QScriptValue value = SettingValue(setting);
        if (value.isValid() && setup.property(setting.name).isValid())
            setup.setProperty(setting.name, value);
    }
}

bool MCalverinScript_Device::SlotExecuteScript_mStop() {
    return RunSlot(MarshalledCallTable::kExecuteStopFunction, [&] {
        const bool wasStopping = runState.stopPending.exchange(false);
        if (wasStopping)
            remote->AllowWaitsOfStop();
        const QScriptValue function = live.global.property(QStringLiteral("_mStop"));
        const bool callable = !live.global.isError() && function.isFunction();
        if (callable)
            CallScript(function, {QScriptValue(!wasStopping)});
        FinishStopRequest();
        return callable;
    });
}

bool MCalverinScript_Device::SlotExecuteScriptFunction(const char* name, IData* result, const char** params) {
    return RunSlot(MarshalledCallTable::kExecuteScriptFunction,
                   [&] { return CallNamedFunction(name, result, params); });
}

bool MCalverinScript_Device::CallNamedFunction(const char* name, IData* result, const char** params) {
    if (live.global.isError()) {
        ReportError(ScriptFailure(MessageOf(live.global)), false);
        return false;
    }
    if (name == nullptr) {
        ReportError(QLatin1String(DeviceText::kNoFunctionName), false);
        return false;
    }
    const QString functionName = FromHostText(name);
    const QScriptValue function = live.global.property(functionName);
    if (function.isError()) {
        ReportError(FailedMember(functionName, MessageOf(function)), false);
        return false;
    }
    if (!function.isFunction()) {
        ReportError(NoSuchFunction(functionName), false);
        return false;
    }
    QScriptValueList arguments;
    if (params != nullptr) {
        for (int i = 0; i < kArgumentCount && params[i] != nullptr; ++i)
            arguments.append(QScriptValue(FromHostText(params[i])));
        remote->SetPostponeAllowed(true);
    }
    const QScriptValue value = CallScript(function, arguments);
    FinishStopRequest();
    if (params != nullptr)
        DeliverResult(value, result);
    engine->clearExceptions();
    return true;
}

/// What a function gave becomes the command's result, unless the script failed or answers later.
void MCalverinScript_Device::DeliverResult(const QScriptValue& value, IData* result) {
    if (ending || result == nullptr || engine->hasUncaughtException())
        return;
    if (value.isError())
        ReportError(ScriptFailure(MessageOf(value)), false);
    else if (!remote->HasPostponed() && !value.isUndefined())
        result->SetValueFromString(ToHostText(value.toString()).constData(), 0, 0);
}

/// The one way into a function of the script. An exception that the script did not catch is reported here, unless an agent on
/// the engine has seen it thrown; it stays with the engine until the caller has looked at it.
QScriptValue MCalverinScript_Device::CallScript(QScriptValue function, const QScriptValueList& arguments) {
    if (ending)
        return QScriptValue();
    engine->clearExceptions();
    const QScriptValue value = function.call(live.global, arguments);
    ReportUncaught();
    return value;
}

void MCalverinScript_Device::FinishStopRequest() {
    if (!runState.threadStopDone)
        runState.stopRequested = true;
}
