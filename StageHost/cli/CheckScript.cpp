#include "Checker.h"
#include "Commands.h"
#include "DriverSetup.h"
#include "ExitCodes.h"
#include "Output.h"
#include "ScriptSession.h"

namespace stagehost {

namespace {

/// The values of --set as words for the check program.
/// @return what is wrong with them. Of a script that fails nothing is known: the check itself tells why.
MaybeFailure ReadSets(const Options& options, QStringList& words) {
    const Show show = ShowOfScript(options.arguments.first());
    DeviceSettings settings;
    DriverEdition edition;
    QString problem = settings.Take(show, options.sets);
    if (!problem.isEmpty())
        return Failure{kExitBadUse, problem};
    if (options.sets.isEmpty() || ReadScriptOf(show.devices.front(), show, options.timeout, edition))
        return std::nullopt;
    QString setup = MakeSetupText({}, SettingsAlone(edition)).value_or(QString());
    problem = settings.PutInto(show.devices.front().name, setup);
    if (!problem.isEmpty())
        return Failure{kExitBadUse, problem};
    for (const auto& setting : settings.Given(show.devices.front().name))
        words << QStringLiteral("--setting")
              << QStringLiteral("%1=%2").arg(setting.name, SettingOfSetup(setup, setting.name).value_or(QString()));
    return std::nullopt;
}

} // namespace

/// The contract carries neither settings nor descriptions to a host, so the module's own program beside this one looks
/// into the script and says what is in it. What it prints is printed here, where it is known what becomes of it.
int CheckScript(const Options& options) {
    const QString file = options.arguments.first();
    if (auto failure = CheckReadable(file))
        return Fail(options.json, *failure);
    QStringList further;
    if (options.json)
        further += QStringLiteral("--json");
    if (options.strict)
        further += QStringLiteral("--strict");
    if (auto failure = ReadSets(options, further))
        return Fail(options.json, *failure);
    QProcess checker;
    checker.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    if (auto failure = RunChecker(checker, file, further, options.timeout))
        return Fail(options.json, *failure);
    Print(QString::fromUtf8(checker.readAllStandardOutput()));
    return checker.exitCode();
}

int ComposeScript(const Options& options) {
    WholeScript script;
    if (auto failure = ReadWhole(options.arguments.first(), options.timeout, script))
        return Fail(options.json, failure->exitCode, failure->text);
    if (options.json)
        PrintJson({{QStringLiteral("ok"), true},
                   {QStringLiteral("error"), QString()},
                   {QStringLiteral("exitCode"), kExitOk},
                   {QStringLiteral("script"), script.text}});
    else
        Print(script.text);
    return kExitOk;
}

} // namespace stagehost
