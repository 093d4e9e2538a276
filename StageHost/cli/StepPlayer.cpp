#include "StepPlayer.h"

#include <cstring>
#include <memory>
#include <mutex>

#include "BorderText.h"
#include "ExitCodes.h"
#include "Output.h"
#include "TextFile.h"

namespace stagehost {

namespace {

/// What an action could not do; filled from any thread, also when nobody looks any more.
class Problem {
public:
    void Add(const std::string& what) {
        const std::lock_guard<std::mutex> hold(m_lock);
        m_lines += FromBorderText(what);
    }

    QString Text() const {
        const std::lock_guard<std::mutex> hold(m_lock);
        return m_lines.join(QStringLiteral("; "));
    }

private:
    mutable std::mutex m_lock; ///< guards m_lines
    QStringList m_lines;
};

} // namespace

StepPlayer::StepPlayer(Session& session, const Show& show)
    : m_session(session)
    , m_show(show) {}

StepOutcome StepPlayer::Play(const ShowStep& step) {
    StepOutcome outcome;
    const auto begin = std::chrono::steady_clock::now();
    if (!step.device.isEmpty()) {
        outcome.failure = PlayCommand(step, outcome.command);
        return outcome;
    }
    if (!step.stored.isEmpty()) {
        outcome.failure = PlayStored(step, outcome.command);
        return outcome;
    }
    if (step.deed)
        outcome.failure = PlayDeed(step, outcome.command);
    else if (step.pause)
        outcome.failure = Session::Pause(std::chrono::milliseconds(*step.pause));
    else
        outcome.failure = step.wait ? m_session.WaitFor(*step.wait) : PlayAction(step.action);
    outcome.command.kind = outcome.failure ? CommandOutcome::Kind::NoAnswer : CommandOutcome::Kind::Done;
    outcome.command.milliseconds =
        std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count();
    return outcome;
}

MaybeFailure StepPlayer::PlayCommand(const ShowStep& step, CommandOutcome& outcome) {
    std::vector<ParameterInput> inputs;
    if (auto failure = ReadInputs(step, inputs))
        return failure;
    const auto failure = m_session.Send(*m_session.FindDevice(step.device), step.command, inputs, &outcome);
    return Compare(step, outcome, failure);
}

MaybeFailure StepPlayer::PlayStored(const ShowStep& step, CommandOutcome& outcome) {
    const auto failure = m_session.SendStored(step.stored, &outcome);
    return Compare(step, outcome, failure);
}

MaybeFailure StepPlayer::PlayDeed(const ShowStep& step, CommandOutcome& outcome) {
    QString result;
    const auto failure = m_session.Work(*step.deed, &result);
    outcome.result = ToBorderText(result);
    return Compare(step, outcome, failure);
}

/// Variables, tasks and cues answer at once; a command that a cue sends goes on.
MaybeFailure StepPlayer::PlayAction(const ActionSpec& action) {
    const auto problem = std::make_shared<Problem>();
    m_session.TheHost().Model().Run(action, [problem](const std::string& what) { problem->Add(what); });
    const QString text = problem->Text();
    return text.isEmpty() ? MaybeFailure() : Failure{kExitScriptFailed, text};
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
        return PathForBorder(m_show.Path(parameter.text), input.text);
    if (parameter.kind == Kind::Variable) {
        input.variable = m_session.TheHost().Variables().Find(ToBorderText(parameter.text));
        if (!input.variable)
            return m_session.NoVariable(parameter.text);
        return std::nullopt;
    }
    if (parameter.kind == Kind::Text) {
        input.text = ToBorderText(parameter.text);
        return std::nullopt;
    }
    QString problem;
    const auto text = ReadText(m_show.Path(parameter.text), &problem);
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
    // A step that expects a result hears of a failure by it; the text behind the mark is not expected twice.
    const bool isByResult = outcome.result.compare(0, std::strlen(kFailureMark), kFailureMark) == 0;
    const bool hasFailed = failure && !(isByResult && step.expectedResult);
    const QString error = hasFailed ? failure->text : QString();
    const QString expectedError = step.expectedError.value_or(QString());
    if (error != expectedError || (hasFailed && !step.expectedError))
        return Failure{kExitScriptFailed,
                       expectedError.isEmpty()
                           ? error.isEmpty() ? QStringLiteral("has failed without a text") : error
                           : QStringLiteral("expected the error \"%1\", not \"%2\"").arg(expectedError, error),
                       failure ? failure->place : QStringList()};
    const QString result = FromBorderText(outcome.result);
    if (step.expectedResult && *step.expectedResult != result)
        return Failure{kExitScriptFailed,
                       QStringLiteral("expected the result \"%1\", not \"%2\"").arg(*step.expectedResult, result)};
    return std::nullopt;
}

} // namespace stagehost
