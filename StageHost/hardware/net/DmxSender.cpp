#include "DmxSender.h"

#include <algorithm>

#include <QEventLoop>
#include <QUdpSocket>
#include <QUuid>

#include "ArtNetPacket.h"

namespace stagehost {

namespace {

OutRules RulesOf(const DmxOutPlan& plan) {
    const bool sacn = plan.protocol == DmxProtocol::Sacn;
    return {plan.rate, plan.continuous, sacn, sacn ? kSacnEnds : 0};
}

SacnCid NewCid() {
    SacnCid cid;
    const QByteArray bytes = QUuid::createUuid().toRfc4122();
    std::copy_n(bytes.begin(), cid.size(), cid.begin());
    return cid;
}

} // namespace

struct DmxSender::Output {
    Output(const DmxOutPlan& outPlan, PortNews& outNews)
        : plan(outPlan)
        , news(outNews)
        , universe(RulesOf(outPlan)) {}

    const DmxOutPlan plan;
    PortNews& news;
    UniverseOut universe;
    std::unique_ptr<QUdpSocket> socket; ///< made and used by the thread alone
    bool failing = false;
    std::uint64_t frames = 0;
    std::uint64_t failures = 0;
    Lateness lateness;
};

DmxSender::DmxSender()
    : m_cid(NewCid())
    , m_thread([this] { Serve(); }) {}

DmxSender::~DmxSender() {
    {
        const std::lock_guard<std::mutex> hold(m_lock);
        m_ending = true;
        for (const auto& output : m_outputs)
            output->universe.Close(DmxClock::now());
    }
    m_changed.notify_one();
    m_thread.join();
}

std::size_t DmxSender::Add(const DmxOutPlan& plan, PortNews& news) {
    const std::lock_guard<std::mutex> hold(m_lock);
    m_outputs.push_back(std::make_unique<Output>(plan, news));
    return m_outputs.size() - 1;
}

void DmxSender::Open(std::size_t output) {
    PortNews* news = nullptr;
    {
        const std::lock_guard<std::mutex> hold(m_lock);
        Output& opened = *m_outputs.at(output);
        if (opened.universe.IsOpen())
            return;
        opened.universe.Open(DmxClock::now());
        opened.failing = false;
        news = &opened.news;
    }
    m_changed.notify_one();
    news->StateChanged();
}

void DmxSender::Close(std::size_t output) {
    PortNews* news = nullptr;
    {
        const std::lock_guard<std::mutex> hold(m_lock);
        Output& closed = *m_outputs.at(output);
        if (!closed.universe.IsOpen())
            return;
        closed.universe.Close(DmxClock::now());
        news = &closed.news;
    }
    m_changed.notify_one();
    news->StateChanged();
}

bool DmxSender::Write(std::size_t output, const std::uint8_t* levels, std::size_t start, std::size_t count) {
    {
        const std::lock_guard<std::mutex> hold(m_lock);
        UniverseOut& universe = m_outputs.at(output)->universe;
        if (!universe.IsOpen() || !universe.Write(levels, start, count, DmxClock::now()))
            return false;
    }
    m_changed.notify_one();
    return true;
}

DmxFrame DmxSender::Levels(std::size_t output) const {
    const std::lock_guard<std::mutex> hold(m_lock);
    return m_outputs.at(output)->universe.Levels();
}

DmxOutStatus DmxSender::Status(std::size_t output) const {
    const std::lock_guard<std::mutex> hold(m_lock);
    const Output& asked = *m_outputs.at(output);
    return {asked.universe.IsOpen() && !asked.failing, asked.frames, asked.failures, asked.lateness.Quantile(0.5),
            asked.lateness.Quantile(0.99)};
}

void DmxSender::Serve() {
    const QEventLoop events; // sockets want a thread that has events, though nothing comes in here
    std::unique_lock<std::mutex> hold(m_lock);
    while (true) {
        const auto due = NextDue();
        if (!due && m_ending)
            break;
        if (due && *due > DmxClock::now())
            m_changed.wait_until(hold, *due);
        else if (!due)
            m_changed.wait(hold);
        // By index, since outputs may be added while SendDue has the lock open.
        for (std::size_t index = 0; index < m_outputs.size(); ++index) // NOLINT(modernize-loop-convert)
            SendDue(hold, *m_outputs[index]);
    }
    for (const auto& output : m_outputs)
        output->socket.reset();
}

std::optional<DmxTime> DmxSender::NextDue() const {
    std::optional<DmxTime> next;
    for (const auto& output : m_outputs) {
        const auto due = output->universe.NextDue();
        if (due && (!next || *due < *next))
            next = due;
    }
    return next;
}

/// Sends what is due, without the lock.
void DmxSender::SendDue(std::unique_lock<std::mutex>& hold, Output& output) {
    const auto departure = output.universe.TakeDue(DmxClock::now());
    if (!departure)
        return;
    hold.unlock();
    const std::string error = Send(output, *departure);
    const bool sent = error.empty();
    const auto left = DmxClock::now();
    hold.lock();
    output.lateness.Add(left - departure->due);
    ++(sent ? output.frames : output.failures);
    if (output.failing == !sent || departure->terminated)
        return;
    output.failing = !sent;
    hold.unlock();
    const std::string target = output.plan.Target().toString().toStdString();
    output.news.Told(sent ? "sends to " + target + " again" : "cannot send to " + target + ": " + error);
    output.news.StateChanged();
    hold.lock();
}

/// @return empty, or why it could not be sent.
std::string DmxSender::Send(Output& output, const Departure& departure) const {
    const DmxOutPlan& plan = output.plan;
    if (!output.socket) {
        const bool choosesInterface = plan.multicast && !plan.networkInterface.isEmpty();
        if (choosesInterface && !plan.Interface().isValid())
            return "there is no network interface \"" + plan.networkInterface.toStdString() + "\"";
        output.socket = std::make_unique<QUdpSocket>();
        output.socket->bind(QHostAddress(QHostAddress::AnyIPv4), 0);
        if (choosesInterface)
            output.socket->setMulticastInterface(plan.Interface());
    }
    const auto packet = Packet(output, departure);
    const auto size = static_cast<qint64>(packet.size());
    if (output.socket->writeDatagram(reinterpret_cast<const char*>(packet.data()), size, plan.Target(), plan.Port()) ==
        size)
        return {};
    std::string error = output.socket->errorString().toStdString();
    output.socket.reset(); // the next one may find another way
    return error;
}

std::vector<std::uint8_t> DmxSender::Packet(const Output& output, const Departure& departure) const {
    const DmxOutPlan& plan = output.plan;
    if (plan.protocol == DmxProtocol::ArtNet)
        return WriteArtDmx({departure.sequence, 0, plan.universe, departure.frame});
    SacnPacket packet;
    packet.cid = m_cid;
    packet.sourceName = plan.sourceName;
    packet.priority = plan.priority;
    packet.sequence = departure.sequence;
    packet.terminated = departure.terminated;
    packet.universe = plan.universe;
    packet.frame = departure.frame;
    return WriteSacn(packet);
}

} // namespace stagehost
