#include <memory>

#include <gtest/gtest.h>

#include "FakeRemotes.h"
#include "FakeScriptDevice.h"
#include "MCommandObject.h"
#include "MScriptMngRemote.h"

namespace {

/// Counts commands that are gone.
class EndCounter : public ICommandObjectHandler {
public:
    virtual ~EndCounter() = default;
    void OnCommandCreated(void*) override {}
    void OnCommandDestroyed(void*) override { ++ended; }
    int ended = 0;
};

class Postponing : public testing::Test {
protected:
    /// The command of the function that the script is said to be in.
    MCommandObject* GivenAUserCommand() {
        device.executing = new MCommandObject(nullptr, 3, 0, &counter, nullptr);
        remote.SetPostponeAllowed(true);
        return device.executing;
    }
    /// What stands behind a user command: a command that was not postponed is deleted here, as its manager would do.
    void WhenTheCommandIsOver() {
        if (!remote.HasPostponed())
            delete device.executing;
        device.executing = nullptr;
        remote.SetPostponeAllowed(false);
    }

    EndCounter counter;
    FakeScriptDevice device;
    MScriptMngRemote remote{&device, nullptr, nullptr, nullptr, nullptr};
};

TEST_F(Postponing, IsNotPossibleOutsideAUserCommand) {
    EXPECT_EQ(remote.PostponeResult(), 0);
    EXPECT_FALSE(remote.HasPostponed());
}

TEST_F(Postponing, KeepsTheCommandOpenUntilItsAnswer) {
    MCommandObject* command = GivenAUserCommand();
    const int id = remote.PostponeResult();
    EXPECT_NE(id, 0);
    EXPECT_TRUE(remote.HasPostponed());
    WhenTheCommandIsOver();
    EXPECT_FALSE(remote.HasPostponed());
    EXPECT_EQ(counter.ended, 0);
    remote.SetResult(id, QStringLiteral("answer"));
    EXPECT_EQ(device.results, std::vector<std::string>{"answer"});
    EXPECT_EQ(device.resultCommand, command);
    EXPECT_EQ(counter.ended, 1);
}

TEST_F(Postponing, TwiceInOneCommandGivesNothingTheSecondTime) {
    GivenAUserCommand();
    const int id = remote.PostponeResult();
    EXPECT_EQ(remote.PostponeResult(), 0);
    WhenTheCommandIsOver();
    remote.SetResult(id, QStringLiteral("answer"));
    EXPECT_EQ(counter.ended, 1);
}

TEST_F(Postponing, AnsweredTwiceCountsTheFirstAnswer) {
    GivenAUserCommand();
    const int id = remote.PostponeResult();
    WhenTheCommandIsOver();
    remote.SetResult(id, QStringLiteral("first"));
    remote.SetResult(id, QStringLiteral("second"));
    EXPECT_EQ(device.results, std::vector<std::string>{"first"});
    EXPECT_EQ(counter.ended, 1);
}

TEST_F(Postponing, AnsweredWithinTheFunctionEndsWithTheCommand) {
    GivenAUserCommand();
    const int id = remote.PostponeResult();
    remote.SetResult(id, QStringLiteral("at once"));
    EXPECT_EQ(device.results, std::vector<std::string>{"at once"});
    EXPECT_TRUE(remote.HasPostponed());
    EXPECT_EQ(counter.ended, 0);
    WhenTheCommandIsOver();
    EXPECT_EQ(counter.ended, 1);
}

TEST_F(Postponing, IgnoresAnswersToNobody) {
    remote.SetResult(0, QStringLiteral("x"));
    remote.SetResult(-1, QStringLiteral("x"));
    remote.SetResult(123456, QStringLiteral("x"));
    EXPECT_TRUE(device.results.empty());
}

TEST_F(Postponing, KeepsSeveralCommandsOpenAtOnce) {
    GivenAUserCommand();
    const int first = remote.PostponeResult();
    WhenTheCommandIsOver();
    GivenAUserCommand();
    const int second = remote.PostponeResult();
    WhenTheCommandIsOver();
    EXPECT_NE(first, second);
    remote.SetResult(second, QStringLiteral("second"));
    EXPECT_EQ(counter.ended, 1);
    remote.SetResult(first, QStringLiteral("first"));
    EXPECT_EQ(counter.ended, 2);
    EXPECT_EQ(device.results, (std::vector<std::string>{"second", "first"}));
}

TEST_F(Postponing, EndsUnansweredCommandsAtAReset) {
    GivenAUserCommand();
    const int id = remote.PostponeResult();
    WhenTheCommandIsOver();
    remote.ResetPostponed();
    EXPECT_EQ(counter.ended, 1);
    EXPECT_TRUE(device.results.empty());
    remote.SetResult(id, QStringLiteral("late"));
    EXPECT_TRUE(device.results.empty());
}

TEST_F(Postponing, IsOverAfterAReset) {
    MCommandObject* command = GivenAUserCommand();
    remote.ReleaseScriptObjects();
    EXPECT_EQ(remote.PostponeResult(), 0);
    delete command;
    EXPECT_EQ(counter.ended, 1);
}

TEST_F(Postponing, EndsUnansweredCommandsWithTheBridge) {
    auto other = std::make_unique<MScriptMngRemote>(&device, nullptr, nullptr, nullptr, nullptr);
    device.executing = new MCommandObject(nullptr, 3, 0, &counter, nullptr);
    other->SetPostponeAllowed(true);
    EXPECT_NE(other->PostponeResult(), 0);
    other->SetPostponeAllowed(false);
    other.reset();
    EXPECT_EQ(counter.ended, 1);
}

TEST_F(Postponing, WithoutADeviceGivesNothing) {
    MScriptMngRemote alone(nullptr, nullptr, nullptr, nullptr, nullptr);
    alone.SetPostponeAllowed(true);
    EXPECT_EQ(alone.PostponeResult(), 0);
    alone.SetResult(1, QStringLiteral("x"));
}

} // namespace
