#include "ShowFile.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>

#include "ExitCodes.h"
#include "ScriptSession.h"
#include "TextFile.h"

namespace stagehost {

namespace {

const QString kDevices = QStringLiteral("devices");
const QString kCommands = QStringLiteral("commands");

/// The number of the item of that name, as a step of a place; empty when there is none.
template <typename Items>
QString PlaceOf(const Items& items, const QString& name) {
    for (std::size_t index = 0; index < items.size(); ++index) {
        if (items[index].name == name)
            return QString::number(index);
    }
    return {};
}

} // namespace

MaybeFailure ShowFile::Open(const QString& path) {
    path_ = path;
    if (auto failure = ReadShow(path, show_))
        return failure;
    QString problem;
    const auto bytes = ReadTextBytes(path, &problem);
    if (!bytes)
        return Failure{kExitBadUse, problem};
    before_ = *bytes;
    text_ = JsonText(*bytes);
    return std::nullopt;
}

void ShowFile::SetSetup(const QString& device, const QString& setup) {
    text_.SetMember({kDevices, PlaceOf(show_.devices, device)}, QStringLiteral("setup"), setup);
}

void ShowFile::SetStoredCommand(const QString& name, const QString& xml) {
    const QString place = PlaceOf(show_.commands, name);
    if (!place.isEmpty()) {
        text_.SetMember({kCommands, place}, QStringLiteral("xml"), xml);
        return;
    }
    const QJsonObject item{{QStringLiteral("name"), name}, {QStringLiteral("xml"), xml}};
    if (!text_.Append({kCommands}, item))
        text_.SetMember({}, kCommands, QJsonArray{item});
}

MaybeFailure ShowFile::Save(bool* written) {
    *written = text_.Text() != before_;
    if (!*written)
        return std::nullopt;
    QString problem;
    if (ReadTextBytes(path_, &problem).value_or(QByteArray()) != before_)
        return Failure{kExitBadUse, QStringLiteral("%1 has changed meanwhile and is left as it is").arg(path_)};
    QSaveFile file(path_);
    const bool saved = !QJsonDocument::fromJson(text_.Text()).isNull() && file.open(QIODevice::WriteOnly) &&
                       file.write(text_.Text()) == text_.Text().size() && file.commit();
    if (saved)
        return std::nullopt;
    return Failure{kExitBadUse, QStringLiteral("cannot write %1: %2").arg(path_, file.errorString())};
}

} // namespace stagehost
