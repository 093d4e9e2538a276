#include <gtest/gtest.h>

#include "ScanFixture.h"
#include "SetupFormat.h"
#include "XmlLines.h"

namespace {

QString SetupText(const char* text) {
    return QString::fromUtf8(text);
}

/// A setup in which nothing has its default.
DeviceSetup FullSetup() {
    DeviceSetup setup;
    setup.name = SetupText("B\u00fchne \"1\" & <2>");
    setup.userModeVisible = false;
    setup.runModeVisible = true;
    MScriptSetting setting;
    setting.name = SetupText("port");
    setting.type = SetupText("IntegerData");
    setting.value = SetupText("8000");
    setting.widget = 2;
    setting.properties = {{SetupText("Hint"), SetupText("a\tb\n&#x41; 'c' \"d\"")},
                          {SetupText("MinValue"), SetupText("1")}};
    setup.settings.push_back(setting);
    setting = MScriptSetting();
    setting.name = SetupText("mode");
    setting.type = SetupText("EnumData");
    setting.value = SetupText("1");
    setting.widget = 4;
    setting.items = QStringList{SetupText("x"), SetupText("y")};
    setup.settings.push_back(setting);
    MScriptVariable variable;
    variable.name = SetupText("Level");
    variable.type = SetupText("RealData");
    variable.valueType = SetupText("Real");
    variable.value = SetupText("7.5");
    variable.defaultScriptValue = SetupText("5");
    variable.useDefaultScriptValue = false;
    variable.properties = {{SetupText("Precision"), SetupText("2")}};
    setup.monitors.push_back(variable);
    variable = MScriptVariable();
    variable.name = SetupText("Mood");
    variable.type = SetupText("EnumData");
    variable.value = variable.defaultScriptValue = SetupText("calm");
    variable.enumItems = QStringList{SetupText("calm"), SetupText("storm")};
    setup.monitors.push_back(variable);
    setup.commands.push_back(CommandFromFunction(SetupText("Fade"), SetupText("(level)")));
    setup.commands[0].id = 4;
    setup.moduleCommands = setup.commands;
    SetupScript script;
    script.storedFileName = SetupText("$CURRENTPRJ_USERDATA\\a.js");
    script.text = SetupText("({ f: '\u00e9 ]]>' })\r\n\tx");
    script.registerAllUserGroups = true;
    script.removeDefaults = true;
    script.programmingMode = true;
    script.autoCompletion = false;
    setup.script = script;
    return setup;
}

/// A setup text around a few elements.
std::string Around(const std::string& content) {
    return "<DeviceData Version=\"1000\" Name=\"Desk\"><Setup>" + content + "</Setup></DeviceData>";
}

DeviceSetup Read(const std::string& text) {
    DeviceSetup setup;
    EXPECT_EQ(ReadSetup(text.c_str(), setup), KXP_OK) << text;
    return setup;
}

TEST(SetupText, HasTheStatedElementsAndAttributesInTheirOrder) {
    DeviceSetup setup = FullSetup();
    setup.name = SetupText("Desk");
    setup.settings[0].properties = {{SetupText("MinValue"), SetupText("1")}};
    setup.commands[0].params.clear();
    setup.moduleCommands = setup.commands;
    setup.script->text = SetupText("x");
    const std::string command =
        "...Command Name=Fade ID=4 Version=0 Status=Active GroupName=User Commands GroupOrder=1 "
        "GroupCmdOrder=0";
    const Lines expected = {
        "DeviceData Version=1000 Name=Desk DeviceInternalVersion=1",
        ".Setup",
        "..ControlPanel",
        "...UserMode Visibility=0",
        "...RunMode Visibility=1",
        "..Settings",
        "...Setting Name=port Type=IntegerData Value=8000 Widget=2 MinValue=1",
        "...Setting Name=mode Type=EnumData Value=1 Widget=4",
        "....EnumStrings EnumCount=2",
        ".....EnumString Name=x Value=0",
        ".....EnumString Name=y Value=1",
        "..Monitors",
        "...Monitor Name=Level Type=RealData Value=7.5 ValueType=Real DefaultScriptValue=5 UseDefaultScriptValue=0 "
        "Precision=2",
        "...Monitor Name=Mood Type=EnumData Value=calm ValueType=String DefaultScriptValue=calm "
        "UseDefaultScriptValue=1",
        "....EnumStrings EnumCount=2",
        ".....EnumString Name=calm Value=0",
        ".....EnumString Name=storm Value=1",
        "..ModuleCommands",
        command,
        "....ObjectParams Version=0",
        ".....Properties",
        "......Property Name=KXPProp::ScriptUserCommandName Value=Fade",
        "..Commands",
        command,
        "....ObjectParams Version=0",
        ".....Properties",
        "......Property Name=KXPProp::ScriptUserCommandName Value=Fade",
        "..Script ScriptFileName=$CURRENTPRJ_USERDATA\\a.js EncodedBase64=1 RegisterAllUserGroups=1 "
        "RemoveDefaultCommandsAndVariables=1 ProgrammingMode=1 AutoCompletion=0 | eA==",
    };
    const std::string text = PrintSetup(setup);
    EXPECT_EQ(XmlLines(text), expected);
    EXPECT_NE(text.find("\n\t\t<Settings>\n\t\t\t<Setting Name"), std::string::npos);
    EXPECT_NE(text.find("<![CDATA[eA==]]>"), std::string::npos);
}

TEST(SetupText, IsReadBackAsItWasWritten) {
    const DeviceSetup setup = FullSetup();
    const std::string text = PrintSetup(setup);
    const DeviceSetup read = Read(text);
    EXPECT_EQ(PrintSetup(read), text);
    EXPECT_EQ(read.name, setup.name);
    EXPECT_EQ(read.settings[0].properties, setup.settings[0].properties);
    EXPECT_EQ(read.script->text, setup.script->text);
    EXPECT_EQ(read.monitors[1].enumItems, setup.monitors[1].enumItems);
    EXPECT_FALSE(read.monitors[0].useDefaultScriptValue);
}

TEST(SetupText, LeavesOutTheModulesCommandsUnlessTheyAreGiven) {
    DeviceSetup setup = FullSetup();
    setup.moduleCommands.reset();
    EXPECT_EQ(PrintSetup(setup).find("ModuleCommands"), std::string::npos);
    EXPECT_FALSE(Read(PrintSetup(setup)).moduleCommands.has_value());
}

TEST(SetupText, LosesCharactersOfTheScriptBeyondLatin1AndThatIsMeant) {
    DeviceSetup setup = FullSetup();
    setup.script->text = SetupText("\u00e9\u03a9");
    EXPECT_EQ(Read(PrintSetup(setup)).script->text, SetupText("\u00e9?"));
}

TEST(SetupText, WithAGoodRootGivesItsNameAlsoWhereTheSetupIsMissingAsIsMeant) {
    DeviceSetup setup;
    EXPECT_EQ(ReadSetup("<DeviceData Version='1' Name='Lamp'/>", setup), KXP_NULL_ARGUMENT);
    EXPECT_EQ(setup.name, SetupText("Lamp"));
    EXPECT_EQ(ReadSetup("<DeviceData Version='1'><Other/></DeviceData>", setup), KXP_NULL_ARGUMENT);
    EXPECT_EQ(setup.name, SetupText(""));
    EXPECT_FALSE(setup.name.isNull()) << "a name was read, and it is empty";
}

TEST(SetupText, GivesTwoForNothingAndWhatDoesNotParseAnd22ForAnotherRoot) {
    DeviceSetup setup;
    setup.name = SetupText("untouched");
    EXPECT_EQ(ReadSetup(nullptr, setup), KXP_NULL_ARGUMENT);
    for (const char* text : {"", " ", "text", "<DeviceData", "<DeviceData Version='1'>"})
        EXPECT_EQ(ReadSetup(text, setup), KXP_NULL_ARGUMENT) << text;
    for (const char* text : {"<Other Version='1'><Setup/></Other>", "<DeviceData><Setup/></DeviceData>",
                             "<DeviceData Version='one'><Setup/></DeviceData>"})
        EXPECT_EQ(ReadSetup(text, setup), KXP_BAD_SETUP) << text;
    EXPECT_EQ(setup.name, SetupText("untouched"));
    EXPECT_EQ(ReadSetup("<DeviceData Version='77'><Setup/></DeviceData>", setup), KXP_OK);
    EXPECT_EQ(setup.name, QString());
}

TEST(SetupText, KnowsWhatIsNotSaid) {
    const DeviceSetup setup = Read(Around("<ControlPanel><UserMode/></ControlPanel>"));
    EXPECT_FALSE(setup.userModeVisible.has_value());
    EXPECT_FALSE(setup.runModeVisible.has_value());
    EXPECT_FALSE(setup.script.has_value());
    EXPECT_EQ(Read(Around("<ControlPanel><RunMode Visibility='0'/></ControlPanel>")).runModeVisible, false);
}

TEST(SetupText, WithoutTheFlagsOfTheScriptHasTheirDefaults) {
    const DeviceSetup setup = Read(Around("<Script>plain</Script>"));
    EXPECT_EQ(setup.script->text, SetupText("plain"));
    EXPECT_TRUE(setup.script->autoCompletion);
    EXPECT_FALSE(setup.script->registerAllUserGroups);
    EXPECT_FALSE(setup.script->removeDefaults);
    EXPECT_FALSE(setup.script->programmingMode);
    EXPECT_EQ(setup.script->storedFileName, QString());
    EXPECT_EQ(Read(Around("<Script AutoCompletion='perhaps'/>")).script->autoCompletion, true);
    EXPECT_EQ(Read(Around("<Script/>")).script->text, SetupText(""));
}

TEST(SetupText, TakesAScriptWithoutEncodedBase64AsPlainText) {
    EXPECT_EQ(Read(Around("<Script><![CDATA[a  <b>]]></Script>")).script->text, SetupText("a  <b>"));
    EXPECT_EQ(Read(Around("<Script EncodedBase64='0'>eA==</Script>")).script->text, SetupText("eA=="));
    EXPECT_EQ(Read(Around("<Script EncodedBase64='1'>eA==</Script>")).script->text, SetupText("x"));
}

TEST(SetupText, WithWrongBase64IsReadAsFarAsItGoes) {
    for (const char* wrong : {"eA=", "e", "%%%%", "eA==eA==", "\n eA=="})
        EXPECT_TRUE(Read(Around(std::string("<Script EncodedBase64='1'>") + wrong + "</Script>")).script.has_value());
}

TEST(SetupText, ReadsVariablesOfOlderSetups) {
    const DeviceSetup setup =
        Read(Around("<Monitors><Monitor Name='a' Type='IntegerData' Value='3'><Properties>"
                    "<Property Name='MinValue' Value='1'/><Property Name='Other' Value='2'/>"
                    "<Property Name='MaxValue' Value='nine'/></Properties></Monitor></Monitors>"));
    ASSERT_EQ(setup.monitors.size(), 1u);
    const MScriptVariable& variable = setup.monitors[0];
    EXPECT_EQ(variable.defaultScriptValue, SetupText("3"));
    EXPECT_TRUE(variable.useDefaultScriptValue);
    EXPECT_EQ(variable.valueType, SetupText("String"));
    EXPECT_EQ(Told(variable.properties), "MinValue=1");
    EXPECT_EQ(variable.data, nullptr);
    EXPECT_EQ(variable.instanceId, 0u);
}

TEST(SetupText, DropsBadEntriesAndReadsOn) {
    const DeviceSetup setup = Read(
        Around("<Settings><Setting Name='a'/><Setting Type='StringData'/><Other/><Setting Name='b' Type='StringData'/>"
               "</Settings><Monitors><Monitor Name='a' Type='StringData'/><Monitor Name='' Type='x' Value=''/>"
               "<Monitor Name='m' Type='' Value=''/><Monitor Name='n' Type='StringData' Value=''/></Monitors>"
               "<Commands><Command Name='c'/><Command Name='d' Status='Active'/></Commands>"));
    EXPECT_EQ(Told(setup.settings), "b:StringData=");
    EXPECT_EQ(Told(setup.monitors), "n:StringData=");
    EXPECT_EQ(Told(setup.commands), "d()");
}

TEST(SetupText, ReadsTheFieldOfASettingByNumberNameOrType) {
    const DeviceSetup setup =
        Read(Around("<Settings><Setting Name='a' Type='StringData' Widget='14'/><Setting Name='b' Type='StringData' "
                    "Widget='DMXIn'/><Setting Name='c' Type='RealData'/><Setting Name='d' Type='RealData' Widget='99'/>"
                    "</Settings>"));
    std::vector<int> widgets;
    for (const MScriptSetting& setting : setup.settings)
        widgets.push_back(setting.widget);
    EXPECT_EQ(widgets, (std::vector<int>{14, 15, 3, 3}));
    EXPECT_EQ(Told(setup.settings[0].properties), "");
    EXPECT_EQ(Told(setup.settings[1].properties), "Widget=DMXIn");
}

TEST(SetupText, NeverLetsAShownNameReplaceTheNameThatASettingIsFoundBy) {
    DeviceSetup setup = FullSetup();
    setup.settings[0].properties = {{SetupText("Name"), SetupText("Port of the desk")}};
    EXPECT_EQ(Read(PrintSetup(setup)).settings[0].name, SetupText("port"));
}

TEST(SetupText, OfAnEightBitHostIsReadAsSuch) {
    const DeviceSetup setup =
        Read("<DeviceData Version='1' Name='B\xFChne'><Setup><Script>\xE9</Script></Setup></DeviceData>");
    EXPECT_EQ(setup.name, SetupText("B\u00fchne"));
    EXPECT_EQ(setup.script->text, SetupText("\u00e9"));
}

TEST(SetupText, CutOffAnywhereIsRefused) {
    const std::string text = PrintSetup(FullSetup());
    const std::size_t whole = text.find_last_not_of('\n') + 1;
    for (std::size_t length = 0; length < whole; ++length) {
        DeviceSetup setup;
        EXPECT_NE(ReadSetup(text.substr(0, length).c_str(), setup), KXP_OK) << length;
        EXPECT_TRUE(setup.settings.empty());
    }
}

TEST(SetupText, WithAnyByteChangedIsReadOrRefused) {
    const std::string text = PrintSetup(FullSetup());
    const std::string bytes = "<>\"&\x01\xFF";
    for (std::size_t at = 0; at < text.size(); ++at) {
        std::string changed = text;
        changed[at] = bytes[at % bytes.size()];
        DeviceSetup setup;
        const KXPCode code = ReadSetup(changed.c_str(), setup);
        EXPECT_TRUE(code == KXP_OK || code == KXP_NULL_ARGUMENT || code == KXP_BAD_SETUP) << code;
    }
}

TEST(SetupText, ThatIsDeepHugeOrCrowdedIsRefusedOrReadInTime) {
    std::string deep;
    for (int i = 0; i < 100000; ++i)
        deep += "<a>";
    DeviceSetup setup;
    EXPECT_EQ(ReadSetup(Around(deep).c_str(), setup), KXP_NULL_ARGUMENT);
    std::string crowded = "<Settings><Setting ";
    for (int i = 0; i < 100000; ++i)
        crowded += "a" + std::to_string(i) + "='1' ";
    EXPECT_EQ(ReadSetup(Around(crowded + "/></Settings>").c_str(), setup), KXP_NULL_ARGUMENT);
    const std::string huge(4u << 20, 'x');
    EXPECT_EQ(Read(Around("<Settings><Setting Name='a' Type='StringData' Value='" + huge + "'/></Settings>"))
                  .settings.at(0)
                  .value.size(),
              static_cast<int>(huge.size()));
}

TEST(StoredFileName, StandsForAFileInTheUserDataFolder) {
    EXPECT_EQ(ResolveStoredFileName(SetupText("$CURRENTPRJ_USERDATA\\a.js"), SetupText("/data")),
              SetupText("/data/a.js"));
    EXPECT_EQ(ResolveStoredFileName(SetupText("$CURRENTPRJ_USERDATA/sub\\a.js"), SetupText("/data/")),
              SetupText("/data/sub/a.js"));
    EXPECT_EQ(ResolveStoredFileName(SetupText("$CURRENTPRJ_USERDATA\\a.js"), QString()), QString());
    EXPECT_EQ(ResolveStoredFileName(SetupText("/elsewhere/a.js"), SetupText("/data")), QString());
    EXPECT_EQ(ResolveStoredFileName(SetupText("$CURRENTPRJ_USERDATA"), SetupText("/data")), QString());
    EXPECT_EQ(ResolveStoredFileName(QString(), SetupText("/data")), QString());
    EXPECT_EQ(MakeStoredFileName(SetupText("/data/sub/a.js")), SetupText("$CURRENTPRJ_USERDATA\\a.js"));
}

} // namespace
