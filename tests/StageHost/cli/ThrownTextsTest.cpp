#include "ThrownTexts.h"

#include <gtest/gtest.h>

using namespace stagehost;
using namespace std::chrono_literals;

namespace {

/// A desk and a printer whose log lines come at times of the test's own.
class ThrownTextsTest : public testing::Test {
protected:
    ThrownTextsTest() {
        thrown.Add(QStringLiteral("desk"));
        thrown.Add(QStringLiteral("printer"));
    }

    void Throws(const char* device, const char* message) {
        thrown.Take(
            QStringLiteral("12:00:00 [3] stagehost: CalverinScript_ [%1] Uncaught Exception - line:1, message: %2")
                .arg(QLatin1String(device), QLatin1String(message)),
            now);
    }
    QString Told() {
        thrown.Tell(now);
        return thrown.FirstTold();
    }

    ThrownTexts::Clock::time_point now = ThrownTexts::Clock::now();
    ThrownTexts thrown;
};

} // namespace

TEST_F(ThrownTextsTest, TellsWhatATimerThrowsOnceNobodyCanAnswerForItAnyMore) {
    Throws("desk", "late");
    EXPECT_EQ(Told(), QString());
    now += 501ms;
    EXPECT_EQ(Told(), QStringLiteral("desk: Uncaught Exception - line:1, message: late"));
}

TEST_F(ThrownTextsTest, TellsNothingOfACommandWhoseSenderHasBeenTold) {
    Throws("printer", "no paper");
    thrown.Answered({"Script: no paper"}, now);
    now += 501ms;
    EXPECT_EQ(Told(), QString());
    Throws("printer", "no paper");
    now += 501ms;
    EXPECT_NE(Told(), QString()) << "one answer is for one failure";
}

TEST_F(ThrownTextsTest, KeepsWhatTheDeviceThrowsThatSomebodyWaitsFor) {
    thrown.Begin(QStringLiteral("desk"));
    Throws("desk", "own");
    Throws("printer", "other");
    EXPECT_EQ(thrown.End(), QStringList(QStringLiteral("Uncaught Exception - line:1, message: own")));
    now += 501ms;
    EXPECT_EQ(Told(), QStringLiteral("printer: Uncaught Exception - line:1, message: other"));
}

TEST_F(ThrownTextsTest, TellsWhatCameBesideACallAtOnceUnlessItIsAnsweredFor) {
    thrown.Answered({"Script: held"}, now);
    now += 6s;
    thrown.TellBeside(QStringLiteral("desk"), {QStringLiteral("Uncaught Exception - line:1, message: held")}, now);
    EXPECT_EQ(thrown.FirstTold(), QString());
    thrown.TellBeside(QStringLiteral("desk"), {QStringLiteral("Uncaught Exception - line:1, message: held")}, now);
    EXPECT_NE(thrown.FirstTold(), QString());
}

TEST_F(ThrownTextsTest, LeavesNothingUntoldAtTheEnd) {
    Throws("desk", "last");
    thrown.Tell(ThrownTexts::Clock::time_point::max());
    EXPECT_NE(thrown.FirstTold(), QString());
}

TEST_F(ThrownTextsTest, TakesNoOtherLineForAFailure) {
    thrown.Take(QStringLiteral("x: CalverinScript_ [stranger] Uncaught Exception - line:1, message: a"), now);
    thrown.Take(QStringLiteral("x: kxpCalverinScript [desk] Uncaught Exception is what this show is called"), now);
    thrown.Take(QStringLiteral("x: CalverinScript_ [desk] Command Timeout ID : 3"), now);
    now += 501ms;
    EXPECT_EQ(Told(), QString());
}
