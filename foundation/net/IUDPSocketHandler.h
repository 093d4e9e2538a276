#pragma once

#include <cstdint>

class MUDPSocket;

/// What the owner of a datagram socket hears of it. Operations are called one at a time, under the lock of the socket's
/// handler list, and must not block.
class IUDPSocketHandler {
public:
    /// A datagram arrived, possibly an empty one. Data and source text are valid for the
    /// call only. The port is in network byte order, as it travelled: 1234 is reported
    /// as 53764 on a machine that counts the other way round.   [thread: socket]
    virtual void OnMessage(const char* data, std::int32_t length, const char* sourceAddressText,
                           std::uint16_t sourcePort, MUDPSocket* socket) = 0;

    /// The code has a text in GetErrorText. After -12 the cut datagram follows as a message.   [thread: socket]
    virtual void OnError(std::int32_t code, MUDPSocket* socket) = 0;

    /// Nothing more is at hand just now. Called after the messages and errors of each burst: what they left behind can
    /// be passed on here, with one lock and one wake-up for the whole burst.   [thread: socket]
    virtual void OnBurstEnd(MUDPSocket* /*socket*/) {}

protected:
    virtual ~IUDPSocketHandler() = default;
};
