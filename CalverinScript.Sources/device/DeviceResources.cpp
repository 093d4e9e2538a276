#include "MCalverinScript_Device.h"

#include <optional>

#include <QScriptEngine>

#include "ScriptWorld.h"

void MCalverinScript_Device::ResolveResources(const ScriptSettings& settings) {
    world->Resources().Take(FindResources(settings), services.resources);
}

/// A running script keeps its ports when a dialog is left with the resources that it had found.
void MCalverinScript_Device::ResolveChangedResources() {
    const std::vector<ResourceRequest> wanted = FindResources(storedSetup.GetSettings());
    if (!(wanted == world->Resources().GetRequests()))
        world->Resources().Take(wanted, services.resources);
}

MScriptResource* MCalverinScript_Device::FindResource(const QScriptValue& signature) {
    const std::optional<ResourceRequest> request = RequestOf(ReadResourceSignature(signature, world->Engine()));
    return request ? world->Resources().Find(*request) : nullptr;
}
