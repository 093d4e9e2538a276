#include "CommandWatch.h"

#include <gtest/gtest.h>

#include "MainWait.h"
#include "ValueFactory.h"

using namespace stagehost;
using Verdict = CommandWatch::Verdict;

namespace {

/// A device's two variables and a watch that looks at them, on a clock of the test's own.
class CommandWatchTest : public testing::Test {
protected:
    CommandWatchTest() {
        ValueSpec spec;
        spec.type = KXP_ENUM_DATA;
        spec.items = {"Ready", "Loading", "Executing"};
        status = MakeValue(spec);
        spec.type = KXP_STRING_DATA;
        error = MakeValue(spec);
    }

    void GivenAWatch() { watch = std::make_unique<CommandWatch>(status, error, &MainWait::Wake); }
    Verdict Now() { return watch->Judge(clock); }
    void Later(std::chrono::milliseconds time) { clock += time; }

    std::shared_ptr<HostValue> status;
    std::shared_ptr<HostValue> error;
    std::unique_ptr<CommandWatch> watch;
    std::chrono::steady_clock::time_point clock;
};

} // namespace

TEST_F(CommandWatchTest, SeesTheEndOfACommandWithoutContextInTheStatusComingBack) {
    GivenAWatch();
    EXPECT_EQ(Now(), Verdict::Running);
    status->SetInt(1);
    EXPECT_EQ(Now(), Verdict::Running);
    status->SetInt(0);
    EXPECT_EQ(Now(), Verdict::Over);
}

TEST_F(CommandWatchTest, SeesAStatusThatWasAwayForAMomentOnly) {
    GivenAWatch();
    status->SetInt(2);
    status->SetInt(0);
    EXPECT_EQ(Now(), Verdict::Over);
}

TEST_F(CommandWatchTest, TakesAnErrorOfAReadyDeviceAsTheOutcomeOfACommandWithoutContext) {
    GivenAWatch();
    status->SetInt(1);
    error->SetText("broken");
    EXPECT_EQ(Now(), Verdict::Running) << "the device is still at work";
    status->SetInt(0);
    EXPECT_EQ(Now(), Verdict::Failed);
}

TEST_F(CommandWatchTest, DoesNotMistakeTheErrorOfAnEarlierCommand) {
    error->SetText("old");
    GivenAWatch();
    EXPECT_EQ(Now(), Verdict::Running);
    error->SetText("");
    status->SetInt(2);
    status->SetInt(0);
    EXPECT_EQ(Now(), Verdict::Over);
}

TEST_F(CommandWatchTest, TakesTheEndOfTheContextAsTheEnd) {
    GivenAWatch();
    watch->Context()->Begin();
    status->SetInt(2);
    status->SetInt(0);
    EXPECT_EQ(Now(), Verdict::Running) << "the result may be postponed";
    Later(std::chrono::hours(1));
    EXPECT_EQ(Now(), Verdict::Running);
    watch->Context()->End();
    EXPECT_EQ(Now(), Verdict::Over);
}

TEST_F(CommandWatchTest, GivesAFailedCommandWithContextAMomentToEndProperly) {
    GivenAWatch();
    watch->Context()->Begin();
    status->SetInt(2);
    error->SetText("broken");
    status->SetInt(0);
    EXPECT_EQ(Now(), Verdict::Running);
    Later(CommandWatch::kGrace);
    EXPECT_EQ(Now(), Verdict::Failed);
    watch->Context()->End();
    EXPECT_EQ(Now(), Verdict::Over);
}

TEST_F(CommandWatchTest, StartsTheMomentAnewWhenTheErrorIsCleared) {
    GivenAWatch();
    watch->Context()->Begin();
    error->SetText("broken");
    EXPECT_EQ(Now(), Verdict::Running);
    error->SetText("");
    Later(CommandWatch::kGrace);
    EXPECT_EQ(Now(), Verdict::Running);
    error->SetText("again");
    EXPECT_EQ(Now(), Verdict::Running);
    Later(CommandWatch::kGrace);
    EXPECT_EQ(Now(), Verdict::Failed);
}

TEST_F(CommandWatchTest, TakesAnErrorAsTheOutcomeAlsoWhenTheStatusNeverLeftReady) {
    GivenAWatch();
    error->SetText("at once");
    EXPECT_EQ(Now(), Verdict::Running);
    Later(CommandWatch::kGrace);
    EXPECT_EQ(Now(), Verdict::Failed);
}

TEST_F(CommandWatchTest, SaysThatADeviceWithoutStatusShowsNoEnd) {
    status.reset();
    error.reset();
    GivenAWatch();
    EXPECT_EQ(Now(), Verdict::Unseen);
}

TEST_F(CommandWatchTest, SurvivesVariablesThatChangeBehindItsEnd) {
    GivenAWatch();
    IExecContext* const context = watch->Context();
    QueryFace<IExecContext2>(context, "IExecContext2")->AddRef();
    watch.reset();
    status->SetInt(1);
    error->SetText("late");
    context->End();
    context->Release();
    EXPECT_EQ(status->Int(), 1);
}

TEST_F(CommandWatchTest, LooksAwayWhenItIsToldTo) {
    GivenAWatch();
    watch->StopLooking();
    status->SetInt(2);
    status->SetInt(0);
    EXPECT_EQ(Now(), Verdict::Running);
}

TEST_F(CommandWatchTest, KeepsTheErrorThatStoodAtTheEndOfTheContext) {
    error->SetText("of a command before");
    GivenAWatch();
    EXPECT_EQ(watch->OwnError(), "");
    error->SetText("its own");
    EXPECT_EQ(watch->OwnError(), "its own");
    error->SetText("");
    watch->Context()->End();
    error->SetText("of the next command");
    EXPECT_EQ(Now(), Verdict::Over);
    EXPECT_EQ(watch->OwnError(), "");
}

TEST_F(CommandWatchTest, ALateAnswerIsNotFailedByAnErrorThatCameBehindTheReturn) {
    GivenAWatch();
    watch->Context()->Begin();
    status->SetInt(2);
    status->SetInt(0);
    error->SetText("of a timer");
    EXPECT_EQ(Now(), Verdict::Running);
    Later(CommandWatch::kGrace);
    EXPECT_EQ(Now(), Verdict::Running) << "the answer is still to come";
    watch->Context()->End();
    EXPECT_EQ(Now(), Verdict::Over);
    EXPECT_EQ(watch->OwnError(), "");
}

TEST_F(CommandWatchTest, ACommandThatHasWrittenItsResultHasNotFailed) {
    ValueSpec spec;
    spec.type = KXP_STRING_DATA;
    const auto result = MakeValue(spec);
    GivenAWatch();
    watch->LookAtResult(*result);
    watch->Context()->Begin();
    status->SetInt(2);
    error->SetText("of a timer, before the function was called");
    result->SetText("good");
    status->SetInt(0);
    Later(CommandWatch::kGrace);
    EXPECT_EQ(Now(), Verdict::Running);
    watch->Context()->End();
    EXPECT_EQ(Now(), Verdict::Over);
    EXPECT_EQ(watch->OwnError(), "");
    EXPECT_TRUE(watch->IsAnswered());
    watch->StopLooking();
}

TEST_F(CommandWatchTest, BehindOtherCommandsTheErrorAtTheEndOfTheContextCounts) {
    status->SetInt(2);
    GivenAWatch();
    watch->Context()->Begin();
    error->SetText("of the command before");
    status->SetInt(0);
    error->SetText("");
    status->SetInt(2);
    error->SetText("its own");
    watch->Context()->End();
    EXPECT_EQ(Now(), Verdict::Over);
    EXPECT_EQ(watch->OwnError(), "its own");
}
