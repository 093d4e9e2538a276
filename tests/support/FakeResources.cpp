#include "FakeResources.h"

namespace plain {

std::string HexOf(const std::uint8_t* data, std::size_t length) {
    constexpr char kDigits[] = "0123456789abcdef";
    std::string text;
    for (std::size_t i = 0; i < length; ++i)
        text += {kDigits[data[i] >> 4], kDigits[data[i] & 15]};
    return text;
}

void FakeSerial::Receive(const std::string& bytes) {
    handlers.Tell([&](ISerialResourceHandler& handler) {
        handler.OnData(this, reinterpret_cast<const std::uint8_t*>(bytes.data()),
                       static_cast<std::int32_t>(bytes.size()), 0);
    });
}

void FakeSerial::Happen(std::int32_t eventType, std::int32_t eventState) {
    handlers.Tell([&](ISerialResourceHandler& handler) { handler.OnEvent(this, eventType, eventState, 0); });
}

KXPCode FakeSerial::AddHandler(ISerialResourceHandler* handler, std::uint32_t mask) {
    handlers.Add(handler);
    calls.Note("AddHandler:" + std::to_string(mask));
    return KXP_OK;
}

KXPCode FakeSerial::Write(const std::uint8_t* data, std::uint32_t length, std::uint32_t reserved) {
    calls.Note("Write:" + HexOf(data, length) + (reserved == 0 ? "" : " reserved"));
    return KXP_OK;
}

KXPCode FakeSerial::NoteSetting(const char* name, std::uint32_t value) {
    calls.Note(std::string(name) + ":" + std::to_string(value));
    return KXP_OK;
}

void FakeUniverse::Receive(const std::string& frame) {
    handlers.Tell([&](IDMXResourceHandler& handler) {
        handler.OnData(this, reinterpret_cast<const std::uint8_t*>(frame.data()),
                       static_cast<std::int32_t>(frame.size()), 0);
    });
}

KXPCode FakeUniverse::AddHandler(IDMXResourceHandler* handler) {
    handlers.Add(handler);
    calls.Note("AddHandler");
    return KXP_OK;
}

std::uint32_t FakeUniverse::WriteBlock(const std::uint8_t* data, std::int32_t start, std::int32_t count,
                                       std::uint32_t reserved) {
    calls.Note("WriteBlock:" + std::to_string(start) + "," + std::to_string(count) + "," +
               HexOf(data, static_cast<std::size_t>(count)) + (reserved == 0 ? "" : " reserved"));
    return answer;
}

std::uint32_t FakeUniverse::ReadInput(std::uint8_t* buffer, std::int32_t start, std::int32_t count) {
    return Read("ReadInput:", buffer, start, count);
}

std::uint32_t FakeUniverse::ReadOutput(std::uint8_t* buffer, std::int32_t start, std::int32_t count) {
    return Read("ReadOutput:", buffer, start, count);
}

std::uint32_t FakeUniverse::Read(const char* name, std::uint8_t* buffer, std::int32_t start, std::int32_t count) {
    calls.Note(name + std::to_string(start) + "," + std::to_string(count));
    for (std::int32_t i = 0; i < count && start + i < KXP_DMX_CHANNELS; ++i)
        buffer[i] = levels[static_cast<std::size_t>(start + i)];
    return answer;
}

void FakeChannel::Become(std::int32_t newValue) {
    value = newValue;
    handlers.Tell([&](IIOResourceChannelHandler& handler) { handler.OnValueChanged(this, newValue, 0); });
}

KXPCode FakeChannel::AddHandler(IIOResourceChannelHandler* handler) {
    handlers.Add(handler);
    calls.Note("AddHandler");
    return KXP_OK;
}

KXPCode FakeChannel::RemoveHandler(IIOResourceChannelHandler* handler) {
    calls.Note("RemoveHandler");
    handlers.Remove(handler);
    return KXP_OK;
}

std::uint32_t FakeChannel::SetValue(std::int32_t newValue) {
    value = newValue;
    calls.Note("SetValue:" + std::to_string(newValue));
    return answer;
}

IIOResource* FakeChannel::GetResource() {
    return m_io;
}

FakeChannel& FakeIo::Channel(KXPChannelType type, std::int32_t index) {
    auto& channel = channels[{type, index}];
    if (channel == nullptr)
        channel = std::make_unique<FakeChannel>(this, index);
    return *channel;
}

void FakeIo::BecomeState(std::uint32_t newState) {
    state = newState;
    handlers.Tell([](IResourceHandler& handler) { handler.OnStateChanged(); });
}

IIOResourceChannel* FakeIo::GetChannel(std::uint32_t channelType, std::int32_t channelIndex) {
    const auto found = channels.find({channelType, channelIndex});
    return found != channels.end() ? found->second.get() : nullptr;
}

KXPCode FakeIo::Flush() {
    calls.Note("Flush");
    return KXP_OK;
}

KXPCode FakeIo::Open(IResourceHandler* handler) {
    handlers.Add(handler);
    calls.Note("Open");
    BecomeState(KXP_RESOURCE_OPEN);
    return KXP_OK;
}

KXPCode FakeIo::Close(IResourceHandler* handler) {
    calls.Note("Close");
    if (handlers.Count() == 1)
        BecomeState(KXP_RESOURCE_CLOSED);
    handlers.Remove(handler);
    return KXP_OK;
}

IMInterface* FakeProvider::GetResource(std::uint32_t kind, std::int32_t resourceId, std::uint32_t subtype) {
    calls.Note(std::to_string(kind) + "," + std::to_string(resourceId) + "," + std::to_string(subtype));
    const auto found = resources.find({std::int64_t{kind}, resourceId, subtype});
    return found != resources.end() ? found->second : nullptr;
}

std::int32_t FakeProvider::SelectResource(std::uint32_t kind, std::uint32_t subtype, std::int32_t resourceId,
                                          KXPWindow parent) {
    calls.Note("select:" + std::to_string(kind) + "," + std::to_string(subtype) + "," + std::to_string(resourceId) +
               "," + std::to_string(parent));
    return chosenResource;
}

IIOResourceChannel* FakeProvider::SelectChannel(std::uint32_t channelType, const char* text, KXPWindow parent) {
    calls.Note("channel:" + std::to_string(channelType) + "," + text + "," + std::to_string(parent));
    return chosenChannel;
}

} // namespace plain
