#include "Checker.h"

#include <algorithm>
#include <limits>

#include <QCoreApplication>
#include <QDir>

#include "ExitCodes.h"
#include "Interrupt.h"

namespace stagehost {

namespace {

/// What the program that looks into the script gets beyond the time that the script has.
constexpr int kGraceMs = 3000;

QString CheckerPath() {
    return QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("calverincheck"));
}

} // namespace

MaybeFailure RunChecker(QProcess& process, const QString& file, bool json, std::chrono::milliseconds limit) {
    QStringList words{QStringLiteral("--timeout"), QString::number(limit.count())};
    if (json)
        words.append(QStringLiteral("--json"));
    process.start(CheckerPath(), words << QStringLiteral("--") << file);
    if (!process.waitForStarted())
        return Failure{kExitNoModule, CheckerPath() + QStringLiteral(": ") + process.errorString()};
    const qint64 wait = std::min<qint64>(limit.count() + kGraceMs, std::numeric_limits<int>::max());
    if (!process.waitForFinished(static_cast<int>(wait))) {
        process.kill();
        process.waitForFinished();
        return Failure{kExitNoAnswer, QStringLiteral("no answer within %1 ms").arg(limit.count())};
    }
    if (Interrupt::HasCome())
        return Failure{kExitNoAnswer, QStringLiteral("interrupted")};
    if (process.exitStatus() != QProcess::NormalExit)
        return Failure{kExitScriptFailed, QStringLiteral("the script brought the check to an end by force")};
    return std::nullopt;
}

} // namespace stagehost
