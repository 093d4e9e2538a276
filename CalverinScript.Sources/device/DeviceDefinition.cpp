#include "DeviceDefinition.h"

#include <mutex>

#include "DefinitionBuilder.h"
#include "HostValues.h"
#include "IData.h"
#include "IModuleServices.h"
#include "ScriptSet.h"
#include "StoredSetup.h"

const char* DeviceDefinition::Get() {
    if (m_module == nullptr)
        return nullptr;
    if (m_setup.GetDefinition().empty()) {
        std::string text;
        if (Build(m_running.functions.Snapshot(), m_setup.GetVariables(), m_setup.IsRemovalApplied(), false, text))
            m_setup.SetDefinition(text);
        else if (const char* definitionTemplate = m_module->GetDefinitionTemplate())
            m_setup.SetDefinition(definitionTemplate);
        else
            return nullptr;
    }
    return m_setup.GetDefinition().c_str();
}

bool DeviceDefinition::Build(const ScriptCommands& functions, const ScriptVariables& variables, bool hideDefaults,
                             bool resetDefaultIds, std::string& text) {
    DefinitionRequest request;
    request.definitionTemplate = m_module != nullptr ? m_module->GetDefinitionTemplate() : nullptr;
    request.deviceNumber = m_setup.GetDeviceNumber();
    request.deviceVariables = m_values.GetVariables();
    request.commands = functions;
    request.variables = variables;
    request.hideDefaults = hideDefaults;
    request.resetDefaultIds = resetDefaultIds;
    return BuildDefinition(request, text);
}

bool DeviceDefinition::Offer(const std::string& definition) {
    return m_values.Offer(definition);
}

void DeviceDefinition::BindVariables() {
    const std::lock_guard<MLockedList<MScriptVariable>> guard(m_setup.Variables());
    for (MScriptVariable& variable : m_setup.Variables()) {
        variable.data = m_values.Find(variable.name);
        variable.instanceId = variable.data != nullptr ? variable.data->GetInstanceID() : 0;
    }
}

void DeviceDefinition::BindDefaults() {
    m_values.BindDefaults(!m_setup.IsRemovalApplied());
}

void DeviceDefinition::BindDefaultsUnlessBound() {
    m_values.BindDefaultsUnlessBound(!m_setup.IsRemovalApplied());
}
