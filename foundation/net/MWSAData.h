#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>

#include "NetCodes.h"

/// What the socket library tells of itself. On this platform sockets are part of the system: there is nothing to load,
/// and starting cannot fail.
struct SocketLibrary {
    std::uint16_t version; ///< the major number in the low byte
    std::string description;
    std::string systemStatus;
    std::uint16_t maxSockets; ///< 0: no limit of the library's own
};

/// The common base of sockets: the socket library's start-up, the machine's name and address, error codes and texts.
/// Operations that ask something need no start.
class MWSAData {
public:
    MWSAData();
    virtual ~MWSAData();
    MWSAData(const MWSAData&) = delete;
    MWSAData& operator=(const MWSAData&) = delete;

    /// The machine's name; empty when the system does not tell.   [thread: the owner's]
    virtual std::string GetHostName();

    /// The dotted text of the first address of the machine's name; empty when it has none. May block as long as the
    /// system's resolver does.   [thread: the owner's]
    virtual std::string GetHostIP();

    /// The library's version, the major number times 100 plus the minor number.   [thread: any]
    virtual std::int32_t GetVersion();
    virtual std::string GetDescription();
    virtual std::string GetSystemStatus();
    virtual std::int32_t GetMaxSockets();

    /// The text of a code; "Undefined error" for one that is not in the table. Static.   [thread: any]
    virtual const char* GetErrorText(std::int32_t code);

    /// The code for a number of SocketError.   [thread: any]
    virtual std::int32_t TranslateError(std::int32_t wsaError);

    /// Starts the library; harmless when it is started. @return 0, or -7 when it cannot be started.   [thread: any]
    std::int32_t Start();

    /// Stops the library. @return 0.   [thread: any]
    std::int32_t Stop();

    bool IsLibraryStarted() const { return m_started.load(std::memory_order_acquire); }

protected:
    /// How long a socket's thread pauses when the system refuses to wait or to read, so that it does not spin.
    static constexpr std::uint32_t kBackOffMs = 100;

private:
    std::string m_hostName;             // the owner's thread
    std::string m_hostIp;               // the owner's thread
    std::atomic<bool> m_started{false}; // written by the owner's and the socket's thread, read by all
    const std::unique_ptr<const SocketLibrary> m_library;
};
