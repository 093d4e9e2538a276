#include "Relay.h"

#include <utility>

#include "DatagramChannel.h"
#include "SerialChannel.h"
#include "StreamChannel.h"

namespace stagehost {

namespace {

constexpr qint64 kMostWaiting = 256 * 1024; // bytes that one side may be behind before the other is held up

/// Neighbouring seeds would begin alike otherwise; any odd number far from a power of two does.
constexpr std::uint64_t kSeedStep = 0x9E3779B97F4A7C15;

std::unique_ptr<Mischief> PranksOf(const std::optional<MischiefPlan>& plan, LineId line, Side by) {
    if (!plan)
        return nullptr;
    const auto number = static_cast<std::uint64_t>(line) * 2 + static_cast<std::uint64_t>(by);
    return std::make_unique<Mischief>(plan->seed + number * kSeedStep, plan->from, plan->oneIn);
}

} // namespace

Relay::Relay(RelayPlan plan, std::function<void(TrafficEntry)> told)
    : m_plan(std::move(plan))
    , m_told(std::move(told))
    , m_endpoint(Endpoint::Make(m_plan.device.kind, *this)) {}

Relay::~Relay() {
    while (!m_pairs.empty())
        Drop(m_pairs.begin()->first);
}

QString Relay::Open() {
    if (m_plan.device.kind != LineKind::Serial) {
        QString unknown = AddressOf(m_plan.device, m_device);
        if (!unknown.isEmpty())
            return unknown;
    }
    const QString problem = m_endpoint->Open(m_plan.listen);
    if (!problem.isEmpty())
        return QStringLiteral("%1: %2").arg(TextOf(m_plan.listen), problem);
    if (m_plan.device.kind == LineKind::Serial)
        OpenSerialDevice();
    return {};
}

/// Its program comes and goes, one at a time.
void Relay::OpenSerialDevice() {
    const auto port = std::make_shared<SerialChannel>(m_plan.device.path, m_plan.serial);
    m_serial = port;
    const auto line = [this] { return m_pairs.empty() ? 0 : m_pairs.begin()->first; };
    ChannelNews news;
    news.came = [this, line](const QByteArray& bytes) {
        m_endpoint->LookForPrograms();
        Pass(line(), Side::Device, bytes);
    };
    news.connected = [this] { Tell(0, TrafficEvent::Back, Side::Device); };
    news.drained = [this, line] { SetReading(line()); };
    news.lost = [this](const QString& why, bool) { Tell(0, TrafficEvent::Unreachable, Side::Device, why); };
    port->SetNews(std::move(news));
    port->Open();
}

void Relay::Opened(LineId line, const QString& who) {
    Tell(line, TrafficEvent::Opened, Side::Program, who);
    QString problem;
    Pair& pair = m_pairs[line];
    pair.device = ConnectToDevice(line, problem);
    for (const Side by : {Side::Program, Side::Device})
        pair.pranks[static_cast<int>(by)] = PranksOf(m_plan.mischief, line, by);
    if (m_plan.mischief)
        MakePassages(line);
    if (!pair.device)
        DeviceLost(line, problem, false);
    else
        SetReading(line);
}

std::shared_ptr<Channel> Relay::ConnectToDevice(LineId line, QString& problem) {
    std::shared_ptr<Channel> device = m_serial;
    if (m_plan.device.kind == LineKind::Tcp)
        device = StreamChannel::ConnectTo(m_device);
    else if (m_plan.device.kind == LineKind::Udp)
        device = DatagramChannel::To(m_device, problem);
    if (device && device != m_serial)
        device->SetNews(NewsOf(line));
    return device;
}

ChannelNews Relay::NewsOf(LineId line) {
    ChannelNews news;
    news.came = [this, line](const QByteArray& bytes) { Pass(line, Side::Device, bytes); };
    news.connected = [this, line] { m_pairs[line].isConnected = true; };
    news.ended = [this, line] { DeviceEnded(line); };
    news.drained = [this, line] { SetReading(line); };
    news.refused = [this, line](const QString& why) { Tell(line, TrafficEvent::Unreachable, Side::Device, why); };
    news.lost = [this, line](const QString& why, bool isReset) { DeviceLost(line, why, isReset); };
    return news;
}

void Relay::MakePassages(LineId line) {
    Pair& pair = m_pairs[line];
    pair.toDevice = Passage::To({[this, line](const QByteArray& bytes) { Send(line, Side::Program, bytes); },
                                 [this, line](End end) { EndWay(line, Side::Program, end); }});
    pair.toProgram = Passage::To({[this, line](const QByteArray& bytes) { Send(line, Side::Device, bytes); },
                                  [this, line](End end) { EndWay(line, Side::Device, end); }});
}

void Relay::Came(LineId line, const QByteArray& bytes) {
    Pass(line, Side::Program, bytes);
}

void Relay::Pass(LineId line, Side by, const QByteArray& bytes) {
    Prank prank = Prank::None;
    const auto found = m_pairs.find(line);
    if (found != m_pairs.end() && m_plan.mischief) {
        const PrankedPiece piece = found->second.pranks[static_cast<int>(by)]->Next(bytes);
        prank = piece.prank;
        const auto way = by == Side::Program ? found->second.toDevice : found->second.toProgram;
        way->Pass(piece);
    } else if (found != m_pairs.end()) {
        Send(line, by, bytes);
    }
    m_told({0, line, TrafficEvent::Bytes, by, bytes});
    if (prank != Prank::None)
        Tell(line, TrafficEvent::Prank, by, NameOf(prank));
    SetReading(line);
}

void Relay::Send(LineId line, Side by, const QByteArray& bytes) {
    const auto found = m_pairs.find(line);
    if (found == m_pairs.end())
        return;
    if (by == Side::Device)
        m_endpoint->Send(line, bytes);
    else if (const auto device = found->second.device)
        device->Send(bytes);
    if (m_plan.mischief)
        SetReading(line);
}

/// Ends one way, or for all ends but that of one half the whole connection.
void Relay::EndWay(LineId line, Side by, End end) {
    const auto found = m_pairs.find(line);
    if (found == m_pairs.end() || end == End::None)
        return;
    const auto device = found->second.device;
    if (end == End::HalfClose) {
        if (by == Side::Device)
            m_endpoint->EndSending(line);
        else if (device)
            device->EndSending();
        return;
    }
    if (end == End::Reset) {
        m_endpoint->Reset(line);
        if (device && device != m_serial)
            device->Reset();
    }
    Drop(line);
}

void Relay::Ended(LineId line) {
    SideEnded(line, Side::Program);
}

void Relay::DeviceEnded(LineId line) {
    SideEnded(line, Side::Device);
}

void Relay::SideEnded(LineId line, Side by) {
    Tell(line, TrafficEvent::Ended, by);
    const auto found = m_pairs.find(line);
    if (found == m_pairs.end())
        return;
    const auto way = by == Side::Program ? found->second.toDevice : found->second.toProgram;
    if (way)
        way->PassEnd(End::HalfClose);
    else
        EndWay(line, by, End::HalfClose);
}

void Relay::Drained(LineId line) {
    SetReading(line);
}

/// A TCP connection whose halves have both ended in order may still have something on its way to the device.
void Relay::Closed(LineId line, const QString& why) {
    const auto found = m_pairs.find(line);
    if (found == m_pairs.end())
        return;
    const bool isTcp = m_plan.device.kind == LineKind::Tcp;
    found->second.isProgramOver = true;
    if (isTcp && why.isEmpty()) {
        if (found->second.isDeviceOver)
            Drop(line);
        return;
    }
    Tell(line, isTcp ? TrafficEvent::Reset : TrafficEvent::Closed, Side::Program, why);
    if (isTcp)
        EndWay(line, Side::Program, End::Reset);
    else
        Drop(line);
}

void Relay::DeviceLost(LineId line, const QString& why, bool isReset) {
    const auto found = m_pairs.find(line);
    if (found == m_pairs.end())
        return;
    Pair& pair = found->second;
    pair.isDeviceOver = true;
    if (why.isEmpty()) {
        if (pair.isProgramOver)
            Drop(line);
        return;
    }
    const TrafficEvent lost = isReset ? TrafficEvent::Reset : TrafficEvent::Closed;
    Tell(line, pair.isConnected || isReset ? lost : TrafficEvent::Unreachable, Side::Device, why);
    EndWay(line, Side::Device, End::Reset);
}

void Relay::Drop(LineId line) {
    const auto found = m_pairs.find(line);
    if (found == m_pairs.end())
        return;
    const Pair pair = std::move(found->second);
    m_pairs.erase(found);
    for (const auto& way : {pair.toDevice, pair.toProgram}) {
        if (way)
            way->Stop();
    }
    m_endpoint->Close(line);
    if (pair.device && pair.device != m_serial)
        pair.device->Close();
}

void Relay::HoldUp(bool holds) {
    m_isHeldUp = holds;
    for (const auto& [line, pair] : m_pairs)
        SetReading(line);
}

/// Each side is read as long as the other takes what comes.
void Relay::SetReading(LineId line) {
    const auto found = m_pairs.find(line);
    if (found == m_pairs.end())
        return;
    const Pair& pair = found->second;
    const qint64 toDevice = (pair.device ? pair.device->Unsent() : 0) + (pair.toDevice ? pair.toDevice->Waiting() : 0);
    const qint64 toProgram = m_endpoint->Unsent(line) + (pair.toProgram ? pair.toProgram->Waiting() : 0);
    m_endpoint->SetReading(line, !m_isHeldUp && toDevice < kMostWaiting);
    if (pair.device)
        pair.device->SetReading(!m_isHeldUp && toProgram < kMostWaiting);
}

void Relay::Tell(LineId line, TrafficEvent event, Side by, const QString& text) {
    m_told({0, line, event, by, {}, text});
}

} // namespace stagehost
