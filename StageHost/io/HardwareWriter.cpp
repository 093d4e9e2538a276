#include "HardwareWriter.h"

#include <QJsonArray>

#include "BorderText.h"

namespace stagehost {

namespace {

/// A member that is left out when it is as it would be without it.
template <typename Value>
void InsertOther(QJsonObject& object, const char* key, const Value& value, const Value& missing,
                 const QJsonValue& json) {
    if (value != missing)
        object.insert(QLatin1String(key), json);
}

QJsonObject WriteUniverse(const DmxPlan& plan, const char* addressKey, const QHostAddress& address) {
    QJsonObject object{{QStringLiteral("protocol"), QLatin1String(kDmxProtocolNames[static_cast<int>(plan.protocol)])},
                       {QStringLiteral("universe"), plan.universe},
                       {QLatin1String(addressKey), plan.multicast ? QStringLiteral("multicast") : address.toString()}};
    InsertOther(object, "interface", plan.networkInterface, QString(), plan.networkInterface);
    InsertOther(object, "port", plan.port, std::uint16_t(0), plan.port);
    return object;
}

QJsonObject Write(const SerialPlan& plan) {
    QJsonObject object{{QStringLiteral("port"), plan.port}};
    const auto number = [&](const char* key, SerialSetting setting) {
        if (const auto value = plan.settings.Get(setting))
            object.insert(QLatin1String(key), static_cast<int>(*value));
    };
    number("baudRate", SerialSetting::BaudRate);
    number("dataSize", SerialSetting::DataSize);
    number("stopBits", SerialSetting::StopBits);
    if (const auto parity = plan.settings.Get(SerialSetting::Parity))
        object.insert(QStringLiteral("parity"), QLatin1String(kParityNames[*parity]));
    return object;
}

QJsonObject Write(const DmxOutPlan& plan) {
    const DmxOutPlan missing;
    QJsonObject object = WriteUniverse(plan, "to", plan.address);
    InsertOther(object, "priority", plan.priority, missing.priority, plan.priority);
    InsertOther(object, "source", plan.sourceName, missing.sourceName, QString::fromStdString(plan.sourceName));
    InsertOther(object, "rate", plan.rate, missing.rate, plan.rate);
    InsertOther(object, "continuous", plan.continuous, false, plan.continuous);
    return object;
}

QJsonObject Write(const DmxInPlan& plan) {
    return WriteUniverse(plan, "at", plan.address);
}

QJsonObject WriteChannel(const ChannelPlan& channel, ChannelType type) {
    QJsonObject object{{QStringLiteral("name"), FromBorderText(channel.name)},
                       {QStringLiteral("value"), channel.value}};
    if (!IsDigital(type)) {
        object.insert(QStringLiteral("min"), channel.minimum);
        object.insert(QStringLiteral("max"), channel.maximum);
    }
    return object;
}

QJsonObject Write(const ChannelsPlan& plan) {
    QJsonObject object;
    for (std::size_t type = 0; type < kChannelTypeCount; ++type) {
        QJsonArray channels;
        for (const auto& channel : plan[type])
            channels.append(WriteChannel(channel, static_cast<ChannelType>(type)));
        if (!channels.isEmpty())
            object.insert(QLatin1String(kChannelTypeNames[type]), channels);
    }
    return object;
}

constexpr const char* kPlanKeys[] = {"serial", "dmxOut", "dmxIn", "channels"}; // in the order of the variant

} // namespace

QJsonObject WriteResource(const ResourceSpec& resource) {
    return {{QStringLiteral("id"), resource.id},
            {QStringLiteral("name"), FromBorderText(resource.name)},
            {QLatin1String(kPlanKeys[resource.plan.index()]),
             std::visit([](const auto& plan) { return Write(plan); }, resource.plan)}};
}

} // namespace stagehost
