#include "Checker.h"
#include "Commands.h"
#include "Counterpart.h"
#include "ExitCodes.h"
#include "Output.h"
#include "ShowSchema.h"

namespace stagehost {

/// What drivers see is the module's business: its check program, which lies beside this one, tells.
int PrintDeclarations(const Options& options) {
    const QString whose = options.arguments.value(0, QStringLiteral("driver"));
    if (whose == QLatin1String("counterpart")) {
        Print(CounterpartDeclarations());
        return kExitOk;
    }
    if (whose != QLatin1String("driver"))
        return Fail(
            options.json, kExitBadUse,
            QStringLiteral("there are declarations for a driver and for a counterpart, not for \"%1\"").arg(whose));
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
