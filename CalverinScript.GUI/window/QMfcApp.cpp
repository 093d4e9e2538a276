#include "QMfcApp.h"

#include <clocale>
#include <string>

#include <QThread>

namespace {

QMfcApp* ownApplication = nullptr;
int argumentCount = 0;
char* noArguments[] = {nullptr};

bool HasDisplay() {
    return qEnvironmentVariableIsSet("DISPLAY") || qEnvironmentVariableIsSet("WAYLAND_DISPLAY");
}

} // namespace

int QMfcApp::modalLoopCount = 0;

QMfcApp::QMfcApp()
    : QApplication(argumentCount, noArguments) {}

bool QMfcApp::pluginInstance() {
    if (QCoreApplication::instance() != nullptr)
        return false;
    const std::string locale = std::setlocale(LC_ALL, nullptr);
    const bool withoutWindows = !HasDisplay() && !qEnvironmentVariableIsSet("QT_QPA_PLATFORM");
    if (withoutWindows)
        qputenv("QT_QPA_PLATFORM", "offscreen");
    ownApplication = new QMfcApp;
    if (withoutWindows)
        qunsetenv("QT_QPA_PLATFORM");
    std::setlocale(LC_ALL, locale.c_str());
    return true;
}

void QMfcApp::EndPluginInstance() {
    if (ownApplication == nullptr || ownApplication->thread() != QThread::currentThread() || modalLoopCount > 0)
        return;
    QCoreApplication::quit();
    delete ownApplication;
    ownApplication = nullptr;
}

void QMfcApp::EnterModalLoop() {
    ++modalLoopCount;
}

void QMfcApp::LeaveModalLoop() {
    --modalLoopCount;
    Q_ASSERT(modalLoopCount >= 0);
}
