#include "SetupText.h"

#include <gtest/gtest.h>

#include <QJsonDocument>

#include "XmlElement.h"

using namespace stagehost;

namespace {

QString Text(const char* text) {
    return QString::fromUtf8(text);
}

DriverEdition Edition(const char* report, const char* script = "({})") {
    return {Text(script), {}, QJsonDocument::fromJson(report).object()};
}

constexpr const char* kReport =
    R"({"variables":[{"name":"Level","type":"IntegerData","value":"5","properties":{"MaxValue":"9"},"items":[]},)"
    R"({"name":"Mood","type":"EnumData","value":"2","properties":{},"items":["1","2"]},)"
    R"({"name":"Rate","type":"TimeData","value":"1.5","properties":{},"items":[]}],)"
    R"("settings":[{"name":"port","type":"IntegerData","widget":2,"value":"9000","properties":{"MaxValue":"9999"}},)"
    R"({"name":"kind","type":"EnumData","widget":4,"value":"b","properties":{},"items":["a","b"]}]})";

/// Gives settings by words of the form NAME=VALUE. @return the complaints.
QString Give(QString& setup, const QStringList& words) {
    std::vector<GivenSetting> given;
    for (const QString& word : words)
        given.push_back({word.section(QLatin1Char('='), 0, 0), word.section(QLatin1Char('='), 1), word});
    return GiveSettings(setup, given).join(QLatin1Char('\n'));
}

XmlElement SetupOf(const QString& text) {
    QString problem;
    const auto root = XmlElement::Parse(text, &problem);
    EXPECT_TRUE(root) << problem.toStdString();
    return *root->Child("Setup");
}

QString Entry(const QString& text, const char* list, const char* name, const char* attribute) {
    const XmlElement setup = SetupOf(text);
    const XmlElement* entry = setup.Child(list)->ChildWith("Name", Text(name));
    return entry == nullptr ? Text("none") : entry->Attribute(attribute);
}

} // namespace

TEST(SetupText, HoldsWhatTheDriverPublishes) {
    const QString text = *MakeSetupText({}, Edition(kReport));
    EXPECT_EQ(Entry(text, "Monitors", "Level", "ValueType"), Text("Integer"));
    EXPECT_EQ(Entry(text, "Monitors", "Level", "MaxValue"), Text("9"));
    EXPECT_EQ(Entry(text, "Monitors", "Mood", "ValueType"), Text("String")) << "an item that looks like a number";
    EXPECT_EQ(Entry(text, "Monitors", "Rate", "ValueType"), Text("Real"));
    EXPECT_EQ(Entry(text, "Settings", "port", "Value"), Text("9000"));
    EXPECT_EQ(Entry(text, "Settings", "kind", "Value"), Text("1")) << "an enumeration keeps the index";
    EXPECT_EQ(ScriptOfSetup(text), Text("({})"));
}

TEST(SetupText, KeepsWhatTheUserEnteredInANewerEdition) {
    QString text = *MakeSetupText({}, Edition(kReport));
    ASSERT_EQ(Give(text, {Text("port=8000"), Text("kind=a")}), QString());
    text.replace(Text("Value=\"5\" ValueType=\"Integer\" DefaultScriptValue=\"5\" UseDefaultScriptValue=\"1\""),
                 Text("Value=\"7\" ValueType=\"Integer\" DefaultScriptValue=\"5\" UseDefaultScriptValue=\"0\""));
    const QString newer = *MakeSetupText(text, Edition(kReport, "newer"));
    EXPECT_EQ(Entry(newer, "Settings", "port", "Value"), Text("8000"));
    EXPECT_EQ(Entry(newer, "Settings", "kind", "Value"), Text("0"));
    EXPECT_EQ(Entry(newer, "Monitors", "Level", "Value"), Text("7"));
    EXPECT_EQ(ScriptOfSetup(newer), Text("newer"));
}

TEST(SetupText, DropsASettingThatTheNewerEditionHasNotOrNotSo) {
    QString text = *MakeSetupText({}, Edition(kReport));
    ASSERT_EQ(Give(text, {Text("port=8000")}), QString());
    QByteArray report(kReport);
    report.replace("\"9000\"", "\"80\"").replace("\"9999\"", "\"99\"");
    const QString limited = *MakeSetupText(text, Edition(report.constData()));
    EXPECT_EQ(Entry(limited, "Settings", "port", "Value"), Text("80")) << "the limits do not allow the old value";
    const QString none = *MakeSetupText(text, Edition("{}"));
    EXPECT_EQ(Entry(none, "Settings", "port", "Value"), Text("none"));
    EXPECT_EQ(Entry(none, "Monitors", "Level", "Value"), Text("none"));
}

TEST(SetupText, KeepsWhatItDoesNotKnow) {
    const QString before =
        Text("<DeviceData Version='1000' Name='d'><Setup><ControlPanel><UserMode Visibility='0'/></ControlPanel>"
             "<Commands><Command Name='f' ID='9'/></Commands><Script ProgrammingMode='1'>old</Script></Setup>"
             "</DeviceData>");
    EXPECT_EQ(ScriptOfSetup(before), Text("old"));
    const XmlElement setup = SetupOf(*MakeSetupText(before, Edition(kReport)));
    EXPECT_EQ(setup.Child("ControlPanel")->Child("UserMode")->Attribute("Visibility"), Text("0"));
    EXPECT_EQ(setup.Child("Commands")->Child("Command")->Attribute("ID"), Text("9"));
    EXPECT_EQ(setup.Child("Script")->Attribute("ProgrammingMode"), Text("1"));
    EXPECT_FALSE(MakeSetupText(Text("no setup"), Edition(kReport)));
    EXPECT_FALSE(MakeSetupText(Text("<Other/>"), Edition(kReport)));
}

TEST(SetupText, TellsAllSettingsThatAreNoneAndValuesThatAreNotTaken) {
    QString text = *MakeSetupText({}, Edition(kReport));
    const QString before = text;
    EXPECT_EQ(
        Give(text, {Text("prt=1"), Text("port=9001"), Text("kind=c")}),
        Text("prt=1: there is no setting \"prt\"; did you mean \"port\"? There are: port (9999 or less), kind (a|b)\n"
             "kind=c: takes a|b, not \"c\""));
    EXPECT_EQ(text, before) << "one that is taken does not count alone";
    EXPECT_EQ(Give(text, {Text("port=10000")}), Text("port=10000: takes at most 9999, not 10000"));
    QString none = *MakeSetupText({}, Edition("{}"));
    EXPECT_EQ(Give(none, {Text("port=1")}), Text("port=1: there is no setting \"port\"; the script has none"));
}

TEST(SetupText, TakesOfASettingWhatItsTypeHas) {
    const QString setup = *MakeSetupText({}, Edition(R"({"settings":[
        {"name":"whole","type":"IntegerData","widget":2,"value":"1","properties":{"MinValue":"0","MaxValue":"9"}},
        {"name":"flag","type":"IntegerData","widget":8,"value":"0","properties":{}},
        {"name":"real","type":"RealData","widget":3,"value":"1.5","properties":{"MinValue":"0.5"}},
        {"name":"short","type":"StringData","widget":0,"value":"","properties":{"MaxLength":"3"}},
        {"name":"day","type":"DateData","widget":5,"value":"","properties":{}},
        {"name":"at","type":"TimeData","widget":6,"value":"","properties":{}},
        {"name":"kind","type":"EnumData","widget":4,"value":"b","properties":{},"items":["a","2"]}]})"));
    const struct {
        const char* word;
        const char* stored; ///< null: not taken
        const char* complaint;
    } rows[] = {
        {"whole= 7 ", "7", ""},
        {"whole=2.5", nullptr, "whole=2.5: takes whole numbers, not 2.5"},
        {"whole=ten", nullptr, "whole=ten: takes 0 to 9, not \"ten\""},
        {"whole=", nullptr, "whole=: takes 0 to 9, not \"\""},
        {"whole=true", nullptr, "whole=true: takes 0 to 9, not \"true\""},
        {"flag=true", "1", ""},
        {"flag=false", "0", ""},
        {"flag=maybe", nullptr, "flag=maybe: takes true or false, not \"maybe\""},
        {"real=2.25", "2.25", ""},
        {"real=0.25", nullptr, "real=0.25: takes at least 0.5, not 0.25"},
        {"real=x", nullptr, "real=x: takes 0.5 or more, not \"x\""},
        {"short=abc", "abc", ""},
        {"short=abcd", nullptr, "short=abcd: takes at most 3 characters"},
        {"short=\xE2\x82\xAC", nullptr, "short=\xE2\x82\xAC: has characters beyond Latin-1, which a host cannot carry"},
        {"day=24/12/2026", "24/12/2026", ""},
        {"day=soon", nullptr, "day=soon: takes a date, DD/MM/YYYY, not \"soon\""},
        {"at=19:30:00/00", "19:30:00/00", ""},
        {"at=late", nullptr, "at=late: takes a time, HH:MM:SS/FF, not \"late\""},
        {"kind=a", "0", ""},
        {"kind=2", "1", "the item counts, not the index"},
        {"kind=1", "1", ""},
    };
    for (const auto& row : rows) {
        QString given = setup;
        const QString complaint = Give(given, {Text(row.word)});
        if (row.stored == nullptr) {
            EXPECT_EQ(complaint, Text(row.complaint));
            continue;
        }
        EXPECT_EQ(complaint, QString()) << row.word;
        EXPECT_EQ(
            Entry(given, "Settings", Text(row.word).section(QLatin1Char('='), 0, 0).toUtf8().constData(), "Value"),
            Text(row.stored))
            << row.word;
    }
}

TEST(SetupText, GivesBackTheSettingsThatLieBelow) {
    const QString below = *MakeSetupText({}, Edition(kReport));
    QString above = below;
    ASSERT_EQ(Give(above, {Text("port=1"), Text("kind=a"), Text("port=2")}), QString());
    EXPECT_EQ(SettingOfSetup(above, Text("port")), Text("2")) << "the last counts";
    EXPECT_EQ(SettingOfSetup(above, Text("kind")), Text("a"));
    EXPECT_FALSE(SettingOfSetup(above, Text("prt")));
    EXPECT_EQ(WithSettingsOf(above, below, {Text("port"), Text("none")}),
              *MakeSetupText(WithSettingsOf(above, below, {Text("port")}), Edition(kReport)));
    EXPECT_EQ(WithSettingsOf(above, below, {Text("port"), Text("kind")}), below);
}

TEST(SetupText, IsLeftAloneWhereItIsNoSetup) {
    QString text = Text("no setup");
    EXPECT_EQ(Give(text, {Text("port=1")}), QString()) << "the device refuses it, and tells";
    EXPECT_EQ(text, Text("no setup"));
}
