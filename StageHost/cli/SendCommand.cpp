#include "BorderText.h"
#include "Commands.h"
#include "ExitCodes.h"
#include "LiveShow.h"
#include "Output.h"
#include "ScriptSession.h"

namespace stagehost {

namespace {

MaybeFailure SendTo(Session& session, const Show& show, const QStringList& words, CommandOutcome& outcome, bool& sent) {
    std::vector<ParameterInput> inputs;
    if (auto failure = ReadInputs(words.mid(3), inputs))
        return failure;
    if (show.FindDevice(words.at(1)) == nullptr)
        return NoDevice(show, words.at(1));
    if (auto failure = session.Open(show))
        return failure;
    if (auto failure = session.Start())
        return failure;
    auto failure = session.Send(*session.FindDevice(words.at(1)), words.at(2), inputs, &outcome);
    sent = !failure || failure->exitCode != kExitBadUse;
    return failure;
}

void PrintOutcome(const CommandOutcome& outcome) {
    Print(Table({{QStringLiteral("Result:"), FromBorderText(outcome.result)},
                 {QStringLiteral("Status:"), FromBorderText(outcome.status)},
                 {QStringLiteral("Error:"), FromBorderText(outcome.error)}},
                {}));
}

} // namespace

int SendCommand(const Options& options) {
    Show show;
    if (auto failure = ReadShowOrScript(options.arguments.first(), show))
        return Fail(options.json, *failure);
    Session session(options);
    CommandOutcome outcome;
    bool sent = false;
    auto failure = SendTo(session, show, options.arguments, outcome, sent);
    if (failure)
        session.TellWhereItHangs(*failure);
    if (failure && !sent)
        return session.Close(Fail(options.json, *failure));
    if (options.json)
        PrintJson(session.OutcomeJson(outcome, failure));
    else
        PrintOutcome(outcome);
    if (failure) {
        PrintProblem(failure->text);
        PrintPlace(failure->place);
    }
    return session.Close(failure ? failure->exitCode : kExitOk);
}

} // namespace stagehost
