#include "DmxListener.h"

#include <algorithm>

#include <QTimer>

#include "ArtNetPacket.h"
#include "ArtNetPoll.h"
#include "ListenSocket.h"

namespace stagehost {

namespace {

constexpr std::chrono::milliseconds kRetry(1000);
constexpr std::chrono::milliseconds kLookForSilence(100);

QHostAddress PlaceAddress(const DmxInPlan& plan) {
    return plan.multicast ? QHostAddress(QHostAddress::AnyIPv4) : plan.address;
}

/// The broadcast address of the network that an address of ours belongs to; a null one for the loopback.
QHostAddress BroadcastOf(const QHostAddress& address) {
    for (const QNetworkInterface& one : QNetworkInterface::allInterfaces()) {
        for (const QNetworkAddressEntry& entry : one.addressEntries()) {
            if (entry.ip() == address)
                return entry.broadcast();
        }
    }
    return {};
}

constexpr DmxSourceKey kHandKey = {'b', 'y', ' ', 'h', 'a', 'n', 'd'};

} // namespace

struct DmxListener::Input {
    Input(const DmxInPlan& inPlan, InputNews& inNews)
        : plan(inPlan)
        , news(inNews)
        , universe(inPlan.protocol == DmxProtocol::Sacn ? kSacnMerge : kArtNetMerge) {}

    const DmxInPlan plan;
    InputNews& news;
    UniverseIn universe;
    RefusalCounts counts;
    Place* place = nullptr; ///< where it is heard; null while it is closed. Written under the lock by the thread
    bool wanted = false;    ///< used by the thread alone, as is what follows
    QString problem;        ///< told last
};

/// An address and port, heard for all its universes at once.
struct DmxListener::Place {
    DmxProtocol protocol = DmxProtocol::Sacn;
    QHostAddress address;
    std::uint16_t port = 0;
    RefusalCounts counts;
    std::unique_ptr<ListenSocket> socket;
    std::unique_ptr<ListenSocket> polls; ///< Art-Net: hears the broadcasts of those who look for nodes; may be null
};

DmxListener::DmxListener() {
    m_thread.Run([this] {
        m_retry = std::make_unique<QTimer>();
        m_expiry = std::make_unique<QTimer>();
        m_retry->setInterval(kRetry);
        m_expiry->setInterval(kLookForSilence);
        QObject::connect(m_retry.get(), &QTimer::timeout, m_retry.get(), [this] { Retry(); });
        QObject::connect(m_expiry.get(), &QTimer::timeout, m_expiry.get(), [this] { Expire(); });
    });
}

DmxListener::~DmxListener() {
    m_thread.Run([this] {
        m_places.clear();
        m_retry.reset();
        m_expiry.reset();
    });
}

std::size_t DmxListener::Add(const DmxInPlan& plan, InputNews& news) {
    const std::lock_guard<std::mutex> hold(m_lock);
    m_inputs.push_back(std::make_unique<Input>(plan, news));
    return m_inputs.size() - 1;
}

void DmxListener::Open(std::size_t input) {
    m_thread.Post([this, input] { OpenNow(*m_inputs.at(input)); });
}

void DmxListener::Close(std::size_t input) {
    m_thread.Post([this, input] { CloseNow(*m_inputs.at(input)); });
}

DmxFrame DmxListener::Levels(std::size_t input) const {
    const std::lock_guard<std::mutex> hold(m_lock);
    return m_inputs.at(input)->universe.Merged();
}

DmxInStatus DmxListener::Status(std::size_t input) const {
    const std::lock_guard<std::mutex> hold(m_lock);
    const Input& asked = *m_inputs.at(input);
    DmxInStatus status;
    status.open = asked.place != nullptr;
    status.counts = asked.counts;
    if (asked.place != nullptr)
        status.counts.Add(asked.place->counts);
    for (const auto& source : asked.universe.Sources())
        status.sources.push_back(source.name);
    return status;
}

bool DmxListener::SetByHand(std::size_t input, const DmxFrame& frame) {
    Input& set = *m_inputs.at(input);
    {
        const std::lock_guard<std::mutex> hold(m_lock);
        if (set.place == nullptr)
            return false;
    }
    HeardFrame heard;
    heard.source = kHandKey;
    heard.name = "by hand";
    heard.priority = kSacnHighestPriority;
    heard.frame = frame;
    m_thread.Run([&] { TakeFor(set, heard); });
    return true;
}

void DmxListener::OpenNow(Input& input) {
    input.wanted = true;
    if (input.place != nullptr)
        return;
    const QString problem = FindPlace(input);
    if (!problem.isEmpty()) {
        if (problem != input.problem)
            input.news.Told("cannot listen at " + PlaceAddress(input.plan).toString().toStdString() + ":" +
                            std::to_string(input.plan.Port()) + ": " + problem.toStdString());
        input.problem = problem;
        return m_retry->start();
    }
    if (!input.problem.isEmpty())
        input.news.Told("listens again");
    input.problem.clear();
    m_expiry->start();
    input.news.StateChanged();
}

void DmxListener::CloseNow(Input& input) {
    input.wanted = false;
    input.problem.clear();
    if (input.place == nullptr)
        return;
    LeavePlace(input);
    input.news.StateChanged();
}

/// @return empty, or why the place cannot be had.
QString DmxListener::FindPlace(Input& input) {
    const DmxInPlan& plan = input.plan;
    const QHostAddress address = PlaceAddress(plan);
    auto found = std::find_if(m_places.begin(), m_places.end(), [&](const auto& place) {
        return place->protocol == plan.protocol && place->address == address && place->port == plan.Port();
    });
    if (plan.multicast && !plan.networkInterface.isEmpty() && !plan.Interface().isValid())
        return QStringLiteral("there is no network interface \"%1\"").arg(plan.networkInterface);
    if (found == m_places.end()) {
        auto made = std::make_unique<Place>();
        Place& place = *made;
        const auto take = [this, &place](PacketView bytes, const QHostAddress& sender) {
            TakePacket(place, bytes, sender);
        };
        place.protocol = plan.protocol;
        place.address = address;
        place.port = plan.Port();
        place.socket = std::make_unique<ListenSocket>(take);
        QString problem = place.socket->Bind(address, place.port);
        if (!problem.isEmpty())
            return problem;
        const QHostAddress broadcast = plan.protocol == DmxProtocol::ArtNet ? BroadcastOf(address) : QHostAddress();
        if (!broadcast.isNull()) {
            place.polls = std::make_unique<ListenSocket>([this, &place](PacketView bytes, const QHostAddress& sender) {
                if (ReadArtPoll(bytes) == Refusal::None)
                    AnswerPoll(place, sender);
            });
            place.polls->Bind(broadcast, place.port);
        }
        found = m_places.insert(m_places.end(), std::move(made));
    }
    if (plan.multicast) {
        QString problem = (*found)->socket->Join(plan.Group(), plan.Interface());
        if (!problem.isEmpty())
            return problem;
    }
    const std::lock_guard<std::mutex> hold(m_lock);
    input.place = found->get();
    return {};
}

void DmxListener::LeavePlace(Input& input) {
    Place* place = input.place;
    if (input.plan.multicast)
        place->socket->Leave(input.plan.Group(), input.plan.Interface());
    {
        const std::lock_guard<std::mutex> hold(m_lock);
        input.counts.Add(place->counts);
        input.place = nullptr;
        input.universe.Clear();
    }
    const bool isUsed =
        std::any_of(m_inputs.begin(), m_inputs.end(), [&](const auto& other) { return other->place == place; });
    if (isUsed)
        return;
    // The place may be what called: its socket goes when that has come back.
    m_thread.Post([this] {
        m_places.erase(std::remove_if(m_places.begin(), m_places.end(),
                                      [this](const auto& left) {
                                          return std::none_of(m_inputs.begin(), m_inputs.end(), [&](const auto& other) {
                                              return other->place == left.get();
                                          });
                                      }),
                       m_places.end());
    });
}

void DmxListener::Retry() {
    m_retry->stop();
    for (const auto& input : m_inputs) {
        if (input->wanted && input->place == nullptr)
            OpenNow(*input);
    }
}

void DmxListener::Expire() {
    bool isAnyOpen = false;
    for (const auto& input : m_inputs) {
        bool changed = false;
        std::vector<std::string> gone;
        DmxFrame merged;
        {
            const std::lock_guard<std::mutex> hold(m_lock);
            isAnyOpen = isAnyOpen || input->place != nullptr;
            gone = input->universe.Expire(DmxClock::now(), changed);
            merged = input->universe.Merged();
        }
        for (const auto& name : gone)
            input->news.Told("\"" + name + "\" has fallen silent");
        if (changed)
            input->news.LevelsChanged(merged);
    }
    if (!isAnyOpen)
        m_expiry->stop();
}

void DmxListener::TakePacket(Place& place, PacketView bytes, const QHostAddress& sender) {
    if (place.protocol == DmxProtocol::Sacn)
        TakeSacn(place, bytes);
    else
        TakeArtNet(place, bytes, sender);
}

void DmxListener::TakeSacn(Place& place, PacketView bytes) {
    SacnPacket packet;
    const Refusal refusal = ReadSacn(bytes, packet);
    if (refusal != Refusal::None)
        return Count(place, refusal);
    Take(place, packet.universe,
         {packet.cid, packet.sourceName, packet.priority, packet.sequence, packet.preview, packet.terminated,
          packet.startCode, packet.frame});
}

void DmxListener::TakeArtNet(Place& place, PacketView bytes, const QHostAddress& sender) {
    if (ReadArtPoll(bytes) == Refusal::None)
        return AnswerPoll(place, sender);
    ArtDmxPacket packet;
    const Refusal refusal = ReadArtDmx(bytes, packet);
    if (refusal != Refusal::None)
        return Count(place, refusal);
    HeardFrame heard;
    const std::uint32_t address = sender.toIPv4Address();
    for (std::size_t index = 0; index < 4; ++index)
        heard.source[index] = static_cast<std::uint8_t>(address >> (24 - 8 * index));
    heard.source[4] = packet.physical;
    heard.name = sender.toString().toStdString();
    if (packet.sequence != 0)
        heard.sequence = packet.sequence;
    heard.frame = packet.frame;
    Take(place, packet.universe, heard);
}

/// One answer for each universe that is heard here.
void DmxListener::AnswerPoll(const Place& place, const QHostAddress& sender) {
    std::vector<ArtPollReply> replies;
    {
        const std::lock_guard<std::mutex> hold(m_lock);
        for (const auto& input : m_inputs) {
            if (input->place != &place)
                continue;
            ArtPollReply reply;
            reply.address = place.address.toIPv4Address();
            reply.port = place.port;
            reply.universe = input->plan.universe;
            reply.bindIndex = static_cast<std::uint8_t>(replies.size() + 1);
            reply.hasData = !input->universe.Sources().empty();
            reply.merging = input->universe.Sources().size() > 1;
            reply.shortName = "stagehost";
            reply.longName = "stagehost, universe " + std::to_string(reply.universe);
            reply.report = "#0001 [0000] listens";
            replies.push_back(reply);
        }
    }
    for (const auto& reply : replies)
        place.socket->Send(WriteArtPollReply(reply), sender, place.port);
}

void DmxListener::Take(Place& place, std::uint16_t universe, const HeardFrame& heard) {
    bool isWanted = false;
    for (const auto& input : m_inputs) {
        if (input->place != &place || input->plan.universe != universe)
            continue;
        isWanted = true;
        TakeFor(*input, heard);
    }
    if (!isWanted)
        Count(place, Refusal::OtherUniverse);
}

void DmxListener::TakeFor(Input& input, const HeardFrame& heard) {
    UniverseIn::Outcome outcome;
    DmxFrame merged;
    {
        const std::lock_guard<std::mutex> hold(m_lock);
        outcome = input.universe.Take(heard, DmxClock::now());
        input.counts.Add(outcome.refusal);
        if (outcome.changed)
            merged = input.universe.Merged();
    }
    if (outcome.newSource)
        input.news.Told("hears \"" + heard.name + "\"");
    if (outcome.changed)
        input.news.LevelsChanged(merged);
}

void DmxListener::Count(Place& place, Refusal refusal) {
    const std::lock_guard<std::mutex> hold(m_lock);
    place.counts.Add(refusal);
}

} // namespace stagehost
