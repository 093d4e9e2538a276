#include "DeviceVariables.h"

#include <cstring>

#include <gtest/gtest.h>

#include "FaceTable.h"

using namespace stagehost;

namespace {

std::string Xml(const std::string& variables) {
    return "<Device><Commands/><Variables>" + variables + "</Variables></Device>";
}

class DeviceVariablesTest : public testing::Test {
protected:
    std::uint32_t Define(const std::string& variables) { return device.SetDefinition(Xml(variables).c_str()); }

    FaceTable faces;
    VariableManager manager{faces};
    DeviceVariables device{"desk", manager};
};

} // namespace

TEST_F(DeviceVariablesTest, GivesNumbersToVariablesThatHaveNone) {
    ASSERT_EQ(Define(R"(<StringData Name="a" InstanceID="0"/><StringData Name="b" InstanceID="0"/>)"), 1u);
    const auto a = device.GetVariable("a")->GetInstanceID();
    const auto b = device.GetVariable("b")->GetInstanceID();
    EXPECT_NE(a, 0u);
    EXPECT_NE(b, 0u);
    EXPECT_NE(a, b);
}

TEST_F(DeviceVariablesTest, KeepsAFreeNumberAndReplacesATakenOne) {
    ASSERT_EQ(Define(R"(<StringData Name="a" InstanceID="50"/><StringData Name="b" InstanceID="50"/>)"), 1u);
    EXPECT_EQ(device.GetVariable("a")->GetInstanceID(), 50u);
    EXPECT_NE(device.GetVariable("b")->GetInstanceID(), 50u);
    EXPECT_NE(device.GetVariable("b")->GetInstanceID(), 0u);
}

TEST_F(DeviceVariablesTest, NamesVariablesAfterTheDevice) {
    ASSERT_EQ(Define(R"(<StringData Name="a"/>)"), 1u);
    EXPECT_STREQ(device.GetVariable("a")->GetName(), "desk.a");
    EXPECT_EQ(manager.FindVariable("desk.a"), device.GetVariable("a"));
    EXPECT_EQ(device.GetVariable("desk.a"), nullptr);
    EXPECT_EQ(device.GetVariable("nothing"), nullptr);
    EXPECT_EQ(device.GetVariable(nullptr), nullptr);
}

TEST_F(DeviceVariablesTest, KeepsTheObjectTheNumberAndTheContentOfAVariableThatStays) {
    ASSERT_EQ(Define(R"(<StringData Name="a" InstanceID="0" String="first"/>)"), 1u);
    IData* const before = device.GetVariable("a");
    const auto number = before->GetInstanceID();
    before->SetValueFromString("changed", 0, 0);
    ASSERT_EQ(Define(R"(<IntegerData Name="new" InstanceID="0"/><StringData Name="a" InstanceID="0" String="first"/>)"),
              1u);
    EXPECT_EQ(device.GetVariable("a"), before);
    EXPECT_EQ(before->GetInstanceID(), number);
    EXPECT_EQ(device.Find("a")->Text(), "changed");
}

TEST_F(DeviceVariablesTest, TakesTheNewContentWhenTheDefinitionOfAVariableChanges) {
    ASSERT_EQ(Define(R"(<IntegerData Name="a" Value="5"/>)"), 1u);
    IData* const before = device.GetVariable("a");
    ASSERT_EQ(Define(R"(<IntegerData Name="a" Value="50" MaxValue="20"/>)"), 1u);
    EXPECT_EQ(device.GetVariable("a"), before);
    EXPECT_EQ(before->GetIntValue(), 20);
}

TEST_F(DeviceVariablesTest, MakesANewVariableWhenTheTypeChanges) {
    ASSERT_EQ(Define(R"(<IntegerData Name="a" InstanceID="0"/>)"), 1u);
    const auto number = device.GetVariable("a")->GetInstanceID();
    ASSERT_EQ(Define(R"(<StringData Name="a" InstanceID="0"/>)"), 1u);
    EXPECT_EQ(device.GetVariable("a")->GetDataType(), KXP_STRING_DATA);
    EXPECT_NE(device.GetVariable("a")->GetInstanceID(), number);
    EXPECT_EQ(manager.FindVariable("desk.a"), device.GetVariable("a"));
}

TEST_F(DeviceVariablesTest, LetsAcceptedCommandsWriteToAVariableThatIsGone) {
    ASSERT_EQ(Define(R"(<StringData Name="a"/>)"), 1u);
    IData* const gone = device.GetVariable("a");
    ASSERT_EQ(Define(""), 1u);
    EXPECT_EQ(device.GetVariable("a"), nullptr);
    EXPECT_EQ(manager.FindVariable("desk.a"), nullptr);
    gone->SetValueFromString("late", 0, 0);
    char* text = gone->GetValueAsString();
    EXPECT_STREQ(text, "late");
    gone->ReleaseString(&text);
}

TEST_F(DeviceVariablesTest, RefusesAMalformedTextAndKeepsTheOldDefinition) {
    ASSERT_EQ(Define(R"(<StringData Name="a"/>)"), 1u);
    IData* const before = device.GetVariable("a");
    EXPECT_NE(device.SetDefinition("<Device><Variables>"), 1u);
    EXPECT_FALSE(device.LastError().empty());
    EXPECT_NE(device.SetDefinition(nullptr), 1u);
    EXPECT_EQ(device.GetVariable("a"), before);
    EXPECT_EQ(device.Definition()->variables.size(), 1u);
    EXPECT_TRUE(device.IsDefinedBy(Xml(R"(<StringData Name="a"/>)").c_str()));
}

TEST_F(DeviceVariablesTest, TakesItsVariablesAwayWithTheDevice) {
    {
        DeviceVariables other("lamp", manager);
        ASSERT_EQ(other.SetDefinition(Xml(R"(<StringData Name="a"/>)").c_str()), 1u);
        EXPECT_NE(manager.FindVariable("lamp.a"), nullptr);
    }
    EXPECT_EQ(manager.FindVariable("lamp.a"), nullptr);
}

TEST_F(DeviceVariablesTest, KnowsTheStateOfADeviceOnlyWhereADriverHasNotRemovedIt) {
    const char* const forms[] = {"<Device><Commands/><Variables/></Device>",
                                 "<Device><Commands><Command ID='0' Name='Load' Status='Active'/></Commands>"
                                 "<Variables><StringData Name='Error' String='own'/></Variables></Device>",
                                 "<Device><Commands><Command ID='0' Name='Load' Status='Hidden'/></Commands>"
                                 "<Variables><StringData Name='Error' String='of the script'/></Variables></Device>"};
    ASSERT_EQ(device.SetDefinition(forms[0]), 1u);
    EXPECT_EQ(device.FindState("Error"), nullptr);
    ASSERT_EQ(device.SetDefinition(forms[1]), 1u);
    ASSERT_NE(device.FindState("Error"), nullptr);
    EXPECT_EQ(device.FindState("Error")->Text(), "own");
    ASSERT_EQ(device.SetDefinition(forms[2]), 1u);
    EXPECT_EQ(device.FindState("Error"), nullptr) << "the script's own variable tells nothing of the device";
    EXPECT_NE(device.Find("Error"), nullptr);
}

TEST_F(DeviceVariablesTest, AnswersQueryInterface) {
    EXPECT_EQ(QueryFace<IDeviceVariables>(&device, "IDeviceVariables"), &device);
    EXPECT_EQ(QueryFace<IMInterface>(&device, "INothing"), nullptr);
    EXPECT_EQ(device.QueryInterface(nullptr, nullptr), KXP_BAD_INTERFACE_ARG);
}
