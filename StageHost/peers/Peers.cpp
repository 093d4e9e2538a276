#include "Peers.h"

#include <algorithm>

#include <QCoreApplication>
#include <QDeadlineTimer>

#include "Interrupt.h"
#include "JsonNode.h"
#include "NearNames.h"
#include "ShowClock.h"

namespace stagehost {

namespace {

constexpr std::chrono::milliseconds kReady(2000);   // for all programs together that nobody names
constexpr std::chrono::milliseconds kNeeded(20000); // for each that has to be ready
constexpr std::chrono::milliseconds kEnd(2000);     // for all of them, since they are asked at once

/// The program and its words.
QStringList WordsOf(const Show& show, const ShowPeer& peer) {
    if (peer.kind == ShowPeer::Kind::Program) {
        const QString program = peer.run.first();
        return QStringList(program.contains(QLatin1Char('/')) ? show.Path(program) : program) + peer.run.mid(1);
    }
    const bool isScript = peer.kind == ShowPeer::Kind::Script;
    QStringList words{QCoreApplication::applicationFilePath(),
                      isScript ? QStringLiteral("counterpart") : QStringLiteral("replay"), QStringLiteral("--json")};
    if (!isScript && !peer.isOrdered)
        words += QStringLiteral("--any-order"); // drivers poll, and no two evenings poll alike
    if (peer.isFast)
        words += QStringLiteral("--fast");
    if (peer.seed)
        words += {QStringLiteral("--seed"), QString::number(*peer.seed)};
    words += {QStringLiteral("--"), peer.file};
    for (const auto& [name, text] : peer.options)
        words += name + QLatin1Char('=') + text;
    return words;
}

/// Whether something of the show is told where the peer is reached, or a step works it.
bool IsNamed(const Show& show, const QString& peer) {
    const auto names = [&](const auto& entry) { return entry.second.peer == peer; };
    const auto works = [&](const ShowStep& step) {
        return (step.deed && step.deed->peer == peer) ||
               (step.wait && step.wait->receipt && step.wait->receipt->peer == peer);
    };
    return std::any_of(show.steps.begin(), show.steps.end(), works) ||
           std::any_of(show.peerPorts.begin(), show.peerPorts.end(), names) ||
           std::any_of(show.devices.begin(), show.devices.end(), [&](const ShowDevice& device) {
               return std::any_of(device.peerSettings.begin(), device.peerSettings.end(), names);
           });
}

PeerAddress::Part PartFor(const QString& taker, const PeerEndpoint& endpoint) {
    using Part = PeerAddress::Part;
    if (endpoint.port == 0)
        return Part::Path;
    if (taker.endsWith(QLatin1String("port"), Qt::CaseInsensitive))
        return Part::Port;
    return taker.endsWith(QLatin1String("url"), Qt::CaseInsensitive) ? Part::Url : Part::Host;
}

QString PartText(const PeerEndpoint& endpoint, PeerAddress::Part part) {
    using Part = PeerAddress::Part;
    if ((part == Part::Path) != (endpoint.port == 0))
        return {};
    QString port = QString::number(endpoint.port);
    switch (part) {
    case Part::Host:
        return endpoint.host;
    case Part::Port:
        return port;
    case Part::Path:
        return endpoint.path;
    case Part::Address:
        return endpoint.host + QLatin1Char(':') + port;
    case Part::Url:
        break;
    }
    return QStringLiteral("http://%1:%2").arg(endpoint.host, port);
}

} // namespace

Peers::Peers(Peer::Tell tell)
    : m_tell(std::move(tell)) {}

QString Peers::Start(Show& show) {
    for (const ShowPeer& peer : show.peers) {
        const QString problem = StartOne(show, peer);
        if (!problem.isEmpty())
            return QStringLiteral("peer %1: %2").arg(peer.name, problem);
    }
    const QString problem = WaitUntilReady(show);
    return problem.isEmpty() ? Resolve(show) : problem;
}

QString Peers::StartOne(const Show& show, const ShowPeer& described) {
    m_running.push_back(std::make_unique<Peer>(described.name, m_tell));
    const QStringList words = WordsOf(show, described);
    return m_running.back()->Start(words.first(), words.mid(1), show.folder);
}

/// The first line that a program prints says that it is ready; one that never prints is waited for in vain, and not
/// long.
QString Peers::WaitUntilReady(const Show& show) const {
    const QDeadlineTimer deadline(kReady.count());
    for (std::size_t place = 0; place < m_running.size(); ++place) {
        Peer& peer = *m_running[place];
        const bool needed = show.peers[place].kind != ShowPeer::Kind::Program || IsNamed(show, peer.Name());
        const auto limit = MachineTime(needed ? kNeeded : std::chrono::milliseconds(deadline.remainingTime()));
        const bool isReady = peer.WaitUntilReady(limit);
        if (isReady)
            continue;
        if (Interrupt::HasCome())
            return QStringLiteral("interrupted before peer %1 was ready").arg(peer.Name());
        QString problem = QStringLiteral("peer %1: %2")
                              .arg(peer.Name(), peer.WhyOver().isEmpty()
                                                    ? QStringLiteral("has not said within %1 ms that it is ready")
                                                          .arg((needed ? kNeeded : kReady).count())
                                                    : peer.WhyOver());
        if (needed)
            return problem;
        m_tell(peer.WhyOver().isEmpty() ? problem + QStringLiteral("; the show begins without that") : problem);
    }
    return {};
}

QString Peers::Resolve(Show& show) const {
    for (const auto& [place, address] : show.peerPorts) {
        auto* serial = std::get_if<SerialPlan>(&show.resources[place].plan);
        QString problem = serial == nullptr ? QString() : TextOf(address, QStringLiteral("path"), serial->port);
        if (!problem.isEmpty())
            return problem;
    }
    for (ShowDevice& device : show.devices) {
        for (const auto& [setting, address] : device.peerSettings) {
            QString text;
            const QString problem = TextOf(address, setting, text);
            if (!problem.isEmpty())
                return QStringLiteral("%1.%2: %3").arg(device.name, setting, problem);
            device.settings.emplace_back(setting, text);
        }
    }
    return {};
}

QString Peers::TextOf(const PeerAddress& address, const QString& taker, QString& text) const {
    const PeerLines& lines = Find(address.peer)->Lines();
    const PeerEndpoint* endpoint = lines.Find(address.endpoint);
    if (endpoint == nullptr && lines.EndpointNames().isEmpty())
        return QStringLiteral("peer %1 has not told where it is reached").arg(address.peer);
    if (endpoint == nullptr && address.endpoint.isEmpty())
        return QStringLiteral("peer %1 has several endpoints; name one with \"endpoint\": %2")
            .arg(address.peer, lines.EndpointNames().join(QStringLiteral(", ")));
    if (endpoint == nullptr)
        return QStringLiteral("peer %1 has no endpoint %2").arg(address.peer, Quoted(address.endpoint)) +
               NamesInstead(address.endpoint, lines.EndpointNames());
    text = PartText(*endpoint, address.part.value_or(PartFor(taker, *endpoint)));
    return text.isEmpty() ? QStringLiteral("peer %1 is reached %2")
                                .arg(address.peer, endpoint->port == 0
                                                       ? QStringLiteral("by a serial line: it has a \"path\" alone")
                                                       : QStringLiteral("by the network: it has no \"path\""))
                          : QString();
}

Peer* Peers::Find(const QString& name) const {
    const auto found =
        std::find_if(m_running.begin(), m_running.end(), [&](const auto& peer) { return peer->Name() == name; });
    return found == m_running.end() ? nullptr : found->get();
}

void Peers::End() {
    for (const auto& peer : m_running)
        peer->AskToEnd();
    const QDeadlineTimer deadline(kEnd.count());
    for (const auto& peer : m_running)
        peer->End(std::chrono::milliseconds(deadline.remainingTime()));
    m_running.clear();
}

} // namespace stagehost
