#include <gtest/gtest.h>

#include "SetupMerge.h"

namespace {

MScriptVariable Variable(const char* name, const char* type, const char* value) {
    MScriptVariable variable;
    variable.name = QLatin1String(name);
    variable.type = QLatin1String(type);
    variable.value = QLatin1String(value);
    return variable;
}

MScriptSetting Setting(const char* name, int widget, const char* value) {
    MScriptSetting setting;
    setting.name = QLatin1String(name);
    setting.widget = widget;
    setting.value = QLatin1String(value);
    return setting;
}

IData* const kHostValue = reinterpret_cast<IData*>(0x10);

TEST(SetupMerge, AVariableKeepsTheUsersValueAndTheHostsOwn) {
    ScriptVariables declared{Variable("Level", "IntegerData", "1")};
    ScriptVariables loaded{Variable("Level", "IntegerData", "5")};
    loaded[0].data = kHostValue;
    ScriptVariables edited{Variable("Level", "IntegerData", "7")};
    edited[0].useDefaultScriptValue = false;
    const ScriptVariables merged = MergeVariables(declared, loaded, edited);
    ASSERT_EQ(merged.size(), 1u);
    EXPECT_EQ(merged[0].value, QStringLiteral("7"));
    EXPECT_FALSE(merged[0].useDefaultScriptValue);
    EXPECT_EQ(merged[0].data, kHostValue);
    EXPECT_EQ(declared[0].value, QStringLiteral("7")) << "the device's record takes the value too";
    EXPECT_EQ(declared[0].data, nullptr);
}

TEST(SetupMerge, AVariableThatChangesItsTypeLosesTheUsersValue) {
    ScriptVariables declared{Variable("Level", "StringData", "one")};
    ScriptVariables loaded{Variable("Level", "IntegerData", "5")};
    loaded[0].data = kHostValue;
    const ScriptVariables merged = MergeVariables(declared, loaded, {Variable("Level", "IntegerData", "7")});
    EXPECT_EQ(merged[0].value, QStringLiteral("one"));
    EXPECT_EQ(merged[0].data, nullptr);
}

TEST(SetupMerge, TheSearchEndsAtTheFirstOfANameWhateverItsType) {
    ScriptVariables declared{Variable("Level", "IntegerData", "1")};
    const ScriptVariables merged =
        MergeVariables(declared, {}, {Variable("Level", "StringData", "x"), Variable("Level", "IntegerData", "7")});
    EXPECT_EQ(merged[0].value, QStringLiteral("1"));
}

TEST(SetupMerge, AVariableThatIsNoLongerDeclaredIsGone) {
    ScriptVariables declared;
    EXPECT_TRUE(MergeVariables(declared, {}, {Variable("Level", "IntegerData", "7")}).empty());
}

TEST(SetupMerge, ALabelSaysWhatTheScriptSaysAndAFieldWhatTheUserEntered) {
    ScriptSettings declared{Setting("Head", 12, "new"), Setting("Address", 0, "script's"), Setting("More", 0, "x")};
    MergeSettings(declared, {Setting("Head", 12, "old"), Setting("Address", 0, "user's"), Setting("Gone", 0, "y")});
    ASSERT_EQ(declared.size(), 3u);
    EXPECT_EQ(declared[0].value, QStringLiteral("new"));
    EXPECT_EQ(declared[1].value, QStringLiteral("user's"));
    EXPECT_EQ(declared[2].value, QStringLiteral("x"));
}

TEST(SetupMerge, ALabelThatWasAFieldTakesTheFieldsValueAsMeant) {
    ScriptSettings declared{Setting("Head", 12, "new")};
    MergeSettings(declared, {Setting("Head", 0, "typed")});
    EXPECT_EQ(declared[0].value, QStringLiteral("typed"));
}

} // namespace
