#include <algorithm>
#include <limits>

#include <QCoreApplication>
#include <QDir>
#include <QProcess>

#include "Commands.h"
#include "ExitCodes.h"
#include "Output.h"
#include "ScriptSession.h"

namespace stagehost {

namespace {

/// What the program that looks into the script gets beyond the time that the script has.
constexpr int kGraceMs = 3000;

QString CheckerPath() {
    return QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("calverincheck"));
}

QStringList CheckerWords(const Options& options) {
    QStringList words{QStringLiteral("--timeout"), QString::number(options.timeout.count())};
    if (options.json)
        words.append(QStringLiteral("--json"));
    return words << QStringLiteral("--") << options.arguments.first();
}

} // namespace

/// The contract carries neither settings nor descriptions to a host, so the module's own program beside this one looks into the
/// script and says what is in it, on the same output. A script that takes that program down, or keeps it, does no harm here.
int CheckScript(const Options& options) {
    if (auto failure = CheckReadable(options.arguments.first()))
        return Fail(options.json, failure->exitCode, failure->text);
    QProcess checker;
    checker.setProcessChannelMode(QProcess::ForwardedChannels);
    checker.start(CheckerPath(), CheckerWords(options));
    if (!checker.waitForStarted())
        return Fail(options.json, kExitNoModule, CheckerPath() + QStringLiteral(": ") + checker.errorString());
    const qint64 limit = options.timeout.count();
    const qint64 wait = std::min<qint64>(limit + kGraceMs, std::numeric_limits<int>::max());
    if (!checker.waitForFinished(static_cast<int>(wait))) {
        checker.kill();
        checker.waitForFinished();
        return Fail(options.json, kExitNoAnswer, QStringLiteral("no answer within %1 ms").arg(limit));
    }
    if (checker.exitStatus() != QProcess::NormalExit)
        return Fail(options.json, kExitScriptFailed, QStringLiteral("the script brought the check to an end by force"));
    return checker.exitCode();
}

} // namespace stagehost
