#pragma once

#include <atomic>
#include <functional>
#include <mutex>

#include <QScriptValue>
#include <QString>

class HostValues;
class IData;
class IProgramOwner;
class ScriptHandlers;
class ScriptWorld;
class StoredSetup;
struct HostServices;
struct ScriptSet;

/// The script that a device runs, from its load to its stop: it is read, evaluated, scanned for what it publishes,
/// started, called by the names of its functions, and stopped.
///
/// Start and stop begin on a host thread and end where the script runs; what the two sides tell one another on the
/// way is kept here.
class ScriptProgram {
public:
    /// What it works with, all borrowed for its life.
    struct Parts {
        ScriptWorld& world;
        ScriptHandlers& handlers;
        HostValues& values;
        StoredSetup& setup;
        const HostServices& services;
        IProgramOwner& owner;
    };

    explicit ScriptProgram(const Parts& parts);
    ScriptProgram(const ScriptProgram&) = delete;
    ScriptProgram& operator=(const ScriptProgram&) = delete;

    // What the script thread does, inside an entry into the script   [script]
    /// Reads a script's file, shows it and evaluates it. @return whether both could be done.
    bool LoadFile(const char* fileName);
    /// Shows a text and evaluates it. @return whether it could be evaluated.
    bool LoadText(const QString& text);
    /// Ends the script that has run so far and evaluates another, with its start function. @return whether
    /// it could be evaluated.
    bool Evaluate(const QString& text);
    /// Calls a function by its name. @param params null, or texts of which the first null ends the list.
    /// @param result takes what the function gives; may be null. @return false when there is nothing to call.
    bool CallFunction(const char* name, IData* result, const char** params);
    /// Calls the stop function. @return false when there is none.
    bool CallStop();
    /// Whether the stop function of a script that was stopped before runs once more, ahead of the next one. What that script
    /// had of sockets and resources is gone by then, so what the function throws is no failure of anybody.
    bool IsStopRepeated() const { return m_isStopRepeated; }
    /// Another script is shown; the one that runs stays.
    void Show(const QString& fileName, const QString& text);

    // What host threads say and ask, in the order of a start and a stop   [any host thread]
    /// The next script that is evaluated is that of a start.
    void BeginStart();
    /// The stop function that is called next is that of a stop.
    void BeginStop();
    /// Ends every request that is on its way to the host, so that a script which waits for one comes back.
    void EndRequests();
    /// The stop function has been called, or its time is over: nothing in the script waits any more.
    /// @return whether the stop may go on. Otherwise it stays open, since a script has to end first that the debugger
    /// holds, or that has itself made the host stop the device: the tick completes it.
    bool EndStop();
    /// Whether a stop was left open.   [any]
    bool IsStopOpen() const { return !m_stopDone; }
    /// Completes a stop that was left open, if there is one. Called where the script may be waited for: never on its own
    /// thread. Waits for no other caller: the command may come here that the first one is waiting for.
    /// @param endCommands ends what the command thread does. @return whether it has done so.   [any host thread, tick, command]
    bool FinishStop(const std::function<void()>& endCommands);
    /// Drops what the script has made.
    void ReleaseObjects();
    /// Whether the script has a stop function.   [any]
    bool HasStopFunction() const { return m_hasStopFunction; }
    /// Whether a function named so is published.   [any]
    bool HasFunction(const char* name);

    /// The debugger does what it was asked for.   [tick]
    void ServeDebugger();
    /// The bridge looks after its objects, in a running device.   [tick]
    void ServeBridge();
    /// Whether the script has come back for a stop that EndStop has left open.   [tick]
    bool WantsStop() const { return m_stopRequested; }

private:
    ScriptSet& Set() const;
    bool RunLoaded();
    void PublishFunctionList();
    void RegisterGroups();
    void EndLastScript();
    void Scan();
    void StartScript();
    void GiveSettings();
    QScriptValue FindFunction(const char* name);
    void DeliverResult(const QScriptValue& value, IData* result);
    void AskForStop();

    const Parts m_parts;
    bool m_wasStopped = false; ///< the stop function has been called for a stop; script thread alone, as is the next
    bool m_isStopRepeated = false;              ///< while it is called once more
    std::atomic<bool> m_startPending{false};    ///< set by a start, taken by the evaluation that follows
    std::atomic<bool> m_stopPending{false};     ///< set by a stop, taken by the stop function
    std::atomic<bool> m_hasStopFunction{false}; ///< written by the script thread
    std::atomic<bool> m_stopDone{true};         ///< false while a stop is open
    std::atomic<bool> m_stopRequested{false};   ///< the script need not be waited for any longer; taken by the tick
    std::mutex m_finishing;                     ///< held while an open stop is completed; only tried, never waited for
};
