#pragma once

#include <functional>
#include <memory>

#include "CommandWaiter.h"
#include "DialogManager.h"
#include "FaceTable.h"
#include "FactoryManager.h"
#include "FolderManager.h"
#include "HardwareSpec.h"
#include "HostSettings.h"
#include "LinkManagers.h"
#include "NameTools.h"
#include "RequestDesk.h"
#include "RuntimeInfo.h"
#include "ShowModel.h"
#include "ThemeManager.h"
#include "VariableManager.h"
#include "WorkerPool.h"

namespace stagehost {

class Hardware;

/// The host's root object: everything that the module can ask for hangs on it.
///
/// It answers QueryInterface for the names of its services and for "IMInterface"; every service answers for all the
/// others. Which of the two links it offers is a setting. It must outlive the module.
class Host {
public:
    /// @param show the show's own objects. @param say hears, on any thread, what resources tell in words.
    explicit Host(HostSettings settings, const ShowSpec& show = {}, const HardwareSpec& hardware = {},
                  const std::function<void(const std::string&)>& say = {});
    /// Every device has been released before. Ends the tasks and waits a while for requests that are being served, and
    /// for the last packets of universes.
    ~Host();
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;

    /// What IKXPModule::Initialize is given.   [host main]
    IMInterface* Root() { return &m_runtimeInfo; }

    VariableManager& Variables() { return m_variables; }
    ShowModel& Model() { return m_model; }
    WorkerPool& Pool() { return m_pool; }
    CommandWaiter& Commands() { return m_commands; }
    const HostSettings& Settings() const { return m_settings; }
    /// The property selectors that the module has made known.
    const FactoryManager& Factories() const { return m_factories; }

    /// [host main]
    void SetUserMode(std::uint32_t userMode) { m_runtimeInfo.SetUserMode(userMode); }
    void SetTheme(Theme theme) { m_theme.SetTheme(theme); }

    /// Ends what a device has under way on its link, before it is released.   [host main]
    void CloseLink(IKXPDevice* device);

    /// Lets go of all scripts that wait on the older link, which does not tell whose they are. From then on a request
    /// there waits a moment at most.   [host main]
    void EndWaitingOfOlderLink();

    /// Drops what the host keeps for a device that has been released.   [host main]
    void ForgetDevice(IKXPDevice* device);

private:
    const HostSettings m_settings;
    WorkerPool m_pool;
    ChangeFeed m_feed;
    FaceTable m_faces;
    FactoryManager m_factories;
    RuntimeInfo m_runtimeInfo;
    ThemeManager m_theme;
    FolderManager m_folders;
    VariableManager m_variables;
    NameTools m_names;
    CommandWaiter m_commands;
    const std::unique_ptr<Hardware> m_hardware; ///< ends after the model, which shows it
    ShowModel m_model;
    RequestDesk m_desk;
    std::unique_ptr<DialogManager> m_dialogs;      ///< null in a host without windows
    std::unique_ptr<OlderLinkManager> m_olderLink; ///< null when not offered
    std::unique_ptr<NewerLinkManager> m_newerLink; ///< null when not offered
};

} // namespace stagehost
