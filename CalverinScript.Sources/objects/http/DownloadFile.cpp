#include "DownloadFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

QString DownloadTarget(const QString& path, const QUrl& address) {
    QString plain = path;
    plain.replace(QLatin1Char('\\'), QLatin1Char('/'));
    if (QFileInfo(plain).isDir())
        return QDir::toNativeSeparators(plain + QLatin1Char('/') + address.fileName());
    return QFileInfo(plain).fileName().isEmpty() ? QString() : QDir::toNativeSeparators(plain);
}

/// Half a film is none.
bool WriteDownload(const QString& target, const QByteArray& bytes) {
    const QFileInfo before(target);
    if (before.exists() && !before.isFile())
        return false;
    QFile file(target);
    if (file.open(QIODevice::WriteOnly) && (file.write(bytes) != bytes.size() || !file.flush()))
        file.remove();
    file.close();
    return QFileInfo(target).isFile();
}
