#include "IoChannel.h"

#include "WholeNumber.h"

namespace stagehost {

IoChannel::IoChannel(ChannelType type, std::size_t index, IIOResource& resource, ChannelBank& bank)
    : m_type(type)
    , m_index(index)
    , m_resource(resource)
    , m_bank(bank) {}

KXPCode IoChannel::AddHandler(IIOResourceChannelHandler* handler) {
    if (handler == nullptr)
        return KXP_NULL_ARGUMENT;
    m_handlers.Add(handler);
    return KXP_OK;
}

KXPCode IoChannel::RemoveHandler(IIOResourceChannelHandler* handler) {
    m_handlers.Remove(handler);
    return KXP_OK;
}

std::uint32_t IoChannel::SetValue(std::int32_t value) {
    return m_resource.GetState() == KXP_RESOURCE_OPEN && m_bank.SetOutput(m_type, m_index, value) ? 1 : 0;
}

std::int32_t IoChannel::GetValue() {
    return m_bank.Value(m_type, m_index);
}

void IoChannel::TellValue(std::int32_t value) {
    m_handlers.ForEach([&](IIOResourceChannelHandler& handler) { handler.OnValueChanged(this, value, 0); });
}

ShowObjectPtr IoChannel::MakeObject(const std::string& resourceName) {
    const auto read = [this] {
        return std::vector<ObjectProperty>{{"Kind", kChannelTypeNames[static_cast<std::size_t>(m_type)]},
                                           {"Value", std::to_string(GetValue())},
                                           {"Channel", std::to_string(m_index)}};
    };
    const auto write = [this](const std::string& text) {
        const auto value = ParseWholeNumber(text);
        return value && m_bank.SetByHand(m_type, m_index, *value);
    };
    const auto ramp = [this](std::int32_t to, std::chrono::milliseconds time) {
        return m_bank.Ramp(m_type, m_index, to, time);
    };
    return std::make_shared<ResourceObject>(resourceName + "." + Plan().name,
                                            ResourceObject::Behind{read, "Value", write, ramp});
}

} // namespace stagehost
