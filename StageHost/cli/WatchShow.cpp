#include <memory>

#include "BorderText.h"
#include "ChangePrinter.h"
#include "Colors.h"
#include "CommandCheck.h"
#include "Commands.h"
#include "ExitCodes.h"
#include "InputLines.h"
#include "Interrupt.h"
#include "LiveShow.h"
#include "MainWait.h"
#include "Output.h"
#include "Reloader.h"
#include "ScriptSession.h"
#include "ShowClock.h"

namespace stagehost {

namespace {

constexpr std::chrono::milliseconds kLook(100); // for Ctrl-C, which wakes nobody

QJsonObject AnswerJson(const QString& line, const LineOutcome& outcome) {
    QJsonObject answer{{QStringLiteral("line"), line},
                       {QStringLiteral("ok"), outcome.exitCode == kExitOk},
                       {QStringLiteral("answer"), outcome.text},
                       {QStringLiteral("exitCode"), outcome.exitCode}};
    AddPlace(answer, outcome.place);
    return answer;
}

/// Answers to the user's lines: plain, or as lines of JSON among those of the changes.
void PrintAnswer(bool json, const QString& line, const LineOutcome& outcome) {
    if (json)
        return PrintJsonLine(AnswerJson(line, outcome));
    if (outcome.exitCode != kExitOk) {
        PrintProblem(OnErrors(Ink::Bad, outcome.text));
        PrintPlace(outcome.place);
    } else if (!outcome.text.isEmpty())
        PrintLine(outcome.text);
}

MaybeFailure CheckNames(Session& session, const QStringList& names) {
    for (const QString& name : names) {
        if (!session.TheHost().Model().FindAny(ToBorderText(name)))
            return session.NoObject(name);
    }
    return std::nullopt;
}

MaybeFailure Open(Session& session, const Show& show, const QStringList& names) {
    if (auto failure = session.OpenWithPeers(show))
        return failure;
    if (auto failure = CheckCommands(session, show))
        return failure;
    if (auto failure = session.Start())
        return failure;
    return CheckNames(session, names);
}

/// Runs until the user has said "quit", has nothing more to say, or wants the program to end.
/// @return the exit code of the first line that went wrong.
int Watch(Session& session, const Show& show, const Options& options, const QStringList& names) {
    const bool json = options.json;
    const auto reloader = options.reload ? std::make_unique<Reloader>(session, show, options) : nullptr;
    ChangePrinter printer(session.TheHost().Model().Feed(), names, json);
    InputLines input;
    if (!json)
        PrintProblem(QStringLiteral("%1 runs. \"help\" tells what you can say, \"quit\" ends it.").arg(show.name));
    LiveShow live(session, show);
    ShowClock::Run();
    int exitCode = kExitOk;
    while (!live.IsOver() && !input.IsOver() && !Interrupt::HasCome()) {
        if (!MainWait::Until([&] { return input.HasLine() || input.IsOver(); }, MachineTime(kLook)) || input.IsOver())
            continue;
        const QString line = input.TakeLine();
        const LineOutcome outcome = live.Do(line);
        printer.CatchUp();
        PrintAnswer(json, line, outcome);
        exitCode = exitCode == kExitOk ? outcome.exitCode : exitCode;
    }
    return exitCode;
}

} // namespace

int WatchShow(const Options& options) {
    Show show;
    if (auto failure = ReadShowOrScript(options.arguments.first(), show))
        return Fail(options.json, *failure);
    const QStringList names = options.arguments.mid(1);
    Session session(options);
    auto failure = Open(session, show, names);
    if (failure)
        session.TellWhereItHangs(*failure);
    if (failure)
        return session.Close(Fail(options.json, *failure));
    return session.Close(Watch(session, show, options, names));
}

} // namespace stagehost
