#pragma once

#include <optional>

#include <QHash>
#include <QScriptValue>

class MyAsyncDeviceExecContext;

/// The functions of a script that wait for something of the host: the answers of its asynchronous requests, and changes
/// below its groups. It owns the functions; the requests belong to the bridge and are known here by their address
/// alone, so that one that is gone may still be asked for.
/// [all: script, under the device's mutex; Clear also where the script thread has ended]
class ScriptCallbacks {
public:
    /// A function and what it is called with.
    struct Call {
        QScriptValue function;
        QScriptValueList arguments;
    };

    void Note(MyAsyncDeviceExecContext* context, const QScriptValue& function) {
        m_functions.insert(context, function);
    }
    void Forget(MyAsyncDeviceExecContext* context) { m_functions.remove(context); }
    int Count() const { return m_functions.count(); }

    /// The call that an answer leads to: with the result text, or without argument when there is none.
    /// The function is forgotten.
    /// @return nothing when no function waits for this answer, or there is no answer yet.
    std::optional<Call> Take(MyAsyncDeviceExecContext& context);

    /// The function that hears of changes; invalid for none.
    void SetOnChange(const QScriptValue& function) { m_onChange = function; }
    QScriptValue GetOnChange() const { return m_onChange; }

    /// Forgets all functions.
    void Clear();

private:
    QHash<MyAsyncDeviceExecContext*, QScriptValue> m_functions;
    QScriptValue m_onChange;
};
