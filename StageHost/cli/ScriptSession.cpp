#include "ScriptSession.h"

#include <QFileInfo>

#include "ExitCodes.h"
#include "ShowReader.h"
#include "TextFile.h"

namespace stagehost {

Show ShowOfScript(const QString& file) {
    Show show = EmptyShow(QFileInfo(file).absolutePath());
    show.name = QFileInfo(file).completeBaseName();
    show.devices.push_back({QStringLiteral("script"),
                            file.isEmpty() ? QString() : QFileInfo(file).absoluteFilePath(),
                            {},
                            {},
                            Conduct::Normal,
                            {},
                            {}});
    return show;
}

MaybeFailure CheckReadable(const QString& file) {
    QString problem;
    if (ReadTextBytes(file, &problem))
        return std::nullopt;
    return Failure{kExitBadUse, problem};
}

MaybeFailure ReadShowOrScript(const QString& file, Show& show) {
    if (file.endsWith(QLatin1String(".json"), Qt::CaseInsensitive))
        return ReadShow(file, show);
    show = ShowOfScript(file);
    std::swap(show.devices.front().scriptFile, show.devices.front().driverFile);
    return CheckReadable(file);
}

MaybeFailure ReadShow(const QString& file, Show& show) {
    QByteArray text;
    return ReadShow(file, show, text);
}

MaybeFailure ReadShow(const QString& file, Show& show, QByteArray& text) {
    QString problem;
    const auto bytes = ReadTextBytes(file, &problem);
    if (!bytes)
        return Failure{kExitBadUse, problem};
    if (file.endsWith(QLatin1String(".js"), Qt::CaseInsensitive))
        return Failure{kExitBadUse,
                       QStringLiteral("%1 is a script, not a show file; \"stagehost --help\" shows which commands take "
                                      "a script")
                           .arg(file)};
    ShowReader reader;
    const auto read = reader.Read(*bytes, file);
    if (!read)
        return Failure{kExitBadUse, file + QStringLiteral(": ") +
                                        reader.Complaints().join(QStringLiteral("\n") + file + QStringLiteral(": "))};
    text = *bytes;
    show = *read;
    return std::nullopt;
}

} // namespace stagehost
