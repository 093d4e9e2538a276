#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QString>

namespace stagehost {

/// @file
/// Bytes as people read and write them. Text is UTF-8 whose only control characters are tab, carriage return and line
/// feed.   [any]

/// Bytes for a line of JSON: {"text": ...} where all of them are text, {"hex": "00 ff"} where none are, and otherwise
/// {"parts": ["/fader", {"hex": "00 00"}, ...]}, with runs of at least four characters as text.
QJsonObject BytesToJson(const QByteArray& bytes);

/// Reads what BytesToJson has written, or a person: the member "text", "hex" or "parts".
/// @return false, and what is wrong; blanks between the digits of "hex" mean nothing.
bool BytesFromJson(const QJsonObject& object, QByteArray& bytes, QString& problem);

/// Reads hexadecimal digits in pairs, with blanks anywhere between the pairs.
bool BytesFromHex(const QString& hex, QByteArray& bytes);

/// For people, in one line: %1POWR 1\r with \r, \n, \t, \\ and \xFF for what is no text.
QString BytesForPeople(const QByteArray& bytes);

/// Who has come to a line, for people: a serial line does not know.
inline QString NameOfProgram(const QString& who) {
    return who.isEmpty() ? QStringLiteral("a program") : who;
}

} // namespace stagehost
