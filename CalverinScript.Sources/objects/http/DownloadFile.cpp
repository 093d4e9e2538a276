#include "DownloadFile.h"

#include <filesystem>
#include <system_error>

#include <QDir>
#include <QFileInfo>
#include <QUuid>

namespace {

constexpr qint64 kBlock = qint64(1) << 20; ///< bytes that are copied at once

QString WithoutLinks(const QString& path) {
    const QString resolved = QFileInfo(path).canonicalFilePath();
    return resolved.isEmpty() ? path : resolved;
}

} // namespace

QString DownloadTarget(const QString& path, const QUrl& address) {
    QString plain = path;
    plain.replace(QLatin1Char('\\'), QLatin1Char('/'));
    if (QFileInfo(plain).isDir())
        return QDir::toNativeSeparators(plain + QLatin1Char('/') + address.fileName());
    return QFileInfo(plain).fileName().isEmpty() ? QString() : QDir::toNativeSeparators(plain);
}

DownloadFile::DownloadFile(const QString& target)
    : m_target(target)
    , m_place(WithoutLinks(target)) {}

DownloadFile::~DownloadFile() {
    Restart();
}

void DownloadFile::Restart() {
    if (m_part.isOpen())
        m_part.remove();
}

bool DownloadFile::Write(const QByteArray& bytes) {
    if (bytes.isEmpty())
        return true;
    if (!m_part.isOpen() && !Open())
        return m_keepsOld;
    return m_part.write(bytes) == bytes.size();
}

/// A folder that takes no new file may still hold one that can be written to.
bool DownloadFile::Open() {
    const QFileInfo place(m_place);
    if (place.exists() && !place.isFile())
        return false;
    m_beside = OpenIn(place.path());
    if (m_beside)
        return true;
    m_keepsOld = place.isFile() && !OpenIn(QDir::tempPath());
    return m_part.isOpen();
}

bool DownloadFile::OpenIn(const QString& folder) {
    m_part.setFileName(folder + QStringLiteral("/.download-") + QUuid::createUuid().toString(QUuid::Id128));
    return m_part.open(QIODevice::ReadWrite | QIODevice::NewOnly);
}

DownloadFile::End DownloadFile::Finish() {
    const bool open = m_part.isOpen() || (!m_keepsOld && Open());
    if (!open)
        return m_keepsOld ? End::KeptOld : End::Refused;
    if (!m_part.flush())
        return End::Refused;
    return m_beside ? MoveIntoPlace() : CopyIntoPlace();
}

DownloadFile::End DownloadFile::MoveIntoPlace() {
    const QFileInfo place(m_place);
    if (place.isFile() && !QFile(m_place).open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::ExistingOnly))
        return End::KeptOld;
    if (place.isFile())
        m_part.setPermissions(place.permissions());
    std::error_code error;
    std::filesystem::rename(QFile::encodeName(m_part.fileName()).constData(), QFile::encodeName(m_place).constData(),
                            error);
    if (error)
        return End::Refused;
    m_part.close();
    return End::Written;
}

/// Half a film is none.
DownloadFile::End DownloadFile::CopyIntoPlace() {
    QFile place(m_place);
    if (!place.open(QIODevice::WriteOnly | QIODevice::ExistingOnly))
        return End::KeptOld;
    m_part.seek(0);
    while (!m_part.atEnd()) {
        const QByteArray block = m_part.read(kBlock);
        if (!block.isEmpty() && place.write(block) == block.size())
            continue;
        place.remove();
        return End::Refused;
    }
    if (place.flush())
        return End::Written;
    place.remove();
    return End::Refused;
}
