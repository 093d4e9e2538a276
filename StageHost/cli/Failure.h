#pragma once

#include <optional>

#include <QString>
#include <QStringList>

namespace stagehost {

/// What went wrong, with the exit code that it means.
struct Failure {
    int exitCode;
    QString text;
    QStringList place{}; ///< where in a script: what the log tells of it, a line each; empty when it was in none
};

using MaybeFailure = std::optional<Failure>;

} // namespace stagehost
