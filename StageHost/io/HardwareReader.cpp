#include "HardwareReader.h"

#include <algorithm>
#include <iterator>
#include <limits>

#include <QFileInfo>

#include "ArtNetPacket.h"
#include "BorderText.h"
#include "NameCheck.h"
#include "ShowKeys.h"
#include "UniverseOut.h"

namespace stagehost {

namespace {

constexpr int kLargestAnalog = 65535;
constexpr int kLargestPort = 65535;

JsonNode Of(const JsonNode& node, const char* name) {
    return node.Member(QLatin1String(name));
}

/// A text that is one of some; complains about any other. @return its place, 0 when it is missing.
template <std::size_t Count>
std::size_t OneOf(const JsonNode& node, const char* const (&names)[Count]) {
    if (node.IsMissing())
        return 0;
    const QString text = node.Text();
    const auto* found =
        std::find_if(std::begin(names), std::end(names), [&](const char* name) { return text == QLatin1String(name); });
    if (found != std::end(names))
        return static_cast<std::size_t>(found - std::begin(names));
    QStringList all;
    for (const char* name : names)
        all += Quoted(QLatin1String(name));
    if (node.IsText())
        node.Complain(QStringLiteral("expected ") + all.join(QStringLiteral(" or ")));
    return 0;
}

bool ReadSwitch(const JsonNode& node) {
    constexpr const char* kSwitch[] = {"false", "true"};
    const QString text = node.Scalar();
    if (!node.IsMissing() && text != QLatin1String(kSwitch[0]) && text != QLatin1String(kSwitch[1]))
        node.Complain(QStringLiteral("expected true or false"));
    return text == QLatin1String(kSwitch[1]);
}

void ReadSetting(const JsonNode& node, SerialSettings& settings, SerialSetting setting, int lowest, int highest) {
    if (const auto value = node.Whole(lowest, highest))
        settings.Set(setting, static_cast<std::uint32_t>(*value));
}

SerialPlan ReadSerial(const JsonNode& node) {
    SerialPlan plan;
    if (!node.ExpectObject(kSerialKeys))
        return plan;
    const bool isPeers = Of(node, "port").IsObject(); // read with the peers
    plan.port = isPeers ? QString() : Of(node, "port").Text();
    if (plan.port.isEmpty() && !isPeers)
        Of(node, "port").Complain(QStringLiteral("expected the name of a port, such as /dev/ttyUSB0"));
    ReadSetting(Of(node, "baudRate"), plan.settings, SerialSetting::BaudRate, 50, 4000000);
    ReadSetting(Of(node, "dataSize"), plan.settings, SerialSetting::DataSize, 5, 8);
    ReadSetting(Of(node, "stopBits"), plan.settings, SerialSetting::StopBits, 1, 2);
    if (!Of(node, "parity").IsMissing())
        plan.settings.Set(SerialSetting::Parity, static_cast<std::uint32_t>(OneOf(Of(node, "parity"), kParityNames)));
    return plan;
}

/// An IPv4 address, or "multicast" for the group of the universe.
void ReadAddress(const JsonNode& node, DmxPlan& plan, QHostAddress& address) {
    if (node.IsMissing())
        return;
    const QString text = node.Text();
    plan.multicast = text == QLatin1String("multicast");
    if (plan.multicast && plan.protocol == DmxProtocol::ArtNet)
        return node.Complain(QStringLiteral("Art-Net has no multicast"));
    if (plan.multicast)
        return;
    address = QHostAddress(text);
    if (node.IsText() && address.protocol() != QAbstractSocket::IPv4Protocol)
        node.Complain(QStringLiteral("expected an IPv4 address or \"multicast\""));
}

/// What is the same for both directions.
void ReadUniverse(const JsonNode& node, const char* addressKey, DmxPlan& plan, QHostAddress& address) {
    plan.protocol = static_cast<DmxProtocol>(OneOf(Of(node, "protocol"), kDmxProtocolNames));
    const bool sacn = plan.protocol == DmxProtocol::Sacn;
    const int first = sacn ? 1 : 0;
    plan.universe = static_cast<std::uint16_t>(
        Of(node, "universe").Whole(first, sacn ? kSacnLastUniverse : kArtNetLastUniverse).value_or(first));
    plan.port = static_cast<std::uint16_t>(Of(node, "port").Whole(1, kLargestPort).value_or(0));
    plan.networkInterface = Of(node, "interface").Text();
    ReadAddress(Of(node, addressKey), plan, address);
    if (!plan.networkInterface.isEmpty() && !plan.multicast)
        Of(node, "interface").Complain(QStringLiteral("is for \"multicast\" only"));
}

DmxOutPlan ReadDmxOut(const JsonNode& node) {
    DmxOutPlan plan;
    if (!node.ExpectObject(kDmxOutKeys))
        return plan;
    ReadUniverse(node, "to", plan, plan.address);
    plan.priority =
        static_cast<std::uint8_t>(Of(node, "priority").Whole(0, kSacnHighestPriority).value_or(plan.priority));
    if (plan.protocol == DmxProtocol::ArtNet && !Of(node, "priority").IsMissing())
        Of(node, "priority").Complain(QStringLiteral("Art-Net has no priorities"));
    plan.sourceName = Of(node, "source").TextOr(QString::fromStdString(plan.sourceName)).toStdString();
    plan.rate = Of(node, "rate").Whole(1, kFastestDmxRate).value_or(plan.rate);
    plan.continuous = ReadSwitch(Of(node, "continuous"));
    return plan;
}

DmxInPlan ReadDmxIn(const JsonNode& node) {
    DmxInPlan plan;
    if (!node.ExpectObject(kDmxInKeys))
        return plan;
    ReadUniverse(node, "at", plan, plan.address);
    if (plan.protocol == DmxProtocol::ArtNet && plan.address == QHostAddress(QHostAddress::AnyIPv4))
        Of(node, "at").Complain(QStringLiteral("expected one address: other programs share the port of Art-Net"));
    return plan;
}

ChannelPlan ReadChannel(const JsonNode& node, ChannelType type) {
    ChannelPlan plan;
    plan.maximum = IsDigital(type) ? 1 : kLargestAnalog;
    const bool isName = node.IsText();
    const JsonNode name = isName ? node : Of(node, "name");
    if (!isName && !node.ExpectObject(kChannelKeys))
        return plan;
    plan.name = name.BorderText();
    CheckName(name, plan.name, "a channel");
    if (isName)
        return plan;
    constexpr int kLowest = std::numeric_limits<int>::min();
    plan.minimum = Of(node, "min").Whole(IsDigital(type) ? 0 : kLowest).value_or(plan.minimum);
    plan.maximum = Of(node, "max").Whole(plan.minimum).value_or(std::max(plan.minimum, plan.maximum));
    if (IsDigital(type) && plan.maximum != 1)
        Of(node, "max").Complain(QStringLiteral("a digital channel has the values 0 and 1"));
    plan.value = std::clamp(0, plan.minimum, plan.maximum);
    plan.value = Of(node, "value").Whole(plan.minimum, plan.maximum).value_or(plan.value);
    return plan;
}

ChannelsPlan ReadChannels(const JsonNode& node) {
    ChannelsPlan plan;
    if (!node.ExpectObject(kChannelsKeys))
        return plan;
    std::vector<std::string> taken;
    for (std::size_t type = 0; type < kChannelTypeCount; ++type) {
        Of(node, kChannelTypeNames[type]).ForEach([&](const JsonNode& channel) {
            plan[type].push_back(ReadChannel(channel, static_cast<ChannelType>(type)));
            const std::string& name = plan[type].back().name;
            if (!name.empty() && std::find(taken.begin(), taken.end(), name) != taken.end())
                channel.Complain(QStringLiteral("another channel has this name"));
            taken.push_back(name);
        });
    }
    return plan;
}

using Plan = decltype(ResourceSpec::plan);

/// What a resource can be, by its key.
struct PlanReader {
    const char* key;
    Plan (*read)(const JsonNode& node);
};

constexpr PlanReader kPlanReaders[] = {
    {"serial", [](const JsonNode& node) -> Plan { return ReadSerial(node); }},
    {"dmxOut", [](const JsonNode& node) -> Plan { return ReadDmxOut(node); }},
    {"dmxIn", [](const JsonNode& node) -> Plan { return ReadDmxIn(node); }},
    {"channels", [](const JsonNode& node) -> Plan { return ReadChannels(node); }},
};

/// The port itself, whichever of its names a show gives; empty for none.
QString PortOf(const SerialPlan& plan) {
    const QString own = QFileInfo(plan.port).canonicalFilePath();
    return own.isEmpty() ? plan.port : own;
}

bool IsSameUniverse(const DmxPlan& one, const DmxPlan& other) {
    return one.protocol == other.protocol && one.universe == other.universe && one.Port() == other.Port() &&
           one.multicast == other.multicast && one.networkInterface == other.networkInterface;
}

template <typename Universe>
bool AreSameUniverse(const Plan& one, const Plan& other) {
    const auto* first = std::get_if<Universe>(&one);
    const auto* second = std::get_if<Universe>(&other);
    return first != nullptr && second != nullptr && IsSameUniverse(*first, *second) &&
           first->address == second->address;
}

/// Whether two resources are one port of the system, or one universe to or from one place.
bool IsSameEnd(const Plan& one, const Plan& other) {
    const auto* first = std::get_if<SerialPlan>(&one);
    const auto* second = std::get_if<SerialPlan>(&other);
    if (first != nullptr && second != nullptr)
        return !first->port.isEmpty() && PortOf(*first) == PortOf(*second);
    return AreSameUniverse<DmxOutPlan>(one, other) || AreSameUniverse<DmxInPlan>(one, other);
}

} // namespace

void HardwareReader::Read(const JsonNode& resources) {
    resources.ForEach([this](const JsonNode& node) { ReadResource(node); });
}

void HardwareReader::ReadResource(const JsonNode& node) {
    if (!node.ExpectObject(kResourceKeys))
        return;
    ResourceSpec resource;
    resource.id = ReadId(Of(node, "id"));
    resource.name = ReadResourceName(Of(node, "name"));
    int given = 0;
    for (const auto& reader : kPlanReaders) {
        if (Of(node, reader.key).IsMissing())
            continue;
        ++given;
        resource.plan = reader.read(Of(node, reader.key));
        CheckAlone(Of(node, reader.key), resource);
    }
    if (given != 1)
        node.Complain(QStringLiteral("expected one of \"serial\", \"dmxOut\", \"dmxIn\" and \"channels\""));
    m_spec.push_back(std::move(resource));
}

/// Two resources that open one port would take its bytes from each other, and two that send one universe to
/// one place its levels.
void HardwareReader::CheckAlone(const JsonNode& node, const ResourceSpec& resource) const {
    const auto twin = std::find_if(m_spec.begin(), m_spec.end(),
                                   [&](const auto& other) { return IsSameEnd(other.plan, resource.plan); });
    if (twin != m_spec.end())
        node.Complain(QStringLiteral("is what %1 has already").arg(Quoted(FromBorderText(twin->name))));
}

std::int32_t HardwareReader::ReadId(const JsonNode& node) const {
    const auto id = node.Whole(0);
    if (node.IsMissing())
        node.Complain(QStringLiteral("expected the number under which scripts know the resource"));
    const bool taken = std::any_of(m_spec.begin(), m_spec.end(), [&](const auto& other) { return id == other.id; });
    if (taken)
        node.Complain(QStringLiteral("another resource has this number"));
    return id.value_or(-1);
}

std::string HardwareReader::ReadResourceName(const JsonNode& node) const {
    std::string name = node.BorderText();
    CheckName(node, name, "a resource");
    const bool taken = std::any_of(m_spec.begin(), m_spec.end(), [&](const auto& other) { return name == other.name; });
    if (taken)
        node.Complain(QStringLiteral("another resource has this name"));
    return name;
}

std::vector<std::string> NamesOf(const HardwareSpec& spec) {
    std::vector<std::string> names;
    for (const auto& resource : spec) {
        names.push_back(resource.name);
        const auto* channels = std::get_if<ChannelsPlan>(&resource.plan);
        for (std::size_t type = 0; channels != nullptr && type < kChannelTypeCount; ++type) {
            for (const auto& channel : (*channels)[type])
                names.push_back(resource.name + "." + channel.name);
        }
    }
    return names;
}

} // namespace stagehost
