#include <gtest/gtest.h>

#include <tinyxml.h>

#include "CommandXml.h"
#include "GuardedXml.h"
#include "ScanFixture.h"
#include "XmlLines.h"

namespace {

MScriptCommand Fade() {
    MScriptCommand command = CommandFromFunction(QStringLiteral("Fade"), QStringLiteral("function Fade(level, mood)"));
    command.id = 7;
    command.params[1].type = QStringLiteral("IntegerData");
    command.params[1].properties.append({QStringLiteral("MaxValue"), QStringLiteral("100")});
    command.params[2].type = QStringLiteral("EnumData");
    command.params[2].items = QStringList{QStringLiteral("calm"), QStringLiteral("storm")};
    return command;
}

MScriptCommand ReadBack(const std::string& xml, bool expected = true) {
    TiXmlDocument document;
    EXPECT_TRUE(ParseXml(document, xml.c_str())) << xml;
    MScriptCommand command;
    EXPECT_EQ(ReadCommandElement(*document.RootElement(), command), expected) << xml;
    return command;
}

TEST(CommandElement, HasTheStatedElementsAndAttributesInTheirOrder) {
    const Lines expected = {
        "Command Name=Fade ID=7 Version=0 Status=Active GroupName=User Commands GroupOrder=1 GroupCmdOrder=0",
        ".ObjectParams Version=0",
        "..ObjectParam ID=0 VarType=2 ClassName=IStringData",
        "...StringData Name=Result ID=0",
        "....Properties",
        ".....Property Name=DataDescriptor::AcceptVariable Value=true",
        ".....Property Name=DataDescriptor::VarDirection Value=mddOut",
        ".....Property Name=KXPProp::ScriptUserCommandParamName Value=Result",
        "..ObjectParam ID=1 VarType=1 ClassName=IIntegerData",
        "...IntegerData Name=level ID=1 MaxValue=100",
        "....Properties",
        ".....Property Name=DataDescriptor::AcceptVariable Value=true",
        ".....Property Name=DataDescriptor::VarDirection Value=mddIn",
        ".....Property Name=KXPProp::ScriptUserCommandParamName Value=level",
        "..ObjectParam ID=2 VarType=4 ClassName=IEnumData",
        "...EnumData Name=mood ID=2",
        "....EnumStrings EnumCount=2",
        ".....EnumString Name=calm Value=0",
        ".....EnumString Name=storm Value=1",
        "....Properties",
        ".....Property Name=DataDescriptor::AcceptVariable Value=true",
        ".....Property Name=DataDescriptor::VarDirection Value=mddIn",
        ".....Property Name=KXPProp::ScriptUserCommandParamName Value=mood",
        "..Properties",
        "...Property Name=KXPProp::ScriptUserCommandName Value=Fade",
    };
    EXPECT_EQ(XmlLines(*MakeCommandElement(Fade())), expected);
}

TEST(CommandElement, TellsThePreviousNumberAndLetsTheScriptsPropertiesOverride) {
    MScriptCommand command = Fade();
    command.params.clear();
    command.previousId = 4;
    command.active = false;
    command.properties = {{QStringLiteral("GroupName"), QStringLiteral("Light")},
                          {QStringLiteral("Name"), QStringLiteral("Fade to")},
                          {QStringLiteral("Version"), QStringLiteral("2")}};
    EXPECT_EQ(XmlLines(*MakeCommandElement(command)).at(0),
              "Command Name=Fade to ID=7 PreviousID=4 Version=2 Status=Disabled GroupName=Light GroupOrder=1 "
              "GroupCmdOrder=0");
}

TEST(CommandElement, IsReadBackAsItWasWritten) {
    MScriptCommand command = Fade();
    command.previousId = 4;
    command.active = false;
    command.properties = {{QStringLiteral("Name"), QStringLiteral("Fade & to")},
                          {QStringLiteral("GroupOrder"), QStringLiteral("3")}};
    const MScriptCommand read = ReadBack(PrintXml(*MakeCommandElement(command)));
    EXPECT_EQ(XmlLines(*MakeCommandElement(read)), XmlLines(*MakeCommandElement(command)));
    EXPECT_EQ(read.name, command.name);
    EXPECT_EQ(read.previousId, 4);
    EXPECT_FALSE(read.active);
    EXPECT_EQ(read.params[1].properties, command.params[1].properties);
    EXPECT_EQ(read.params[2].items, command.params[2].items);
}

TEST(CommandElement, WhoseFunctionHasAnotherNameThanIsShownKeepsBoth) {
    const MScriptCommand read = ReadBack("<Command Name='Fade to' ID='5' Status='Active'><ObjectParams><Properties>"
                                         "<Property Name='KXPProp::ScriptUserCommandName' Value='Fade'/>"
                                         "</Properties></ObjectParams></Command>");
    EXPECT_EQ(read.name, QStringLiteral("Fade"));
    EXPECT_EQ(Told(read.properties), "Name=Fade to");
}

TEST(CommandElement, KeepsAnotherStatusAsAProperty) {
    const MScriptCommand read = ReadBack("<Command Name='F' Status='Hidden'/>");
    EXPECT_TRUE(read.active);
    EXPECT_EQ(Told(read.properties), "Status=Hidden");
    EXPECT_EQ(read.id, MScriptCommand::kNoId);
}

TEST(CommandElement, WithoutANameOrAStatusIsNone) {
    for (const char* bad : {"<Command/>", "<Command Name='' Status='Active'/>", "<Command Name='F'/>",
                            "<Command Name='F' Status=''/>", "<Command Status='Active'/>"})
        ReadBack(bad, false);
}

TEST(CommandElement, LosesTheParametersThatAreNone) {
    const MScriptCommand read =
        ReadBack("<Command Name='F' Status='Active'><ObjectParams><ObjectParam/>"
                 "<ObjectParam><NoData Name='a'/></ObjectParam>"
                 "<ObjectParam><IntegerData/></ObjectParam>"
                 "<ObjectParam><Comment/><RealData Name='b' MinValue='low' MaxValue='2'/></ObjectParam>"
                 "</ObjectParams></Command>");
    ASSERT_EQ(read.params.size(), 1);
    EXPECT_EQ(read.params[0].name, QStringLiteral("b"));
    EXPECT_EQ(Told(read.params[0].properties), "MaxValue=2");
}

} // namespace
