#pragma once

#include <memory>

#include "DmxResource.h"
#include "HardwareSpec.h"
#include "HostFace.h"
#include "IoResource.h"
#include "IResourceProvider.h"
#include "SerialResource.h"

namespace stagehost {

class UserDialogs;

/// All resources of a show, made once, and the provider that hands them out.
class Hardware final : public HostFace<IResourceProvider> {
public:
    /// @param feed must outlive the hardware. @param say hears what is told in words; may be empty.
    /// @param dialogs where the user chooses; must outlive the hardware; null for a host without windows.   [host main]
    Hardware(const HardwareSpec& spec, FaceTable& faces, ChangeFeed& feed, const ResourceVoice::Say& say,
             UserDialogs* dialogs = nullptr);
    ~Hardware() override;

    IMInterface* GetResource(std::uint32_t kind, std::int32_t resourceId, std::uint32_t subtype) override;
    /// Without dialogs -1 and null, as when the user cancels.
    std::int32_t SelectResource(std::uint32_t kind, std::uint32_t subtype, std::int32_t resourceId,
                                KXPWindow parent) override;
    IIOResourceChannel* SelectChannel(std::uint32_t channelType, const char* text, KXPWindow parent) override;

    /// The resources and their channels as objects of the show, which must not outlive the hardware.
    const std::vector<ShowObjectPtr>& Objects() const { return m_objects; }

private:
    struct Entry {
        std::uint32_t kind;
        std::uint32_t subtype;
        std::int32_t id;
        IMInterface* resource;
    };

    void Make(const ResourceSpec& spec, const SerialPlan& plan, const ResourceVoice& voice);
    void Make(const ResourceSpec& spec, const DmxOutPlan& plan, const ResourceVoice& voice);
    void Make(const ResourceSpec& spec, const DmxInPlan& plan, const ResourceVoice& voice);
    void Make(const ResourceSpec& spec, const ChannelsPlan& plan, const ResourceVoice& voice);
    void MakeDmx(const ResourceSpec& spec, std::uint32_t subtype, std::unique_ptr<DmxResource> resource);

    UserDialogs* const m_dialogs;
    std::vector<Entry> m_entries; ///< filled once
    std::vector<ShowObjectPtr> m_objects;
    std::vector<std::unique_ptr<SerialResource>> m_serial;
    std::vector<std::unique_ptr<IoResource>> m_channels;
    std::vector<std::unique_ptr<DmxResource>> m_universes;
    std::unique_ptr<DmxSender> m_sender;     ///< null without universes that go out; ends before these do
    std::unique_ptr<DmxListener> m_listener; ///< null without universes that come in; ends before these do
};

} // namespace stagehost
