#include <QScriptEngine>

#include "MScriptMngRemote.h"
#include "ResourceFixture.h"
#include "SetupDesk.h"

namespace {

class TakenBySettings : public ResourceFixture {};

TEST_F(TakenBySettings, EachKindAsksTheProviderInItsOwnWay) {
    const struct {
        const char* widget;
        const char* asked;
        ScriptObjectType type;
    } rows[] = {
        {"Serial", "1,6,3", ScriptObjectType::Serial},         {"DMXIn", "2,6,1", ScriptObjectType::DmxIn},
        {"DMXOut", "2,6,2", ScriptObjectType::DmxOut},         {"DigitalIn", "5,6,3", ScriptObjectType::DigitalIn},
        {"DigitalOut", "5,6,3", ScriptObjectType::DigitalOut}, {"AnalogIn", "5,6,3", ScriptObjectType::AnalogIn},
        {"AnalogOut", "5,6,3", ScriptObjectType::AnalogOut}};
    provider.resources[{1, 6, 3}] = serial.Root();
    provider.resources[{2, 6, 1}] = in.Root();
    provider.resources[{2, 6, 2}] = out.Root();
    provider.resources[{5, 6, 3}] = io.Root();
    for (const auto& row : rows) {
        GivenSettings({{row.widget, R"({ "ResourceID":6, "ChannelIndex":1 })"}});
        EXPECT_EQ(provider.calls.Take(), row.asked) << row.widget;
        OnScriptThread([&] {
            QScriptEngine* engine = device->GetEngine();
            QScriptValue signature = engine->newObject();
            signature.setProperty(QStringLiteral("Type"), QLatin1String(row.widget));
            signature.setProperty(QStringLiteral("ResourceID"), 6);
            signature.setProperty(QStringLiteral("ChannelIndex"), 1);
            auto* object = dynamic_cast<MScriptCommonEvent*>(device->GetRemote()->GetResource(signature).toQObject());
            ASSERT_NE(object, nullptr) << row.widget;
            EXPECT_EQ(object->GetObjectType(), row.type) << row.widget;
        });
    }
}

TEST_F(TakenBySettings, TheTypeIsTheSignaturesAndTheFieldsWhenItHasNone) {
    GivenSettings({{"Serial", R"({ "Type":"DMXOut", "ResourceID":2 })"}, {"DMXIn", R"({ "ResourceID":1 })"}});
    EXPECT_EQ(provider.calls.Take(), "2,2,2 2,1,1");
    EXPECT_EQ(Run("typeof QCalverin.GetResource({ Type: 'DMXOut', ResourceID: 2 })"), "object");
    EXPECT_EQ(Run("typeof QCalverin.GetResource({ Type: 'DMXIn', ResourceID: 1 })"), "object");
    GivenSettings(
        {{"Serial", R"({ "Type":"Parallel", "ResourceID":3 })"}, {"Serial", R"({ "Type":"14", "ResourceID":3 })"}});
    EXPECT_EQ(provider.calls.Take(), "") << "types that there are not";
}

TEST_F(TakenBySettings, SettingsOfOtherFieldsTakeNothing) {
    GivenSettings({{"LineEdit", R"({ "Type":"Serial", "ResourceID":3 })"}, {"Divider", R"({ "ResourceID":3 })"}});
    EXPECT_EQ(provider.calls.Take(), "");
}

TEST_F(TakenBySettings, ASettingThatNamesNoResourceYetAsksForNone) {
    GivenSettings({{"Serial", ""}, {"Serial", "{}"}, {"DMXIn", "not JSON"}, {"DigitalIn", R"({ "ResourceID":"4" })"}});
    EXPECT_EQ(provider.calls.Take(), "");
    EXPECT_EQ(Run("typeof QCalverin.GetResource({ Type: 'Serial' })"), "undefined");
}

TEST_F(TakenBySettings, OneResourceInTwoSettingsIsOneObjectWithOneHandler) {
    const char* port = R"({ "Type":"Serial", "ResourceID":3 })";
    GivenSettings({{"Serial", port}, {"Serial", R"({ "Type":"Serial", "ResourceID":3, "ChannelIndex":7 })"}});
    EXPECT_EQ(serial.calls.Take(), "AddHandler:3");
    EXPECT_EQ(Run("var s = { Type: 'Serial', ResourceID: 3 };"
                  "QCalverin.GetResource(s) === QCalverin.GetResource('{ \"Type\":\"Serial\", \"ResourceID\":3 }')"),
              "true");
}

TEST_F(TakenBySettings, TheSignatureMayBeATextOrAnObject) {
    GivenAllResources();
    EXPECT_EQ(
        Run(R"(QCalverin.GetResource('{ "Type":"Serial", "ResourceID":3, "ChannelIndex":0 }') === get('Serial', 3))"),
        "true");
    EXPECT_EQ(Run(R"(QCalverin.GetResource('{ "Type":"DigitalIn", "ResourceID":4, "ChannelIndex":1 }') ===
                     get('DigitalIn', 4, 1))"),
              "true");
    EXPECT_EQ(Run("get('DigitalIn', 4, 0) === get('DigitalIn', 4, 1)"), "false");
    EXPECT_EQ(Run("get('DigitalIn', 4, 0) === get('DigitalOut', 4, 0)"), "false");
}

TEST_F(TakenBySettings, WhatNoSettingNamesIsNoValue) {
    GivenAllResources();
    for (const char* signature :
         {R"('{ "Type":"Serial", "ResourceID":99 }')", "{ Type: 'Serial' }", "{ Type: 'Serial', ResourceID: '3' }",
          "{ Type: 'DMXIn', ResourceID: 2 }", "{ Type: 'serial', ResourceID: 3 }", "{ Type: 'Video', ResourceID: 3 }",
          "{ Type: 14, ResourceID: 3 }", "{ Type: '14', ResourceID: 3 }", "{ ResourceID: 3 }",
          "{ Type: 'DigitalIn', ResourceID: 4 }", "{ Type: 'DigitalIn', ResourceID: 4, ChannelIndex: 2 }", "'no JSON'",
          "''", "null", "undefined", "5", "true", "[]"})
        EXPECT_EQ(Run(std::string("typeof QCalverin.GetResource(") + signature + ")"), "undefined") << signature;
    EXPECT_EQ(Run("QCalverin.GetResource({ Type: 'Serial', ResourceID: 99 }).Open()").substr(0, 6), "threw ");
}

TEST_F(TakenBySettings, NothingIsTakenWithoutADeviceOrAnEngine) {
    GivenAllResources();
    QScriptEngine engine;
    MScriptMngRemote lonely(nullptr, nullptr, nullptr, nullptr, &engine);
    const QScriptValue signature(QStringLiteral(R"({ "Type":"Serial", "ResourceID":3 })"));
    EXPECT_FALSE(lonely.GetResource(signature).isValid());
    MScriptMngRemote engineless(device, nullptr, nullptr, nullptr, nullptr);
    EXPECT_FALSE(engineless.GetResource(signature).isValid());
}

TEST_F(TakenBySettings, ResourcesThatTheHostDoesNotHaveAreNotThere) {
    provider.resources.clear();
    GivenSettings({{"Serial", R"({ "ResourceID":3 })"}, {"DMXIn", R"({ "ResourceID":1 })"}});
    EXPECT_EQ(Run("typeof QCalverin.GetResource({ Type: 'Serial', ResourceID: 3 })"), "undefined");
}

TEST_F(TakenBySettings, AResourceOfAnotherKindThanItWasAskedForIsNotThere) {
    provider.resources[{1, 3, 3}] = in.Root();
    provider.resources[{5, 4, 3}] = serial.Root();
    provider.resources[{2, 1, 1}] = io.Root();
    GivenAllResources();
    EXPECT_EQ(Run("[typeof get('Serial', 3), typeof get('DigitalIn', 4, 0), typeof get('DMXIn', 1)].join()"),
              "undefined,undefined,undefined");
    EXPECT_EQ(Run("typeof get('DMXOut', 2)"), "object");
}

TEST_F(TakenBySettings, AChannelThatTheResourceDoesNotHaveIsNotThere) {
    GivenSettings({{"AnalogIn", R"({ "ResourceID":4, "ChannelIndex":9 })"}, {"AnalogIn", R"({ "ResourceID":4 })"}});
    EXPECT_EQ(Run("typeof QCalverin.GetResource({ Type: 'AnalogIn', ResourceID: 4, ChannelIndex: 9 })"), "undefined");
}

TEST_F(TakenBySettings, AHostWithoutAProviderHasNone) {
    EndDevice();
    host.resourceProvider = nullptr;
    MakeDevice();
    GivenSettings({{"Serial", R"({ "ResourceID":3 })"}});
    EXPECT_EQ(Run("typeof QCalverin.GetResource({ Type: 'Serial', ResourceID: 3 })"), "undefined");
}

TEST_F(TakenBySettings, ReadingASetupAnewLetsGoOfEverythingFirst) {
    GivenAllResources();
    serial.calls.Take();
    GivenAllResources();
    EXPECT_EQ(serial.calls.Take(), "RemoveHandler Close AddHandler:3") << "also when the settings are the same";
}

TEST_F(TakenBySettings, AnUnreadableSetupLeavesThemAsTheyAre) {
    GivenAllResources();
    serial.calls.Take();
    EXPECT_NE(device->SetSetup("<DeviceData/>"), KXP_OK);
    EXPECT_EQ(serial.calls.Take(), "");
}

TEST_F(TakenBySettings, ACancelledDialogLeavesThemAsTheyAre) {
    GivenAllResources();
    serial.calls.Take();
    device->GetSetupDesk().Begin();
    EXPECT_EQ(device->GetSetupDesk().Cancel(), KXPCode{KXP_CANCELLED});
    EXPECT_EQ(serial.calls.Take(), "") << "a running script keeps its port";
}

TEST_F(TakenBySettings, WhatADialogHasChosenIsTakenAtOnceAndGivenBackWhenItIsCancelled) {
    GivenSettings({{"Serial", R"({ "ResourceID":3 })"}});
    device->GetSetupDesk().Begin();
    device->GetSetupDesk().ResolveResources(SettingsOf({{"DMXOut", R"({ "ResourceID":2 })"}}));
    EXPECT_EQ(out.handlers.Count(), 1u);
    EXPECT_EQ(serial.handlers.Count(), 0u);
    EXPECT_EQ(device->GetSetupDesk().Cancel(), KXPCode{KXP_CANCELLED});
    EXPECT_EQ(out.handlers.Count(), 0u);
    EXPECT_EQ(serial.handlers.Count(), 1u);
}

TEST_F(TakenBySettings, AnAnalysisOfAScriptTakesNothing) {
    const std::string script = "var r = QCalverin.GetResource({ Type: 'Serial', ResourceID: 3 });"
                               "({ Found: function () { return typeof r; } })";
    const std::string setup = SetupText(SettingsOf(AllSettings()), script);
    ASSERT_EQ(device->SetSetup(setup.c_str()), KXP_OK);
    serial.calls.Take();
    QScriptEngine engine;
    device->EvaluateScript(QString::fromStdString(script), &engine);
    EXPECT_EQ(serial.calls.Take(), "");
    device->Start();
    EXPECT_EQ(Call("Found"), "object") << "the same script finds it when it runs";
}

TEST_F(TakenBySettings, TheHostsResourcesAreNeverReleased) {
    GivenAllResources();
    Run("get('Serial', 3).Open(); get('DMXOut', 2).Open(); get('DigitalIn', 4, 0).Open()");
    EndDevice();
    EXPECT_EQ(serial.calls.CountOf("Release") + out.calls.CountOf("Release") + io.calls.CountOf("Release"), 0u);
}

} // namespace
