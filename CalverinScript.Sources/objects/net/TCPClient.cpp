#include "TCPClient.h"

#include <utility>
#include <vector>

#include <QScriptContext>
#include <QScriptEngine>

#include "BufferConversion.h"
#include "HostText.h"
#include "IScriptObjectOwner.h"
#include "MTCPClientSocket.h"
#include "NetCodes.h"
#include "ScriptFacing.h"
#include "ScriptWaits.h"
#include "SocketValues.h"

namespace {

constexpr int kFirstPort = 4422;
constexpr int kPortMask = 0xFFFF;

} // namespace

TCPClient::TCPClient(IScriptObjectOwner* objectOwner)
    : m_socket(std::make_unique<MTCPClientSocket>())
    , m_owner(objectOwner)
    , m_backlog([this](bool full) { m_socket->SetReading(!full); }) {
    m_type = ScriptObjectType::TcpClient;
    m_socket->SetStackSize(kRequestedStackSize);
    m_socket->SetNoDelay(true);
    m_socket->SetPort(kFirstPort);
    m_socket->SetAddress("127.0.0.1");
    m_socket->AddHandler(this);
}

TCPClient::~TCPClient() {
    ShutThreadsOut();
}

void TCPClient::ShutThreadsOut() {
    m_socket->RemoveHandler(this);
    m_socket->Disconnect();
}

QScriptValue TCPClient::ToScript(QScriptEngine& engine) {
    QScriptValue view = GetView(engine);
    QScriptValue quickWrite = engine.newFunction(&ScriptFunction<&TCPClient::WriteQuickly>);
    quickWrite.setData(view.property(QStringLiteral("write")));
    view.setProperty(QStringLiteral("write"), quickWrite);
    return view;
}

/// The engine's own way to a method costs three times what sending a small block does. It is left to it where a call is unusual, so that
/// such calls fail with its words.
QScriptValue TCPClient::WriteQuickly(QScriptContext* context, QScriptEngine* /*engine*/) {
    auto* const client = qobject_cast<TCPClient*>(context->thisObject().toQObject());
    if (client == nullptr || context->argumentCount() != 1)
        return context->callee().data().call(context->thisObject(), context->argumentsObject());
    client->write(context->argument(0));
    return QScriptValue(QScriptValue::UndefinedValue);
}

/// A thread that runs, or is still winding down, makes no new attempt, however soon it ends: that is for the next call.
void TCPClient::connect(int iPort, const QString& sHost, const QScriptValue& svConnectListener) {
    const bool running = m_socket->IsStarted();
    m_socket->RequestStop();
    {
        const ScriptWait wait(m_owner != nullptr ? m_owner->GetWaits() : nullptr, [this] { m_socket->Disconnect(); });
        if (!wait.IsAllowed())
            return;
        SetPeer(iPort & kPortMask, ToHostText(sHost));
    }
    SetListener(QStringLiteral("connect"), svConnectListener);
    if (m_owner != nullptr && !running && m_socket->ConnectAsync() == NetSuccess)
        StartThread();
}

/// A connection that stands moves to another port or host, and goes on being read.
void TCPClient::SetPeer(int port, const QByteArray& host) {
    const bool moves =
        m_socket->IsConnected() && (m_socket->GetPort() != port || m_socket->GetAddress() != host.constData());
    m_socket->SetPort(port);
    m_socket->SetAddress(host.constData());
    if (!moves)
        return;
    m_socket->Wait();
    StartThread();
}

void TCPClient::StartThread() {
    if (!m_socket->StartThread())
        OnError(NetStartup, m_socket.get()); // the system has no thread or no descriptor left
}

QScriptValue TCPClient::address() {
    return SocketAddressValue(engine(), m_socket->GetPort(), m_socket->GetAddress());
}

void TCPClient::setNoDelay(bool bNoDelay) {
    m_socket->SetNoDelay(bNoDelay);
}

void TCPClient::write(const QScriptValue& svData) {
    if (!svData.isString() && !IsBuffer(svData))
        return;
    const QByteArray bytes = svData.isString() ? ToHostText(svData.toString()) : BytesFromBuffer(svData);
    const ScriptWait wait(m_owner != nullptr ? m_owner->GetWaits() : nullptr, [this] { m_socket->Disconnect(); });
    if (wait.IsAllowed())
        m_socket->Send(bytes.constData(), bytes.size());
}

void TCPClient::end() {
    m_socket->Disconnect();
    OnClose(m_socket.get());
}

void TCPClient::on(const QString& sEvent, const QScriptValue& svListener) {
    SetListener(sEvent, svListener);
}

bool TCPClient::OnQueryConnect(MTCPClientSocket* /*socket*/) {
    return true;
}

void TCPClient::OnConnect(MTCPClientSocket* /*socket*/) {
    const MScriptParamList none;
    if (m_owner != nullptr)
        m_owner->PostScriptEvent(QStringLiteral("connect"), &none, this);
}

void TCPClient::OnClose(MTCPClientSocket* /*socket*/) {
    MScriptParamList values;
    values.Add(false);
    if (m_owner != nullptr)
        m_owner->PostScriptEvent(QStringLiteral("close"), &values, this);
}

void TCPClient::OnData(const char* data, std::int32_t length, MTCPClientSocket* /*socket*/) {
    if (m_owner == nullptr || data == nullptr || length <= 0)
        return;
    std::vector<MScriptParamList> block(1);
    block.front().Add(QByteArray(data, length));
    block.front().Carry(m_backlog.Add({1, static_cast<std::uint64_t>(length)}));
    m_owner->PostScriptEvents(QStringLiteral("data"), std::move(block), this);
}

void TCPClient::OnError(std::int32_t code, MTCPClientSocket* source) {
    if (m_owner == nullptr)
        return;
    const MScriptParamList values = SocketErrorValues(*source, code);
    m_owner->PostScriptEvent(QStringLiteral("error"), &values, this);
}
