#include <gtest/gtest.h>

#include "DefinitionBuilder.h"
#include "ScanFixture.h"
#include "XmlLines.h"

namespace {

QString Text(const char* text) {
    return QString::fromUtf8(text);
}

class DriverDefinition : public testing::Test {
protected:
    DriverDefinition() {
        request.definitionTemplate =
            "<Device><Commands><Command ID='0' Status='Active'/></Commands><Variables/></Device>";
    }
    void GivenVariable(const char* type, const char* value, const char* valueType,
                       const ScriptProperties& properties = {}) {
        MScriptVariable variable;
        variable.name = Text("v");
        variable.type = Text(type);
        variable.valueType = Text(valueType);
        variable.value = variable.defaultScriptValue = Text(value);
        variable.properties = properties;
        variable.enumItems = QStringList{Text("calm"), Text("storm")};
        request.variables = {variable};
    }
    /// The lines of what was added to the variables.
    Lines Variables() {
        Lines lines = Build();
        const auto from = std::find(lines.begin(), lines.end(), ".Variables");
        return from != lines.end() ? Lines(from + 1, lines.end()) : lines;
    }
    Lines Build() {
        std::string text;
        EXPECT_TRUE(BuildDefinition(request, text));
        return XmlLines(text);
    }

    DefinitionRequest request;
};

TEST_F(DriverDefinition, WritesEachTypeOfVariableWithItsAttributesInOrder) {
    GivenVariable("IntegerData", "5", "Integer", {{Text("MaxValue"), Text("9")}});
    EXPECT_EQ(Variables(), Lines{"..IntegerData InstanceID=0 Name=v Value=5 DefaultValue=5 MaxValue=9"});
    GivenVariable("StringData", "x", "String");
    EXPECT_EQ(Variables(), Lines{"..StringData InstanceID=0 Name=v MaxLength=-1 String=x DefaultString=x"});
    GivenVariable("StringData", "x", "String", {{Text("MaxLength"), Text("8")}});
    EXPECT_EQ(Variables(), Lines{"..StringData InstanceID=0 Name=v MaxLength=8 String=x DefaultString=x"});
    GivenVariable("RealData", "1.5", "Real");
    EXPECT_EQ(Variables(),
              Lines{"..RealData InstanceID=0 Name=v Value=1.5 DefaultValue=1.5 Precision=5 MinValue=-1.7e+308 "
                    "MaxValue=1.7e+308"});
    GivenVariable("RealData", "1.5", "Real", {{Text("MinValue"), Text("0")}, {Text("Precision"), Text("2")}});
    EXPECT_EQ(
        Variables(),
        Lines{"..RealData InstanceID=0 Name=v Value=1.5 DefaultValue=1.5 Precision=2 MinValue=0 MaxValue=1.7e+308"});
    GivenVariable("DateData", "24/12/2020", "String");
    EXPECT_EQ(Variables(), Lines{"..DateData InstanceID=0 Name=v Value=24/12/2020 Year=2020 Month=12 Day=24 "
                                 "DefaultYear=2020 DefaultMonth=12 DefaultDay=24"});
    GivenVariable("TimeData", "50", "Integer", {{Text("TimeCodeType"), Text("1")}});
    EXPECT_EQ(Variables(),
              Lines{"..TimeData InstanceID=0 Name=v Time=00:00:02/00 DefaultTime=00:00:02/00 TimeCodeType=1 "
                    "ToTimeCodeType=4"});
    GivenVariable("TimeData", "1:00", "String", {{Text("ToTimeCodeType"), Text("2")}});
    EXPECT_EQ(Variables(),
              Lines{"..TimeData InstanceID=0 Name=v Time=1:00 DefaultTime=1:00 TimeCodeType=4 ToTimeCodeType=2"});
    GivenVariable("EnumData", "storm", "String");
    EXPECT_EQ(Variables(), (Lines{"..EnumData InstanceID=0 Name=v Current=1 DefaultCurrent=1 EnumCount=0",
                                  "...EnumStrings EnumCount=2", "....EnumString Name=calm Value=0",
                                  "....EnumString Name=storm Value=1"}));
}

TEST_F(DriverDefinition, OfAnotherTypeWritesNumberAndNameAloneAndNothingThatIsNoElement) {
    GivenVariable("PrivateData", "5", "Integer");
    EXPECT_EQ(Variables(), Lines{"..PrivateData InstanceID=0 Name=v"});
    for (const char* type : {"", "a b", "x><y", "1a", "\u00e9"}) {
        GivenVariable(type, "5", "Integer");
        EXPECT_EQ(Variables(), Lines()) << type;
    }
}

TEST_F(DriverDefinition, GivesTheUsersValueWhenItCounts) {
    GivenVariable("IntegerData", "5", "Integer");
    request.variables[0].value = Text("8");
    request.variables[0].useDefaultScriptValue = false;
    EXPECT_EQ(Variables(), Lines{"..IntegerData InstanceID=0 Name=v Value=8 DefaultValue=8"});
}

TEST_F(DriverDefinition, TellsTheNumberThatTheHostHasGiven) {
    class Known : public plain::Variables {
    public:
        IData* GetVariable(const char* name) override { return std::string(name) == "v" ? &value : nullptr; }
        TypedValue value{"Desk.v", KXP_INTEGER_DATA};
    } known;
    known.value.instanceId = 42;
    GivenVariable("IntegerData", "5", "Integer");
    request.findVariable = [&known](const char* name) { return known.GetVariable(name); };
    EXPECT_EQ(Variables(), Lines{"..IntegerData InstanceID=42 Name=v Value=5 DefaultValue=5"});
}

TEST_F(DriverDefinition, AddsCommandsBehindTheBuiltInOnesInListOrderAndLeavesOutThoseWithoutANumber) {
    MScriptCommand f = CommandFromFunction(Text("f"), Text("()"));
    MScriptCommand g = CommandFromFunction(Text("g"), Text("()"));
    MScriptCommand h = CommandFromFunction(Text("h"), Text("()"));
    f.id = 9;
    g.id = 4;
    request.commands = {f, h, g};
    request.hideDefaults = true;
    Lines commands;
    for (const std::string& line : Build())
        if (line.rfind("..Command", 0) == 0)
            commands.push_back(line);
    EXPECT_EQ(
        commands,
        (Lines{"..Command ID=0 Status=Hidden",
               "..Command Name=f ID=9 Version=0 Status=Active GroupName=User Commands GroupOrder=1 GroupCmdOrder=0",
               "..Command Name=g ID=4 Version=0 Status=Active GroupName=User Commands GroupOrder=1 GroupCmdOrder=0"}));
}

} // namespace
