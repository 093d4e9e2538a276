#include <memory>

#include <gtest/gtest.h>

#include "CommandNumbers.h"
#include "ModuleShared.h"
#include "ScriptScan.h"
#include "ScriptSet.h"
#include "UserCommands.h"

namespace {

MScriptCommand Command(const char* name, const char* source = "function() {}") {
    return CommandFromFunction(QLatin1String(name), QLatin1String(source));
}

/// The commands of two devices of one module.
class CommandsOfAModule : public testing::Test {
protected:
    ~CommandsOfAModule() override { ModuleShared::ReleaseLast(); }

    /// Makes functions that an analysis has found the commands of a device.
    static void Commit(UserCommands& commands, const ScriptCommands& functions) {
        MLockedList<MScriptCommand> found;
        ReplaceAll(found, functions);
        UserCommands::AssignIds(found, false);
        commands.Commit(found);
    }
    static std::int32_t IdOf(const UserCommands& commands, const char* name) {
        for (const MScriptCommand& command : commands.Get())
            if (command.name == QLatin1String(name))
                return command.id;
        return -1;
    }

    UserCommands desk;
    UserCommands lamp;
};

TEST_F(CommandsOfAModule, OfOneNameHaveOneNumberInAllDevices) {
    Commit(desk, {Command("On"), Command("Off")});
    Commit(lamp, {Command("Off"), Command("Blink")});
    EXPECT_EQ(IdOf(desk, "On"), kFirstUserCommand);
    EXPECT_EQ(IdOf(lamp, "Off"), IdOf(desk, "Off"));
    EXPECT_NE(IdOf(lamp, "Blink"), IdOf(desk, "On"));
    EXPECT_EQ(UserCommands::OfModule().size(), 3u);
}

TEST_F(CommandsOfAModule, AreFoundByTheirNumber) {
    Commit(desk, {Command("On")});
    MScriptCommand found;
    EXPECT_TRUE(desk.Find(kFirstUserCommand, found));
    EXPECT_EQ(found.name, QStringLiteral("On"));
    EXPECT_FALSE(desk.Find(kFirstUserCommand + 1, found));
    EXPECT_FALSE(lamp.Find(kFirstUserCommand, found)) << "the other device has none of that number";
}

TEST_F(CommandsOfAModule, DifferByNameNumberAndParameters) {
    Commit(desk, {Command("On")});
    ScriptCommands functions = desk.Get();
    EXPECT_FALSE(desk.DifferFrom(functions));
    functions[0].params = Command("On", "function(level) {}").params;
    EXPECT_TRUE(desk.DifferFrom(functions));
    EXPECT_TRUE(desk.DifferFrom({}));
}

TEST_F(CommandsOfAModule, ThatEveryDeviceHasAreAlwaysValid) {
    EXPECT_EQ(desk.Validate(kExecuteFunctionWithParams, nullptr), 2);
    EXPECT_EQ(desk.Validate(kFirstUserCommand, nullptr), 0);
    Commit(desk, {Command("On")});
    EXPECT_EQ(desk.Validate(kFirstUserCommand, nullptr), 1) << "there are no parameters to compare";
}

TEST_F(CommandsOfAModule, WhatIsNoStoredCommandIsNotUpdated) {
    for (const char* text : {static_cast<const char*>(nullptr), "", "no xml", "<a/>"})
        EXPECT_EQ(desk.Update(text, "Desk"), nullptr);
}

TEST_F(CommandsOfAModule, OfOlderSetupsAreMergedOnce) {
    ASSERT_TRUE(UserCommands::HasLegacy()) << "a module begins with room for them";
    MScriptCommand old = Command("Old");
    old.id = kFirstUserCommand;
    ModuleShared::Acquire().legacyModuleCommands->Add(old);
    UserCommands::MergeLegacy({});
    EXPECT_FALSE(UserCommands::HasLegacy());
    ASSERT_EQ(UserCommands::OfModule().size(), 1u);
    Commit(desk, {Command("New")});
    EXPECT_NE(IdOf(desk, "New"), kFirstUserCommand) << "the number of the old one is not given away";
}

} // namespace
