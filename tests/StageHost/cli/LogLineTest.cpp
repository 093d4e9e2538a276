#include "LogLine.h"

#include <gtest/gtest.h>

using namespace stagehost;

namespace {

LogLine Read(const char* text) {
    return ReadLogLine(QString::fromLatin1("2026-11-22 19:30:00.450 +0100 [2] kxpModule: ") + QString::fromLatin1(text),
                       {QStringLiteral("desk"), QStringLiteral("a] b")});
}

} // namespace

TEST(LogLine, HasTimeLevelDeviceAndText) {
    const LogLine line = Read("kxpCalverinScript [desk] the door is open");
    EXPECT_EQ(line.kind, LogLine::Kind::Trace);
    EXPECT_EQ(line.time.toStdString(), "19:30:00.450");
    EXPECT_EQ(line.level, 2);
    EXPECT_EQ(line.device.toStdString(), "desk");
    EXPECT_EQ(line.text.toStdString(), "the door is open");
    EXPECT_EQ(Read("kxpCalverinScript [a] b] x").device.toStdString(), "a] b") << "as a device may be called";
}

TEST(LogLine, IsTheTraceOfAScriptOrAboutACommand) {
    EXPECT_EQ(Read("kxpCalverinScript [desk] ExecuteScriptFunctionWithParams [post]: f, ,").kind,
              LogLine::Kind::Commands);
    EXPECT_EQ(Read("kxpCalverinScript [desk] ExecuteCallBack [executed]").kind, LogLine::Kind::Commands);
    EXPECT_EQ(Read("kxpCalverinScript [desk] ExecuteCallBack is what I traced").kind, LogLine::Kind::Trace);
}

TEST(LogLine, IsAFailureOrMoreAboutIt) {
    EXPECT_EQ(Read("CalverinScript_ [desk] Uncaught Exception - line:1, message: x").kind, LogLine::Kind::Failure);
    EXPECT_EQ(Read("CalverinScript_ [desk]     at f (a.js:1)").kind, LogLine::Kind::Detail);
}

TEST(LogLine, BelongsToNobodyOtherwise) {
    EXPECT_EQ(Read("kxpCalverinScript [stranger] x").kind, LogLine::Kind::Other);
    EXPECT_EQ(ReadLogLine(QString(), {QStringLiteral("desk")}).kind, LogLine::Kind::Other);
    EXPECT_EQ(ReadLogLine(QStringLiteral("[]: kxpCalverinScript [desk] "), {QStringLiteral("desk")}).text.toStdString(),
              "");
}

TEST(LogLine, HasLevelsFromTheLeastToTheMost) {
    EXPECT_LT(WeightOfLevel(7), WeightOfLevel(0)) << "debug says less than normal";
    EXPECT_LT(WeightOfLevel(0), WeightOfLevel(4));
    EXPECT_LT(WeightOfLevel(4), WeightOfLevel(6));
}
