#pragma once

#include <memory>
#include <string>
#include <vector>

#include <QObject>
#include <QScriptable>
#include <QScriptValue>
#include <QString>

#include "DropLog.h"
#include "EventRecords.h"
#include "IUDPSocketHandler.h"
#include "MScriptCommonEvent.h"
#include "MScriptParamList.h"
#include "ScriptBacklog.h"

class IScriptObjectOwner;
class QScriptEngine;

/// What `QCalverin.CreateSocket("udp4")` gives a script: a datagram socket with a thread of its own, on which its
/// events are raised.
///
/// | event     | values |
/// |-----------|--------|
/// | "message" | QByteArray, IPInfo of the sender with the two bytes of its port exchanged |
/// | "error"   | SocketErrorInfo with a code of NetCodes.h |
///
/// An empty datagram raises nothing. Datagrams are handed over in the bursts in which they came. What comes while as
/// much waits for the script as ScriptBacklog allows is dropped, and the log says how many. No multicast group is ever
/// joined. Texts become Latin-1. What waits for a name ends when the device stops.
class MScriptUDP : public QObject, public QScriptable, public MScriptCommonEvent, public IUDPSocketHandler {
    Q_OBJECT

public:
    /// @param owner borrowed for the object's life; null makes an object that binds and sends nothing, for scripts that
    /// are only looked at.   [script]
    explicit MScriptUDP(IScriptObjectOwner* owner);
    /// Closes and ends the thread.   [script]
    ~MScriptUDP() override;
    /// Closes without event; no thread of the socket is in this object any more.   [script]
    void ShutThreadsOut();

    /// The script's view of this object, which it does not own.   [script]
    QScriptValue ToScript(QScriptEngine& engine);

    // What scripts call. Names of parameters and defaults are the script interface. All on the script thread. What is
    // called most comes first: at each call the engine looks at the names of all methods before it.

    /// Sends the piece of a Buffer as one datagram; the piece is cut to what is there. A text sends an empty datagram,
    /// whatever it says; anything else sends nothing. Waits while a name is looked up.
    Q_INVOKABLE void send(const QScriptValue& svData, int iOffset, int iLength, int iPort,
                          const QString& sAddress = QStringLiteral("0.0.0.0"));
    /// Receives at a port from now on; one that cannot be had gives no sign of it.
    /// @param iPort its lower 16 bits count; 0 has the system choose.
    /// @param sAddresses one address of this machine, to receive there alone; none or several, with ";" between them,
    /// receive on all.
    Q_INVOKABLE void bind(int iPort, const QString& sAddresses = QString());
    /// Whether the port of the next `bind` is this object's alone, which it is at first.
    Q_INVOKABLE void setExclusivePort(bool bExclusive = true);
    /// A new object with the port, which is the system's choice after `bind(0)`, the family and an empty address.
    Q_INVOKABLE QScriptValue address();
    Q_INVOKABLE void close();
    /// Sets the function that hears of an event; it stays until another takes its place.
    Q_INVOKABLE void on(const QString& sEvent, const QScriptValue& svListener);

    // IUDPSocketHandler
    void OnMessage(const char* data, std::int32_t length, const char* sourceAddressText, std::uint16_t sourcePort,
                   MUDPSocket* socket) override;
    void OnError(std::int32_t code, MUDPSocket* socket) override;
    void OnBurstEnd(MUDPSocket* socket) override;

private:
    /// Messages of one sender share it.   [socket]
    const IPInfo& SenderOf(const char* addressText, std::uint16_t port);
    /// Whether one more message may wait; counts it if not.   [socket]
    bool TakeRoom(std::int32_t length);

    const std::unique_ptr<MUDPSocket> m_socket;
    IScriptObjectOwner* const m_owner;

    // The socket's thread.
    std::vector<MScriptParamList> m_burst; ///< messages that were not handed over yet
    BacklogLoad m_burstLoad;               ///< what they weigh
    BacklogLoad m_room;                    ///< for the rest of the burst
    std::uint64_t m_dropped = 0;           ///< of the burst
    bool m_dropsNext = false;              ///< the message that belongs to an error which found no room
    std::string m_senderText;              ///< the address of the last message's sender
    IPInfo m_sender;                       ///< the same with its port

    DropLog m_drops;
    ScriptBacklog m_backlog; ///< of messages and errors; gone before all that it tells
};
