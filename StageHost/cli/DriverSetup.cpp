#include "DriverSetup.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTemporaryFile>

#include "BorderText.h"
#include "Checker.h"
#include "ExitCodes.h"
#include "IHostServices.h"
#include "Output.h"
#include "ScriptSession.h"
#include "TextFile.h"

namespace stagehost {

namespace {

constexpr int kWidestSource = 120;

/// A module finds a linked file again only where the host can name its folder.
QString LinkedFile(const Show& show, const QString& path) {
    const QString folder = FromBorderText(show.host.folders.at(KXP_FOLDER_PROJECT_USER_DATA));
    return QDir::cleanPath(folder) == QFileInfo(path).absolutePath() ? QFileInfo(path).fileName() : QString();
}

QString MistakeText(const QJsonObject& error) {
    const QString file = error.value(QLatin1String("file")).toString();
    const int line = error.value(QLatin1String("line")).toInt();
    const int column = error.value(QLatin1String("column")).toInt();
    QString place = line > 0 ? QStringLiteral("%1:%2").arg(file).arg(line) : file;
    if (column > 0)
        place += QLatin1Char(':') + QString::number(column);
    return place + QStringLiteral(": ") + error.value(QLatin1String("text")).toString();
}

QStringList TextsOf(const QJsonValue& list) {
    QStringList texts;
    for (const auto& item : list.toArray())
        texts += item.toString();
    return texts;
}

/// What belongs to the mistake: the line with a caret, and what to do.
QStringList PlaceOfMistake(const QJsonObject& error) {
    const QString source = error.value(QLatin1String("source")).toString().replace(QLatin1Char('\t'), QLatin1Char(' '));
    const int column = error.value(QLatin1String("column")).toInt();
    const QString note = error.value(QLatin1String("note")).toString();
    QStringList place;
    if (column > 0 && column <= kWidestSource && source.size() <= kWidestSource)
        place << QStringLiteral("| ") + source
              << QStringLiteral("| ") + QString(column - 1, QLatin1Char(' ')) + QLatin1Char('^');
    if (!note.isEmpty())
        place << QStringLiteral("note: ") + note;
    return place;
}

} // namespace

/// The check program has read the files, so the script is as it was checked, whoever writes them meanwhile.
MaybeFailure ReadDriver(const Show& show, const QString& path, std::chrono::milliseconds limit,
                        DriverEdition& edition) {
    edition.files = QStringList(path);
    if (auto failure = CheckReadable(path))
        return failure;
    QProcess checker;
    if (auto failure = RunChecker(checker, path, {QStringLiteral("--json"), QStringLiteral("--script")}, limit))
        return Failure{failure->exitCode, QStringLiteral("%1: %2").arg(path, failure->text)};
    edition.report = QJsonDocument::fromJson(checker.readAllStandardOutput()).object();
    edition.text = edition.report.take(QStringLiteral("script")).toString();
    const QStringList files = TextsOf(edition.report.value(QLatin1String("files")));
    edition.files = files.isEmpty() ? edition.files : files;
    const QJsonValue error = edition.report.value(QLatin1String("error"));
    if (error.isObject())
        return Failure{checker.exitCode(), MistakeText(error.toObject()), PlaceOfMistake(error.toObject())};
    if (checker.exitCode() != kExitOk)
        return Failure{checker.exitCode(), QStringLiteral("%1: the check does not end well").arg(path)};
    edition.linkedFile = edition.files.size() == 1 ? LinkedFile(show, path) : QString();
    bool lost = false;
    ToBorderText(edition.text, &lost);
    if (lost && edition.linkedFile.isEmpty())
        PrintProblem(path + QStringLiteral(": ") + LostCharactersNote());
    return std::nullopt;
}

MaybeFailure ReadWhole(const QString& path, std::chrono::milliseconds limit, WholeScript& script) {
    QString problem;
    const auto text = ReadText(path, &problem);
    if (!text)
        return Failure{kExitBadUse, problem};
    script.text = *text;
    if (!text->contains(QLatin1String("@include")))
        return std::nullopt;
    DriverEdition edition;
    auto failure = ReadDriver(EmptyShow(QFileInfo(path).absolutePath()), path, limit, edition);
    script.isOneFile = edition.files.size() == 1;
    script.files = edition.files;
    if (failure && script.isOneFile)
        return std::nullopt;
    script.text = edition.text;
    return failure;
}

MaybeFailure ReadScriptOf(const ShowDevice& device, const Show& show, std::chrono::milliseconds limit,
                          DriverEdition& edition) {
    if (device.scriptText.isEmpty())
        return ReadDriver(show, show.Path(device.driverFile.isEmpty() ? device.scriptFile : device.driverFile), limit,
                          edition);
    QTemporaryFile file;
    const QByteArray bytes = device.scriptText.toUtf8();
    if (!file.open() || file.write(bytes) != bytes.size() || !file.flush())
        return Failure{kExitBadUse, QStringLiteral("cannot write a file for the check: ") + file.errorString()};
    auto failure = ReadDriver(show, file.fileName(), limit, edition);
    if (failure)
        failure->text.replace(file.fileName(), QStringLiteral("scriptText of ") + device.name);
    return failure;
}

} // namespace stagehost
