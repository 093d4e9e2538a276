#include "Checker.h"
#include "Commands.h"
#include "Output.h"
#include "ScriptSession.h"

namespace stagehost {

/// The contract carries neither settings nor descriptions to a host, so the module's own program beside this one looks
/// into the script and says what is in it. What it prints is printed here, where it is known what becomes of it.
int CheckScript(const Options& options) {
    const QString file = options.arguments.first();
    if (auto failure = CheckReadable(file))
        return Fail(options.json, failure->exitCode, failure->text);
    QStringList further;
    if (options.json)
        further += QStringLiteral("--json");
    if (options.strict)
        further += QStringLiteral("--strict");
    QProcess checker;
    checker.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    if (auto failure = RunChecker(checker, file, further, options.timeout))
        return Fail(options.json, failure->exitCode, failure->text);
    Print(QString::fromUtf8(checker.readAllStandardOutput()));
    return checker.exitCode();
}

} // namespace stagehost
