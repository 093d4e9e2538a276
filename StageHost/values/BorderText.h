#pragma once

#include <string>
#include <string_view>

#include <QString>

/// @file
/// The one pair of conversions between the host's own text and the 8-bit text of the contract (Latin-1).   [any]

namespace stagehost {

/// Latin-1 bytes of a text. Each character beyond Latin-1 becomes one "?", and a NUL ends the text.
/// @param lost set to true when a character was replaced or cut off; left alone otherwise. May be null.
std::string ToBorderText(const QString& text, bool* lost = nullptr);

/// The text of Latin-1 bytes; null gives the empty text.
QString FromBorderText(const char* text);
QString FromBorderText(const std::string& text);

/// The text of bytes from a file or the command line: UTF-8 when they are valid UTF-8, Latin-1 otherwise.
QString FromOutsideText(const std::string& bytes);

/// A copy on the heap for an operation that gives a text away; freed with FreeBorderText.
char* CopyBorderText(std::string_view text);

/// Frees what CopyBorderText gave and clears the pointer. Null is ignored, on both levels.
void FreeBorderText(char** text);

} // namespace stagehost
