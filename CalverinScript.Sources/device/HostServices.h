#pragma once

class IFolderManager;
class IKXPDevice;
class IManagerRemote;
class IManagerRemote2;
class IManagerRemoteManager;
class IMInterface;
class IObjectNameTools;
class IResourceProvider;
class IVariableManager;

/// What a device uses of its host: found once, when the device is made, and never changed. Each may be missing; all
/// are the host's and live as long as the device.   [any]
struct HostServices {
    /// Asks the host, which may be null. @param device the face that the newer link gets.   [host main]
    static HostServices Find(IMInterface* host, IKXPDevice* device);

    IManagerRemoteManager* linkManager = nullptr; ///< hands out older links
    IManagerRemote* link = nullptr;               ///< the older link
    IManagerRemote2* newerLink = nullptr;         ///< the newer link, which takes contexts
    IFolderManager* folders = nullptr;
    IVariableManager* variables = nullptr;
    IObjectNameTools* names = nullptr;
    IResourceProvider* resources = nullptr;
};
