#include "DmxResource.h"

#include <algorithm>

#include "LevelsText.h"

namespace stagehost {

namespace {

/// Whether the channels named begin within a universe.
bool IsPlace(const void* data, std::int32_t startChannel, std::int32_t count) {
    return data != nullptr && startChannel >= 0 && startChannel < KXP_DMX_CHANNELS && count >= 0;
}

std::string CountsText(const RefusalCounts& counts) {
    std::string text;
    for (const auto& row : kRefusals) {
        if (row.refusal != Refusal::None && counts.Of(row.refusal) != 0)
            text += (text.empty() ? "" : ", ") + std::to_string(counts.Of(row.refusal)) + " " + row.name;
    }
    return text;
}

std::string SourcesText(const std::vector<std::string>& sources) {
    std::string text;
    for (const auto& source : sources)
        text += (text.empty() ? "" : ", ") + source;
    return text;
}

} // namespace

DmxResource::DmxResource(std::int32_t id, ResourceVoice voice)
    : ResourceFace(id, voice.Name(), "IDMXResource")
    , m_voice(std::move(voice)) {}

KXPCode DmxResource::AddHandler(IDMXResourceHandler* handler) {
    if (handler == nullptr)
        return KXP_NULL_ARGUMENT;
    m_handlers.Add(handler);
    return KXP_OK;
}

KXPCode DmxResource::RemoveHandler(IDMXResourceHandler* handler) {
    m_handlers.Remove(handler);
    return KXP_OK;
}

std::uint32_t DmxResource::WriteBlock(const std::uint8_t*, std::int32_t, std::int32_t, std::uint32_t) {
    return 0;
}

std::uint32_t DmxResource::ReadInput(std::uint8_t*, std::int32_t, std::int32_t) {
    return 0;
}

std::uint32_t DmxResource::ReadOutput(std::uint8_t*, std::int32_t, std::int32_t) {
    return 0;
}

void DmxResource::TellState() {
    m_voice.TellChange("State", GetState() == KXP_RESOURCE_OPEN ? "Open" : "Closed");
    m_handlers.ForEach([](IDMXResourceHandler& handler) { handler.OnStateChanged(); });
}

std::uint32_t DmxResource::Copy(const DmxFrame& frame, std::uint8_t* buffer, std::int32_t startChannel,
                                std::int32_t count) {
    if (!IsPlace(buffer, startChannel, count))
        return 0;
    std::copy_n(frame.levels.begin() + startChannel, std::min(count, KXP_DMX_CHANNELS - startChannel), buffer);
    return 1;
}

DmxOutResource::DmxOutResource(std::int32_t id, const DmxOutPlan& plan, ResourceVoice voice, DmxSender& sender)
    : DmxResource(id, std::move(voice))
    , m_sender(sender)
    , m_number(sender.Add(plan, *this)) {}

std::uint32_t DmxOutResource::GetState() {
    return m_sender.Status(m_number).open ? KXP_RESOURCE_OPEN : KXP_RESOURCE_CLOSED;
}

KXPCode DmxOutResource::Open() {
    m_sender.Open(m_number);
    return KXP_OK;
}

KXPCode DmxOutResource::Close() {
    m_sender.Close(m_number);
    return KXP_OK;
}

std::uint32_t DmxOutResource::WriteBlock(const std::uint8_t* data, std::int32_t startChannel, std::int32_t count,
                                         std::uint32_t) {
    return IsPlace(data, startChannel, count) && m_sender.Write(m_number, data, static_cast<std::size_t>(startChannel),
                                                                static_cast<std::size_t>(count))
               ? 1
               : 0;
}

std::uint32_t DmxOutResource::ReadOutput(std::uint8_t* buffer, std::int32_t startChannel, std::int32_t count) {
    return Copy(m_sender.Levels(m_number), buffer, startChannel, count);
}

ShowObjectPtr DmxOutResource::MakeObject() {
    const auto read = [this] {
        const DmxOutStatus status = m_sender.Status(m_number);
        return std::vector<ObjectProperty>{{"Kind", "dmxOut"},
                                           {"State", status.open ? "Open" : "Closed"},
                                           {"Levels", LevelsText(m_sender.Levels(m_number))},
                                           {"Frames", std::to_string(status.frames)},
                                           {"Failures", std::to_string(status.failures)},
                                           {"Late", std::to_string(status.usuallyLate.count()) + " us, 1 % more than " +
                                                        std::to_string(status.rarelyLate.count()) + " us"}};
    };
    return std::make_shared<ResourceObject>(m_voice.Name(), ResourceObject::Behind{read, nullptr, {}, {}});
}

DmxInResource::DmxInResource(std::int32_t id, const DmxInPlan& plan, ResourceVoice voice, DmxListener& listener)
    : DmxResource(id, std::move(voice))
    , m_listener(listener)
    , m_number(listener.Add(plan, *this)) {}

std::uint32_t DmxInResource::GetState() {
    return m_listener.Status(m_number).open ? KXP_RESOURCE_OPEN : KXP_RESOURCE_CLOSED;
}

KXPCode DmxInResource::Open() {
    m_listener.Open(m_number);
    return KXP_OK;
}

KXPCode DmxInResource::Close() {
    m_listener.Close(m_number);
    return KXP_OK;
}

std::uint32_t DmxInResource::ReadInput(std::uint8_t* buffer, std::int32_t startChannel, std::int32_t count) {
    return Copy(m_listener.Levels(m_number), buffer, startChannel, count);
}

void DmxInResource::LevelsChanged(const DmxFrame& frame) {
    m_handlers.ForEach([&](IDMXResourceHandler& handler) {
        handler.OnData(this, frame.levels.data(), static_cast<std::int32_t>(frame.count), 0);
    });
}

ShowObjectPtr DmxInResource::MakeObject() {
    const auto read = [this] {
        const DmxInStatus status = m_listener.Status(m_number);
        return std::vector<ObjectProperty>{{"Kind", "dmxIn"},
                                           {"State", status.open ? "Open" : "Closed"},
                                           {"Levels", LevelsText(m_listener.Levels(m_number))},
                                           {"Sources", SourcesText(status.sources)},
                                           {"Frames", std::to_string(status.counts.Of(Refusal::None))},
                                           {"Refused", CountsText(status.counts)}};
    };
    const auto write = [this](const std::string& value) {
        DmxFrame frame;
        return ReadLevels(value, frame) && m_listener.SetByHand(m_number, frame);
    };
    return std::make_shared<ResourceObject>(m_voice.Name(), ResourceObject::Behind{read, "Levels", write, {}});
}

} // namespace stagehost
