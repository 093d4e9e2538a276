#include "TextFile.h"

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include "BorderText.h"

namespace stagehost {

namespace {

constexpr qint64 kMostBytes = qint64{64} << 20;
constexpr qint64 kDateLength = 11; // "2026-11-22 "

/// A pipe or a device may never come to an end, or not even to a beginning.
QString NotRegular(const QFileInfo& info) {
    if (info.isDir())
        return QStringLiteral("is a folder");
    return info.exists() && !info.isFile() ? QStringLiteral("is no regular file") : QString();
}

} // namespace

std::optional<QByteArray> ReadTextBytes(const QString& file, QString* problem) {
    const QString kind = NotRegular(QFileInfo(file));
    if (!kind.isEmpty()) {
        *problem = QStringLiteral("%1 %2").arg(file, kind);
        return std::nullopt;
    }
    QFile source(file);
    if (!source.open(QIODevice::ReadOnly)) {
        *problem = QStringLiteral("cannot read %1: %2").arg(file, source.errorString());
        return std::nullopt;
    }
    const QByteArray bytes = source.read(kMostBytes + 1);
    if (source.error() != QFileDevice::NoError) {
        *problem = QStringLiteral("cannot read %1: %2").arg(file, source.errorString());
        return std::nullopt;
    }
    if (bytes.size() > kMostBytes) {
        *problem = QStringLiteral("%1 is larger than %2 MB").arg(file).arg(kMostBytes >> 20);
        return std::nullopt;
    }
    return bytes;
}

QString WhyNotReplaceable(const QString& file, const char* mark, const char* what) {
    constexpr qint64 kBegin = 200;
    QString kind = NotRegular(QFileInfo(file));
    if (!kind.isEmpty())
        return kind;
    QFile old(file);
    if (!old.open(QIODevice::ReadOnly))
        return {};
    const QByteArray begin = old.read(kBegin);
    return begin.isEmpty() || begin.contains(mark) ? QString()
                                                   : QStringLiteral("is there, and is no ") + QLatin1String(what);
}

QString WhyNotAppendable(const QString& file) {
    const QString kind = NotRegular(QFileInfo(file));
    if (!kind.isEmpty())
        return QStringLiteral("it ") + kind;
    static const QRegularExpression date(QStringLiteral("^\\d{4}-\\d\\d-\\d\\d "));
    QFile target(file);
    if (target.open(QIODevice::ReadOnly)) {
        const QByteArray begin = target.read(kDateLength);
        if (!begin.isEmpty() && !date.match(QString::fromLatin1(begin)).hasMatch())
            return QStringLiteral("it is there, and is no log");
        target.close();
    }
    return target.open(QIODevice::Append) ? QString() : target.errorString();
}

std::optional<QString> ReadText(const QString& file, QString* problem) {
    const auto bytes = ReadTextBytes(file, problem);
    if (!bytes)
        return std::nullopt;
    return FromOutsideText(bytes->toStdString());
}

} // namespace stagehost
