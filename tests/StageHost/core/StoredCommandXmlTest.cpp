#include "StoredCommandXml.h"

#include <gtest/gtest.h>

using namespace stagehost;

namespace {

constexpr const char* kDefinition =
    "<Device><Commands><Command ID='3' Name='Other'/><Command ID='4' Name='Fade to' Status='Active'><ObjectParams>"
    "<ObjectParam><StringData Name='Result' ID='0'><Properties>"
    "<Property Name='DataDescriptor::VarDirection' Value='mddOut'/></Properties></StringData></ObjectParam>"
    "<ObjectParam><IntegerData Name='level' ID='1' MinValue='0' MaxValue='100'/></ObjectParam>"
    "<ObjectParam><EnumData Name='mode' ID='2'><EnumStrings><EnumString Name='calm' Value='0'/>"
    "<EnumString Name='storm' Value='1'/></EnumStrings></EnumData></ObjectParam>"
    "<Properties><Property Name='KXPProp::ScriptUserCommandName' Value='Fade'/></Properties>"
    "</ObjectParams></Command></Commands></Device>";

QString Text(const char* text) {
    return QString::fromUtf8(text);
}

} // namespace

TEST(StoredCommandXml, KeepsTheValuesThatItIsMadeWith) {
    const auto made = StoredCommandXml::Make("desk", kDefinition, 4, {{"level", "50", false}, {"2", "storm", false}});
    ASSERT_TRUE(made);
    QString problem;
    const auto read = StoredCommandXml::Read(made->Print(), &problem);
    ASSERT_TRUE(read) << problem.toStdString();
    EXPECT_EQ(read->Device(), "desk");
    EXPECT_EQ(read->Command().name, "Fade to");
    EXPECT_EQ(read->Command().FunctionName(), "Fade");
    EXPECT_TRUE(read->Print().contains(Text("Current=\"1\""))) << "an enumeration keeps the index";
    const ActionSpec action = read->Action();
    EXPECT_EQ(action.device, "desk");
    EXPECT_EQ(action.command, "4");
    ASSERT_EQ(action.parameters.size(), 2u) << "what the command writes is given nothing";
    EXPECT_EQ(action.parameters[0].text, "50");
    EXPECT_EQ(action.parameters[1].text, "storm");
}

TEST(StoredCommandXml, KeepsTheVariableThatStandsForAParameter) {
    const auto made = StoredCommandXml::Make("desk", kDefinition, 4, {{"level", "Pace", true}});
    ASSERT_TRUE(made);
    const ActionSpec action = made->Action();
    EXPECT_TRUE(action.parameters[0].isVariable);
    EXPECT_EQ(action.parameters[0].text, "Pace");
    EXPECT_FALSE(action.parameters[1].isVariable);
}

TEST(StoredCommandXml, IsNotMadeOfACommandThatTheDefinitionDoesNotHave) {
    EXPECT_FALSE(StoredCommandXml::Make("desk", kDefinition, 5, {}));
    EXPECT_FALSE(StoredCommandXml::Make("desk", "<Device/>", 4, {}));
    EXPECT_FALSE(StoredCommandXml::Make("desk", "no xml", 4, {}));
}

TEST(StoredCommandXml, TellsWhatIsWrongWithItsText) {
    for (const char* bad : {"", "x", "<a/>", "<a Name='desk'/>", "<a><Command ID='4'/></a>",
                            "<a Name='desk'><Command Name='no number'/></a>", "<a Name='desk'><Command ID='x'/></a>"}) {
        QString problem;
        EXPECT_FALSE(StoredCommandXml::Read(Text(bad), &problem)) << bad;
        EXPECT_FALSE(problem.isEmpty()) << bad;
    }
}
