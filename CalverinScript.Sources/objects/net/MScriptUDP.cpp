#include "MScriptUDP.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

#include "BufferConversion.h"
#include "DatagramParts.h"
#include "EventRecords.h"
#include "HostText.h"
#include "IScriptObjectOwner.h"
#include "MUDPSocket.h"
#include "NetCodes.h"
#include "RunWithinMemory.h"
#include "ScriptView.h"
#include "ScriptWaits.h"
#include "SocketValues.h"

MScriptUDP::MScriptUDP(IScriptObjectOwner* objectOwner)
    : m_socket(std::make_unique<MUDPSocket>())
    , m_owner(objectOwner)
    , m_drops(TellOfSlowScript(objectOwner,
                               [this] { return QStringLiteral("datagrams at port %1").arg(m_socket->GetPort()); }))
    , m_backlog([this](bool full) {
        if (!full)
            m_drops.TellRest();
    }) {
    m_type = ScriptObjectType::Udp;
    m_socket->SetStackSize(kRequestedStackSize);
    m_socket->AddHandler(this);
}

MScriptUDP::~MScriptUDP() {
    ShutThreadsOut();
    RunWithinMemory([this] { m_drops.TellRest(); });
}

void MScriptUDP::ShutThreadsOut() {
    m_socket->RemoveHandler(this);
    m_socket->Close();
}

QScriptValue MScriptUDP::ToScript(QScriptEngine& engine) {
    return WrapOwnedByHost(engine, this);
}

void MScriptUDP::bind(int iPort, const QString& sAddresses) {
    m_socket->SetPort(static_cast<std::uint16_t>(iPort));
    if (m_owner == nullptr)
        return;
    const std::vector<std::string> addresses = BindAddresses(ToHostText(sAddresses).constData());
    std::array<const char*, kMostBindAddresses> list{};
    std::transform(addresses.begin(), addresses.end(), list.begin(), [](const std::string& a) { return a.c_str(); });
    m_socket->Bind(!addresses.empty(), list.data(), static_cast<std::int32_t>(addresses.size()));
}

void MScriptUDP::setExclusivePort(bool bExclusive) {
    m_socket->SetExclusivePort(bExclusive);
}

void MScriptUDP::send(const QScriptValue& svData, int iOffset, int iLength, int iPort, const QString& sAddress) {
    if (m_owner == nullptr || (!svData.isString() && !IsBuffer(svData)))
        return;
    const QByteArray bytes = IsBuffer(svData) ? BytesFromBuffer(svData) : QByteArray();
    const DatagramPart part = PartInside(bytes.size(), iOffset, iLength);
    const ScriptWait wait(m_owner->GetWaits(), [this] { m_socket->Close(); });
    if (wait.IsAllowed())
        m_socket->SendTo(bytes.constData() + part.offset, part.length, ToHostText(sAddress).constData(),
                         static_cast<std::uint16_t>(iPort));
}

QScriptValue MScriptUDP::address() {
    return SocketAddressValue(engine(), m_socket->GetPort(), m_socket->GetAddress());
}

void MScriptUDP::close() {
    m_socket->Close();
}

void MScriptUDP::on(const QString& sEvent, const QScriptValue& svListener) {
    SetListener(sEvent, svListener);
}

void MScriptUDP::OnMessage(const char* data, std::int32_t length, const char* sourceAddressText,
                           std::uint16_t sourcePort, MUDPSocket* /*socket*/) {
    if (m_owner == nullptr || data == nullptr || sourceAddressText == nullptr || length <= 0)
        return;
    if (!TakeRoom(length))
        return;
    MScriptParamList values;
    values.Add(QByteArray(data, length));
    values.Add(QVariant::fromValue(SenderOf(sourceAddressText, sourcePort)));
    m_burst.push_back(std::move(values));
}

const IPInfo& MScriptUDP::SenderOf(const char* addressText, std::uint16_t port) {
    if (m_senderText != addressText || m_sender.GetPort() != port) {
        m_senderText = addressText;
        m_sender = IPInfo(port, FromHostText(addressText));
    }
    return m_sender;
}

/// The script only makes room, so the room is asked for once in a burst.
bool MScriptUDP::TakeRoom(std::int32_t length) {
    const auto bytes = static_cast<std::uint64_t>(length);
    if (m_burst.empty())
        m_room = m_backlog.GetRoom();
    if (std::exchange(m_dropsNext, false) || !m_room.Take(bytes)) {
        ++m_dropped;
        return false;
    }
    ++m_burstLoad.events;
    m_burstLoad.bytes += bytes;
    return true;
}

/// What came before the error is heard before it. A datagram that was cut is heard with its error or not at all.
void MScriptUDP::OnError(std::int32_t code, MUDPSocket* from) {
    if (m_owner == nullptr)
        return;
    OnBurstEnd(from);
    m_dropsNext = code == NetBufferTooSmall && m_backlog.GetRoom().events == 0;
    if (m_dropsNext)
        return;
    MScriptParamList values = SocketErrorValues(*from, code);
    values.Carry(m_backlog.Add({1, 0}));
    m_owner->PostScriptEvent(QStringLiteral("error"), &values, this);
}

/// Hands the burst to the script in a list of just its size, and keeps the room of `m_burst` for the next one.
void MScriptUDP::OnBurstEnd(MUDPSocket* /*socket*/) {
    if (m_dropped > 0)
        m_drops.Note(std::exchange(m_dropped, 0));
    if (m_burst.empty())
        return;
    m_burst.back().Carry(m_backlog.Add(std::exchange(m_burstLoad, {})));
    std::vector<MScriptParamList> messages(std::make_move_iterator(m_burst.begin()),
                                           std::make_move_iterator(m_burst.end()));
    m_burst.clear();
    m_owner->PostScriptEvents(QStringLiteral("message"), std::move(messages), this);
}
