#include "TCPClient.h"

#include <utility>
#include <vector>

#include "BufferConversion.h"
#include "HostText.h"
#include "IScriptObjectOwner.h"
#include "MTCPClientSocket.h"
#include "NetCodes.h"
#include "ScriptObject.h"
#include "ScriptWaits.h"
#include "SocketValues.h"

namespace {

constexpr int kFirstPort = 4422;
constexpr int kPortMask = 0xFFFF;

} // namespace

TCPClient::TCPClient(IScriptObjectOwner* objectOwner)
    : socket(std::make_unique<MTCPClientSocket>())
    , owner(objectOwner) {
    m_type = ScriptObjectType::TcpClient;
    socket->SetStackSize(kRequestedStackSize);
    socket->SetNoDelay(true);
    socket->SetPort(kFirstPort);
    socket->SetAddress("127.0.0.1");
    socket->AddHandler(this);
}

TCPClient::~TCPClient() {
    socket->RemoveHandler(this);
    socket->Disconnect();
}

QScriptValue TCPClient::ToScript(QScriptEngine& engine) {
    return WrapOwnedByHost(engine, this);
}

/// A thread that runs, or is still winding down, makes no new attempt, however soon it ends: that is for the next call.
void TCPClient::connect(int iPort, const QString& sHost, const QScriptValue& svConnectListener) {
    const bool running = socket->IsStarted();
    socket->RequestStop();
    {
        const ScriptWait wait(owner != nullptr ? owner->GetWaits() : nullptr, [this] { socket->Disconnect(); });
        if (!wait.IsAllowed())
            return;
        SetPeer(iPort & kPortMask, ToHostText(sHost));
    }
    SetListener(QStringLiteral("connect"), svConnectListener);
    if (owner != nullptr && !running && socket->ConnectAsync() == NetSuccess)
        socket->StartThread();
}

/// A connection that stands moves to another port or host, and goes on being read.
void TCPClient::SetPeer(int port, const QByteArray& host) {
    const bool moves = socket->IsConnected() && (socket->GetPort() != port || socket->GetAddress() != host.constData());
    socket->SetPort(port);
    socket->SetAddress(host.constData());
    if (!moves)
        return;
    socket->Wait();
    socket->StartThread();
}

QScriptValue TCPClient::address() {
    return SocketAddressValue(engine(), socket->GetPort(), socket->GetAddress());
}

void TCPClient::setNoDelay(bool bNoDelay) {
    socket->SetNoDelay(bNoDelay);
}

void TCPClient::write(const QScriptValue& svData) {
    if (!svData.isString() && !IsBuffer(svData))
        return;
    const QByteArray bytes = svData.isString() ? ToHostText(svData.toString()) : BytesFromBuffer(svData);
    const ScriptWait wait(owner != nullptr ? owner->GetWaits() : nullptr, [this] { socket->Disconnect(); });
    if (wait.IsAllowed())
        socket->Send(bytes.constData(), bytes.size());
}

void TCPClient::end() {
    socket->Disconnect();
    OnClose(socket.get());
}

void TCPClient::on(const QString& sEvent, const QScriptValue& svListener) {
    SetListener(sEvent, svListener);
}

bool TCPClient::OnQueryConnect(MTCPClientSocket* /*socket*/) {
    return true;
}

void TCPClient::OnConnect(MTCPClientSocket* /*socket*/) {
    const MScriptParamList none;
    if (owner != nullptr)
        owner->PostScriptEvent(QStringLiteral("connect"), &none, this);
}

void TCPClient::OnClose(MTCPClientSocket* /*socket*/) {
    MScriptParamList values;
    values.Add(false);
    if (owner != nullptr)
        owner->PostScriptEvent(QStringLiteral("close"), &values, this);
}

void TCPClient::OnData(const char* data, std::int32_t length, MTCPClientSocket* /*socket*/) {
    if (owner == nullptr || data == nullptr || length <= 0)
        return;
    std::vector<MScriptParamList> block(1);
    block.front().Add(QByteArray(data, length));
    owner->PostScriptEvents(QStringLiteral("data"), std::move(block), this);
}

void TCPClient::OnError(std::int32_t code, MTCPClientSocket* source) {
    if (owner == nullptr)
        return;
    const MScriptParamList values = SocketErrorValues(*source, code);
    owner->PostScriptEvent(QStringLiteral("error"), &values, this);
}
