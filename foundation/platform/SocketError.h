#pragma once

#include <cstdint>

/// Why the system refused a socket operation. The values are the numbers of Winsock 2 (WSAECONNREFUSED is 10061), which
/// is the vocabulary of the layer above and of the texts that users know; the system's own numbers end here.
enum class SocketError : std::int32_t {
    None = 0,
    IoPending = 997, ///< under way; ask for the result later
    Interrupted = 10004,
    Access = 10013,
    Fault = 10014,
    Invalid = 10022,
    TooManyOpen = 10024, ///< no descriptors left
    WouldBlock = 10035,
    InProgress = 10036,
    Already = 10037,
    NotSocket = 10038,
    MessageTooLong = 10040,
    NoProtocolOption = 10042,
    NotSupported = 10045,
    FamilyNotSupported = 10047,
    AddressInUse = 10048,
    AddressNotAvailable = 10049,
    NetworkDown = 10050,
    NetworkUnreachable = 10051,
    NetworkReset = 10052,
    ConnectionAborted = 10053,
    ConnectionReset = 10054,
    NoBuffers = 10055,
    IsConnected = 10056,
    NotConnected = 10057,
    ShutDown = 10058,
    TimedOut = 10060,
    ConnectionRefused = 10061,
    HostUnreachable = 10065,
    NotInitialised = 10093,
    Other = 10107, ///< any that has no number of its own
};

/// The error behind a number of the system (errno). 0 is None.   [thread: any]
SocketError SocketErrorFromSystem(int systemError);
