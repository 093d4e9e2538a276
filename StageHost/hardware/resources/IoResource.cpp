#include "IoResource.h"

namespace stagehost {

IoResource::IoResource(std::int32_t id, const ChannelsPlan& plan, ResourceVoice voice)
    : ResourceFace(id, voice.Name(), "IIOResource")
    , m_voice(std::move(voice))
    , m_bank(plan, *this) {
    for (std::size_t type = 0; type < kChannelTypeCount; ++type) {
        for (std::size_t index = 0; index < plan[type].size(); ++index)
            m_channels[type].push_back(
                std::make_unique<IoChannel>(static_cast<ChannelType>(type), index, *this, m_bank));
    }
}

std::uint32_t IoResource::GetState() {
    return m_handlers.IsEmpty() ? KXP_RESOURCE_CLOSED : KXP_RESOURCE_OPEN;
}

IIOResourceChannel* IoResource::GetChannel(std::uint32_t channelType, std::int32_t channelIndex) {
    if (channelType >= kChannelTypeCount || channelIndex < 0)
        return nullptr;
    const auto& channels = m_channels[channelType];
    return static_cast<std::size_t>(channelIndex) < channels.size()
               ? channels[static_cast<std::size_t>(channelIndex)].get()
               : nullptr;
}

KXPCode IoResource::Flush() {
    m_bank.Flush();
    return KXP_OK;
}

KXPCode IoResource::Open(IResourceHandler* handler) {
    if (handler == nullptr)
        return KXP_NULL_ARGUMENT;
    const bool wasClosed = m_handlers.IsEmpty();
    m_handlers.Add(handler);
    if (wasClosed)
        TellState();
    else
        handler->OnStateChanged();
    return KXP_OK;
}

KXPCode IoResource::Close(IResourceHandler* handler) {
    if (handler == nullptr || !m_handlers.Remove(handler))
        return KXP_OK;
    handler->OnStateChanged();
    if (m_handlers.IsEmpty())
        m_voice.TellChange("State", "Closed");
    return KXP_OK;
}

void IoResource::TellState() {
    m_voice.TellChange("State", "Open");
    m_handlers.ForEach([](IResourceHandler& handler) { handler.OnStateChanged(); });
}

void IoResource::ValueChanged(ChannelType type, std::size_t index, std::int32_t value) {
    IoChannel& channel = *m_channels[static_cast<std::size_t>(type)][index];
    m_voice.TellChangeOf(channel.GetName(), "Value", std::to_string(value));
    channel.TellValue(value);
}

std::vector<ShowObjectPtr> IoResource::MakeObjects() {
    const auto read = [this] {
        return std::vector<ObjectProperty>{{"Kind", "channels"},
                                           {"State", GetState() == KXP_RESOURCE_OPEN ? "Open" : "Closed"}};
    };
    std::vector<ShowObjectPtr> objects{
        std::make_shared<ResourceObject>(m_voice.Name(), ResourceObject::Behind{read, nullptr, {}, {}})};
    for (const auto& channels : m_channels) {
        for (const auto& channel : channels)
            objects.push_back(channel->MakeObject(m_voice.Name()));
    }
    return objects;
}

} // namespace stagehost
