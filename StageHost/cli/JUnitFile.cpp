#include "JUnitFile.h"

#include <QSaveFile>

#include "ExitCodes.h"
#include "TextFile.h"

namespace stagehost {

MaybeFailure KeepJUnitFile(const QString& path, const QByteArray& text) {
    const QString refusal = WhyNotReplaceable(path, "<testsuite", "such report");
    if (!refusal.isEmpty())
        return Failure{kExitBadUse, QStringLiteral("%1 %2").arg(path, refusal)};
    QSaveFile file(path);
    // Without the flush a disk that is full at the very end leaves a torn file, and no error.
    if (file.open(QIODevice::WriteOnly) && file.write(text) == text.size() && file.flush() && file.commit())
        return std::nullopt;
    return Failure{kExitBadUse, QStringLiteral("%1: cannot be written: %2").arg(path, file.errorString())};
}

} // namespace stagehost
