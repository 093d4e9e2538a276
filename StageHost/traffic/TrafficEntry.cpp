#include "TrafficEntry.h"

#include <QJsonDocument>

#include "TrafficText.h"

namespace stagehost {

namespace {

constexpr double kMsPerSecond = 1000;

QByteArray LineOfJson(const QJsonObject& object) {
    return QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n';
}

QString SideName(Side side) {
    return QLatin1String(kSideNames[static_cast<int>(side)]);
}

/// The key under which an event tells its text.
QString TextKey(TrafficEvent event) {
    switch (event) {
    case TrafficEvent::Opened:
        return QStringLiteral("who");
    case TrafficEvent::Prank:
        return QStringLiteral("prank");
    default:
        return QStringLiteral("why");
    }
}

bool HasSide(TrafficEvent event) {
    return event == TrafficEvent::Ended || event == TrafficEvent::Reset || event == TrafficEvent::Closed ||
           event == TrafficEvent::Prank;
}

QJsonObject EventJson(const TrafficEntry& entry) {
    QJsonObject object{{QStringLiteral("event"), QLatin1String(kTrafficEventNames[static_cast<int>(entry.event)])}};
    if (HasSide(entry.event))
        object.insert(QStringLiteral("by"), SideName(entry.by));
    if (!entry.text.isEmpty())
        object.insert(TextKey(entry.event), entry.text);
    return object;
}

QJsonObject SaidJson(const TrafficEntry& entry) {
    QJsonObject object = BytesToJson(entry.bytes);
    object.insert(QStringLiteral("from"), SideName(entry.by));
    return object;
}

} // namespace

QByteArray LineOf(const TrafficHead& head) {
    QJsonObject object{{QStringLiteral("traffic"), 1},
                       {QStringLiteral("kind"), NameOf(head.device.kind)},
                       {QStringLiteral("device"), TextOf(head.device)},
                       {QStringLiteral("began"), head.began}};
    if (!head.lineSettings.isEmpty())
        object.insert(QStringLiteral("line"), head.lineSettings);
    return LineOfJson(object);
}

QByteArray LineOf(const TrafficEntry& entry) {
    QJsonObject object = entry.event == TrafficEvent::Bytes ? SaidJson(entry) : EventJson(entry);
    object.insert(QStringLiteral("at"), static_cast<double>(entry.at) / kMsPerSecond);
    if (entry.connection != 0)
        object.insert(QStringLiteral("connection"), entry.connection);
    return LineOfJson(object);
}

} // namespace stagehost
