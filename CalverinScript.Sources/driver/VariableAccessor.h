#pragma once

#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <utility>

#include <QScriptValue>
#include <QString>

#include "VisitGate.h"

class IData;
class QScriptContext;

/// Where a bound variable comes from.
enum class VariableOrigin { Host, Device };

/// The variables that members of script objects stand for: reading such a member reads the host's value, writing it
/// writes the host's, at once and each time.
///
/// Scripts may keep an object over a reload, so a binding lives as long as the pool; there is one for each variable,
/// and it can be led to another value of the host, or to none.
class AccessorPool {
public:
    /// @param closed set once when the host must not be touched any more: reads then give undefined, writes do nothing.
    /// Must outlive the pool.
    explicit AccessorPool(const std::atomic<bool>& closed);
    ~AccessorPool();
    AccessorPool(const AccessorPool&) = delete;
    AccessorPool& operator=(const AccessorPool&) = delete;

    /// Replaces the member by an accessor.   [the thread of the object's engine]
    void Bind(QScriptValue& object, const QString& member, VariableOrigin origin, const QString& name, IData* data);

    /// Looks every variable of that origin up again; find gives null for one that is gone, and may call this again. [any]
    void Rebind(VariableOrigin origin, const std::function<IData*(const QString& name)>& find);

    /// What hears of values that a variable has not taken, with the variable's name, the text and why; before any script runs.
    using Misfit = std::function<void(const QString& name, const QString& text, const QString& why)>;
    void TellMisfits(Misfit tell) { m_tellMisfit = std::move(tell); }

    /// What keeps a script out of the host's values while the host replaces them, and they are bound again. A script
    /// that is turned away reads undefined, and its writing does nothing.   [any]
    VisitGate& GetGate() { return m_gate; }

private:
    struct BoundVariable;
    static QScriptValue Access(QScriptContext* context, QScriptEngine* engine, void* variable);

    const std::atomic<bool>& m_closed;
    Misfit m_tellMisfit; ///< called on the engine's thread, outside the host's values
    VisitGate m_gate;
    std::mutex m_lock;                            ///< guards both maps; the entries of the second stay in place
    std::map<VariableOrigin, unsigned> m_rebinds; ///< counts them
    std::map<std::pair<VariableOrigin, QString>, std::unique_ptr<BoundVariable>> m_variables;
};

/// The value of the host as a script reads it.   [the engine's thread]
QScriptValue ReadHostValue(IData& data);

/// Writes a script's value. A value that the type cannot take leaves the host's as it is.   [the engine's thread]
void WriteHostValue(IData& data, const QScriptValue& value);
