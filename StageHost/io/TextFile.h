#pragma once

#include <optional>

#include <QByteArray>
#include <QString>

namespace stagehost {

/// The bytes of a regular file of 64 MB at most.
/// @param problem receives one line that says what is wrong when there is nothing to give.   [any]
std::optional<QByteArray> ReadTextBytes(const QString& file, QString* problem);

/// The text of a file, read as UTF-8 when its bytes are that and as Latin-1 otherwise.
std::optional<QString> ReadText(const QString& file, QString* problem);

/// Why a file cannot be replaced by a report or a recording; empty when it can: nothing is there yet, or a regular file
/// that is empty or an older one of its kind.
/// @param mark what stands in the first line or two of every such file. @param what it is, for people.   [any]
QString WhyNotReplaceable(const QString& file, const char* mark, const char* what);

/// Why nothing can be written behind the end of a log, which is made if it is not there; empty when it can. A file
/// whose first line does not begin with a date, as those of logs do, is somebody's script, show or text, and is left
/// alone.
QString WhyNotAppendable(const QString& file);

} // namespace stagehost
