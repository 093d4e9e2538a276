#pragma once

#include <optional>

#include <QByteArray>
#include <QString>

namespace stagehost {

/// The bytes of a file.
/// @param problem receives one line that says what is wrong when there is nothing to give.   [any]
std::optional<QByteArray> ReadTextBytes(const QString& file, QString* problem);

/// The text of a file, read as UTF-8 when its bytes are that and as Latin-1 otherwise.
std::optional<QString> ReadText(const QString& file, QString* problem);

} // namespace stagehost
