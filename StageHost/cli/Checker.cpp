#include "Checker.h"

#include <QCoreApplication>
#include <QDir>

#include "CheckerCodes.h"
#include "ExitCodes.h"
#include "Interrupt.h"
#include "MainWait.h"
#include "ShowClock.h"

namespace stagehost {

namespace {

/// What the program that looks into the script gets beyond the time that the script has.
constexpr int kGraceMs = 3000;

QString CheckerPath() {
    return QDir(QCoreApplication::applicationDirPath()).filePath(QLatin1String(KXP_CHECKER_NAME));
}

/// @return whether the process has ended by itself. It is over in any case.
bool HasEnded(QProcess& process, qint64 limitMs) {
    const auto isOver = [&] { return process.state() == QProcess::NotRunning; };
    if (MainWait::UntilInterrupted(isOver, MachineTime(std::chrono::milliseconds(limitMs))))
        return true;
    process.kill();
    process.waitForFinished();
    return false;
}

} // namespace

MaybeFailure RunChecker(QProcess& process, const QString& file, const QStringList& further,
                        std::chrono::milliseconds limit) {
    QStringList words{QStringLiteral("--timeout"), QString::number(limit.count())};
    words += further;
    const Interrupt interrupt;
    process.setProcessEnvironment(ShowClock::ComputersEnvironment());
    process.start(CheckerPath(), words << QStringLiteral("--") << file);
    if (!process.waitForStarted())
        return Failure{kExitNoModule, CheckerPath() + QStringLiteral(": ") + process.errorString()};
    const bool ended = HasEnded(process, limit.count() + kGraceMs);
    if (Interrupt::HasCome())
        return Failure{kExitNoAnswer, QStringLiteral("interrupted")};
    if (!ended)
        return Failure{kExitNoAnswer, QStringLiteral("no answer within %1 ms").arg(limit.count())};
    if (process.exitStatus() != QProcess::NormalExit)
        return Failure{kExitScriptFailed, QStringLiteral("the script brought the check to an end by force")};
    return std::nullopt;
}

} // namespace stagehost
