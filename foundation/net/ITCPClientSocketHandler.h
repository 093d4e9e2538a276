#pragma once

#include <cstdint>

class MTCPClientSocket;

/// What the owner of a TCP socket hears of it. Operations are called one at a time, under the lock of the socket's
/// handler list, and must not block. They may call every operation of the socket; to destroy it is not theirs.
class ITCPClientSocketHandler {
public:
    /// Asked before each connection. @return false to veto it: the connect then fails
    /// with -6.   [thread: socket, or the caller's for Connect, SetAddress and SetPort]
    virtual bool OnQueryConnect(MTCPClientSocket* socket) = 0;

    /// A connection stands.   [thread: as OnQueryConnect]
    virtual void OnConnect(MTCPClientSocket* socket) = 0;

    /// The connection is gone.   [thread: socket, or the one that closed it]
    virtual void OnClose(MTCPClientSocket* socket) = 0;

    /// Bytes arrived, at least one. The pointer is valid for the call only.   [thread: socket]
    virtual void OnData(const char* data, std::int32_t length, MTCPClientSocket* socket) = 0;

    /// A connection failed, or is about to be closed; the code
    /// has a text in GetErrorText.   [thread: as OnQueryConnect]
    virtual void OnError(std::int32_t code, MTCPClientSocket* socket) = 0;

protected:
    virtual ~ITCPClientSocketHandler() = default;
};
