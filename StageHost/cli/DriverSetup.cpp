#include "DriverSetup.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QTemporaryFile>

#include "BorderText.h"
#include "Checker.h"
#include "ExitCodes.h"
#include "IHostServices.h"
#include "Output.h"
#include "TextFile.h"

namespace stagehost {

namespace {

/// A module finds a linked file again only where the host can name its folder.
QString LinkedFile(const Show& show, const QString& path) {
    const QString folder = FromBorderText(show.host.folders.at(KXP_FOLDER_PROJECT_USER_DATA));
    return QDir::cleanPath(folder) == QFileInfo(path).absolutePath() ? QFileInfo(path).fileName() : QString();
}

QString MistakeText(const QString& path, const QJsonObject& error) {
    const int line = error.value(QLatin1String("line")).toInt();
    const QString place = line > 0 ? QStringLiteral("%1:%2").arg(path).arg(line) : path;
    return place + QStringLiteral(": ") + error.value(QLatin1String("text")).toString();
}

} // namespace

MaybeFailure ReadDriver(const Show& show, const QString& path, std::chrono::milliseconds limit,
                        DriverEdition& edition) {
    QString problem;
    const auto text = ReadText(path, &problem);
    if (!text)
        return Failure{kExitBadUse, problem};
    QProcess checker;
    if (auto failure = RunChecker(checker, path, {QStringLiteral("--json")}, limit))
        return Failure{failure->exitCode, QStringLiteral("%1: %2").arg(path, failure->text)};
    edition.report = QJsonDocument::fromJson(checker.readAllStandardOutput()).object();
    const QJsonValue error = edition.report.value(QLatin1String("error"));
    if (error.isObject())
        return Failure{checker.exitCode(), MistakeText(path, error.toObject())};
    if (checker.exitCode() != kExitOk)
        return Failure{checker.exitCode(), QStringLiteral("%1: the check does not end well").arg(path)};
    edition.text = *text;
    edition.linkedFile = LinkedFile(show, path);
    bool lost = false;
    ToBorderText(*text, &lost);
    if (lost && edition.linkedFile.isEmpty())
        PrintProblem(path + QStringLiteral(": ") + LostCharactersNote());
    return std::nullopt;
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
