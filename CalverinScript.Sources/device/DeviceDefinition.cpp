#include "DeviceDefinition.h"

#include <mutex>

#include <QHash>

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
    request.findVariable = [this](const char* name) { return m_values.Find(name); };
    request.commands = functions;
    request.variables = variables;
    request.hideDefaults = hideDefaults;
    request.resetDefaultIds = resetDefaultIds;
    return BuildDefinition(request, text);
}

bool DeviceDefinition::Offer(const std::string& definition) {
    return m_values.Offer(definition);
}

/// The host is asked without the lock: it may come back, and wait for a script that waits for the list.
void DeviceDefinition::BindVariables() {
    struct Found {
        IData* data = nullptr;
        std::uint32_t instanceId = 0;
    };
    const unsigned binding = ++m_bindings;
    QHash<QString, Found> found;
    for (const MScriptVariable& variable : m_setup.Variables().Snapshot()) {
        IData* const data = m_values.Find(variable.name);
        if (binding != m_bindings)
            return;
        found.insert(variable.name, {data, data != nullptr ? data->GetInstanceID() : 0});
    }
    const std::lock_guard<MLockedList<MScriptVariable>> guard(m_setup.Variables());
    for (MScriptVariable& variable : m_setup.Variables()) {
        const auto value = found.constFind(variable.name);
        if (value == found.constEnd())
            continue;
        variable.data = value->data;
        variable.instanceId = value->instanceId;
    }
}

void DeviceDefinition::BindDefaults() {
    m_values.BindDefaults(!m_setup.IsRemovalApplied());
}

void DeviceDefinition::BindDefaultsUnlessBound() {
    m_values.BindDefaultsUnlessBound(!m_setup.IsRemovalApplied());
}
