#include <algorithm>
#include <chrono>
#include <ctime>
#include <future>
#include <thread>

#include <QFile>

#include "DriverFixture.h"
#include "HostText.h"
#include "ModuleShared.h"
#include "ScriptWorld.h"
#include "SetupDesk.h"
#include "SetupFormat.h"

namespace {

constexpr const char* kDriver =
    "({ Info: { Variables: { Level: { MinValue: 0, MaxValue: 100 },"
    "                        Mood: { Type: 'Enum', Items: ['calm', 'storm'] } },"
    "           Commands: { Fade: { Name: 'Fade to', Params: { level: { Type: 'Integer' } } } } },"
    "   Device: { Level: 5, Mood: 'storm' }, Setup: { port: 8000, name: 'a' },"
    "   Fade: function(level, time) { this.Device.Level = level; return 'faded ' + level },"
    "   Port: function() { return this.Setup.port + this.Setup.name } })";

class StoredSetups : public DriverFixture {
protected:
    std::string WriteScript(const std::string& name, const std::string& content) {
        QFile file(folder.filePath(QString::fromStdString(name)));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content.data(), static_cast<qint64>(content.size()));
        return content;
    }
    /// A setup text with that script in it, linked to a file.
    static std::string Linked(const std::string& fileName, const std::string& text) {
        return "<DeviceData Version='1000' Name='Desk'><Setup><Script ScriptFileName='$CURRENTPRJ_USERDATA\\" +
               fileName + "' EncodedBase64='1'>" + QByteArray::fromStdString(text).toBase64().toStdString() +
               "</Script></Setup></DeviceData>";
    }
};

TEST_F(StoredSetups, AsksForAPlaceAndForAText) {
    DriverDevice& driver = MakeDevice();
    EXPECT_EQ(driver.device->GetSetup(nullptr), KXP_NULL_ARGUMENT);
    EXPECT_EQ(driver.device->SetSetup(nullptr), KXP_NULL_ARGUMENT);
    EXPECT_EQ(driver.device->SetSetup(""), KXP_NULL_ARGUMENT);
}

TEST_F(StoredSetups, OfANewDeviceHasItsDefaults) {
    const std::string text = Setup(MakeDevice());
    EXPECT_NE(text.find("RegisterAllUserGroups=\"1\""), std::string::npos) << text;
    EXPECT_NE(text.find("AutoCompletion=\"1\""), std::string::npos);
    EXPECT_NE(text.find("<UserMode Visibility=\"1\""), std::string::npos);
}

TEST_F(StoredSetups, IsReadBackWithTheSameResult) {
    DriverDevice& driver = MakeDevice();
    ASSERT_EQ(Accept(driver, kDriver), KXP_OK);
    const std::string text = Setup(driver);
    DriverDevice& other = MakeDevice("Other");
    module.devices.Remove(driver.device);
    ASSERT_EQ(other.device->SetSetup(text.c_str()), KXP_OK);
    EXPECT_EQ(Setup(other), text);
    EXPECT_STREQ(other.device->GetName(), "Desk");
    EXPECT_EQ(other.variables.definition, other.device->GetDefinition());
    module.devices.Add(driver.device);
}

TEST_F(StoredSetups, OfAScriptInAFileIsReadBackWithTheSameResult) {
    DriverDevice& driver = MakeDevice();
    WriteScript("a.js", "({ f: function() { return '\xC3\xA9' } })");
    const std::string text = Linked("a.js", "({ f: function() { return '\xE9' } })");
    ASSERT_EQ(driver.device->SetSetup(text.c_str()), KXP_OK);
    EXPECT_EQ(driver.device->GetStoredSetup().GetScriptFileName(), folder.filePath(QStringLiteral("a.js")));
    const std::string written = Setup(driver);
    EXPECT_NE(written.find("ScriptFileName=\"$CURRENTPRJ_USERDATA\\a.js\""), std::string::npos) << written;
    ASSERT_EQ(driver.device->SetSetup(written.c_str()), KXP_OK);
    EXPECT_EQ(Setup(driver), written);
}

TEST_F(StoredSetups, RunsTheStoredTextWhenTheFileHasBeenEditedAndLosesTheFileName) {
    DriverDevice& driver = MakeDevice();
    WriteScript("a.js", "({ f: function() { return 'edited' } })");
    ASSERT_EQ(driver.device->SetSetup(Linked("a.js", "({ f: function() { return 'stored' } })").c_str()), KXP_OK);
    EXPECT_EQ(driver.device->GetStoredSetup().GetScriptFileName(), QString());
    EXPECT_EQ(Setup(driver).find("ScriptFileName"), std::string::npos);
    driver.device->Start();
    EXPECT_EQ(Send(driver, IdOf(driver, "f"), {}), "stored");
}

TEST_F(StoredSetups, GivesTheIndentationBackThatAnOlderSetupLost) {
    DriverDevice& driver = MakeDevice();
    const std::string content = WriteScript("a.js", "({\n    f: function() {\n        return 1 } })");
    std::string condensed = content;
    for (std::size_t at = condensed.find("    "); at != std::string::npos; at = condensed.find("    "))
        condensed.replace(at, 4, " ");
    ASSERT_EQ(driver.device->SetSetup(Linked("a.js", condensed).c_str()), KXP_OK);
    EXPECT_EQ(driver.device->GetStoredSetup().GetScriptText().toStdString(), content);
    EXPECT_FALSE(driver.device->GetStoredSetup().GetScriptFileName().isEmpty());
}

TEST_F(StoredSetups, StaysEmbeddedWithoutTheFileOrTheFolder) {
    DriverDevice& driver = MakeDevice();
    ASSERT_EQ(driver.device->SetSetup(Linked("gone.js", "({})").c_str()), KXP_OK);
    EXPECT_EQ(driver.device->GetStoredSetup().GetScriptFileName(), QString());
    host.folders.clear();
    WriteScript("a.js", "({})");
    ASSERT_EQ(driver.device->SetSetup(Linked("a.js", "({})").c_str()), KXP_OK);
    EXPECT_EQ(driver.device->GetStoredSetup().GetScriptFileName(), QString());
    EXPECT_EQ(driver.device->GetStoredSetup().GetScriptText(), QStringLiteral("({})"));
}

TEST_F(StoredSetups, WritesTheModulesCommandsForTheFirstDeviceAlone) {
    DriverDevice& first = MakeDevice("First");
    DriverDevice& second = MakeDevice("Second");
    ASSERT_EQ(Accept(second, kDriver), KXP_OK);
    EXPECT_NE(Setup(first).find("<ModuleCommands>"), std::string::npos);
    EXPECT_EQ(Setup(second).find("<ModuleCommands"), std::string::npos);
    EXPECT_EQ(Commands(second), "Fade:4 Port:5");
}

TEST_F(StoredSetups, ReadsTheModulesCommandsForTheFirstDeviceAloneAndAddsThem) {
    DriverDevice& first = MakeDevice("First");
    DriverDevice& second = MakeDevice("Second");
    const char* setup =
        "<DeviceData Version='1' Name='D'><Setup><ModuleCommands><Command Name='f' ID='9' Status='Active'/>"
        "<Command Name='g' ID='4' Status='Active'/></ModuleCommands></Setup></DeviceData>";
    ASSERT_EQ(second.device->SetSetup(setup), KXP_OK);
    EXPECT_EQ(ModuleShared::Get()->moduleCommands.Count(), 0u);
    ASSERT_EQ(first.device->SetSetup(setup), KXP_OK);
    ASSERT_EQ(first.device->SetSetup(setup), KXP_OK);
    EXPECT_EQ(ModuleShared::Get()->moduleCommands.Count(), 2u);
    ASSERT_EQ(Accept(second, "({ f: function() {}, h: function() {} })"), KXP_COMMANDS_CHANGED);
    EXPECT_EQ(Commands(second), "f:5 h:6") << "f has parameters that the stored one has not";
}

TEST_F(StoredSetups, LeavesTheDeviceAsItWasWhenItIsRefused) {
    DriverDevice& driver = MakeDevice();
    ASSERT_EQ(Accept(driver, kDriver), KXP_OK);
    const std::string before = Setup(driver);
    const std::string definition = driver.device->GetDefinition();
    const std::size_t whole = before.find_last_not_of('\n') + 1;
    for (std::size_t length = 0; length < whole; length += 7)
        EXPECT_EQ(driver.device->SetSetup(before.substr(0, length).c_str()), KXP_NULL_ARGUMENT) << length;
    EXPECT_EQ(driver.device->SetSetup("<Other Version='1' Name='X'><Setup/></Other>"), KXP_BAD_SETUP);
    EXPECT_EQ(Setup(driver), before);
    EXPECT_EQ(driver.device->GetDefinition(), definition);
    EXPECT_EQ(Commands(driver), "Fade:4 Port:5");
}

TEST_F(StoredSetups, WithAGoodRootAndNoSetupIsRefusedBehindItsNameAsIsMeant) {
    DriverDevice& driver = MakeDevice();
    ASSERT_EQ(Accept(driver, kDriver), KXP_OK);
    EXPECT_EQ(driver.device->SetSetup("<DeviceData Version='1' Name='Lamp'/>"), KXP_NULL_ARGUMENT);
    EXPECT_STREQ(driver.device->GetName(), "Lamp");
    EXPECT_EQ(driver.device->SetSetup("<DeviceData Name='Lost'/>"), KXP_BAD_SETUP);
    EXPECT_STREQ(driver.device->GetName(), "Lamp");
    EXPECT_EQ(Commands(driver), "Fade:4 Port:5");
    EXPECT_EQ(driver.device->SetSetup("<DeviceData Version='1'/>"), KXP_NULL_ARGUMENT);
    EXPECT_STREQ(driver.device->GetName(), "");
}

/// A script of about that many million characters.
QString LargeScript(int millions) {
    return QStringLiteral("({ f: function() {} }) //").leftJustified(millions * 1000000, QLatin1Char('x'));
}

TEST_F(StoredSetups, IsNeverGivenOutLargerThanItIsReadBack) {
    DriverDevice& driver = MakeDevice();
    driver.device->GetStoredSetup().SetScript(QString(), LargeScript(48));
    const std::string large = Setup(driver);
    EXPECT_EQ(driver.device->SetSetup(large.c_str()), KXP_OK);
    EXPECT_EQ(driver.device->GetStoredSetup().GetScriptText().size(), 48000000);
    EXPECT_EQ(driver.variables.error.Text(), "");
    driver.device->GetStoredSetup().SetScript(QString(), LargeScript(51));
    char* text = nullptr;
    EXPECT_EQ(driver.device->GetSetup(&text), KXP_NOT_IMPLEMENTED);
    EXPECT_EQ(text, nullptr);
    EXPECT_NE(driver.variables.error.Text().find("larger than a project can keep"), std::string::npos);
}

TEST_F(StoredSetups, ThatCouldNotBeReadBackIsNotAcceptedAndTheOldOneStays) {
    DriverDevice& driver = MakeDevice();
    ASSERT_EQ(Accept(driver, kDriver), KXP_OK);
    const std::string before = Setup(driver);
    const std::string definition = driver.variables.definition;
    DeviceSetup setup = driver.device->GetSetupDesk().Describe();
    setup.script->text = LargeScript(51);
    EXPECT_EQ(driver.device->GetSetupDesk().Accept(setup, QString()), KXP_CANCELLED);
    EXPECT_NE(driver.variables.error.Text().find("larger than a project can keep"), std::string::npos);
    EXPECT_EQ(Setup(driver), before);
    EXPECT_EQ(driver.variables.definition, definition);
    EXPECT_EQ(Commands(driver), "Fade:4 Port:5");
}

TEST_F(StoredSetups, WithAnyByteChangedIsRefusedWithoutATraceOrTakenAsItIsWrittenBack) {
    DriverDevice& driver = MakeDevice();
    ASSERT_EQ(Accept(driver, kDriver), KXP_OK);
    const std::string good = Setup(driver);
    const std::string bytes = "<>\"&\x01\xFFx /";
    constexpr std::size_t kStep = 17;
    for (std::size_t at = 0; at < good.size(); at += kStep) {
        std::string changed = good;
        changed[at] = bytes[at / kStep % bytes.size()];
        const std::string before = Setup(driver);
        const KXPCode code = driver.device->SetSetup(changed.c_str());
        const std::string after = Setup(driver);
        if (code != KXP_OK) {
            EXPECT_TRUE(code == KXP_NULL_ARGUMENT || code == KXP_BAD_SETUP) << code;
            EXPECT_EQ(after, before) << at;
            continue;
        }
        EXPECT_EQ(driver.device->SetSetup(after.c_str()), KXP_OK) << at;
        EXPECT_EQ(Setup(driver), after) << at;
    }
}

TEST_F(StoredSetups, WithoutTheFlagsRegistersNoGroupsThoughANewDeviceDoesAsIsMeant) {
    DriverDevice& driver = MakeDevice();
    ASSERT_NE(Setup(driver).find("RegisterAllUserGroups=\"1\""), std::string::npos);
    ASSERT_EQ(driver.device->SetSetup("<DeviceData Version='1' Name='D'><Setup><Script/></Setup></DeviceData>"),
              KXP_OK);
    EXPECT_NE(Setup(driver).find("RegisterAllUserGroups=\"0\""), std::string::npos);
    EXPECT_NE(Setup(driver).find("AutoCompletion=\"1\""), std::string::npos);
}

TEST_F(StoredSetups, WithoutAScriptLeavesItsValuesAsTheyWere) {
    DriverDevice& driver = MakeDevice();
    ASSERT_EQ(Accept(driver, "({ f: function() {} })"), KXP_OK);
    ASSERT_EQ(driver.device->SetSetup("<DeviceData Version='1' Name='D'><Setup/></DeviceData>"), KXP_OK);
    EXPECT_EQ(driver.device->GetStoredSetup().GetScriptText(), QStringLiteral("({ f: function() {} })"));
    EXPECT_NE(Setup(driver).find("RegisterAllUserGroups=\"1\""), std::string::npos);
    EXPECT_EQ(Commands(driver), "f:4");
}

TEST_F(StoredSetups, SurvivesTextsOfAllKindsWithTheStatedCodes) {
    DriverDevice& driver = MakeDevice();
    const std::string scripts[] = {"throw 1",
                                   "var = ;",
                                   "null",
                                   "({ Info: 5, Setup: 5, Device: [] })",
                                   "\xFF\xFE",
                                   "",
                                   "({ Device: { get x() { throw 1 } } })",
                                   std::string(100000, '(')};
    for (const std::string& script : scripts)
        EXPECT_EQ(driver.device->SetSetup(Linked("x.js", script).c_str()), KXP_OK) << script.substr(0, 40);
    EXPECT_EQ(driver.device->SetSetup("<DeviceData Version='1'><Setup><Script EncodedBase64='1'>%%%</Script></Setup>"
                                      "</DeviceData>"),
              KXP_OK);
}

TEST_F(StoredSetups, ComesWhileTheScriptRunsForEverAndIsTaken) {
    DriverDevice& driver = MakeDevice();
    plain::Value inside("inside");
    ASSERT_EQ(Accept(driver, "({ f: function() { this.x = 1; while (true) {} } })"), KXP_OK);
    driver.device->Start();
    plain::Params params({"f"}, 10);
    ASSERT_EQ(driver.device->ExecuteCommand(2, &params, nullptr), KXP_OK);
    ASSERT_TRUE(driver.variables.status.Plain().WaitFor("2"));
    const std::string text = Setup(driver);
    EXPECT_EQ(driver.device->SetSetup(text.c_str()), KXP_OK);
    EXPECT_EQ(Setup(driver), text);
    driver.device->Release();
    drivers.clear();
}

TEST_F(StoredSetups, GivesTheUsersSettingsToTheScriptBeforeItStarts) {
    DriverDevice& driver = MakeDevice();
    ASSERT_EQ(Accept(driver, kDriver), KXP_OK);
    std::string text = Setup(driver);
    text.replace(text.find("Value=\"8000\""), 12, "Value=\"9000\"");
    ASSERT_EQ(driver.device->SetSetup(text.c_str()), KXP_OK);
    driver.device->Start();
    EXPECT_EQ(Send(driver, IdOf(driver, "Port"), {}), "9000a");
}

TEST_F(StoredSetups, RemovesTheDefaultsWhenTheSetupOrTheScriptSaysSo) {
    DriverDevice& driver = MakeDevice();
    const auto setup = [](const char* flag, const char* script) {
        return std::string("<DeviceData Version='1' Name='Desk'><Setup><Script RemoveDefaultCommandsAndVariables='") +
               flag + "'>" + script + "</Script></Setup></DeviceData>";
    };
    ASSERT_EQ(driver.device->SetSetup(setup("1", "({})").c_str()), KXP_OK);
    EXPECT_TRUE(driver.device->GetStoredSetup().IsRemovalApplied());
    EXPECT_NE(driver.variables.definition.find("Status=\"Hidden\""), std::string::npos);
    EXPECT_EQ(driver.variables.definition.find("Name=\"Error\""), std::string::npos);
    const char* keeps = "({ Info: { Options: { RemoveDefaultCommandsAndVariables: false } } })";
    ASSERT_EQ(driver.device->SetSetup(setup("1", keeps).c_str()), KXP_OK);
    EXPECT_FALSE(driver.device->GetStoredSetup().IsRemovalApplied());
    EXPECT_TRUE(driver.device->GetStoredSetup().GetChoices().removeDefaults);
    const char* removes =
        "({ Info: { Options: { RemoveDefaultCommandsAndVariables: true } }, f: function() { throw 1 } })";
    ASSERT_EQ(driver.device->SetSetup(setup("0", removes).c_str()), KXP_OK);
    EXPECT_TRUE(driver.device->GetStoredSetup().IsRemovalApplied());
    driver.device->Start();
    EXPECT_EQ(Send(driver, IdOf(driver, "f"), {}), "");
    EXPECT_EQ(driver.variables.error.History(), std::vector<std::string>()) << "the device has let go of Error";
}

TEST_F(StoredSetups, KeepsTheCommandsOfAScriptThatHasAMistakeToday) {
    DriverDevice& driver = MakeDevice();
    ASSERT_EQ(Accept(driver, kDriver), KXP_OK);
    ASSERT_EQ(driver.device->SetSetup(Linked("x.js", "var = ;").c_str()), KXP_OK);
    ASSERT_EQ(driver.device->SetSetup(Linked("x.js", "({ New: function() {}, Port: function() {} })").c_str()), KXP_OK);
    EXPECT_EQ(Commands(driver), "New:6 Port:5");
}

TEST_F(StoredSetups, NamesTheResourcesOfTheSettings) {
    DriverDevice& driver = MakeDevice();
    ASSERT_EQ(Accept(driver, "({ Info: { Setup: { port: { Widget: 'Serial' } } },"
                             "   Setup: { port: '{ \"Type\":\"Serial\", \"ResourceID\":3 }' } })"),
              KXP_OK);
    ASSERT_EQ(driver.device->GetWorld().Resources().GetRequests().size(), 1u);
    EXPECT_EQ(driver.device->GetWorld().Resources().GetRequests()[0].resourceId, 3);
    ASSERT_EQ(driver.device->SetSetup(Setup(driver).c_str()), KXP_OK);
    EXPECT_EQ(driver.device->GetWorld().Resources().GetRequests().at(0).family, 1);
}

TEST_F(StoredSetups, OfARefusedDefinitionKeepsTheStoredCommands) {
    DriverDevice& driver = MakeDevice();
    ASSERT_EQ(Accept(driver, kDriver), KXP_OK);
    driver.variables.refuses = true;
    EXPECT_EQ(driver.device->SetSetup(Setup(driver).c_str()), KXP_OK);
    EXPECT_EQ(Commands(driver), "Fade:4 Port:5");
}

/// A driver with that many commands of eight parameters and as many variables and settings.
std::string LargeDriver(int count) {
    std::string info;
    std::string device;
    std::string setup;
    std::string functions;
    for (int i = 0; i < count; ++i) {
        const std::string n = std::to_string(i);
        info += "c" + n + ": { Params: { a: { Type: 'Integer', MinValue: 0 }, b: { Type: 'Real' } } }, ";
        device += "v" + n + ": " + n + ", ";
        setup += "s" + n + ": 'x', ";
        functions += "c" + n + ": function(a, b, c, d, e, f, g, h) { return a }, ";
    }
    return "({ " + functions + "Info: { Commands: { " + info + "z: 1 } }, Device: { " + device +
           "last: 1 }, Setup: { " + setup + "last: 1 } })";
}

TEST_F(StoredSetups, OfFiveHundredCommandsAndVariablesWorks) {
    DriverDevice& driver = MakeDevice();
    ASSERT_EQ(Accept(driver, LargeDriver(500)), KXP_OK);
    const std::string text = Setup(driver);
    ASSERT_EQ(driver.device->SetSetup(text.c_str()), KXP_OK);
    EXPECT_EQ(driver.device->GetCommands().size(), 500u);
    EXPECT_EQ(driver.device->GetCommands().at(499).params.size(), 9);
    EXPECT_EQ(driver.device->GetStoredSetup().GetVariables().size(), 501u);
    driver.device->Start();
    TypedValue a("a", KXP_INTEGER_DATA, "7");
    EXPECT_EQ(Send(driver, IdOf(driver, "c499"), {&a}), "7");
}

TEST_F(StoredSetups, TakesTimeInProportionToTheCountOfCommandsAndVariables) {
    const auto secondsFor = [this](int count) {
        double best = 1e9;
        const std::string script = LargeDriver(count);
        for (int i = 0; i < 3; ++i) {
            DriverDevice& driver = MakeDevice();
            const std::clock_t begin = std::clock();
            EXPECT_EQ(Accept(driver, script), KXP_OK);
            EXPECT_EQ(driver.device->SetSetup(Setup(driver).c_str()), KXP_OK);
            best = std::min(best, static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC);
        }
        return best;
    };
    const double small = secondsFor(200);
    const double large = secondsFor(800);
    RecordProperty("milliseconds of 200", static_cast<int>(small * 1000));
    RecordProperty("milliseconds of 800", static_cast<int>(large * 1000));
    EXPECT_LT(large, 9 * small) << "four times as many, where sixteen would be the square";
}

TEST_F(StoredSetups, LookUpVariablesOfAHostThatStartsTheDeviceMeanwhileFromTwoThreads) {
    DriverDevice& driver = MakeDevice();
    ASSERT_EQ(Accept(driver, "({ Device: { Level: 1 } })"), KXP_OK);
    const std::string setup = Setup(driver);
    const auto here = std::this_thread::get_id();
    int asked = 0;
    driver.variables.onGet = [&] { ++asked; };
    ASSERT_EQ(driver.device->SetSetup(setup.c_str()), KXP_OK);
    ASSERT_GT(asked, 0);
    for (int question = 1; question <= asked; ++question) {
        std::future<KXPCode> start;
        int left = question;
        driver.variables.onGet = [&] {
            if (std::this_thread::get_id() != here || --left != 0)
                return;
            start = std::async(std::launch::async, [&] { return driver.device->Start(); });
            start.wait_for(std::chrono::milliseconds(100)); // it may have to wait for what asks here
            driver.device->Start();
        };
        EXPECT_EQ(driver.device->SetSetup(setup.c_str()), KXP_OK) << question;
        EXPECT_EQ(start.get(), KXP_OK) << question;
        driver.device->Stop();
    }
}

} // namespace
