#include "BorderText.h"
#include "Commands.h"
#include "ExitCodes.h"
#include "Output.h"
#include "ScriptSession.h"

namespace stagehost {

namespace {

/// The parameters of "Execute Function With Params".
std::vector<ParameterInput> FunctionInputs(const QStringList& words) {
    bool lost = false;
    std::vector<ParameterInput> inputs{{"Script Function Name", ToBorderText(words.first(), &lost), {}}};
    for (int index = 1; index < words.size(); ++index)
        inputs.push_back({"Param" + std::to_string(index), ToBorderText(words.at(index), &lost), {}});
    if (lost)
        PrintProblem(LostCharactersNote());
    return inputs;
}

MaybeFailure Exec(Session& session, const QStringList& words, CommandOutcome& outcome) {
    if (auto failure = session.Open(ShowOfScript(words.first())))
        return failure;
    if (auto failure = session.Start())
        return failure;
    Device& device = *session.Devices().front();
    auto failure =
        session.Send(device, QStringLiteral("Execute Function With Params"), FunctionInputs(words.mid(1)), &outcome);
    if (failure && outcome.kind == CommandOutcome::Kind::Refused)
        failure->text = words.at(1) + QStringLiteral(": ") + failure->text;
    return failure;
}

} // namespace

int ExecFunction(const Options& options) {
    if (auto failure = CheckReadable(options.arguments.first()))
        return Fail(options.json, *failure);
    Session session(options);
    CommandOutcome outcome;
    auto failure = Exec(session, options.arguments, outcome);
    if (failure)
        session.TellWhereItHangs(*failure);
    if (failure)
        return session.Close(Fail(options.json, *failure));
    if (options.json)
        PrintJson(session.OutcomeJson(outcome, failure));
    else
        PrintLine(FromBorderText(outcome.result));
    return session.Close(kExitOk);
}

} // namespace stagehost
