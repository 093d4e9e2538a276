#include "HostScreen.h"

#include <QApplication>
#include <QThread>

#include "IManagerRuntimeInfo.h"

namespace {

/// Whether windows go where nobody sees them, without that anybody asked for it.
bool IsWithoutScreen() {
    return QGuiApplication::platformName() == QLatin1String("offscreen") &&
           !qEnvironmentVariableIsSet("QT_QPA_PLATFORM");
}

} // namespace

bool CanShowDialogs() {
    return CanMakeWindows() && !IsWithoutScreen();
}

bool CanMakeWindows() {
    const auto* application = qobject_cast<QApplication*>(QCoreApplication::instance());
    return application != nullptr && application->thread() == QThread::currentThread();
}

KXPWindow MainWindowOf(IMInterface* host) {
    auto* info = QueryFace<IManagerRuntimeInfo>(host, "IManagerRuntimeInfo");
    return info != nullptr ? info->GetMainWindow() : 0;
}
