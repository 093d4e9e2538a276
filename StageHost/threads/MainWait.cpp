#include "MainWait.h"

#include <algorithm>
#include <mutex>

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QSocketNotifier>
#include <QTimer>

#include "Interrupt.h"
#include "ShowClock.h"

namespace stagehost {

namespace {

constexpr std::chrono::milliseconds kLookForInterrupt(50); // a signal wakes nobody

std::mutex dispatcherLock; // guards the pointer: module threads may outlive the application object
QAbstractEventDispatcher* mainDispatcher = nullptr;

} // namespace

MainWait::MainWait() {
    const std::lock_guard<std::mutex> hold(dispatcherLock);
    mainDispatcher = QAbstractEventDispatcher::instance(QCoreApplication::instance()->thread());
}

MainWait::~MainWait() {
    const std::lock_guard<std::mutex> hold(dispatcherLock);
    mainDispatcher = nullptr;
}

bool MainWait::Until(const std::function<bool()>& condition, std::chrono::milliseconds limit) {
    const QDeadlineTimer deadline(limit);
    QTimer alarm;
    alarm.setSingleShot(true);
    alarm.start(limit);
    while (!condition()) {
        if (deadline.hasExpired())
            return false;
        if (!alarm.isActive())
            alarm.start(1); // a coarse timer may fire a little early
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
    }
    return true;
}

bool MainWait::UntilInterrupted(const std::function<bool()>& condition, std::chrono::milliseconds limit) {
    const QDeadlineTimer deadline(limit);
    do {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline.remainingTimeAsDuration());
        if (Until(condition, std::min(left, MachineTime(kLookForInterrupt))))
            return true;
    } while (!deadline.hasExpired() && !Interrupt::HasCome());
    return false;
}

void MainWait::ForInterrupt() {
    const int bell = Interrupt::Bell();
    if (bell < 0) {
        while (!Until(&Interrupt::HasCome, kLookForInterrupt)) {
        }
        return;
    }
    QSocketNotifier rings(bell, QSocketNotifier::Read);
    while (!Interrupt::HasCome())
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
}

void MainWait::Wake() {
    const std::lock_guard<std::mutex> hold(dispatcherLock);
    if (mainDispatcher != nullptr)
        mainDispatcher->wakeUp();
}

} // namespace stagehost
