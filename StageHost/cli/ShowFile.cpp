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
const QString kSettings = QStringLiteral("settings");
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

/// A text as a value of the kind that stood there.
QJsonValue LikeBefore(const QJsonValue& before, const QString& text) {
    bool isNumber = false;
    const double number = text.toDouble(&isNumber);
    if (before.isDouble() && isNumber)
        return number;
    if (before.isBool() && (text == QLatin1String("1") || text == QLatin1String("0")))
        return text == QLatin1String("1");
    return text;
}

} // namespace

MaybeFailure ShowFile::Open(const QString& path) {
    m_path = path;
    if (auto failure = ReadShow(path, m_show, m_before))
        return failure;
    m_text = JsonText(m_before);
    return std::nullopt;
}

void ShowFile::SetSetup(const QString& device, const QString& setup) {
    m_changed =
        m_text.SetMember({kDevices, PlaceOf(m_show.devices, device)}, QStringLiteral("setup"), setup) && m_changed;
}

void ShowFile::SetSetting(const QString& device, const QString& setting, const QString& text) {
    const QString place = PlaceOf(m_show.devices, device);
    const QJsonValue before = QJsonDocument::fromJson(m_before)[kDevices][place.toInt()][kSettings][setting];
    m_changed = m_text.SetMember({kDevices, place, kSettings}, setting, LikeBefore(before, text)) && m_changed;
    m_changedSettings += device;
}

void ShowFile::SetStoredCommand(const QString& name, const QString& xml) {
    const QString place = PlaceOf(m_show.commands, name);
    if (!place.isEmpty()) {
        m_changed = m_text.SetMember({kCommands, place}, QStringLiteral("xml"), xml) && m_changed;
        return;
    }
    const QJsonObject item{{QStringLiteral("name"), name}, {QStringLiteral("xml"), xml}};
    m_changed = (m_text.Append({kCommands}, item) || m_text.SetMember({}, kCommands, QJsonArray{item})) && m_changed;
}

MaybeFailure ShowFile::Save(bool* written) {
    *written = false;
    if (!m_changed || QJsonDocument::fromJson(m_text.Text()).isNull())
        return CannotWrite(QStringLiteral("its text cannot be changed"));
    if (m_text.Text() == m_before)
        return std::nullopt;
    QSaveFile file(m_path);
    if (!file.open(QIODevice::WriteOnly) || file.write(m_text.Text()) != m_text.Text().size() || !file.flush())
        return CannotWrite(file.errorString());
    QString problem;
    const auto now = ReadTextBytes(m_path, &problem);
    if (!now)
        return CannotWrite(QStringLiteral("it was there, but now: ") + problem);
    if (*now != m_before)
        return Failure{kExitBadUse, QStringLiteral("%1 has changed meanwhile and is left as it is").arg(m_path)};
    *written = file.commit();
    return *written ? std::nullopt : CannotWrite(file.errorString());
}

MaybeFailure ShowFile::CannotWrite(const QString& reason) const {
    return Failure{kExitBadUse, QStringLiteral("cannot write %1: %2").arg(m_path, reason)};
}

} // namespace stagehost
