#include "StepPlayer.h"

#include "BorderText.h"
#include "ExitCodes.h"
#include "Output.h"
#include "TextFile.h"

namespace stagehost {

StepPlayer::StepPlayer(Session& session, const Show& show)
    : session_(session)
    , show_(show) {}

StepOutcome StepPlayer::Play(const ShowStep& step) {
    StepOutcome outcome;
    std::vector<ParameterInput> inputs;
    outcome.failure = ReadInputs(step, inputs);
    if (outcome.failure)
        return outcome;
    const auto failure = session_.Send(*session_.FindDevice(step.device), step.command, inputs, &outcome.command);
    outcome.failure = Compare(step, outcome.command, failure);
    return outcome;
}

MaybeFailure StepPlayer::ReadInputs(const ShowStep& step, std::vector<ParameterInput>& inputs) {
    for (const auto& parameter : step.parameters) {
        ParameterInput input{ToBorderText(parameter.name), {}, {}};
        if (auto failure = ReadInput(parameter, input))
            return failure;
        inputs.push_back(std::move(input));
    }
    return std::nullopt;
}

MaybeFailure StepPlayer::ReadInput(const ShowParameter& parameter, ParameterInput& input) {
    using Kind = ShowParameter::Kind;
    if (parameter.kind == Kind::Path)
        return PathForBorder(show_.Path(parameter.text), input.text);
    if (parameter.kind == Kind::Variable) {
        input.variable = session_.TheHost().Variables().Find(ToBorderText(parameter.text));
        if (!input.variable)
            return Failure{kExitBadUse, QStringLiteral("there is no variable \"%1\"").arg(parameter.text)};
        return std::nullopt;
    }
    if (parameter.kind == Kind::Text) {
        input.text = ToBorderText(parameter.text);
        return std::nullopt;
    }
    QString problem;
    const auto text = ReadText(show_.Path(parameter.text), &problem);
    if (!text)
        return Failure{kExitBadUse, problem};
    bool lost = false;
    input.text = ToBorderText(*text, &lost);
    if (lost)
        PrintProblem(parameter.text + QStringLiteral(": ") + LostCharactersNote());
    return std::nullopt;
}

MaybeFailure StepPlayer::Compare(const ShowStep& step, const CommandOutcome& outcome, const MaybeFailure& failure) {
    if (failure && failure->exitCode != kExitScriptFailed)
        return failure;
    const QString error = failure ? failure->text : QString();
    const QString expectedError = step.expectedError.value_or(QString());
    if (error != expectedError)
        return Failure{kExitScriptFailed,
                       expectedError.isEmpty()
                           ? error
                           : QStringLiteral("expected the error \"%1\", not \"%2\"").arg(expectedError, error)};
    const QString result = FromBorderText(outcome.result);
    if (step.expectedResult && *step.expectedResult != result)
        return Failure{kExitScriptFailed,
                       QStringLiteral("expected the result \"%1\", not \"%2\"").arg(*step.expectedResult, result)};
    return std::nullopt;
}

} // namespace stagehost
