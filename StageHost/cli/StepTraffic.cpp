#include "StepTraffic.h"

namespace stagehost {

namespace {

/// Whether a step works a device or waits for one of its variables.
bool IsAbout(const ShowStep& step, const ShowDevice& device) {
    return step.device == device.name ||
           (step.wait && step.wait->until.name.startsWith(device.name + QLatin1Char('.')));
}

QStringList PeersOf(const Show& show, const ShowStep& step) {
    QStringList names;
    if (step.deed)
        names += step.deed->peer;
    if (step.wait && step.wait->receipt)
        names += step.wait->receipt->peer;
    for (const ShowDevice& device : show.devices) {
        if (!IsAbout(step, device))
            continue;
        for (const auto& [setting, address] : device.peerSettings)
            names += address.peer;
    }
    names.removeDuplicates();
    return names;
}

QStringList AllPeers(const Show& show) {
    QStringList names;
    for (const ShowPeer& peer : show.peers)
        names += peer.name;
    return names;
}

} // namespace

QStringList TrafficOf(const Show& show, const ShowStep* step, const Peers& peers) {
    const QStringList names = step == nullptr ? QStringList() : PeersOf(show, *step);
    QStringList lines;
    for (const QString& name : names.isEmpty() ? AllPeers(show) : names) {
        Peer* peer = peers.Find(name);
        if (peer == nullptr)
            continue; // has not been started
        for (const QString& line : peer->LastTraffic())
            lines += QStringLiteral("peer %1: %2").arg(name, line);
    }
    return lines;
}

QStringList TrafficForPeople(const QStringList& traffic) {
    QStringList lines;
    if (!traffic.isEmpty())
        lines += QStringLiteral("the last lines of the traffic:");
    for (const QString& line : traffic)
        lines += QStringLiteral("  ") + line;
    return lines;
}

} // namespace stagehost
