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
    ASSERT_EQ(ChangeSettings(text, {Text("port=8000"), Text("kind=a")}), QString());
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
    ASSERT_EQ(ChangeSettings(text, {Text("port=8000")}), QString());
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

TEST(SetupText, TellsASettingThatIsNoneAndAValueThatIsNotTaken) {
    QString text = *MakeSetupText({}, Edition(kReport));
    const QString before = text;
    EXPECT_NE(ChangeSettings(text, {Text("prt=1")}), QString());
    EXPECT_NE(ChangeSettings(text, {Text("port")}), QString());
    EXPECT_EQ(ChangeSettings(text, {Text("port=10000")}), Text("the setting \"port\" takes at most 9999, not 10000"));
    EXPECT_NE(ChangeSettings(text, {Text("kind=c")}), QString());
    EXPECT_EQ(text, before);
}
