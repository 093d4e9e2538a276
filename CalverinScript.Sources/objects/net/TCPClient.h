#pragma once

#include <memory>

#include <QByteArray>
#include <QObject>
#include <QScriptable>
#include <QScriptValue>
#include <QString>

#include "ITCPClientSocketHandler.h"
#include "MScriptCommonEvent.h"
#include "ScriptBacklog.h"

class IScriptObjectOwner;
class QScriptContext;
class QScriptEngine;

/// What `QCalverin.CreateSocket()` gives a script: a TCP client with a thread of its own, on which its events are raised.
///
/// | event     | values |
/// |-----------|--------|
/// | "connect" | none |
/// | "close"   | bool, always false |
/// | "data"    | QByteArray |
/// | "error"   | SocketErrorInfo with a code of NetCodes.h |
///
/// Small blocks are sent at once unless a script says otherwise. Before `connect` it knows port 4422 and "127.0.0.1", which nothing
/// uses. Texts become Latin-1. What waits for a peer or a name ends when the device stops. While as much data waits for the script as
/// ScriptBacklog allows, nothing more is read: the peer has to wait, and nothing is lost.
class TCPClient : public QObject, public QScriptable, public MScriptCommonEvent, public ITCPClientSocketHandler {
    Q_OBJECT

public:
    /// @param owner borrowed for the object's life; null makes a client that never connects, for scripts that are
    /// only looked at.   [script]
    explicit TCPClient(IScriptObjectOwner* owner);
    /// Closes without event and ends the thread, whatever the peer does.   [script]
    ~TCPClient() override;
    /// Closes without event; no thread of the socket is in this object any more.   [script]
    void ShutThreadsOut();

    /// The script's view of this object, which it does not own.   [script]
    QScriptValue ToScript(QScriptEngine& engine);

    // What scripts call. Names of parameters and defaults are the script interface. All on the script thread. What is called most
    // comes first: at each call the engine looks at the names of all methods before it.

    /// Sends a text or a Buffer; anything else does nothing, as does a connection that does not stand. Waits for a peer
    /// that does not read.
    Q_INVOKABLE void write(const QScriptValue& svData);
    /// Connects; "connect" or "error" tells how it went, but a name without an address tells nothing. On an object whose
    /// thread still runs this only asks the thread to end: `end()` comes first. With another port or host, a
    /// connection that stands is closed and opened anew before this returns, and read.
    /// @param iPort its lower 16 bits count.
    /// @param svConnectListener the listener of "connect" from now on; anything but a function is ignored.
    Q_INVOKABLE void connect(int iPort, const QString& sHost = QStringLiteral("127.0.0.1"),
                             const QScriptValue& svConnectListener = QScriptValue(0));
    /// A new object with the port, family and address that the socket was given last.
    Q_INVOKABLE QScriptValue address();
    Q_INVOKABLE void setNoDelay(bool bNoDelay = true);
    /// Closes and raises one "close", whether there was a connection or not.
    Q_INVOKABLE void end();
    /// Sets the function that hears of an event; it stays until another takes its place.
    Q_INVOKABLE void on(const QString& sEvent, const QScriptValue& svListener);

    // ITCPClientSocketHandler
    bool OnQueryConnect(MTCPClientSocket* socket) override;
    void OnConnect(MTCPClientSocket* socket) override;
    void OnClose(MTCPClientSocket* socket) override;
    void OnData(const char* data, std::int32_t length, MTCPClientSocket* socket) override;
    void OnError(std::int32_t code, MTCPClientSocket* socket) override;

private:
    /// What a script finds as `write`: the method of that name, without the engine's search and conversions.   [script]
    static QScriptValue WriteQuickly(QScriptContext* context, QScriptEngine* engine);

    void StartThread();
    void SetPeer(int port, const QByteArray& host);

    const std::unique_ptr<MTCPClientSocket> m_socket;
    IScriptObjectOwner* const m_owner;
    ScriptBacklog m_backlog; ///< of data; gone before the socket that it pauses
};
