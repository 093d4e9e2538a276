#pragma once

#include <QByteArray>
#include <QString>

#include "Failure.h"

namespace stagehost {

/// Writes a file of JUnit XML, whole or not at all. What stands there is replaced when it is such a file as
/// well.   [host main]
MaybeFailure KeepJUnitFile(const QString& path, const QByteArray& text);

} // namespace stagehost
