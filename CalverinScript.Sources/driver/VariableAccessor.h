#pragma once

#include <atomic>
#include <condition_variable>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <utility>

#include <QScriptValue>
#include <QString>

class IData;
class QScriptContext;

/// Where a bound variable comes from.
enum class VariableOrigin { Host, Device };

/// The variables that members of script objects stand for: reading such a member reads the host's value, writing it writes the
/// host's, at once and each time.
///
/// Scripts may keep an object over a reload, so a binding lives as long as the pool; there is one for each variable, and it can
/// be led to another value of the host, or to none.
class AccessorPool {
public:
    /// @param closed set once when the host must not be touched any more: reads then give undefined, writes do nothing. Must
    /// outlive the pool.
    explicit AccessorPool(const std::atomic<bool>& closed);
    ~AccessorPool();
    AccessorPool(const AccessorPool&) = delete;
    AccessorPool& operator=(const AccessorPool&) = delete;

    /// Replaces the member by an accessor.   [the thread of the object's engine]
    void Bind(QScriptValue& object, const QString& member, VariableOrigin origin, const QString& name, IData* data);

    /// Looks every variable of that origin up again; find gives null for one that is gone.   [any]
    void Rebind(VariableOrigin origin, const std::function<IData*(const QString& name)>& find);

    /// Runs work in which the host puts other values in the place of those that are bound, and in which they are bound again: a
    /// script does not reach the host through its members meanwhile, it waits. Neither side waits for long, since the host may be
    /// waiting too: a script that is inside a value holds the work up for 200 ms at most, and after 2 s of waiting a script's
    /// reading gives undefined and its writing does nothing.   [any but the engine's thread]
    void Replace(const std::function<void()>& work);

private:
    struct BoundVariable;
    class Visit;
    static QScriptValue Access(QScriptContext* context, QScriptEngine* engine, void* variable);

    const std::atomic<bool>& m_closed;
    std::mutex m_lock; ///< guards all that follows; the entries of the map stay in place
    std::condition_variable m_changed;
    bool m_replacing = false; ///< by whoever replaces
    int m_inside = 0;         ///< accesses that are inside the host, one in the other
    std::map<std::pair<VariableOrigin, QString>, std::unique_ptr<BoundVariable>> m_variables;
};

/// The value of the host as a script reads it.   [the engine's thread]
QScriptValue ReadHostValue(IData& data);

/// Writes a script's value. A value that the type cannot take leaves the host's as it is.   [the engine's thread]
void WriteHostValue(IData& data, const QScriptValue& value);
