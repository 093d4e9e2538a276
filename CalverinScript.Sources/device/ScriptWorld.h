#pragma once

#include <atomic>
#include <memory>

#include <QScriptValue>

#include "EnumHelpers.h"
#include "IEndingRoom.h"
#include "ResourceRoom.h"
#include "ScriptSet.h"

class EventArguments;
class FaultReader;
struct ScriptFault;
class HostValues;
class IEnumData;
class IProgramOwner;
class IScriptDevice;
class MScriptMngRemote;
class MScriptParamList;
class QObject;
class QScriptEngine;
class QScriptEngineAgent;
class ScriptDebugger;
class ScriptEntrance;
struct HostServices;
struct MScriptVariable;

/// The engine of one device, with all that its script finds there: the bridge behind `QCalverin`, the classes, the
/// resources that settings name, the debugger, and what the script itself has published.
///
/// All of it belongs to the script thread once that runs, and is entered under the device's lock. It is made on the
/// host's main thread, and goes there when the script thread has ended.
class ScriptWorld final : public IEndingRoom {
public:
    /// What it is made in, all borrowed for its life.
    struct Place {
        QObject& home;         ///< the object with which the engine changes its thread
        IScriptDevice& device; ///< for the bridge
        const HostServices& services;
        HostValues& values;
        ScriptEntrance& entrance;
        const std::atomic<bool>& ending; ///< becomes true once, when the script must not be entered any more
        IProgramOwner& owner;
    };

    /// [host main]
    explicit ScriptWorld(const Place& place);
    ScriptWorld(const ScriptWorld&) = delete;
    ScriptWorld& operator=(const ScriptWorld&) = delete;
    ~ScriptWorld();

    QScriptEngine& Engine() const { return *m_engine; }
    MScriptMngRemote& Remote() const { return *m_remote; }
    /// The host's resources that settings name.   [host main; Find: script]
    ResourceRoom& Resources() const { return *m_resources; }

    /// Names the agent that hears of exceptions while the debugger is enabled; owned by the engine.   [host main, once]
    void SetAgent(QScriptEngineAgent* agent) { m_agent = agent; }
    /// Attaches the debugger, before any script runs.   [host main]
    void EnableDebugger();
    /// Null unless it is enabled.
    ScriptDebugger* Debugger() const { return m_debugger.get(); }

    /// Whether the device is on its way out, so that the script must not be entered any more.   [any]
    bool IsEnding() const { return m_place.ending; }
    /// Whether the engine's thread is inside the script.   [any]
    bool IsInside() const;
    /// Whether the script that the engine is inside of has called the caller.   [any]
    bool IsCallersOwn() const;
    /// Evaluates a text as the script that runs from now on.   [script]
    void Evaluate(const QString& text);
    /// Calls a function of the script, with what the script has published as its `this`. An exception that the script
    /// does not catch is reported, and stays with the engine until the caller has looked at it.
    /// @return invalid when the device is ending.   [script]
    QScriptValue Call(QScriptValue function, const QScriptValueList& arguments);
    /// The arguments of a listener.   [script]
    QScriptValueList ArgumentsOf(const MScriptParamList& params);
    /// Reports an exception that is still with the engine, unless an agent has seen it thrown.   [script]
    void ReportUncaught();
    /// What there is to be told of the place of an exception, a line each; see LinesOf.   [script]
    QStringList PlaceOf(const QScriptValue& exception);
    /// Tells of an exception that a call has left behind, and forgets it.   [script]
    void CheckUncaught();

    /// The functions that a script finds on its `Device`, for a scan.   [script]
    EnumHelpers& EnumFunctions() { return m_enumFunctions; }
    /// What the engine runs.
    ScriptSet& GetSet() { return m_set; }
    const ScriptSet& GetSet() const { return m_set; }

    // IEndingRoom
    /// Ends every request to the host and every wait for one, and lets go of the resources.
    void BeginEnd() override;
    void End() override;
    /// Whether no answer of the host is inside the bridge, which has to outlive it.
    bool HasEnded() const override;

private:
    EnumHelpers::Target EnumTarget();
    void ReportStopped();
    QStringList LinesOfFault(ScriptFault fault) const;
    IEnumData* FindEnum(const QString& name);
    bool FindMonitoredEnum(const QString& name, MScriptVariable& found);

    const Place m_place;
    EnumHelpers m_enumFunctions;

    // The engine, what it shows and what hangs on it go in the reverse of this order.
    const std::unique_ptr<QScriptEngine> m_engine;
    QScriptEngineAgent* m_agent = nullptr; ///< owned by the engine
    const std::unique_ptr<FaultReader> m_faults;
    bool m_toldStop = false;
    std::unique_ptr<MScriptMngRemote> m_remote;
    std::unique_ptr<ScriptDebugger> m_debugger;
    ScriptSet m_set;
    std::unique_ptr<EventArguments> m_eventArguments;
    std::unique_ptr<ResourceRoom> m_resources;
};
