#pragma once

#include <optional>

#include <QJsonObject>
#include <QString>
#include <QStringList>

namespace stagehost {

/// A driver's script with what it publishes.
struct DriverEdition {
    QString text;       ///< the script
    QString linkedFile; ///< its name when it lies in the folder of the project's user data; empty otherwise
    QJsonObject report; ///< what the check program says of it, see docs/drivers.md
};

/// The setup text of a device that runs an edition of a driver, as an accepted setup dialog leaves it.
///
/// What the user entered stays: a setting with the same name and type keeps its value, a variable its own value, the
/// commands their numbers.
/// @param before the device's setup so far; may be empty. @return nothing when that is no setup text.   [any]
std::optional<QString> MakeSetupText(const QString& before, const DriverEdition& edition);

/// The script that a setup text holds, as Latin-1 carries it; empty when there is none.   [any]
QString ScriptOfSetup(const QString& setup);

/// Changes settings in a setup text.
/// @param words of the form SETTING=VALUE. @return what is wrong; empty when all were taken.   [any]
QString ChangeSettings(QString& setup, const QStringList& words);

} // namespace stagehost
