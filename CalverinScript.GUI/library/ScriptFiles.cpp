#include "ScriptFiles.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include "HostText.h"

namespace {

constexpr const char* kOtherLineEnd = "\r\n";

bool ReplaceFile(const QString& path, const QByteArray& bytes, QString* failure) {
    QDir().mkpath(QFileInfo(path).absolutePath());
    if (QFileInfo(path).exists() && !QFileInfo(path).isWritable())
        QFile::setPermissions(path, QFile::permissions(path) | QFile::WriteOwner);
    QSaveFile file(path);
    const bool written =
        file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.flush() && file.commit();
    if (!written && failure != nullptr)
        *failure = file.errorString();
    return written;
}

} // namespace

std::optional<QString> ReadScriptFile(const QString& path) {
    QFile file(path);
    if (path.isEmpty() || !file.open(QIODevice::ReadOnly))
        return std::nullopt;
    return FromScriptBytes(file.readAll());
}

bool CanWriteScriptFile(const QString& path) {
    const QFileInfo info(path);
    QDir().mkpath(info.absolutePath());
    return info.exists() ? info.isFile() && info.isWritable() : QFileInfo(info.absolutePath()).isWritable();
}

bool WriteScriptFile(const QString& path, const QString& text, QString* failure) {
    return ReplaceFile(path, text.toUtf8(), failure);
}

bool CopyScriptFile(const QString& source, const QString& target) {
    QFile file(source);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray bytes = file.readAll();
    return file.error() == QFileDevice::NoError && ReplaceFile(target, bytes, nullptr);
}

QString PathBelow(const QString& folder, const QString& fileName) {
    return QDir::toNativeSeparators(QDir(folder).filePath(fileName));
}

QString WithPlainLineEnds(QString text) {
    text.replace(QLatin1String(kOtherLineEnd), QStringLiteral("\n"));
    text.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    return text.replace(QChar::ParagraphSeparator, QLatin1Char('\n'));
}

QString WithLineEndsOf(const QString& model, QString text) {
    const int others = model.count(QLatin1String(kOtherLineEnd));
    const bool hasOthersAlone = others > 0 && others == model.count(QLatin1Char('\n'));
    return hasOthersAlone ? text.replace(QLatin1Char('\n'), QLatin1String(kOtherLineEnd)) : text;
}
