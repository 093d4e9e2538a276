#pragma once

#include "Session.h"

namespace stagehost {

/// How one step of a show went.
struct StepOutcome {
    CommandOutcome command;
    MaybeFailure failure; ///< nothing when the step went as expected
};

/// Plays single steps of a show in a session.   [host main]
class StepPlayer {
public:
    StepPlayer(Session& session, const Show& show);

    StepOutcome Play(const ShowStep& step);

private:
    MaybeFailure PlayCommand(const ShowStep& step, CommandOutcome& outcome);
    MaybeFailure PlayStored(const ShowStep& step, CommandOutcome& outcome);
    MaybeFailure PlayDeed(const ShowStep& step, CommandOutcome& outcome);
    MaybeFailure PlayAction(const ActionSpec& action);
    MaybeFailure ReadInputs(const ShowStep& step, std::vector<ParameterInput>& inputs);
    MaybeFailure ReadInput(const ShowParameter& parameter, ParameterInput& input);
    static MaybeFailure Compare(const ShowStep& step, const CommandOutcome& outcome, const MaybeFailure& failure);

    Session& m_session;
    const Show& m_show;
};

} // namespace stagehost
