#include <memory>

#include <tinyxml.h>

#include "DefinitionBuilder.h"
#include "DeviceFixture.h"
#include "GuardedXml.h"
#include "IKXPModule.h"
#include "MCalverinScript_Module.h"
#include "ModuleResources.h"

namespace {

using TextLines = std::vector<std::string>;

std::string Template() {
    return FindModuleResource(ModuleResource::RawData, kDefinitionId).toStdString();
}

/// Elements one by one, depth first: a point for each level, tag and attributes in their order.
void Flatten(const TiXmlElement& element, const std::string& indent, TextLines& lines) {
    std::string line = indent + element.Value();
    for (const TiXmlAttribute* a = element.FirstAttribute(); a != nullptr; a = a->Next())
        line += std::string(" ") + a->Name() + "=" + a->Value();
    lines.push_back(line);
    for (const TiXmlElement* child = element.FirstChildElement(); child != nullptr; child = child->NextSiblingElement())
        Flatten(*child, indent + ".", lines);
}

TextLines Elements(const std::string& xml) {
    TiXmlDocument document;
    TextLines lines;
    if (ParseXml(document, xml.c_str()))
        Flatten(*document.RootElement(), "", lines);
    return lines;
}

struct CommandRow {
    int id;
    const char* name;
};
constexpr CommandRow kCommands[] = {
    {0, "Load From File"}, {1, "Load From Text"}, {2, "Execute Function"}, {3, "Execute Function With Params"}};

struct ParamRow {
    int command;
    int id;
    const char* name;
    const char* direction;
    const char* selector; ///< null for a parameter that has neither a selector nor a subtype
};
constexpr ParamRow kParams[] = {
    {0, 0, "Script File Name", "mddIn", "IScriptSelector"},
    {1, 0, "Script Text", "mddIn", "IScriptTextSelector"},
    {2, 0, "Script Function Name", "mddIn", "IFunctionSelector"},
    {3, 0, "Script Function Name", "mddIn", "IFunctionSelector"},
    {3, 1, "Result", "mddOut", nullptr},
    {3, 2, "Param1", "mddIn", nullptr},
    {3, 3, "Param2", "mddIn", nullptr},
    {3, 4, "Param3", "mddIn", nullptr},
    {3, 5, "Param4", "mddIn", nullptr},
    {3, 6, "Param5", "mddIn", nullptr},
    {3, 7, "Param6", "mddIn", nullptr},
    {3, 8, "Param7", "mddIn", nullptr},
    {3, 9, "Param8", "mddIn", nullptr},
};

void AddParam(TextLines& lines, const ParamRow& row) {
    lines.emplace_back("....ObjectParam VarType=2 ClassName=IStringData");
    lines.push_back(".....StringData ID=" + std::to_string(row.id) + " Name=" + row.name + " String=");
    lines.emplace_back("......Properties");
    lines.emplace_back(".......Property Name=DataDescriptor::AcceptVariable Value=true");
    lines.push_back(std::string(".......Property Name=DataDescriptor::VarDirection Value=") + row.direction);
    if (row.selector == nullptr)
        return;
    lines.emplace_back(".......Property Name=DataDescriptor::VarSubType Value=mdtUndefined");
    lines.push_back(std::string(".......Property Name=DataDescriptor::IPropertySelector Value=") + row.selector);
}

/// The elements that a definition of built-in commands and default variables has.
TextLines Expected(const std::string& deviceNumber = "0", const std::string& status = "Active", bool variables = true) {
    TextLines lines = {"Device ID= Name=", ".Info", "..Description", ".Commands"};
    for (const CommandRow& command : kCommands) {
        lines.push_back("..Command ID=" + std::to_string(command.id) + " Name=" + command.name +
                        " Version=0 Status=" + status);
        lines.emplace_back("...ObjectParams Version=0");
        for (const ParamRow& row : kParams)
            if (row.command == command.id)
                AddParam(lines, row);
        if (command.id < 2)
            continue;
        lines.emplace_back("....Properties");
        lines.push_back(".....Property Name=ObjectParamDescriptor::DeviceID Value=" + deviceNumber);
    }
    lines.emplace_back(".Variables");
    const TextLines defaults = {"..EnumData Name=Status InstanceID=0 Current=0 DefaultCurrent=0",
                                "...EnumStrings",
                                "....EnumString Name=Ready Value=0",
                                "....EnumString Name=Loading Value=1",
                                "....EnumString Name=Executing Value=2",
                                "..StringData Name=Error InstanceID=0 MaxLength=-1 String=",
                                "..StringData Name=CurrentScriptFileName InstanceID=0 MaxLength=-1 String=",
                                "..StringData Name=CurrentScriptText InstanceID=0 MaxLength=-1 String=",
                                "...Properties",
                                "....Property Name=DataDescriptor::DontStoreValue Value=true",
                                "..StringData Name=ScriptFunctions InstanceID=0 MaxLength=-1 String="};
    if (variables)
        lines.insert(lines.end(), defaults.begin(), defaults.end());
    return lines;
}

constexpr const char* kComments[] = {
    "<!-- commands must have Unique IDs -->", "<!-- params must have IDs for versionning purpose -->",
    "<!-- InstanceID must be initialized at 0, the host will allocate the actual ID -->"};

TEST(DefinitionTemplate, HasTheStatedElementsAndAttributesInTheirOrder) {
    EXPECT_EQ(Elements(Template()), Expected());
}

TEST(DefinitionTemplate, HasItsThreeComments) {
    for (const char* comment : kComments)
        EXPECT_NE(Template().find(comment), std::string::npos) << comment;
}

class Definition : public testing::Test {
protected:
    void SetUp() override { request.definitionTemplate = text.c_str(); }
    /// @param known must outlive what is built.
    void Know(IDeviceVariables& known) {
        request.findVariable = [&known](const char* name) { return known.GetVariable(name); };
    }
    std::string Build() {
        std::string out = "untouched";
        EXPECT_TRUE(BuildDefinition(request, out));
        return out;
    }
    bool Refuses(const char* definitionTemplate) {
        request.definitionTemplate = definitionTemplate;
        std::string out = "untouched";
        const bool built = BuildDefinition(request, out);
        EXPECT_EQ(out == "untouched", !built);
        return !built;
    }

    const std::string text = Template();
    DefinitionRequest request;
    plain::Variables variables;
};

TEST_F(Definition, WithoutAScriptIsTheTemplateWithTheDevicesNumber) {
    request.deviceNumber = 17;
    EXPECT_EQ(Elements(Build()), Expected("17"));
}

TEST_F(Definition, KeepsTheComments) {
    const std::string built = Build();
    for (const char* comment : kComments)
        EXPECT_NE(built.find(comment), std::string::npos) << comment;
}

TEST_F(Definition, IsIndentedByTabsAndParsesBackToTheSameElements) {
    const std::string built = Build();
    EXPECT_NE(built.find("\n\t<Commands>\n\t\t<Command ID=\"0\""), std::string::npos);
    EXPECT_EQ(built.find("\n "), std::string::npos);
    TiXmlDocument document;
    ASSERT_TRUE(ParseXml(document, built.c_str()));
    EXPECT_EQ(PrintXml(document), built);
}

TEST_F(Definition, OfHiddenDefaultsKeepsTheCommandsHiddenAndDropsTheVariables) {
    request.hideDefaults = true;
    EXPECT_EQ(Elements(Build()), Expected("0", "Hidden", false));
}

TEST_F(Definition, OfHiddenDefaultsHidesEveryCommandOfTheTemplate) {
    request.hideDefaults = true;
    request.definitionTemplate = "<Device><Commands><Command ID='9'/><Command ID='8' Status='Disabled'/></Commands>"
                                 "<Variables><!-- c --><X Name='x'/></Variables></Device>";
    EXPECT_EQ(Elements(Build()), (TextLines{"Device", ".Commands", "..Command ID=9 Status=Hidden",
                                            "..Command ID=8 Status=Hidden", ".Variables"}));
}

TEST_F(Definition, ChangesTheDeviceNumberOnlyInThePropertiesOfAWholeCommand) {
    request.deviceNumber = 5;
    const std::string property = "<Property Name='ObjectParamDescriptor::DeviceID' Value='0'/>";
    const std::string other = "<Property Name='Other' Value='0'/>";
    const std::string xml =
        "<Device><Commands><Command><ObjectParams><ObjectParam><Properties>" + property +
        "</Properties></ObjectParam><Properties>" + other + property + property +
        "<Property Value='0'/></Properties></ObjectParams></Command></Commands><Variables/></Device>";
    request.definitionTemplate = xml.c_str();
    const std::string changed = "Property Name=ObjectParamDescriptor::DeviceID Value=";
    EXPECT_EQ(Elements(Build()),
              (TextLines{"Device", ".Commands", "..Command", "...ObjectParams", "....ObjectParam", ".....Properties",
                         "......" + changed + "0", "....Properties", ".....Property Name=Other Value=0",
                         "....." + changed + "5", "....." + changed + "5", ".....Property Value=0", ".Variables"}));
}

TEST_F(Definition, GivesKnownVariablesTheirNumbersAndLeavesOthers) {
    variables.status.Plain().m_instanceId = 101;
    variables.error.m_instanceId = 4294967295u;
    Know(variables);
    const std::string built = Build();
    EXPECT_NE(built.find("Name=\"Status\" InstanceID=\"101\""), std::string::npos);
    EXPECT_NE(built.find("Name=\"Error\" InstanceID=\"4294967295\""), std::string::npos);
    EXPECT_NE(built.find("Name=\"ScriptFunctions\" InstanceID=\"0\""), std::string::npos);
}

TEST_F(Definition, LeavesTheNumbersOfVariablesThatTheHostDoesNotKnow) {
    Know(variables);
    request.definitionTemplate = "<Device><Commands/><Variables><StringData Name='Mine' InstanceID='7'/>"
                                 "<StringData InstanceID='8'/></Variables></Device>";
    const std::string built = Build();
    EXPECT_NE(built.find("InstanceID=\"7\""), std::string::npos);
    EXPECT_NE(built.find("InstanceID=\"8\""), std::string::npos);
}

/// Knows one variable more.
class MoreVariables : public plain::Variables {
public:
    MoreVariables() { mine.m_instanceId = 55; }
    IData* GetVariable(const char* name) override {
        return std::string(name) == "Mine" ? &mine : plain::Variables::GetVariable(name);
    }
    plain::Value mine{"Mine"};
};

TEST_F(Definition, OfResetNumbersGivesTheDefaultVariablesNoneAndKeepsThoseOfOthers) {
    MoreVariables more;
    more.error.m_instanceId = 12;
    Know(more);
    request.resetDefaultIds = true;
    request.definitionTemplate =
        "<Device><Commands/><Variables><StringData Name='Error' InstanceID='3'/><EnumData Name='Status' "
        "InstanceID='4'/>"
        "<StringData Name='CurrentScriptFileName' InstanceID='5'/><StringData Name='CurrentScriptText' InstanceID='6'/>"
        "<StringData Name='ScriptFunctions' InstanceID='7'/><StringData Name='Mine' "
        "InstanceID='8'/></Variables></Device>";
    const std::string built = Build();
    EXPECT_EQ(Elements(built),
              (TextLines{"Device", ".Commands", ".Variables", "..StringData Name=Error InstanceID=0",
                         "..EnumData Name=Status InstanceID=0", "..StringData Name=CurrentScriptFileName InstanceID=0",
                         "..StringData Name=CurrentScriptText InstanceID=0",
                         "..StringData Name=ScriptFunctions InstanceID=0", "..StringData Name=Mine InstanceID=55"}));
    request.findVariable = [](const char*) { return nullptr; };
    EXPECT_NE(Build().find("Name=\"Error\" InstanceID=\"0\""), std::string::npos);
}

TEST_F(Definition, IsNotBuiltFromATemplateThatIsMissingOrMalformed) {
    EXPECT_TRUE(Refuses(nullptr));
    for (const char* bad :
         {"", "text", "<Device>", "<Device/>", "<Device><Commands/></Device>", "<Device><Variables/></Device>",
          "<Other><Commands/><Variables/></Other>", "<Device><Commands/><Variables/></Devices>",
          "<Device><Commands/><Variables a='\xFF'/></Device>"})
        EXPECT_TRUE(Refuses(bad)) << bad;
    EXPECT_FALSE(Refuses("<Device><Commands/><Variables/></Device>"));
}

class DefinitionOfADevice : public DeviceFixture {};

TEST_F(DefinitionOfADevice, IsNullWithoutATemplate) {
    EXPECT_EQ(device->GetDefinition(), nullptr);
}

TEST_F(DefinitionOfADevice, IsTheTemplateItselfWhenThatIsMalformed) {
    module.definition = "<Device>";
    EXPECT_STREQ(device->GetDefinition(), "<Device>");
}

TEST_F(DefinitionOfADevice, StaysAtItsPlaceUntilSomethingChangesIt) {
    const std::string text = Template();
    module.definition = text.c_str();
    const char* definition = device->GetDefinition();
    EXPECT_EQ(Elements(definition), Expected("0"));
    EXPECT_EQ(device->GetDefinition(), definition);
}

TEST(DefinitionsOfTwoDevices, NameDifferentDevicesInTheCommandsThatOfferFunctions) {
    IKXPModule* module = nullptr;
    ASSERT_EQ(MCalverinScript_Module::GetEntryPoint(&module), KXP_OK);
    int deviceHost = 0;
    module->SetDeviceHost(&deviceHost);
    IKXPDevice* first = nullptr;
    IKXPDevice* second = nullptr;
    ASSERT_EQ(module->CreateDevice(nullptr, &first), KXP_OK);
    ASSERT_EQ(module->CreateDevice(nullptr, &second), KXP_OK);
    EXPECT_EQ(Elements(first->GetDefinition()), Expected("1"));
    EXPECT_EQ(Elements(second->GetDefinition()), Expected("2"));
    EXPECT_EQ(Elements(module->GetDefinition()), Expected("0"));
    first->Release();
    second->Release();
    module->Release();
}

} // namespace
