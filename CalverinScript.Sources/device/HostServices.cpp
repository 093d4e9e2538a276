#include "HostServices.h"

#include "FaceAnswer.h"
#include "IHostServices.h"
#include "IManagerRemote.h"
#include "IResourceProvider.h"

HostServices HostServices::Find(IMInterface* host, IKXPDevice* device) {
    HostServices services;
    services.linkManager = QueryFace<IManagerRemoteManager>(host, "IManagerRemoteManager");
    if (services.linkManager != nullptr)
        services.link = services.linkManager->GetRemote();
    if (auto* manager = QueryFace<IManagerRemoteManager2>(host, "IManagerRemoteManager2"))
        services.newerLink = manager->GetRemote(device);
    services.folders = QueryFace<IFolderManager>(host, "IFolderManager");
    services.variables = QueryFace<IVariableManager>(host, "IVariableManager");
    services.names = QueryFace<IObjectNameTools>(host, "IObjectNameTools");
    services.resources = QueryFace<IResourceProvider>(host, "IResourceProvider");
    return services;
}
