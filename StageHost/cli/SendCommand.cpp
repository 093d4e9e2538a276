#include "BorderText.h"
#include "Commands.h"
#include "ExitCodes.h"
#include "LiveShow.h"
#include "Output.h"
#include "ScriptSession.h"

namespace stagehost {

namespace {

MaybeFailure ReadWaits(const QStringList& texts, std::vector<Condition>& waits) {
    for (const QString& text : texts) {
        QString problem;
        const auto condition = ReadCondition(text, &problem);
        if (!condition)
            return Failure{kExitBadUse, QStringLiteral("--wait: ") + problem};
        waits.push_back(*condition);
    }
    return std::nullopt;
}

/// A name is first one of the device's own variables.
MaybeFailure WaitForAll(Session& session, const QString& device, std::vector<Condition> waits) {
    for (Condition& condition : waits) {
        const QString own = device + QLatin1Char('.') + condition.name;
        if (session.TheHost().Variables().Find(ToBorderText(own)))
            condition.name = own;
        if (auto failure = session.WaitFor({condition, std::nullopt}))
            return failure;
    }
    return std::nullopt;
}

MaybeFailure SendTo(Session& session, const Show& show, const Options& options, CommandOutcome& outcome, bool& sent) {
    const QStringList& words = options.arguments;
    std::vector<Condition> waits;
    if (auto failure = ReadWaits(options.waits, waits))
        return failure;
    std::vector<ParameterInput> inputs;
    if (auto failure = ReadInputs(words.mid(3), inputs))
        return failure;
    if (show.FindDevice(words.at(1)) == nullptr)
        return NoDevice(show, words.at(1));
    if (auto failure = session.OpenWithPeers(show))
        return failure;
    if (auto failure = session.Start())
        return failure;
    if (auto failure = WaitForAll(session, words.at(1), waits))
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
    auto failure = SendTo(session, show, options, outcome, sent);
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
