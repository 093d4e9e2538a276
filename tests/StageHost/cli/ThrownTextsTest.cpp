#include "ThrownTexts.h"

#include <gtest/gtest.h>

using namespace stagehost;
using namespace std::chrono_literals;

namespace {

/// A desk and a printer whose log lines come at times of the test's own.
class ThrownTextsTest : public testing::Test {
protected:
    void Throws(const char* device, const char* message) {
        Logs(QStringLiteral("2026-11-22 12:00:00.000 +0000 [5] stagehost: CalverinScript_ [%1] Uncaught Exception - "
                            "line:1, message: %2")
                 .arg(QLatin1String(device), QLatin1String(message)));
    }
    void Logs(const QString& line) {
        thrown.Take(ReadLogLine(line, {QStringLiteral("desk"), QStringLiteral("printer")}), now);
    }
    QString Told() {
        thrown.Tell(now);
        return thrown.FirstTold().text;
    }
    QString Kept() {
        QStringList texts;
        for (const auto& text : thrown.End())
            texts += text.text;
        return texts.join(QLatin1Char('|'));
    }

    ThrownTexts::Clock::time_point now = ThrownTexts::Clock::now();
    ThrownTexts thrown;
};

} // namespace

TEST_F(ThrownTextsTest, AFailureIsTheAnswerThoughTheLogHasItOnOneLineWithoutBlanksAtItsEnd) {
    Throws("desk", "one two");
    thrown.Answered({"Script: one\ntwo "}, now);
    now += 1h;
    EXPECT_EQ(Told(), QString());
}

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
    EXPECT_EQ(Kept(), QStringLiteral("Uncaught Exception - line:1, message: own"));
    now += 501ms;
    EXPECT_EQ(Told(), QStringLiteral("printer: Uncaught Exception - line:1, message: other"));
}

TEST_F(ThrownTextsTest, TellsWhatCameBesideACallAtOnceUnlessItIsAnsweredFor) {
    thrown.Answered({"Script: held"}, now);
    now += 6s;
    thrown.TellBeside(QStringLiteral("desk"), {{QStringLiteral("Uncaught Exception - line:1, message: held"), {}}},
                      now);
    EXPECT_EQ(thrown.FirstTold().text, QString());
    thrown.TellBeside(QStringLiteral("desk"), {{QStringLiteral("Uncaught Exception - line:1, message: held"), {}}},
                      now);
    EXPECT_NE(thrown.FirstTold().text, QString());
}

TEST_F(ThrownTextsTest, LeavesNothingUntoldAtTheEnd) {
    Throws("desk", "last");
    thrown.Tell(ThrownTexts::Clock::time_point::max());
    EXPECT_NE(thrown.FirstTold().text, QString());
}

TEST_F(ThrownTextsTest, TakesNoOtherLineForAFailure) {
    Logs(QStringLiteral("x: CalverinScript_ [stranger] Uncaught Exception - line:1, message: a"));
    Logs(QStringLiteral("x: kxpCalverinScript [desk] Uncaught Exception is what this show is called"));
    Logs(QStringLiteral("x: CalverinScript_ [desk] Command Timeout ID : 3"));
    now += 501ms;
    EXPECT_EQ(Told(), QString());
}

TEST_F(ThrownTextsTest, TellsThePlaceWithTheTextAlsoWhenAnotherDeviceThrowsBetween) {
    Throws("desk", "late");
    Logs(QStringLiteral("x: CalverinScript_ [desk]     /d/desk.js:3:5: Error: late"));
    Throws("printer", "no paper");
    Logs(QStringLiteral("x: CalverinScript_ [desk]     at Fade (/d/desk.js:3)"));
    Logs(QStringLiteral("x: CalverinScript_ [printer]     /d/printer.js:9: Error: no paper"));
    now += std::chrono::milliseconds(501);
    thrown.Tell(now);
    EXPECT_EQ(thrown.FirstTold().place.join(QLatin1Char('|')),
              QStringLiteral("/d/desk.js:3:5: Error: late|at Fade (/d/desk.js:3)"));
}

TEST_F(ThrownTextsTest, KeepsWhereAScriptWasStoppedForWhoAsks) {
    Logs(QStringLiteral("x: CalverinScript_ [desk] Script Stopped"));
    Logs(QStringLiteral("x: CalverinScript_ [desk]     /d/desk.js:3: stopped in spin, which did not come back"));
    EXPECT_TRUE(thrown.TakeStopped(QStringLiteral("printer")).isEmpty());
    EXPECT_EQ(thrown.TakeStopped(QStringLiteral("desk")).join(QLatin1Char('|')),
              QStringLiteral("/d/desk.js:3: desk stopped in spin, which did not come back"));
    EXPECT_TRUE(thrown.TakeStopped().isEmpty());
    EXPECT_EQ(Told(), QString());
}

TEST_F(ThrownTextsTest, APlaceIsCompleteWhenTheLogHasGivenNoMoreOfItForAWhile) {
    Logs(QStringLiteral("x: CalverinScript_ [desk] Script Stopped"));
    EXPECT_EQ(thrown.Stopped(now), 0) << "nothing is known of the place";
    Logs(QStringLiteral("x: CalverinScript_ [desk]     /d/desk.js:3: stopped in spin, which did not come back"));
    EXPECT_EQ(thrown.Stopped(now), 1);
    const auto first = now;
    now += 100ms;
    Logs(QStringLiteral("x: CalverinScript_ [desk]     at spin (/d/desk.js:3)"));
    EXPECT_EQ(thrown.Stopped(first), 0) << "it has grown since";
    EXPECT_EQ(thrown.Stopped(now), 1);
    EXPECT_EQ(thrown.TakeStopped().size(), 2);
    EXPECT_EQ(thrown.Stopped(now), 0);
}
