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
#include "ScriptView.h"
#include "ScriptWaits.h"
#include "SocketValues.h"

MScriptUDP::MScriptUDP(IScriptObjectOwner* objectOwner)
    : socket(std::make_unique<MUDPSocket>())
    , owner(objectOwner)
    , drops(objectOwner, [this] { return QStringLiteral("datagrams at port %1").arg(socket->GetPort()); })
    , backlog([this](bool full) {
        if (!full)
            drops.TellRest();
    }) {
    m_type = ScriptObjectType::Udp;
    socket->SetStackSize(kRequestedStackSize);
    socket->AddHandler(this);
}

MScriptUDP::~MScriptUDP() {
    socket->RemoveHandler(this);
    socket->Close();
    drops.TellRest();
}

QScriptValue MScriptUDP::ToScript(QScriptEngine& engine) {
    return WrapOwnedByHost(engine, this);
}

void MScriptUDP::bind(int iPort, const QString& sAddresses) {
    socket->SetPort(static_cast<std::uint16_t>(iPort));
    if (owner == nullptr)
        return;
    const std::vector<std::string> addresses = BindAddresses(ToHostText(sAddresses).constData());
    std::array<const char*, kMostBindAddresses> list{};
    std::transform(addresses.begin(), addresses.end(), list.begin(), [](const std::string& a) { return a.c_str(); });
    socket->Bind(!addresses.empty(), list.data(), static_cast<std::int32_t>(addresses.size()));
}

void MScriptUDP::setExclusivePort(bool bExclusive) {
    socket->SetExclusivePort(bExclusive);
}

void MScriptUDP::send(const QScriptValue& svData, int iOffset, int iLength, int iPort, const QString& sAddress) {
    if (owner == nullptr || (!svData.isString() && !IsBuffer(svData)))
        return;
    const QByteArray bytes = IsBuffer(svData) ? BytesFromBuffer(svData) : QByteArray();
    const DatagramPart part = PartInside(bytes.size(), iOffset, iLength);
    const ScriptWait wait(owner->GetWaits(), [this] { socket->Close(); });
    if (wait.IsAllowed())
        socket->SendTo(bytes.constData() + part.offset, part.length, ToHostText(sAddress).constData(),
                       static_cast<std::uint16_t>(iPort));
}

QScriptValue MScriptUDP::address() {
    return SocketAddressValue(engine(), socket->GetPort(), socket->GetAddress());
}

void MScriptUDP::close() {
    socket->Close();
}

void MScriptUDP::on(const QString& sEvent, const QScriptValue& svListener) {
    SetListener(sEvent, svListener);
}

void MScriptUDP::OnMessage(const char* data, std::int32_t length, const char* sourceAddressText,
                           std::uint16_t sourcePort, MUDPSocket* /*socket*/) {
    if (owner == nullptr || data == nullptr || sourceAddressText == nullptr || length <= 0)
        return;
    if (!TakeRoom(length))
        return;
    MScriptParamList values;
    values.Add(QByteArray(data, length));
    values.Add(QVariant::fromValue(SenderOf(sourceAddressText, sourcePort)));
    burst.push_back(std::move(values));
}

const IPInfo& MScriptUDP::SenderOf(const char* addressText, std::uint16_t port) {
    if (senderText != addressText || sender.GetPort() != port) {
        senderText = addressText;
        sender = IPInfo(port, FromHostText(addressText));
    }
    return sender;
}

/// The script only makes room, so the room is asked for once in a burst.
bool MScriptUDP::TakeRoom(std::int32_t length) {
    const auto bytes = static_cast<std::uint64_t>(length);
    if (burst.empty())
        room = backlog.GetRoom();
    if (std::exchange(dropsNext, false) || !room.Take(bytes)) {
        ++dropped;
        return false;
    }
    ++burstLoad.events;
    burstLoad.bytes += bytes;
    return true;
}

/// What came before the error is heard before it. A datagram that was cut is heard with its error or not at all.
void MScriptUDP::OnError(std::int32_t code, MUDPSocket* from) {
    if (owner == nullptr)
        return;
    OnBurstEnd(from);
    dropsNext = code == NetBufferTooSmall && backlog.GetRoom().events == 0;
    if (dropsNext)
        return;
    MScriptParamList values = SocketErrorValues(*from, code);
    values.Carry(backlog.Add({1, 0}));
    owner->PostScriptEvent(QStringLiteral("error"), &values, this);
}

/// Hands the burst to the script in a list of just its size, and keeps the room of `burst` for the next one.
void MScriptUDP::OnBurstEnd(MUDPSocket* /*socket*/) {
    if (dropped > 0)
        drops.Note(std::exchange(dropped, 0));
    if (burst.empty())
        return;
    burst.back().Carry(backlog.Add(std::exchange(burstLoad, {})));
    std::vector<MScriptParamList> messages(std::make_move_iterator(burst.begin()),
                                           std::make_move_iterator(burst.end()));
    burst.clear();
    owner->PostScriptEvents(QStringLiteral("message"), std::move(messages), this);
}
