#include "ScriptDebugger.h"

#include <QAction>
#include <QIcon>
#include <QMainWindow>
#include <QScriptEngine>
#include <QScriptEngineDebugger>

#include "ScriptEntrance.h"

namespace {

constexpr int kDebuggerEventIntervalMs = 100; ///< keeps the debugger's window alive during a long evaluation
constexpr int kWindowWidth = 1024;
constexpr int kWindowHeight = 640;

} // namespace

ScriptDebugger::ScriptDebugger(QScriptEngine& engine, QScriptEngineAgent& agent, ScriptEntrance& entrance)
    : m_entrance(entrance)
    , m_debugger(std::make_unique<QScriptEngineDebugger>()) {
    engine.setAgent(&agent);
    engine.setProcessEventsInterval(kDebuggerEventIntervalMs);
    m_debugger->attachTo(&engine);
    m_debugger->action(QScriptEngineDebugger::InterruptAction)->trigger();
    m_debugger->setAutoShowStandardWindow(false);
    m_debugger->standardWindow()->setWindowIcon(QIcon(QStringLiteral(":/deviceIcon")));
}

ScriptDebugger::~ScriptDebugger() = default;

void ScriptDebugger::Show(const QString& title) {
    m_debugger->action(QScriptEngineDebugger::InterruptAction)->trigger();
    QMainWindow* window = m_debugger->standardWindow();
    window->setWindowTitle(title);
    window->resize(kWindowWidth, kWindowHeight);
    window->show();
}

void ScriptDebugger::Tick() {
    if (m_continue)
        Trigger(QScriptEngineDebugger::ContinueAction);
    if (m_abort.exchange(false))
        QMetaObject::invokeMethod(
            &m_entrance, [this] { AbortEvaluation(); }, Qt::QueuedConnection);
}

void ScriptDebugger::Trigger(int action) {
    QAction* wanted = m_debugger->action(static_cast<QScriptEngineDebugger::DebuggerAction>(action));
    QMetaObject::invokeMethod(wanted, &QAction::trigger, Qt::QueuedConnection);
}

void ScriptDebugger::AbortEvaluation() {
    if (!m_entrance.IsInside())
        return;
    if (m_debugger->state() != QScriptEngineDebugger::SuspendedState)
        for (const auto action : {QScriptEngineDebugger::ToggleBreakpointAction, QScriptEngineDebugger::ContinueAction,
                                  QScriptEngineDebugger::StepOutAction})
            m_debugger->action(action)->trigger();
    m_entrance.Abort();
}
