#include "ScriptStopper.h"

#include <utility>

#include <QScriptContext>
#include <QScriptEngine>
#include <QScriptValue>
#include <QString>

void ScriptStopper::LookAt(const QString& text) {
    m_hasText = true;
    m_catches = m_catches || text.contains(QLatin1String("catch")) || text.contains(QLatin1String("finally"));
}

void ScriptStopper::Stop(QScriptEngine& engine) {
    const bool isFirst = !std::exchange(m_hasStopped, true);
    if (isFirst && m_hasText && !m_catches)
        engine.currentContext()->throwError(QStringLiteral("The script does not come back and is stopped."));
    else
        engine.abortEvaluation();
}
