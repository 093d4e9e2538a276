#pragma once

#include <array>
#include <condition_variable>
#include <functional>
#include <map>
#include <mutex>

#include <QString>

#include "DeviceStatus.h"
#include "DriverTables.h"

class IData;
class IEnumData;

/// The host's values of the variables that every device has.
///
/// - Any thread writes; the host is called without a lock.
/// - Once Unbind has returned nobody is inside a value of the host. What is written then is kept, the last of each
///   variable, and written to the new values by Bind. A write of the host's that does not come back is waited for a
///   moment only, since the host may be waiting for us.
/// - After Forget nothing is written any more.   [thread: any]
class DefaultVariables {
public:
    /// Gives the host's value of a variable; null for none.
    using Find = std::function<IData*(const char* name)>;

    DefaultVariables() = default;
    DefaultVariables(const DefaultVariables&) = delete;
    DefaultVariables& operator=(const DefaultVariables&) = delete;

    /// Does nothing for a variable that is not bound.
    void SetText(DefaultVariable variable, const QString& text);
    void SetStatus(DeviceStatus status);

    /// Before the host drops its values.   [host main]
    void Unbind();
    /// The time in which the host replaces its values. It may come back for another replacement meanwhile; what that one
    /// would bind is dropped by the outer one, so nothing is bound before the outermost is over.   [host main]
    class Replacement {
    public:
        explicit Replacement(DefaultVariables& defaults);
        ~Replacement();
        Replacement(const Replacement&) = delete;
        Replacement& operator=(const Replacement&) = delete;

    private:
        DefaultVariables& m_defaults;
    };
    /// Looks all up and writes what was kept.   [host main]
    void Bind(const Find& find);
    /// The same, where the values were never found.   [any host thread]
    void BindUnlessBound(const Find& find);
    /// Lets go of the host for good.   [host main]
    void Forget();

private:
    enum class State { Unknown, Bound, Unbound, Forgotten };
    struct Target {
        IData* data = nullptr;
        IEnumData* items = nullptr; ///< of an enumeration: its own face
    };
    using Write = std::function<void(const Target&)>;

    void Do(DefaultVariable variable, const Write& write);
    bool Enter(DefaultVariable variable, const Write& write, Target& target);
    void Leave();
    void WaitForWriters(std::unique_lock<std::mutex>& guard);
    bool Take(const Find& find, unsigned seenUnbinds);
    bool IsOutdated(unsigned seenUnbinds) const;
    void WriteKept();

    std::mutex m_lock; ///< guards all that follows
    std::condition_variable m_left;
    State m_state = State::Unknown;
    std::array<Target, kDefaultVariableCount> m_targets{};
    std::map<DefaultVariable, Write> m_kept; ///< while unbound
    int m_inside = 0;                        ///< writes that are inside the host
    unsigned m_unbinds = 0;                  ///< how often the values were let go
    int m_replacements = 0;                  ///< one inside the other
};
