#include "ScriptPlaces.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QRegularExpression>

#include "LogLines.h"

namespace stagehost {

namespace {

constexpr const char* kSource = "| ";
constexpr const char* kNote = "note: ";

/// FILE:LINE:COLUMN: WHAT
const QRegularExpression& Heading() {
    static const QRegularExpression kHeading(QStringLiteral("^(.+?):(\\d+)(:\\d+)?(: .*)$"),
                                             QRegularExpression::DotMatchesEverythingOption);
    return kHeading;
}

/// at FUNCTION (FILE:LINE)
const QRegularExpression& Call() {
    static const QRegularExpression kLine(QStringLiteral("^at (.*) \\((.+):(\\d+)\\)$"));
    return kLine;
}

/// A file below the working folder by its way from there, as it was typed.
QString Shortened(const QString& file) {
    const QString way = QDir::current().relativeFilePath(file);
    return QDir::isAbsolutePath(file) && !way.startsWith(QLatin1String("..")) ? way : file;
}

QString Shown(const ScriptPlace& place) {
    return Shortened(place.file) + QLatin1Char(':') + QString::number(place.line);
}

} // namespace

ScriptPlace PlaceOf(const Show& show, const ShowDevice* device, const ScriptPlace& logged) {
    const bool hasFile = logged.file != QLatin1String(KXP_LOG_NO_FILE);
    const QString own = device == nullptr              ? QString()
                        : device->driverFile.isEmpty() ? device->scriptFile
                                                       : device->driverFile;
    if (own.isEmpty() || QDir::isAbsolutePath(logged.file))
        return logged;
    const QString driver = show.Path(own);
    return {hasFile ? QFileInfo(driver).dir().filePath(logged.file) : driver, logged.line};
}

QStringList UsersPlaces(const Show& show, const ShowDevice* device, const QStringList& lines) {
    QStringList shown;
    for (const QString& line : lines) {
        const auto call = Call().match(line);
        const auto heading = shown.isEmpty() ? Heading().match(line) : QRegularExpressionMatch();
        if (call.hasMatch())
            shown +=
                QStringLiteral("at %1 (%2)")
                    .arg(call.captured(1), Shown(PlaceOf(show, device, {call.captured(2), call.captured(3).toInt()})));
        else if (heading.hasMatch())
            shown += Shown(PlaceOf(show, device, {heading.captured(1), heading.captured(2).toInt()})) +
                     heading.captured(3) + heading.captured(4);
        else
            shown += line;
    }
    return shown;
}

QJsonObject PlaceJson(const QStringList& lines) {
    QJsonObject place;
    QJsonArray calls;
    for (const QString& line : lines) {
        const auto call = Call().match(line);
        const auto heading = place.isEmpty() ? Heading().match(line) : QRegularExpressionMatch();
        if (heading.hasMatch()) {
            place.insert(QStringLiteral("file"), heading.captured(1));
            place.insert(QStringLiteral("line"), heading.captured(2).toInt());
            place.insert(QStringLiteral("column"), heading.captured(3).mid(1).toInt());
            place.insert(QStringLiteral("message"), heading.captured(4).mid(2));
        } else if (call.hasMatch()) {
            calls.append(QJsonObject{{QStringLiteral("function"), call.captured(1)},
                                     {QStringLiteral("file"), call.captured(2)},
                                     {QStringLiteral("line"), call.captured(3).toInt()}});
        } else if (line.startsWith(QLatin1String(kSource)) && !place.contains(QLatin1String("source"))) {
            place.insert(QStringLiteral("source"), line.mid(2));
        } else if (line.startsWith(QLatin1String(kNote))) {
            place.insert(QStringLiteral("note"), line.mid(6));
        }
    }
    if (!place.contains(QLatin1String("file")))
        return {};
    place.insert(QStringLiteral("calls"), calls);
    return place;
}

} // namespace stagehost
