#include <future>

#include <gtest/gtest.h>

#include "StoredSetup.h"

namespace {

TEST(SetupOfADevice, OfANewOneHasItsDefaults) {
    const StoredSetup setup;
    const SetupChoices choices = setup.GetChoices();
    EXPECT_TRUE(choices.registerAllUserGroups);
    EXPECT_FALSE(choices.removeDefaults);
    EXPECT_FALSE(choices.programmingMode);
    EXPECT_TRUE(choices.autoCompletion);
    EXPECT_FALSE(setup.IsLoaded());
    EXPECT_FALSE(setup.IsRemovalApplied());
    EXPECT_EQ(setup.Describe().userModeVisible, true);
}

TEST(SetupOfADevice, IsDescribedAsItWasTaken) {
    StoredSetup setup;
    DeviceSetup taken;
    taken.userModeVisible = false;
    MScriptSetting port;
    port.name = QStringLiteral("port");
    taken.settings.push_back(port);
    MScriptVariable level;
    level.name = QStringLiteral("Level");
    taken.monitors.push_back(level);
    setup.TakePanelAndLists(taken);
    setup.SetChoices({false, true, true, false});
    setup.SetScript(QStringLiteral("/no/such/file.js"), QStringLiteral("({})"));
    const DeviceSetup described = setup.Describe();
    EXPECT_EQ(described.userModeVisible, false);
    EXPECT_EQ(described.runModeVisible, true) << "what was not said stays";
    ASSERT_EQ(described.settings.size(), 1u);
    EXPECT_EQ(described.settings[0].name, QStringLiteral("port"));
    ASSERT_EQ(described.monitors.size(), 1u);
    ASSERT_TRUE(described.script.has_value());
    EXPECT_EQ(described.script->text, QStringLiteral("({})"));
    EXPECT_TRUE(described.script->storedFileName.isEmpty()) << "the file is not there";
    EXPECT_FALSE(described.script->registerAllUserGroups);
    EXPECT_TRUE(described.script->removeDefaults);
    EXPECT_TRUE(described.script->programmingMode);
    EXPECT_FALSE(described.script->autoCompletion);
}

TEST(SetupOfADevice, LetsTheScriptsWordOutrankTheChoiceAndTheDialogStandInForIt) {
    StoredSetup setup;
    EXPECT_TRUE(setup.DecideRemoval(true));
    EXPECT_FALSE(setup.DecideRemoval(false));
    setup.SetScriptsRemoval(false);
    EXPECT_FALSE(setup.DecideRemoval(true));
    setup.SetScriptsRemoval(std::nullopt);
    EXPECT_FALSE(setup.GetRemovalForAnalysis());
    setup.SetPendingRemoval(true);
    EXPECT_TRUE(setup.GetRemovalForAnalysis());
    EXPECT_FALSE(setup.GetChoices().removeDefaults) << "the dialog may still be left without";
    setup.SetPendingRemoval(std::nullopt);
    EXPECT_FALSE(setup.GetRemovalForAnalysis());
}

TEST(SetupOfADevice, IsReadWholeByOtherThreadsWhileItChanges) {
    StoredSetup setup;
    setup.SetChoices({true, true, true, true});
    std::atomic<bool> over{false};
    auto reading = std::async(std::launch::async, [&] {
        bool whole = true;
        while (!over) {
            const SetupChoices choices = setup.GetChoices();
            whole = whole && choices.registerAllUserGroups == choices.autoCompletion &&
                    choices.removeDefaults == choices.programmingMode;
            setup.GetScriptText();
        }
        return whole;
    });
    for (int i = 0; i < 20000; ++i) {
        const bool flag = i % 2 == 0;
        setup.SetChoices({flag, flag, flag, flag});
        setup.SetScript(QString::number(i), QString::number(i));
    }
    over = true;
    EXPECT_TRUE(reading.get());
}

} // namespace
