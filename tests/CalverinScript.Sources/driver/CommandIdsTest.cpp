#include <gtest/gtest.h>

#include "CommandIds.h"
#include "ScriptScan.h"

namespace {

MScriptCommand Command(const char* signature, std::int32_t id = MScriptCommand::kNoId) {
    const QString text = QString::fromLatin1(signature);
    MScriptCommand command = CommandFromFunction(text.section(QLatin1Char('('), 0, 0), text);
    command.id = id;
    return command;
}

/// "name:id" of each, "<previous" behind where there is one.
std::string Ids(const ScriptCommands& commands) {
    std::string text;
    for (const MScriptCommand& command : commands) {
        text += (text.empty() ? "" : " ") + command.name.toStdString() + ":" + std::to_string(command.id);
        if (command.previousId != MScriptCommand::kNoId)
            text += "<" + std::to_string(command.previousId);
    }
    return text;
}

std::string Assigned(const ScriptCommands& known, ScriptCommands fresh, bool keepOld) {
    AssignCommandIds(known, fresh, keepOld);
    return Ids(fresh);
}

TEST(CommandIds, BeginAtFourAndFillTheGapsFromBelow) {
    EXPECT_EQ(Assigned({}, {Command("a()"), Command("b()")}, false), "a:4 b:5");
    EXPECT_EQ(Assigned({Command("x()", 4), Command("y()", 6)}, {Command("a()"), Command("b()"), Command("c()")}, false),
              "a:5 b:7 c:8");
}

TEST(CommandIds, StayForTheSameNameAndParameters) {
    const ScriptCommands known = {Command("a(p)", 9), Command("b()", 4)};
    EXPECT_EQ(Assigned(known, {Command("b()"), Command("a(p)")}, true), "b:4 a:9");
    EXPECT_EQ(Assigned(known, {Command("b()"), Command("a(p)")}, false), "b:4 a:9");
}

TEST(CommandIds, OfAFunctionThatGainsAParameterAreNewAndTheOldOneIsRecordedUntilTheNextCommit) {
    ScriptCommands known = {Command("a(p)", 4)};
    ScriptCommands fresh = {Command("a(p,q)")};
    AssignCommandIds(known, fresh, true);
    EXPECT_EQ(Ids(fresh), "a:5<4");
    EXPECT_EQ(Ids(CommitCommands(fresh, known)), "a:5");
    EXPECT_EQ(Ids(known), "a:4 a:5");
    EXPECT_EQ(Assigned(known, {Command("a(p,q)")}, true), "a:5");
    EXPECT_EQ(Assigned(known, {Command("a(p)")}, true), "a:4");
}

TEST(CommandIds, StayForOtherParametersWithoutKeepOld) {
    EXPECT_EQ(Assigned({Command("a(p)", 4)}, {Command("a(p,q)")}, false), "a:4");
}

TEST(CommandIds, ChangeWithNameDirectionOrTypeOfAParameterAndNotWithItsLimits) {
    MScriptCommand changed = Command("a(p)");
    changed.params[1].properties.append({QStringLiteral("MinValue"), QStringLiteral("1")});
    EXPECT_EQ(Assigned({Command("a(p)", 4)}, {changed}, true), "a:4");
    changed.params[1].type = QStringLiteral("IntegerData");
    EXPECT_EQ(Assigned({Command("a(p)", 4)}, {changed}, true), "a:5<4");
    EXPECT_EQ(Assigned({Command("a(p)", 4)}, {Command("a(q)")}, true), "a:5<4");
}

TEST(CommandIds, AreNeverGivenTwiceWhateverIsKnown) {
    EXPECT_EQ(
        Assigned({Command("a()", 4), Command("b()", 4), Command("c()", -7), Command("d()", 3), Command("e()", 10000)},
                 {Command("a()"), Command("b()"), Command("c()"), Command("d()"), Command("e()")}, false),
        "a:4 b:5 c:6 d:7 e:8");
}

TEST(CommandIds, LeaveOutTheDevicesOwnNumber) {
    ScriptCommands known;
    for (std::int32_t id = 4; id < 10000; ++id)
        known.push_back(Command("x()", id));
    EXPECT_EQ(Assigned(known, {Command("a()")}, false), "a:10001");
    EXPECT_FALSE(IsUserCommandId(10000));
    EXPECT_FALSE(IsUserCommandId(3));
    EXPECT_TRUE(IsUserCommandId(4));
}

TEST(CommandIds, AreTheSameForTwoDevicesWithTheSameFunction) {
    ScriptCommands module;
    ScriptCommands first = {Command("a(p)"), Command("b()")};
    AssignCommandIds(module, first, false);
    CommitCommands(first, module);
    ScriptCommands second = {Command("c()"), Command("b()"), Command("a(p)")};
    AssignCommandIds(module, second, false);
    EXPECT_EQ(Ids(second), "c:6 b:5 a:4");
}

TEST(CommittedCommands, KeepTheFirstOfEachNameAndReplaceByNumberInTheModule) {
    ScriptCommands module = {Command("old()", 5), Command("x()", 9)};
    ScriptCommands fresh = {Command("a()", 4), Command("a(p)", 7), Command("b()", 5)};
    EXPECT_EQ(Ids(CommitCommands(fresh, module)), "a:4 b:5");
    EXPECT_EQ(Ids(fresh), "a:4 b:5");
    EXPECT_EQ(Ids(module), "b:5 x:9 a:4");
}

TEST(LegacyCommands, GoToTheModuleUnlessTheyAreThereOrTheirNumberIsTaken) {
    ScriptCommands module = {Command("m()", 4)};
    MergeLegacyCommands({Command("d()", 5)},
                        {Command("m()", 4), Command("d()", 5), Command("q()", 4), Command("l()", 6)}, module);
    EXPECT_EQ(Ids(module), "m:4 l:6");
}

} // namespace
