#include "DefinitionReader.h"

#include <gtest/gtest.h>

using namespace stagehost;

namespace {

std::optional<DeviceDefinition> Read(const std::string& xml) {
    return DefinitionReader().Read(xml.c_str());
}

std::string ErrorOf(const std::string& xml) {
    DefinitionReader reader;
    EXPECT_FALSE(reader.Read(xml.c_str()).has_value()) << xml;
    return reader.Error();
}

std::string WithVariables(const std::string& variables) {
    return "<Device Name=\"d\"><Commands/><Variables>" + variables + "</Variables></Device>";
}

std::string WithCommand(const std::string& params) {
    return "<Device><Commands><Command ID=\"4\" Name=\"go\" Status=\"Active\"><ObjectParams>" + params +
           "</ObjectParams></Command></Commands></Device>";
}

} // namespace

TEST(DefinitionReader, ReadsACommandWithItsParametersAndProperties) {
    const auto device = Read(WithCommand(
        R"(<ObjectParam VarType="2" ClassName="IStringData"><StringData ID="0" Name="Result" String="first">)"
        R"(<Properties><Property Name="DataDescriptor::VarDirection" Value="mddOut"/></Properties></StringData></ObjectParam>)"
        R"(<ObjectParam VarType="1"><IntegerData ID="1" Name="Level" Value="5" MinValue="0" MaxValue="100"/></ObjectParam>)"
        R"(<Properties><Property Name="ObjectParamDescriptor::DeviceID" Value="3"/></Properties>)"));
    ASSERT_TRUE(device.has_value());
    const CommandDefinition* command = device->FindCommand("go");
    ASSERT_NE(command, nullptr);
    EXPECT_EQ(device->FindCommand("4"), command);
    EXPECT_EQ(device->FindCommand("5"), nullptr);
    EXPECT_EQ(command->properties.at("ObjectParamDescriptor::DeviceID"), "3");
    ASSERT_EQ(command->parameters.size(), 2u);
    EXPECT_TRUE(IsOutParameter(command->parameters[0]));
    EXPECT_EQ(command->parameters[0].text, "first");
    EXPECT_FALSE(IsOutParameter(command->parameters[1]));
    EXPECT_EQ(command->parameters[1].type, KXP_INTEGER_DATA);
    EXPECT_EQ(command->parameters[1].maximum, 100);
}

TEST(DefinitionReader, ReadsVariablesOfEveryType) {
    const auto device = Read(WithVariables(
        R"(<IntegerData InstanceID="7" Name="i" Value="3" DefaultValue="3"/>)"
        R"(<StringData InstanceID="0" Name="s" MaxLength="9" String="t"/>)"
        R"(<RealData InstanceID="0" Name="r" Value="1.5" Precision="2" MinValue="-1.7e+308" MaxValue="1.7e+308"/>)"
        R"(<DateData InstanceID="0" Name="d" Value="02/01/1900" Year="1900" Month="1" Day="2"/>)"
        R"(<TimeData InstanceID="0" Name="t" Time="00:00:01/00" TimeCodeType="1" ToTimeCodeType="4"/>)"
        R"(<EnumData InstanceID="0" Name="e" Current="1" EnumCount="2"><EnumStrings>)"
        R"(<EnumString Name="b" Value="1"/><EnumString Name="a" Value="0"/></EnumStrings></EnumData>)"
        R"(<PrivateData InstanceID="0" Name="p" Value="x"/>)"));
    ASSERT_TRUE(device.has_value());
    ASSERT_EQ(device->variables.size(), 7u);
    EXPECT_EQ(device->variables[0].instanceId, 7u);
    EXPECT_EQ(device->variables[1].maxLength, 9);
    EXPECT_EQ(device->variables[2].minimum, -1.7e308);
    EXPECT_EQ(device->variables[2].precision, 2);
    EXPECT_EQ(device->variables[3].text, "02/01/1900");
    EXPECT_EQ(device->variables[4].timeCodeType, 1);
    EXPECT_EQ(device->variables[5].items, (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(device->variables[5].text, "1");
    EXPECT_EQ(device->variables[6].type, KXP_PRIVATE_DATA);
}

TEST(DefinitionReader, SkipsWhatItDoesNotKnow) {
    const auto device =
        Read("<?xml version=\"1.0\"?><!-- c --><Device><Info><Description>x<y/></Description></Info>"
             "<Commands><Other/></Commands><Variables><FooData Name=\"f\"/></Variables><More/></Device>");
    ASSERT_TRUE(device.has_value());
    EXPECT_TRUE(device->commands.empty());
    EXPECT_TRUE(device->variables.empty());
}

TEST(DefinitionReader, TakesBytesThatAreNoUtf8AsLatin1) {
    EXPECT_EQ(Read(WithVariables("<StringData Name=\"\xE4\" String=\"\"/>"))->variables[0].name, "\xE4");
    EXPECT_EQ(Read(WithVariables("<StringData Name=\"\xC3\xA4\" String=\"\"/>"))->variables[0].name, "\xE4");
}

TEST(DefinitionReader, TellsWhyAndWhereItRefuses) {
    EXPECT_EQ(DefinitionReader().Read(nullptr), std::nullopt);
    EXPECT_NE(ErrorOf("").find("line 1"), std::string::npos);
    EXPECT_NE(ErrorOf("<Show/>").find("the root element is not Device"), std::string::npos);
    EXPECT_NE(ErrorOf("<Device>\n<Commands>").find("line 2"), std::string::npos);
    EXPECT_NE(ErrorOf("<Device/>trailing").find("line 1"), std::string::npos);
    EXPECT_NE(ErrorOf(WithVariables("<StringData/>")).find("a variable has no Name"), std::string::npos);
    EXPECT_NE(ErrorOf(WithVariables("<StringData Name=\"a\"/><RealData Name=\"a\"/>")).find("two variables"),
              std::string::npos);
    EXPECT_NE(ErrorOf(WithVariables("<IntegerData Name=\"a\" MinValue=\"low\"/>")).find("MinValue=\"low\""),
              std::string::npos);
    EXPECT_NE(ErrorOf(WithVariables("<StringData Name=\"a\" MaxLength=\"1.5\"/>")).find("not a whole number"),
              std::string::npos);
    EXPECT_NE(ErrorOf("<Device><Commands><Command Name=\"a\"/></Commands></Device>").find("no ID"), std::string::npos);
    EXPECT_NE(ErrorOf("<Device><Commands><Command ID=\"1\"/><Command ID=\"1\"/></Commands></Device>").find("ID 1"),
              std::string::npos);
    EXPECT_NE(ErrorOf(WithCommand("<ObjectParam/>")).find("no value of a known type"), std::string::npos);
}

TEST(DefinitionReader, SurvivesDeepNesting) {
    std::string xml = "<Device>";
    for (int depth = 0; depth < 100000; ++depth)
        xml += "<a>";
    EXPECT_FALSE(Read(xml).has_value());
}
