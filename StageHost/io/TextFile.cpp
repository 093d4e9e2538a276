#include "TextFile.h"

#include <QFile>
#include <QFileInfo>

#include "BorderText.h"

namespace stagehost {

std::optional<QByteArray> ReadTextBytes(const QString& file, QString* problem) {
    QFile source(file);
    if (QFileInfo(file).isDir()) {
        *problem = QStringLiteral("%1 is a folder").arg(file);
        return std::nullopt;
    }
    if (!source.open(QIODevice::ReadOnly)) {
        *problem = QStringLiteral("cannot read %1: %2").arg(file, source.errorString());
        return std::nullopt;
    }
    return source.readAll();
}

std::optional<QString> ReadText(const QString& file, QString* problem) {
    const auto bytes = ReadTextBytes(file, problem);
    if (!bytes)
        return std::nullopt;
    return FromOutsideText(bytes->toStdString());
}

} // namespace stagehost
