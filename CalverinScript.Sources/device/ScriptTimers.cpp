#include "ScriptTimers.h"

#include <QObject>

int ScriptTimers::Start(Kind kind, const QScriptValue& function, int delayMs) {
    if (!function.isFunction())
        return -1;
    const int id = delayMs >= 0 ? m_owner.startTimer(delayMs, Qt::PreciseTimer) : 0;
    if (id != 0)
        Of(kind).insert(id, function);
    return id;
}

void ScriptTimers::Clear(Kind kind, int id) {
    if (Of(kind).remove(id) == 0)
        return;
    m_owner.killTimer(id);
    m_deferred.removeAll(id);
}

void ScriptTimers::ClearAll() {
    for (Functions* functions : {&m_intervals, &m_timeOuts}) {
        for (auto id = functions->keyBegin(); id != functions->keyEnd(); ++id)
            m_owner.killTimer(*id);
        functions->clear();
    }
    m_deferred.clear();
}

QScriptValue ScriptTimers::Take(int id) {
    if (m_intervals.contains(id))
        return m_intervals.value(id);
    const QScriptValue function = m_timeOuts.value(id);
    Clear(Kind::TimeOut, id);
    return function;
}

void ScriptTimers::Defer(int id) {
    if (!m_deferred.contains(id))
        m_deferred.append(id);
}

std::optional<int> ScriptTimers::TakeDeferred() {
    if (m_deferred.isEmpty())
        return std::nullopt;
    return m_deferred.takeFirst();
}
