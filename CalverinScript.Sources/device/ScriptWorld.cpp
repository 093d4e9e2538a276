#include "ScriptWorld.h"

#include <mutex>
#include <utility>

#include <QScriptEngine>

#include "EventArguments.h"
#include "FaceAnswer.h"
#include "FaultText.h"
#include "HostServices.h"
#include "HostText.h"
#include "HostValues.h"
#include "IHostServices.h"
#include "IProgramOwner.h"
#include "LogLines.h"
#include "MScriptEngineAgent.h"
#include "MScriptMngRemote.h"
#include "ScriptDebugger.h"
#include "ScriptEntrance.h"
#include "ScriptEvaluation.h"
#include "ScriptFacing.h"
#include "ScriptFault.h"
#include "ScriptGlobals.h"
#include "ScriptPlace.h"
#include "StoppableLoop.h"

namespace {

constexpr int kEngineEventIntervalMs = 10; ///< how often a running engine looks at its thread's events

/// Gives the places of a fault the files that the script was put together of.
void PutIntoParts(ScriptFault& fault, const QString& text) {
    if (!text.contains(QLatin1String(KXP_SCRIPT_PART)))
        return;
    const std::string script = text.toStdString();
    const auto put = [&script](QString& file, int& line) {
        const KXPScriptPlace place = KXPPlaceInScript(script, line);
        if (line > 0 && !place.file.empty()) {
            file = QString::fromStdString(place.file);
            line = place.line;
        }
    };
    put(fault.file, fault.line);
    for (FaultFrame& call : fault.stack)
        put(call.file, call.line);
}

} // namespace

ScriptWorld::ScriptWorld(const Place& place)
    : m_place(place)
    , m_enumFunctions(EnumTarget())
    , m_engine(std::make_unique<QScriptEngine>(&place.home))
    , m_faults(std::make_unique<FaultReader>()) {
    place.entrance.SetEngine(*m_engine);
    StoppableLoop::SetStopFlag(*m_engine, &place.ending);
    m_set.engine = m_engine.get();
    m_remote = std::make_unique<ScriptFacing<MScriptMngRemote>>(
        &place.device, place.services.link, place.services.newerLink, place.services.variables, m_engine.get());
    m_remote->setParent(&place.home);
    m_resources = std::make_unique<ResourceRoom>(*m_remote);
    SetUpScriptGlobals(*m_engine, *m_remote);
    InstallPrint(*m_engine, *m_remote);
    m_eventArguments = std::make_unique<EventArguments>(*m_engine);
    m_engine->setProcessEventsInterval(kEngineEventIntervalMs);
}

ScriptWorld::~ScriptWorld() = default;

void ScriptWorld::EnableDebugger() {
    m_debugger = std::make_unique<ScriptDebugger>(*m_engine, *m_agent, m_place.entrance);
}

void ScriptWorld::Evaluate(const QString& text) {
    m_place.entrance.LookAt(text);
    m_set.global = EvaluateText(*m_engine, text);
    ReportStopped();
}

QScriptValue ScriptWorld::Call(QScriptValue function, const QScriptValueList& arguments) {
    if (m_place.ending)
        return QScriptValue();
    m_engine->clearExceptions();
    const QScriptValue value = function.call(m_set.global, arguments);
    ReportUncaught();
    ReportStopped();
    return value;
}

bool ScriptWorld::IsInside() const {
    return m_place.entrance.IsInside();
}

bool ScriptWorld::IsCallersOwn() const {
    return m_place.entrance.IsOnScriptThread() && IsInside();
}

QScriptValueList ScriptWorld::ArgumentsOf(const MScriptParamList& params) {
    return m_eventArguments->Of(params);
}

void ScriptWorld::ReportUncaught() {
    const bool seenByAgent = dynamic_cast<MScriptEngineAgent*>(m_engine->agent()) != nullptr;
    if (!seenByAgent && m_engine->hasUncaughtException() && !m_place.ending)
        m_place.owner.ReportException(m_engine->uncaughtException());
}

/// Several calls may be inside one another: the innermost knows where the script was.
void ScriptWorld::ReportStopped() {
    if (!m_place.ending || !m_place.entrance.HasStoppedScript() || std::exchange(m_toldStop, true))
        return;
    m_place.owner.ReportStopped(LinesOfFault(m_faults->ReadStopped(*m_engine, m_set.scriptText)));
}

QStringList ScriptWorld::PlaceOf(const QScriptValue& exception) {
    return LinesOfFault(m_faults->Read(*m_engine, exception, m_set.scriptText));
}

QStringList ScriptWorld::LinesOfFault(ScriptFault fault) const {
    PutIntoParts(fault, m_set.scriptText);
    return LinesOf(fault,
                   m_set.scriptFileName.isEmpty() ? QString(QLatin1String(KXP_LOG_NO_FILE)) : m_set.scriptFileName);
}

void ScriptWorld::CheckUncaught() {
    if (m_engine->hasUncaughtException() && !m_place.ending)
        m_place.owner.ReportLeftBehind(m_engine->uncaughtException());
    m_engine->clearExceptions();
}

void ScriptWorld::BeginEnd() {
    m_remote->EndContexts();
    m_remote->RefuseWaits();
    m_resources->Close();
}

/// The script answers nobody any more.
void ScriptWorld::End() {
    m_remote->ResetPostponed();
}

bool ScriptWorld::HasEnded() const {
    return !m_remote->HasAnswersUnderWay();
}

/// The functions on `Device` know a variable of the device by its name without the device's. The host may have made
/// it anew since the script was scanned, so it is asked each time.
EnumHelpers::Target ScriptWorld::EnumTarget() {
    return {[this] { return m_set.global; }, [this](const QString& name) { return FindEnum(name); },
            &m_place.values.Gate()};
}

IEnumData* ScriptWorld::FindEnum(const QString& name) {
    MScriptVariable known;
    if (IsEnding() || !FindMonitoredEnum(name, known))
        return nullptr;
    IData* data = m_place.values.Find(name);
    const bool isOwn =
        data != nullptr && (data->GetInstanceID() == known.instanceId || FromHostText(data->GetName()) == known.name);
    if (!isOwn) {
        IVariableManager* const manager = m_place.services.variables;
        data = manager != nullptr ? manager->FindVariable(ToHostText(known.name).constData()) : nullptr;
    }
    return QueryFace<IEnumData>(data, "IEnumData");
}

/// The enumeration that the scan has found under a name without its owner's. @return false when there is none.
bool ScriptWorld::FindMonitoredEnum(const QString& name, MScriptVariable& found) {
    MLockedList<MScriptVariable>& monitors = m_set.monitors;
    const std::lock_guard<MLockedList<MScriptVariable>> guard(monitors);
    for (const MScriptVariable& variable : monitors) {
        found = variable;
        if (variable.name.mid(variable.name.indexOf(QLatin1Char('.')) + 1) == name &&
            variable.type == QLatin1String("EnumData"))
            return true;
    }
    return false;
}
