#pragma once

#include <cstdint>

#include "SocketError.h"

/// The codes of the socket layer, as handlers and scripts get them. NetErrorText has their texts.
enum NetCode : std::int32_t {
    NetSuccess = 0,
    NetUnknown = -1,
    NetNoSocket = -2,
    NetBadAddress = -3,
    NetTimedOut = -4,
    NetRefused = -5,
    NetHostUnreachable = -6,
    NetStartup = -7,
    NetBadParameter = -8,
    NetNotConnected = -9,
    NetSendFailed = -10,
    NetAlreadyConnected = -11,
    NetBufferTooSmall = -12,
    NetSendDatagramFailed = -13,
    NetSetupFailed = -14,
    NetReadFailed = -15,
    NetBindFailed = -16,
    NetAcceptFailed = -17,
    NetAddressInUse = -18,
    NetNoMoreSockets = -19,
    NetNotCreated = -20,
    NetNotDatagram = -21,
    NetJoinFailed = -22,
    NetNoDelayFailed = -23,
    NetOperationTimedOut = -24,
    NetBufferSizeFailed = -25,
    NetConnecting = -26,
    NetTooMany = -27,
    NetDown = -28,
    NetReset = -29,
    NetOptionNotAllowed = -30,
    NetAborted = -31,
};

/// The text of a code, word for word as users know it. Static; never null.   [thread: any]
const char* NetErrorText(std::int32_t code);

/// Which of the four families an operation belongs to: each gives
/// some errors codes of its own, and NetUnknown to the others.
enum class NetOperation {
    General,   ///< connects, and what handlers hear of
    Bind,      ///< binding a datagram socket
    Option,    ///< options of multicast and interfaces
    KeepAlive, ///< SetKeepAlive
};

/// The code of an error in an operation. None is NetUnknown too: only failures are asked for.   [thread: any]
std::int32_t NetCodeOf(NetOperation operation, SocketError error);
