#include "DefinitionBuilder.h"

#include <cstring>

#include <tinyxml.h>

#include "CommandIds.h"
#include "CommandXml.h"
#include "DriverTables.h"
#include "GuardedXml.h"
#include "HostText.h"
#include "HostXml.h"
#include "IData.h"
#include "VariableXml.h"

namespace {

constexpr const char* kDeviceIdProperty = "ObjectParamDescriptor::DeviceID";
void HideDefaults(TiXmlElement* commands, TiXmlElement* variables) {
    for (TiXmlElement* command = commands->FirstChildElement("Command"); command != nullptr;
         command = command->NextSiblingElement("Command"))
        command->SetAttribute("Status", "Hidden");
    variables->Clear();
}

void SetDeviceNumber(TiXmlElement* commands, std::uint32_t number) {
    for (TiXmlElement* command = commands->FirstChildElement("Command"); command != nullptr;
         command = command->NextSiblingElement("Command")) {
        TiXmlElement* properties =
            TiXmlHandle(command).FirstChildElement("ObjectParams").FirstChildElement("Properties").ToElement();
        TiXmlElement* property = properties != nullptr ? properties->FirstChildElement("Property") : nullptr;
        for (; property != nullptr; property = property->NextSiblingElement("Property")) {
            const char* name = property->Attribute("Name");
            if (name != nullptr && std::strcmp(name, kDeviceIdProperty) == 0)
                property->SetAttribute("Value", std::to_string(number));
        }
    }
}

void NumberVariables(TiXmlElement* variables, const DefinitionRequest& request) {
    for (TiXmlElement* variable = variables->FirstChildElement(); variable != nullptr;
         variable = variable->NextSiblingElement()) {
        const char* name = variable->Attribute("Name");
        if (name == nullptr)
            continue;
        IData* data = request.findVariable(name);
        if (request.resetDefaultIds && IsDefaultVariable(QString::fromUtf8(name)))
            variable->SetAttribute("InstanceID", "0");
        else if (data != nullptr)
            variable->SetAttribute("InstanceID", std::to_string(data->GetInstanceID()));
    }
}

void AddCommands(TiXmlElement& commands, const DefinitionRequest& request) {
    for (const MScriptCommand& command : request.commands)
        if (IsUserCommandId(command.id))
            commands.LinkEndChild(MakeCommandElement(command).release());
}

void AddVariables(TiXmlElement& variables, const DefinitionRequest& request) {
    for (const MScriptVariable& variable : request.variables) {
        IData* data = request.findVariable(ToHostText(variable.name).constData());
        auto element = MakeVariableElement(variable, data != nullptr ? data->GetInstanceID() : variable.instanceId);
        if (element != nullptr)
            variables.LinkEndChild(element.release());
    }
}

} // namespace

bool BuildDefinition(const DefinitionRequest& request, std::string& out) {
    TiXmlDocument document;
    if (!ParseXml(document, request.definitionTemplate))
        return false;
    TiXmlElement* device = document.FirstChildElement("Device");
    TiXmlElement* commands = device != nullptr ? device->FirstChildElement("Commands") : nullptr;
    TiXmlElement* variables = device != nullptr ? device->FirstChildElement("Variables") : nullptr;
    if (commands == nullptr || variables == nullptr)
        return false;
    if (request.hideDefaults)
        HideDefaults(commands, variables);
    SetDeviceNumber(commands, request.deviceNumber);
    AddCommands(*commands, request);
    NumberVariables(variables, request);
    AddVariables(*variables, request);
    out = PrintXml(document);
    return true;
}
