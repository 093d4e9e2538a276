#pragma once

#include <string>

#include <QByteArray>
#include <QString>

/// @file
/// Conversions of text at the module's borders. Pure functions, callable on any thread.

/// Text for the host: Latin-1. Characters beyond it become "?".
QByteArray ToHostText(const QString& text);

/// Whether the host gets all of a text: nothing is beyond Latin-1, and no NUL ends it.
bool FitsHostText(const QString& text);

/// Text from the host: Latin-1. Null gives the empty text.
QString FromHostText(const char* text);

/// A path from the host as the system's files have it. Null gives the empty path.
std::string ToFilePath(const char* hostText);

/// Text of a script file: UTF-8 when the bytes are valid UTF-8 (a byte order mark is dropped), Latin-1 otherwise.
QString FromScriptBytes(const QByteArray& bytes);
