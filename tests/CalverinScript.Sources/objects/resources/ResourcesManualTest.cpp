#include "ManualScripts.h"
#include "ResourceFixture.h"

namespace {

/// The scripts of docs/resources.md, with the settings that a user would choose.
class ResourcesManual : public ResourceFixture {
protected:
    struct Choice {
        const char* name;
        const char* widget;
        const char* signature;
    };
    void GivenExample(std::size_t number, std::initializer_list<Choice> choices) {
        const std::vector<std::string> scripts = ScriptsOfTheManual(RESOURCES_MANUAL);
        ASSERT_EQ(scripts.size(), 3u);
        std::vector<std::pair<const char*, std::string>> rows;
        for (const Choice& choice : choices)
            rows.emplace_back(choice.widget, choice.signature);
        ScriptSettings settings = SettingsOf(rows);
        std::size_t row = 0;
        for (const Choice& choice : choices)
            settings[row++].name = QLatin1String(choice.name);
        ASSERT_EQ(device->SetSetup(SetupText(settings, scripts[number]).c_str()), KXP_OK);
        device->Start();
    }
};

TEST_F(ResourcesManual, ShowsASerialDriverThatWorks) {
    GivenExample(0, {{"line", "Serial", R"({ "Type":"Serial", "ResourceID":3 })"}});
    EXPECT_EQ(Error(), "");
    EXPECT_EQ(serial.calls.Take(), "AddHandler:3 SetBaudRate:9600 SetParity:2 Open");
    Call("On");
    EXPECT_EQ(serial.calls.Take(), "Write:" + plain::HexOf(reinterpret_cast<const std::uint8_t*>("PWR ON\r"), 7));
    serial.Receive("OK\rTEM");
    serial.Receive("P 40\r");
    WhenTheScriptThreadHasCaughtUp();
    EXPECT_EQ(Error(), "");
}

TEST_F(ResourcesManual, ShowsASerialDriverThatSaysWhatToChoose) {
    GivenExample(0, {{"line", "Serial", ""}});
    EXPECT_NE(Error().find("choose a serial port in the setup"), std::string::npos) << Error();
}

TEST_F(ResourcesManual, ShowsALampThatTakesItsColour) {
    GivenExample(1, {{"universe", "DMXOut", R"({ "Type":"DMXOut", "ResourceID":2 })"}});
    EXPECT_EQ(Error(), "");
    out.calls.Take();
    EXPECT_EQ(Call("Colour", {"255", "16", "1"}), "true");
    EXPECT_EQ(out.calls.Take(), "WriteBlock:0,3,ff1001");
    out.levels[1] = 0x20;
    EXPECT_EQ(Call("Levels"), "002000");
}

TEST_F(ResourcesManual, ShowsADoorThatSwitchesALamp) {
    GivenExample(2, {{"door", "DigitalIn", R"({ "Type":"DigitalIn", "ResourceID":4, "ChannelIndex":0 })"},
                     {"lamp", "DigitalOut", R"({ "Type":"DigitalOut", "ResourceID":4, "ChannelIndex":1 })"}});
    EXPECT_EQ(Error(), "");
    plain::FakeChannel& lamp = io.Channel(KXP_DIGITAL_OUTPUT, 1);
    io.Channel(KXP_DIGITAL_INPUT, 0).Become(1);
    EXPECT_TRUE(lamp.calls.WaitFor("SetValue:1"));
    io.Channel(KXP_DIGITAL_INPUT, 0).Become(0);
    EXPECT_TRUE(lamp.calls.WaitFor("SetValue:0"));
    EXPECT_EQ(Call("Opened"), "1");
    EXPECT_EQ(io.calls.CountOf("Flush"), 2u);
}

} // namespace
