#pragma once

#include <optional>
#include <vector>

#include <QJsonObject>
#include <QString>
#include <QStringList>

namespace stagehost {

/// A driver's script with what it publishes.
struct DriverEdition {
    QString text;        ///< the script
    QString linkedFile;  ///< its name when it lies in the folder of the project's user data; empty otherwise
    QJsonObject report;  ///< what the check program says of it, see docs/drivers.md
    QStringList files{}; ///< the driver's file and those that go in front of it
};

/// The setup text of a device that runs an edition of a driver, as an accepted setup dialog leaves it.
///
/// What the user entered stays: a setting with the same name and type keeps its value, a variable its own value, the
/// commands their numbers.
/// @param before the device's setup so far; may be empty. @return nothing when that is no setup text.   [any]
std::optional<QString> MakeSetupText(const QString& before, const DriverEdition& edition);

/// The settings of an edition without its script, for a device that loads the script later.   [any]
DriverEdition SettingsAlone(const DriverEdition& edition);

/// The script that a setup text holds, as Latin-1 carries it; empty when there is none.   [any]
QString ScriptOfSetup(const QString& setup);

/// A value that somebody gives to a setting.
struct GivenSetting {
    QString name;
    QString text;  ///< as SettingRule takes it
    QString place; ///< what a complaint begins with: "show.json: devices[0].settings.channel"
};

/// Puts values in force in a setup text; of two for one setting the last.
/// @param setup left alone unless all are taken, and when it is no setup text. @return a line for each that is not
/// taken; for a setting that does not exist it lists those that do.   [any]
QStringList GiveSettings(QString& setup, const std::vector<GivenSetting>& given);

/// A setup text with the values that some settings have in another.   [any]
QString WithSettingsOf(const QString& setup, const QString& other, const QStringList& names);

/// The value of a setting as people write it; nothing when there is no such setting.   [any]
std::optional<QString> SettingOfSetup(const QString& setup, const QString& name);

} // namespace stagehost
