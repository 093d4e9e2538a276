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
    if (auto failure = ReadShow(path, show_, before_))
        return failure;
    text_ = JsonText(before_);
    return std::nullopt;
}

void ShowFile::SetSetup(const QString& device, const QString& setup) {
    changed_ = text_.SetMember({kDevices, PlaceOf(show_.devices, device)}, QStringLiteral("setup"), setup) && changed_;
}

void ShowFile::SetStoredCommand(const QString& name, const QString& xml) {
    const QString place = PlaceOf(show_.commands, name);
    if (!place.isEmpty()) {
        changed_ = text_.SetMember({kCommands, place}, QStringLiteral("xml"), xml) && changed_;
        return;
    }
    const QJsonObject item{{QStringLiteral("name"), name}, {QStringLiteral("xml"), xml}};
    changed_ = (text_.Append({kCommands}, item) || text_.SetMember({}, kCommands, QJsonArray{item})) && changed_;
}

MaybeFailure ShowFile::Save(bool* written) {
    *written = false;
    if (!changed_ || QJsonDocument::fromJson(text_.Text()).isNull())
        return CannotWrite(QStringLiteral("its text cannot be changed"));
    if (text_.Text() == before_)
        return std::nullopt;
    QSaveFile file(path_);
    if (!file.open(QIODevice::WriteOnly) || file.write(text_.Text()) != text_.Text().size() || !file.flush())
        return CannotWrite(file.errorString());
    QString problem;
    const auto now = ReadTextBytes(path_, &problem);
    if (!now)
        return CannotWrite(QStringLiteral("it was there, but now: ") + problem);
    if (*now != before_)
        return Failure{kExitBadUse, QStringLiteral("%1 has changed meanwhile and is left as it is").arg(path_)};
    *written = file.commit();
    return *written ? std::nullopt : CannotWrite(file.errorString());
}

MaybeFailure ShowFile::CannotWrite(const QString& reason) const {
    return Failure{kExitBadUse, QStringLiteral("cannot write %1: %2").arg(path_, reason)};
}

} // namespace stagehost
