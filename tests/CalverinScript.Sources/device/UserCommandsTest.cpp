#include "DeviceTexts.h"
#include "DriverFixture.h"

#include "DriverTables.h"
#include "ModuleShared.h"
#include "ScriptAnalysis.h"
#include "SetupDesk.h"

namespace {

class UserCommands : public DriverFixture {
protected:
    /// A device that has accepted a script and runs it.
    DriverDevice& GivenDriver(const std::string& script) {
        DriverDevice& driver = MakeDevice();
        EXPECT_EQ(Accept(driver, script), KXP_OK);
        driver.device->Start();
        EXPECT_EQ(driver.variables.error.Text(), "");
        return driver;
    }
    /// A stored command of a function with one parameter "level" and its value.
    static std::string Stored(const std::string& function, const std::string& owner = "Desk") {
        return "<Line Name='" + owner +
               "'><Command ID='99' Name='x'><ObjectParams><ObjectParam><StringData Name='level' "
               "String='50'/></ObjectParam><Properties><Property Name='KXPProp::ScriptUserCommandName' Value='" +
               function + "'/></Properties></ObjectParams></Command></Line>";
    }
    static std::string Update(DriverDevice& driver, const std::string& xml) {
        char* out = nullptr;
        const KXPCode code = driver.device->UpdateCommand(xml.c_str(), &out);
        const std::string text = out != nullptr ? out : "(code " + std::to_string(code) + ")";
        EXPECT_EQ(out != nullptr, code == KXP_OK);
        if (out != nullptr)
            driver.device->ReleaseString(&out);
        return text;
    }
};

TEST_F(UserCommands, RunTheFunctionWithTypedTextsAndGiveItsResult) {
    DriverDevice& driver = GivenDriver("({ Info: { Commands: { f: { Params: { a: { Type: 'Integer', MinValue: 0, "
                                       "MaxValue: 100 }, t: { Type: 'Time' } } } } },"
                                       "   f: function(a, t, s) { return typeof a + a + t + s + arguments.length } })");
    TypedValue a("a", KXP_INTEGER_DATA, "500");
    TypedValue t("t", KXP_TIME_DATA, "00:00:01/12");
    t.timeCodeType = 1;
    TypedValue s("s", KXP_STRING_DATA, "x");
    EXPECT_EQ(Send(driver, IdOf(driver, "f"), {&a, &t, &s}), "string10000:00:01/48x3");
}

TEST_F(UserCommands, ReadTheVariableThatIsBoundToAParameterAndItsOwnTextWhenThatDoesNotConvert) {
    DriverDevice& driver = GivenDriver(
        "({ Info: { Commands: { f: { Params: { a: { Type: 'Integer' } } } } }, f: function(a) { return a } })");
    TypedValue a("a", KXP_INTEGER_DATA, "1");
    TypedValue bound("v", KXP_INTEGER_DATA, "2");
    a.SetBound(&bound);
    EXPECT_EQ(Send(driver, IdOf(driver, "f"), {&a}), "2");
    TypedValue word("w", KXP_STRING_DATA, "loud");
    a.SetBound(&word);
    EXPECT_EQ(Send(driver, IdOf(driver, "f"), {&a}), "loud");
}

TEST_F(UserCommands, PassEightArgumentsAtMostAndThoseThatAreThere) {
    DriverDevice& driver = GivenDriver("({ f: function(a, b, c, d, e, f, g, h, i) { return arguments.length },"
                                       "   g: function(a, b) { return arguments.length } })");
    std::vector<std::unique_ptr<TypedValue>> owned;
    std::vector<IObjectParam*> nine;
    for (int i = 0; i < 9; ++i) {
        owned.push_back(std::make_unique<TypedValue>("p", KXP_STRING_DATA, "x"));
        nine.push_back(owned.back().get());
    }
    EXPECT_EQ(Send(driver, IdOf(driver, "f"), nine), "8");
    EXPECT_EQ(Send(driver, IdOf(driver, "g"), {nine[0]}), "1");
    EXPECT_EQ(Send(driver, IdOf(driver, "g"), nine), "2") << "what the function does not name is not passed";
}

TEST_F(UserCommands, GiveNoResultWithoutTheNewerLink) {
    host.offerRemoteManager2 = false;
    DriverDevice& driver = GivenDriver("({ f: function() { return 'x' } })");
    EXPECT_EQ(Send(driver, IdOf(driver, "f"), {}), "");
}

TEST_F(UserCommands, ThatAreUnknownAreReportedAndThoseWhoseFunctionIsGoneGive3) {
    DriverDevice& driver = GivenDriver("({ f: function() { return 'x' } })");
    EXPECT_EQ(Send(driver, 77, {}), "(code 1)");
    EXPECT_EQ(driver.variables.error.Text(), DeviceText::kUnknownCommand);
    driver.device->EvaluateScriptCommand(QStringLiteral("({ g: function() {} })"), false);
    EXPECT_EQ(Send(driver, IdOf(driver, "f"), {}), "(code 3)");
}

TEST_F(UserCommands, CannotBeMadeOfAFunctionThatBeginsWithAnUnderscore) {
    DriverDevice& driver =
        GivenDriver("({ _helper: function() { return 1 }, f: function() { return this._helper() } })");
    EXPECT_EQ(Commands(driver), "f:4");
    plain::Params params({"_helper"}, 10);
    EXPECT_EQ(driver.device->ExecuteCommand(3, &params, nullptr), KXP_SCRIPT_FAILED);
    EXPECT_EQ(Send(driver, 4, {}), "1");
}

TEST_F(UserCommands, WriteAndReadTheVariablesThatTheyPublish) {
    DriverDevice& driver = GivenDriver("({ Device: { Level: 5 }, Set: function(l) { this.Device.Level = Number(l) },"
                                       "   Get: function() { return this.Device.Level + 1 } })");
    EXPECT_EQ(driver.variables.At("Level").Text(), "5");
    TypedValue l("l", KXP_STRING_DATA, "40");
    Send(driver, IdOf(driver, "Set"), {&l});
    EXPECT_EQ(driver.variables.At("Level").Text(), "40");
    driver.variables.At("Level").SetIntValue(60, 0, 0);
    EXPECT_EQ(Send(driver, IdOf(driver, "Get"), {}), "61");
}

TEST_F(UserCommands, ChangeTheItemsOfTheEnumerationsThatTheyPublish) {
    DriverDevice& driver = GivenDriver(
        "({ Info: { Variables: { Mood: { Type: 'Enum', Items: ['calm'] } } }, Device: { Mood: 'calm' },"
        "   Add: function(i) { return this.Device.EnumAdd('Mood', i) + this.Info.Variables.Mood.Items.join() },"
        "   Wrong: function() { return [this.Device.EnumAdd('Mood'), this.Device.EnumClear('No')].join() } })");
    TypedValue item("i", KXP_STRING_DATA, "storm");
    EXPECT_EQ(Send(driver, IdOf(driver, "Add"), {&item}), "0calm,storm");
    EXPECT_EQ(driver.variables.At("Mood").items, std::vector<std::string>{"storm"});
    EXPECT_EQ(Send(driver, IdOf(driver, "Wrong"), {}), "19,19");
}

TEST_F(UserCommands, FollowTheVariablesOfADefinitionThatComesWhileTheyRun) {
    DriverDevice& driver =
        GivenDriver("({ Device: { Level: 5 }, Get: function() { return String(this.Device.Level) } })");
    std::string text = Setup(driver);
    text.replace(text.find("Type=\"IntegerData\""), 18, "Type=\"StringData\"");
    ASSERT_EQ(driver.device->SetSetup(text.c_str()), KXP_OK);
    driver.variables.At("Level").SetValueFromString("now text", 0, 0);
    EXPECT_EQ(Send(driver, IdOf(driver, "Get"), {}), "now text");
}

TEST_F(UserCommands, ChangeNoEnumerationThatTheHostHasDroppedMeanwhile) {
    DriverDevice& driver =
        GivenDriver("({ Info: { Variables: { Mood: { Type: 'Enum', Items: ['calm'] } } }, Device: { Mood: 'calm' },"
                    "   Add: function() { return this.Device.EnumAdd('Mood', 'x') },"
                    "   Clear: function() { return this.Device.EnumClear('Mood') } })");
    const std::string withEnum = Setup(driver);
    std::string withText = withEnum;
    withText.replace(withText.find("Type=\"EnumData\""), 15, "Type=\"StringData\"");
    ASSERT_EQ(driver.device->SetSetup(withText.c_str()), KXP_OK);
    EXPECT_EQ(Send(driver, IdOf(driver, "Add"), {}), "19");
    EXPECT_EQ(Send(driver, IdOf(driver, "Clear"), {}), "19");
    ASSERT_EQ(driver.device->SetSetup(withEnum.c_str()), KXP_OK);
    EXPECT_EQ(Send(driver, IdOf(driver, "Add"), {}), "0");
    EXPECT_EQ(driver.variables.At("Mood").items, std::vector<std::string>{"x"});
}

TEST_F(UserCommands, HaveTheSameNumbersInTwoDevicesWithTheSameDriver) {
    DriverDevice& first = GivenDriver("({ f: function(a) { return 'one' }, g: function() {} })");
    DriverDevice& second = GivenDriver("({ x: function() {}, g: function() {}, f: function(a) { return 'two' } })");
    EXPECT_EQ(Commands(first), "f:4 g:5");
    EXPECT_EQ(Commands(second), "x:6 g:5 f:4");
    EXPECT_EQ(Send(first, 4, {}), "one");
    EXPECT_EQ(Send(second, 4, {}), "two");
}

TEST_F(UserCommands, ThatGainAParameterGetANewNumberAndTellTheOldOneOnce) {
    DriverDevice& driver = GivenDriver("({ f: function(a) {} })");
    EXPECT_EQ(Accept(driver, "({ f: function(a, b) {} })"), KXP_COMMANDS_CHANGED);
    EXPECT_NE(driver.variables.definition.find("ID=\"5\" PreviousID=\"4\""), std::string::npos);
    EXPECT_EQ(Commands(driver), "f:5");
    EXPECT_EQ(Setup(driver).find("PreviousID"), std::string::npos);
    EXPECT_EQ(Accept(driver, "({ f: function(a, b) {} })"), KXP_OK);
    EXPECT_EQ(driver.variables.definition.find("PreviousID"), std::string::npos);
}

TEST_F(UserCommands, OfTheFirstAcceptedSetupAreNoChange) {
    DriverDevice& driver = MakeDevice();
    EXPECT_EQ(Accept(driver, "({ f: function() {} })"), KXP_OK);
    EXPECT_EQ(Accept(driver, "({ f: function() {}, Info: { Options: { RemoveDefaultCommandsAndVariables: true } } })"),
              KXP_COMMANDS_CHANGED)
        << "the option has changed";
}

TEST_F(UserCommands, StayAsTheyWereWhenTheHostRefusesTheDefinitionOrTheDialogIsLeft) {
    DriverDevice& driver = GivenDriver("({ f: function() {}, Device: { Level: 1 } })");
    const std::string before = Setup(driver);
    driver.variables.refuses = true;
    EXPECT_EQ(Accept(driver, "({ g: function() {} })"), KXP_CANCELLED);
    driver.device->GetSetupDesk().Begin();
    driver.device->GetStoredSetup().SetPendingRemoval(true);
    EXPECT_EQ(driver.device->GetSetupDesk().Cancel(), KXP_CANCELLED);
    EXPECT_EQ(Setup(driver), before);
    EXPECT_EQ(Commands(driver), "f:4");
    ASSERT_EQ(driver.device->GetAnalysis().GetSet().functions.Snapshot().size(), 1u);
    EXPECT_EQ(driver.device->GetAnalysis().GetSet().functions.Snapshot()[0].name, QStringLiteral("f"));
}

TEST_F(UserCommands, AreCheckedByNameWithParametersAndByNumberWithout) {
    DriverDevice& driver = GivenDriver("({ f: function() {} })");
    TypedValue result("Result", KXP_STRING_DATA);
    result.SetProperty(kDirectionProperty, "mddOut", 0, 0);
    class Given : public plain::Params {
    public:
        IObjectParam* GetParam(std::uint32_t) override { return param; }
        std::uint32_t GetParamCount() override { return param != nullptr ? 1 : 0; }
        IObjectParam* param = nullptr;
    } params;
    EXPECT_EQ(driver.device->ValidateCommand(3, nullptr), 2);
    EXPECT_EQ(driver.device->ValidateCommand(3, &params), 2);
    EXPECT_EQ(driver.device->ValidateCommand(4, nullptr), 1);
    EXPECT_EQ(driver.device->ValidateCommand(5, nullptr), 0);
    EXPECT_EQ(driver.device->ValidateCommand(4, &params), 0) << "they name no function";
    params.SetProperty(kCommandNameProperty, "f", 0, 0);
    EXPECT_EQ(driver.device->ValidateCommand(77, &params), 1);
    params.param = &result;
    EXPECT_EQ(driver.device->ValidateCommand(77, &params), 2);
    params.SetProperty(kCommandNameProperty, "gone", 0, 0);
    EXPECT_EQ(driver.device->ValidateCommand(4, &params), 0);
}

TEST_F(UserCommands, KeepTheValuesOfAShowThatWasStoredWithAnOlderEdition) {
    DriverDevice& driver = MakeDevice();
    ASSERT_EQ(Accept(driver, "({ Setup: { port: 1 }, Device: { Level: 1 }, Fade: function(level) { return level } })"),
              KXP_OK);
    std::string text = Setup(driver);
    const std::string newer = "({ Setup: { port: 1, host: '' }, Device: { Level: 1, Mood: 'x' },"
                              "   Fade: function(time, level) { return time + level }, Extra: function() {} })";
    const std::size_t from = text.find("<![CDATA[") + 9;
    text.replace(from, text.find("]]>") - from, QByteArray::fromStdString(newer).toBase64().toStdString());
    DriverDevice& opened = MakeDevice();
    ASSERT_EQ(opened.device->SetSetup(text.c_str()), KXP_OK);
    EXPECT_EQ(Commands(opened), "Fade:4 Extra:5");
    EXPECT_TRUE(opened.variables.Has("Level"));
    const std::string rewritten = Update(opened, Stored("Fade"));
    EXPECT_NE(rewritten.find("<Command ID=\"4\""), std::string::npos) << rewritten;
    EXPECT_NE(rewritten.find("<StringData Name=\"level\" ID=\"2\" String=\"50\">"), std::string::npos) << rewritten;
    EXPECT_NE(rewritten.find("ParamsCount=\"3\""), std::string::npos);
}

TEST_F(UserCommands, AreNotUpdatedForWhatIsNoCommandOfThisDevice) {
    DriverDevice& driver = GivenDriver("({ Fade: function(level) {} })");
    char* out = nullptr;
    EXPECT_EQ(driver.device->UpdateCommand(nullptr, &out), KXP_NOT_IMPLEMENTED);
    EXPECT_EQ(driver.device->UpdateCommand("<Line/>", nullptr), KXP_NOT_IMPLEMENTED);
    for (const std::string& xml :
         {std::string("text"), std::string("<Line Name='Desk'/>"), Stored("Fade", "Other"), Stored("Gone"), Stored("")})
        EXPECT_EQ(Update(driver, xml), "(code 19)") << xml;
    const std::string good = Stored("Fade");
    EXPECT_NE(Update(driver, good), "(code 19)");
    for (std::size_t length = 0; length < good.size(); ++length)
        EXPECT_EQ(Update(driver, good.substr(0, length)), "(code 19)") << length;
}

TEST_F(UserCommands, OfTheModuleThatADeviceHasLostAreRememberedUntilTheNextDialog) {
    DriverDevice& driver = GivenDriver("({ Old: function() {} })");
    ASSERT_EQ(Accept(driver, "({ New: function() {} })"), KXP_COMMANDS_CHANGED);
    ModuleShared& shared = *ModuleShared::Get();
    ASSERT_EQ(shared.legacyModuleCommands, nullptr) << "the dialogs so far have merged it";
    shared.legacyModuleCommands = std::make_unique<MLockedList<MScriptCommand>>();
    EXPECT_EQ(Update(driver, Stored("Old")), "(code 19)");
    EXPECT_EQ(Update(driver, Stored("Old")), "(code 19)");
    EXPECT_EQ(shared.legacyModuleCommands->Count(), 1u);
    module.isRecent = false;
    driver.device->GetSetupDesk().Begin();
    EXPECT_NE(shared.legacyModuleCommands, nullptr) << "hosts before 6.4.2 keep it";
    module.isRecent = true;
    driver.device->GetSetupDesk().Begin();
    EXPECT_EQ(shared.legacyModuleCommands, nullptr);
    EXPECT_EQ(shared.moduleCommands.Count(), 2u);
    EXPECT_EQ(Update(driver, Stored("Old")), "(code 19)");
}

} // namespace
