#include "Host.h"

#include "Hardware.h"

namespace stagehost {

namespace {

constexpr std::chrono::milliseconds kLastRequests(2000);

} // namespace

Host::Host(HostSettings settings, const ShowSpec& show, const HardwareSpec& hardware,
           const std::function<void(const std::string&)>& say)
    : m_settings(std::move(settings))
    , m_factories(m_faces)
    , m_runtimeInfo(m_faces, m_settings)
    , m_theme(m_faces, m_settings.theme)
    , m_folders(m_faces, m_settings)
    , m_variables(m_faces, &m_feed)
    , m_names(m_faces)
    , m_hardware(std::make_unique<Hardware>(hardware, m_faces, m_feed, say, m_settings.dialogs))
    , m_model(m_variables, m_feed)
    , m_desk(m_model, m_pool) {
    m_model.Fill(show);
    m_model.AddResources(m_hardware->Objects());
    m_faces.Offer("IMInterface", static_cast<IMInterface*>(&m_runtimeInfo));
    if (m_settings.dialogs != nullptr)
        m_dialogs = std::make_unique<DialogManager>(m_faces, *m_settings.dialogs);
    if (m_settings.link == Link::Older || m_settings.link == Link::Both)
        m_olderLink = std::make_unique<OlderLinkManager>(m_faces, m_desk);
    if (m_settings.link == Link::Newer || m_settings.link == Link::Both)
        m_newerLink = std::make_unique<NewerLinkManager>(m_faces, m_desk);
}

Host::~Host() {
    m_model.EndTasks();
    EndWaitingOfOlderLink();
    m_pool.Close(kLastRequests);
}

void Host::CloseLink(IKXPDevice* device) {
    if (m_newerLink)
        m_newerLink->Close(device);
}

void Host::EndWaitingOfOlderLink() {
    if (m_olderLink)
        m_olderLink->EndWaiting();
}

void Host::ForgetDevice(IKXPDevice* device) {
    if (m_newerLink)
        m_newerLink->Forget(device);
}

} // namespace stagehost
