#pragma once

#include <QJsonValue>
#include <QStringList>

#include "JsonText.h"
#include "Session.h"

namespace stagehost {

/// A show file that is changed in place: what is not changed stays as its author wrote it.   [host main]
class ShowFile {
public:
    /// Reads the file and the show in it.
    MaybeFailure Open(const QString& path);

    const Show& Content() const { return m_show; }

    void SetSetup(const QString& device, const QString& setup);
    /// Changes one of the "settings" of a device, which has it already. A number or a truth value stays one where the
    /// text allows it.
    void SetSetting(const QString& device, const QString& setting, const QString& text);
    bool HasChangedSettings(const QString& device) const { return m_changedSettings.contains(device); }
    /// Changes the stored command of that name, or adds it.
    void SetStoredCommand(const QString& name, const QString& xml);

    /// Writes what has changed: beside the file first, which then takes its place, so that the old one is whole until
    /// the new one is. A file that somebody else has changed or removed meanwhile is left alone.
    /// @param written whether there was anything to write, and it is written.
    MaybeFailure Save(bool* written);

private:
    MaybeFailure CannotWrite(const QString& reason) const;

    QString m_path;
    Show m_show;
    QByteArray m_before;
    JsonText m_text{{}};
    QStringList m_changedSettings; ///< devices
    bool m_changed = true;         ///< every change has found its place
};

} // namespace stagehost
