#include "ModuleApplication.h"

#include <clocale>
#include <string>

#include <QApplication>
#include <QThread>

namespace {

QApplication* ownApplication = nullptr;
int argumentCount = 0;
char* noArguments[] = {nullptr};

bool HasDisplay() {
    return qEnvironmentVariableIsSet("DISPLAY") || qEnvironmentVariableIsSet("WAYLAND_DISPLAY");
}

} // namespace

void ModuleApplication::Ensure() {
    if (QCoreApplication::instance() != nullptr)
        return;
    const std::string locale = std::setlocale(LC_ALL, nullptr);
    const bool withoutWindows = !HasDisplay() && !qEnvironmentVariableIsSet("QT_QPA_PLATFORM");
    if (withoutWindows)
        qputenv("QT_QPA_PLATFORM", "offscreen");
    ownApplication = new QApplication(argumentCount, noArguments);
    if (withoutWindows)
        qunsetenv("QT_QPA_PLATFORM");
    std::setlocale(LC_ALL, locale.c_str());
}

void ModuleApplication::End() {
    if (ownApplication == nullptr || ownApplication->thread() != QThread::currentThread())
        return;
    QCoreApplication::quit();
    delete ownApplication;
    ownApplication = nullptr;
}
