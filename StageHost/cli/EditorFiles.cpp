#include "Checker.h"
#include "Commands.h"
#include "ExitCodes.h"
#include "Output.h"
#include "ShowSchema.h"

namespace stagehost {

/// What scripts see is the module's business: its check program, which lies beside this one, tells.
int PrintDeclarations(const Options& options) {
    QProcess checker;
    checker.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    if (const auto failure = RunChecker(checker, QString(), {QStringLiteral("--declarations")}, options.timeout))
        return Fail(options.json, failure->exitCode, failure->text);
    Print(QString::fromUtf8(checker.readAllStandardOutput()));
    return checker.exitCode();
}

int PrintSchema(const Options&) {
    PrintJson(ShowSchema());
    return kExitOk;
}

} // namespace stagehost
