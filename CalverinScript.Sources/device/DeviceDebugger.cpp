#include "MCalverinScript_Device.h"

#include <QAction>
#include <QApplication>
#include <QIcon>
#include <QMainWindow>
#include <QScriptEngine>
#include <QScriptEngineDebugger>

#include "HostText.h"
#include "MScriptEngineAgent.h"

namespace {

constexpr int kDebuggerEventIntervalMs = 100; ///< keeps the debugger's window alive during a long evaluation
constexpr int kWindowWidth = 1024;
constexpr int kWindowHeight = 640;

} // namespace

/// The debugger shows windows, so the engine stays on the host's main thread and there is no script thread.
void MCalverinScript_Device::SetUpDebugger() {
    engine->setAgent(agent);
    engine->setProcessEventsInterval(kDebuggerEventIntervalMs);
    debugger = std::make_unique<QScriptEngineDebugger>(this);
    debugger->attachTo(engine.get());
    debugger->action(QScriptEngineDebugger::InterruptAction)->trigger();
    debugger->setAutoShowStandardWindow(false);
    debugger->standardWindow()->setWindowIcon(QIcon(QStringLiteral(":/deviceIcon")));
}

void MCalverinScript_Device::SlotShowDebugger() {
    if (debugger == nullptr)
        return;
    debugger->action(QScriptEngineDebugger::InterruptAction)->trigger();
    QMainWindow* window = debugger->standardWindow();
    window->setWindowTitle(FromHostText(GetName()));
    window->resize(kWindowWidth, kWindowHeight);
    window->show();
}
