#pragma once

#include <memory>

#include "FactoryManager.h"
#include "FolderManager.h"
#include "HostFaces.h"
#include "HostSettings.h"
#include "LinkManagers.h"
#include "NameTools.h"
#include "RuntimeInfo.h"
#include "VariableManager.h"

namespace stagehost {

/// The host's root object: everything that the module can ask for hangs on it.
///
/// It answers QueryInterface for the names of its services and for "IMInterface"; every service answers for all the
/// others. Which of the two links it offers is a setting. It must outlive the module.
class Host {
public:
    explicit Host(HostSettings settings);
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;

    /// What IKXPModule::Initialize is given.   [host main]
    IMInterface* Root() { return &runtimeInfo_; }

    VariableManager& Variables() { return variables_; }
    const HostSettings& Settings() const { return settings_; }

    /// Drops what the host keeps for a device that has been released.   [host main]
    void ForgetDevice(IKXPDevice* device);

private:
    const HostSettings settings_;
    HostFaces faces_;
    FactoryManager factories_;
    RuntimeInfo runtimeInfo_;
    FolderManager folders_;
    VariableManager variables_;
    NameTools names_;
    std::unique_ptr<OlderLinkManager> olderLink_; ///< null when not offered
    std::unique_ptr<NewerLinkManager> newerLink_; ///< null when not offered
};

} // namespace stagehost
