#pragma once

#include <QByteArray>

namespace projector {

class Projector;

/// PJLink class 1, as "PJLink Specifications Version 1.04" of JBMIA tells it, without what belongs to the connection.

inline constexpr int kLongestLine = 2 + 4 + 1 + 128; ///< bytes of a command without its CR

/// Answers one command.
/// @param line the command without its CR.
/// @return the answer with its CR; empty for what is no command at all, which a projector passes over.
QByteArray Answer(Projector& projector, const QByteArray& line);

/// What a client has to put in front of its first command.
/// @param random the eight hexadecimal digits of the greeting.
QByteArray Digest(const QByteArray& random, const QByteArray& password);

} // namespace projector
