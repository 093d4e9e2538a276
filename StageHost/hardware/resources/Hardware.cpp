#include "Hardware.h"

#include <algorithm>
#include <optional>

#include "UserDialogs.h"

namespace stagehost {

namespace {

std::string NameOf(IMInterface* resource) {
    return QueryFace<IResourceProxy>(resource, "IResourceProxy")->GetName();
}

} // namespace

Hardware::Hardware(const HardwareSpec& spec, FaceTable& faces, ChangeFeed& feed, const ResourceVoice::Say& say,
                   UserDialogs* dialogs)
    : HostFace(faces)
    , m_dialogs(dialogs) {
    OfferAs("IResourceProvider");
    for (const auto& resource : spec)
        std::visit([&](const auto& plan) { Make(resource, plan, ResourceVoice(resource.name, feed, say)); },
                   resource.plan);
}

Hardware::~Hardware() = default;

IMInterface* Hardware::GetResource(std::uint32_t kind, std::int32_t resourceId, std::uint32_t subtype) {
    const auto found = std::find_if(m_entries.begin(), m_entries.end(), [&](const Entry& entry) {
        return entry.kind == kind && entry.id == resourceId && entry.subtype == subtype;
    });
    return found == m_entries.end() ? nullptr : found->resource;
}

std::int32_t Hardware::SelectResource(std::uint32_t kind, std::uint32_t subtype, std::int32_t resourceId,
                                      KXPWindow parent) {
    std::vector<std::string> names;
    std::vector<std::int32_t> ids;
    for (const Entry& entry : m_entries) {
        if (entry.kind != kind || entry.subtype != subtype)
            continue;
        names.push_back(NameOf(entry.resource));
        ids.push_back(entry.id);
    }
    const auto present = std::find(ids.begin(), ids.end(), resourceId);
    const int chosen = present != ids.end() ? static_cast<int>(present - ids.begin()) : -1;
    const auto place = m_dialogs != nullptr ? m_dialogs->ChooseName("Resource", names, chosen, parent) : std::nullopt;
    return place ? ids[*place] : -1;
}

IIOResourceChannel* Hardware::SelectChannel(std::uint32_t channelType, const char* text, KXPWindow parent) {
    std::vector<std::string> names;
    std::vector<IIOResourceChannel*> channels;
    for (const auto& resource : m_channels) {
        IIOResourceChannel* channel = nullptr;
        for (std::int32_t index = 0; (channel = resource->GetChannel(channelType, index)) != nullptr; ++index) {
            names.push_back(NameOf(resource.get()) + "." + channel->GetName());
            channels.push_back(channel);
        }
    }
    const std::string owner = text != nullptr ? text : "";
    const std::string title = owner.empty() ? "Channel" : "Channel of " + owner;
    const auto place = m_dialogs != nullptr ? m_dialogs->ChooseName(title, names, -1, parent) : std::nullopt;
    return place ? channels[*place] : nullptr;
}

void Hardware::Make(const ResourceSpec& spec, const SerialPlan& plan, const ResourceVoice& voice) {
    m_serial.push_back(std::make_unique<SerialResource>(spec.id, plan, voice));
    m_objects.push_back(m_serial.back()->MakeObject());
    m_entries.push_back({KXP_SERIAL_RESOURCE, KXP_RESOURCE_BOTH, spec.id, m_serial.back().get()});
}

void Hardware::Make(const ResourceSpec& spec, const DmxOutPlan& plan, const ResourceVoice& voice) {
    if (!m_sender)
        m_sender = std::make_unique<DmxSender>();
    MakeDmx(spec, KXP_RESOURCE_OUT, std::make_unique<DmxOutResource>(spec.id, plan, voice, *m_sender));
}

void Hardware::Make(const ResourceSpec& spec, const DmxInPlan& plan, const ResourceVoice& voice) {
    if (!m_listener)
        m_listener = std::make_unique<DmxListener>();
    MakeDmx(spec, KXP_RESOURCE_IN, std::make_unique<DmxInResource>(spec.id, plan, voice, *m_listener));
}

void Hardware::Make(const ResourceSpec& spec, const ChannelsPlan& plan, const ResourceVoice& voice) {
    m_channels.push_back(std::make_unique<IoResource>(spec.id, plan, voice));
    for (const auto& object : m_channels.back()->MakeObjects())
        m_objects.push_back(object);
    m_entries.push_back({KXP_IO_RESOURCE, KXP_RESOURCE_BOTH, spec.id, m_channels.back().get()});
}

void Hardware::MakeDmx(const ResourceSpec& spec, std::uint32_t subtype, std::unique_ptr<DmxResource> resource) {
    m_objects.push_back(resource->MakeObject());
    m_entries.push_back({KXP_DMX_RESOURCE, subtype, spec.id, resource.get()});
    m_universes.push_back(std::move(resource));
}

} // namespace stagehost
