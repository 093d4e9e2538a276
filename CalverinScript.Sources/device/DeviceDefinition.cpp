#include "MCalverinScript_Device.h"

#include <mutex>

#include "DefinitionBuilder.h"
#include "IData.h"
#include "IModuleServices.h"
#include "ThreadPromise.h"

const char* MCalverinScript_Device::GetDefinition() {
    ExpectThread(ThreadWord::HostMain, "IKXPDevice::GetDefinition");
    if (module == nullptr || door.IsClosed())
        return nullptr;
    if (storedSetup.GetDefinition().empty()) {
        std::string text;
        if (MakeDefinition(GetLiveSet().functions.Snapshot(), storedSetup.GetVariables(),
                           storedSetup.IsRemovalApplied(), false, text))
            storedSetup.SetDefinition(text);
        else if (const char* definitionTemplate = module->GetDefinitionTemplate())
            storedSetup.SetDefinition(definitionTemplate);
        else
            return nullptr;
    }
    return storedSetup.GetDefinition().c_str();
}

bool MCalverinScript_Device::MakeDefinition(const ScriptCommands& functions, const ScriptVariables& variables,
                                            bool hideDefaults, bool resetDefaultIds, std::string& text) {
    DefinitionRequest request;
    request.definitionTemplate = module != nullptr ? module->GetDefinitionTemplate() : nullptr;
    request.deviceNumber = storedSetup.GetDeviceNumber();
    request.deviceVariables = values.GetVariables();
    request.commands = functions;
    request.variables = variables;
    request.hideDefaults = hideDefaults;
    request.resetDefaultIds = resetDefaultIds;
    return BuildDefinition(request, text);
}

/// @return whether the host has taken it.
bool MCalverinScript_Device::Offer(const std::string& definition) {
    return values.Offer(definition);
}

/// The host's values of the device's variables, after it has taken their definition.
void MCalverinScript_Device::BindLiveVariables() {
    const std::lock_guard<MLockedList<MScriptVariable>> guard(storedSetup.Variables());
    for (MScriptVariable& variable : storedSetup.Variables()) {
        variable.data = values.Find(variable.name);
        variable.instanceId = variable.data != nullptr ? variable.data->GetInstanceID() : 0;
    }
}

void MCalverinScript_Device::BindDefaultVariables() {
    values.BindDefaults(!storedSetup.IsRemovalApplied());
}

/// The same where they were never found.
void MCalverinScript_Device::FindDefaultVariables() {
    values.BindDefaultsUnlessBound(!storedSetup.IsRemovalApplied());
}
