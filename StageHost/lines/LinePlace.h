#pragma once

#include <QString>

#include "LineCalls.h"

namespace stagehost {

/// The kinds of lines, by which devices are reached.
enum class LineKind { Tcp, Udp, Serial };

/// Their names on the command line, in traffic files and in ready lines, in the order of the kinds.
inline constexpr const char* kLineKindNames[] = {"tcp", "udp", "serial"};

QString NameOf(LineKind kind);
bool FindLineKind(const QString& name, LineKind& kind);

/// Where a line begins: an address and a port, or a path of the file system.
struct LinePlace {
    LineKind kind = LineKind::Tcp;
    QString host; ///< as it was typed, a name or a number
    std::uint16_t port = 0;
    QString path; ///< of a serial line
};

/// Reads "HOST:PORT", "[::1]:PORT" or "PORT".
/// @param host what an absent host stands for. @return empty, or what is wrong.   [any]
QString ReadHostAndPort(const QString& text, const QString& host, LinePlace& place);

/// The place as people write it: "127.0.0.1:4352", "/dev/ttyUSB0".
QString TextOf(const LinePlace& place);

/// The address of a place, its name looked up. May wait for the name service. @return empty, or what is wrong.
/// [any]
QString AddressOf(const LinePlace& place, NetAddress& address);

} // namespace stagehost
