#include "Checker.h"
#include "Commands.h"
#include "Output.h"
#include "ScriptSession.h"

namespace stagehost {

/// The contract carries neither settings nor descriptions to a host, so the module's own program beside this one looks
/// into the script and says what is in it, on the same output.
int CheckScript(const Options& options) {
    const QString file = options.arguments.first();
    if (auto failure = CheckReadable(file))
        return Fail(options.json, failure->exitCode, failure->text);
    QProcess checker;
    checker.setProcessChannelMode(QProcess::ForwardedChannels);
    if (auto failure = RunChecker(checker, file, options.json, options.timeout))
        return Fail(options.json, failure->exitCode, failure->text);
    return checker.exitCode();
}

} // namespace stagehost
