#include "DefinitionBuilder.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include <tinyxml.h>

#include "GuardedXml.h"
#include "IKXPDevice.h"

namespace {

constexpr const char* kDeviceIdProperty = "ObjectParamDescriptor::DeviceID";
constexpr const char* kDefaultVariables[] = {"Status", "Error", "CurrentScriptFileName", "CurrentScriptText",
                                             "ScriptFunctions"};

bool IsDefaultVariable(const char* name) {
    return std::any_of(std::begin(kDefaultVariables), std::end(kDefaultVariables),
                       [&](const char* known) { return std::strcmp(known, name) == 0; });
}

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
        IData* data = request.deviceVariables != nullptr ? request.deviceVariables->GetVariable(name) : nullptr;
        if (request.resetDefaultIds && IsDefaultVariable(name))
            variable->SetAttribute("InstanceID", "0");
        else if (data != nullptr)
            variable->SetAttribute("InstanceID", std::to_string(data->GetInstanceID()));
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
    NumberVariables(variables, request);
    out = PrintXml(document);
    return true;
}
