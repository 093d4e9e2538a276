#pragma once

#include <memory>

#include "CommandWaiter.h"
#include "FactoryManager.h"
#include "FolderManager.h"
#include "HostFaces.h"
#include "HostSettings.h"
#include "LinkManagers.h"
#include "NameTools.h"
#include "RequestDesk.h"
#include "RuntimeInfo.h"
#include "ShowModel.h"
#include "VariableManager.h"
#include "WorkerPool.h"

namespace stagehost {

/// The host's root object: everything that the module can ask for hangs on it.
///
/// It answers QueryInterface for the names of its services and for "IMInterface"; every service answers for all the
/// others. Which of the two links it offers is a setting. It must outlive the module.
class Host {
public:
    /// @param show the show's own objects.
    explicit Host(HostSettings settings, const ShowSpec& show = {});
    /// Every device has been released before. Ends the tasks and waits a while for requests that are being served.
    ~Host();
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;

    /// What IKXPModule::Initialize is given.   [host main]
    IMInterface* Root() { return &runtimeInfo_; }

    VariableManager& Variables() { return variables_; }
    ShowModel& Model() { return model_; }
    WorkerPool& Pool() { return pool_; }
    CommandWaiter& Commands() { return commands_; }
    const HostSettings& Settings() const { return settings_; }

    /// Ends what a device has under way on its link, before it is released.   [host main]
    void CloseLink(IKXPDevice* device);

    /// Lets go of all scripts that wait on the older link, which does not tell whose they are. From then on a request
    /// there waits a moment at most.   [host main]
    void EndWaitingOfOlderLink();

    /// Drops what the host keeps for a device that has been released.   [host main]
    void ForgetDevice(IKXPDevice* device);

private:
    const HostSettings settings_;
    WorkerPool pool_;
    ChangeFeed feed_;
    HostFaces faces_;
    FactoryManager factories_;
    RuntimeInfo runtimeInfo_;
    FolderManager folders_;
    VariableManager variables_;
    NameTools names_;
    CommandWaiter commands_;
    ShowModel model_;
    RequestDesk desk_;
    std::unique_ptr<OlderLinkManager> olderLink_; ///< null when not offered
    std::unique_ptr<NewerLinkManager> newerLink_; ///< null when not offered
};

} // namespace stagehost
