#include "SerialResource.h"

#include "BorderText.h"

namespace stagehost {

SerialResource::SerialResource(std::int32_t id, const SerialPlan& plan, ResourceVoice voice)
    : ResourceFace(id, voice.Name(), "ISerialResource")
    , m_voice(std::move(voice))
    , m_path(plan.port)
    , m_port(plan.port, *this) {
    for (std::size_t index = 0; index < kSerialSettingCount; ++index) {
        const auto setting = static_cast<SerialSetting>(index);
        if (const auto value = plan.settings.Get(setting))
            m_port.Set(setting, *value);
    }
}

std::uint32_t SerialResource::GetState() {
    return m_port.Status().open ? KXP_RESOURCE_OPEN : KXP_RESOURCE_CLOSED;
}

KXPCode SerialResource::Open() {
    m_port.Open();
    return KXP_OK;
}

KXPCode SerialResource::Close() {
    m_port.Close();
    return KXP_OK;
}

KXPCode SerialResource::AddHandler(ISerialResourceHandler* handler, std::uint32_t mask) {
    if (handler == nullptr)
        return KXP_NULL_ARGUMENT;
    m_handlers.Add(handler, mask);
    return KXP_OK;
}

KXPCode SerialResource::RemoveHandler(ISerialResourceHandler* handler) {
    m_handlers.Remove(handler);
    return KXP_OK;
}

KXPCode SerialResource::Write(const std::uint8_t* data, std::uint32_t length, std::uint32_t) {
    if (data == nullptr && length != 0)
        return KXP_NULL_ARGUMENT;
    return m_port.Write(data, length) ? KXP_OK : KXP_NOT_IMPLEMENTED;
}

KXPCode SerialResource::Set(SerialSetting setting, std::uint32_t value) {
    return m_port.Set(setting, value) ? KXP_OK : KXP_NOT_IMPLEMENTED;
}

void SerialResource::StateChanged() {
    m_voice.TellChange("State", m_port.Status().open ? "Open" : "Closed");
    m_handlers.ForEach([](ISerialResourceHandler& handler) { handler.OnStateChanged(); });
}

void SerialResource::DataCame(const std::uint8_t* data, std::size_t size) {
    m_handlers.ForEach(KXP_SERIAL_DATA, [&](ISerialResourceHandler& handler) {
        handler.OnData(this, data, static_cast<std::int32_t>(size), 0);
    });
}

void SerialResource::Happened(SerialEvent event, bool state) {
    m_handlers.ForEach(KXP_SERIAL_EVENTS, [&](ISerialResourceHandler& handler) {
        handler.OnEvent(this, static_cast<std::int32_t>(event), state ? 1 : 0, 0);
    });
}

void SerialResource::Told(const std::string& text) {
    m_voice.TellWords(text);
}

ShowObjectPtr SerialResource::MakeObject() {
    const auto read = [this] {
        const SerialStatus status = m_port.Status();
        return std::vector<ObjectProperty>{{"Kind", "serial"},
                                           {"State", status.open ? "Open" : "Closed"},
                                           {"Port", ToBorderText(m_path)},
                                           {"Received", std::to_string(status.received)},
                                           {"Sent", std::to_string(status.sent)},
                                           {"Refused", std::to_string(status.refused)},
                                           {"Problem", ToBorderText(FromOutsideText(status.problem))}};
    };
    return std::make_shared<ResourceObject>(m_voice.Name(), ResourceObject::Behind{read, nullptr, {}, {}});
}

} // namespace stagehost
