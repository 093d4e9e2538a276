#pragma once

#include <functional>
#include <mutex>

/// The wait of a script inside a method of one of its objects, for a slow peer or for the answer of a name service. A
/// script has one thread, so there is one wait at most; another thread can end it.
class ScriptWaits {
public:
    /// Wakes the script; may be called on any thread and must come back without the script's help.
    using WakeUp = std::function<void()>;

    /// @return false when no waits are allowed any more.   [script]
    bool Begin(WakeUp wakeUp);
    /// The wait is over. Returns when nobody is in its WakeUp any more.   [script]
    void Finish();

    /// A stop begins: ends the wait, if there is one, and refuses those that the same run of the script would begin
    /// after it. [any but script]
    void EndRun();
    /// The script is called anew for its stop function, which may wait unless Refuse has come.   [script]
    void BeginStopFunction();
    /// Ends the wait, and none begins.   [any but script]
    void Refuse();
    /// The stop is over: what Allow says counts again.   [any but script]
    void Reopen();
    /// A script is loaded, which may wait. Does nothing between EndRun or Refuse and Reopen.   [script]
    void Allow();

private:
    enum class Refusal { None, ThisRun, All };

    void RefuseFor(Refusal what);

    std::mutex m_lock;                 ///< held while the WakeUp runs
    WakeUp m_wakeUp;                   ///< under m_lock; empty while the script does not wait
    Refusal m_refusal = Refusal::None; ///< under m_lock
    bool m_closed = false;             ///< under m_lock: from EndRun or Refuse to Reopen
};

/// One wait, from construction to destruction. What would wait is left out when it is not allowed.
class ScriptWait {
public:
    /// @param waits null for objects that nobody can stop.
    ScriptWait(ScriptWaits* waits, ScriptWaits::WakeUp wakeUp)
        : m_waits(waits)
        , m_allowed(waits == nullptr || waits->Begin(std::move(wakeUp))) {}
    ~ScriptWait() {
        if (m_waits != nullptr && m_allowed)
            m_waits->Finish();
    }
    ScriptWait(const ScriptWait&) = delete;
    ScriptWait& operator=(const ScriptWait&) = delete;

    bool IsAllowed() const { return m_allowed; }

private:
    ScriptWaits* const m_waits;
    const bool m_allowed;
};
