#pragma once

#include <atomic>
#include <memory>

#include "IoChannel.h"
#include "ModuleHandlers.h"
#include "ResourceFace.h"
#include "ResourceVoice.h"

namespace stagehost {

/// Channels behind the contract. The resource is open while a handler has it open.
class IoResource final : public ResourceFace<IIOResource>, private ChannelNews {
public:
    IoResource(std::int32_t id, const ChannelsPlan& plan, ResourceVoice voice);

    std::uint32_t GetState() override;
    IIOResourceChannel* GetChannel(std::uint32_t channelType, std::int32_t channelIndex) override;
    KXPCode Flush() override;
    KXPCode Open(IResourceHandler* handler) override;
    KXPCode Close(IResourceHandler* handler) override;
    KXPCode Reserved9() override { return KXP_NOT_IMPLEMENTED; }
    KXPCode Reserved10() override { return KXP_NOT_IMPLEMENTED; }
    KXPCode Reserved17() override { return KXP_NOT_IMPLEMENTED; }

    /// The resource and its channels for people.
    std::vector<ShowObjectPtr> MakeObjects();

private:
    void TellState();
    void ValueChanged(ChannelType type, std::size_t index, std::int32_t value) override;

    const ResourceVoice m_voice;
    ModuleHandlers<IResourceHandler> m_handlers;
    std::array<std::vector<std::unique_ptr<IoChannel>>, kChannelTypeCount> m_channels; ///< filled once
    ChannelBank m_bank;
};

} // namespace stagehost
