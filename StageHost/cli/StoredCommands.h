#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "Device.h"
#include "Show.h"

namespace stagehost {

/// A stored command of the show with what has become of it.
struct CheckedCommand {
    QString name;
    StoredCommandXml stored;                 ///< as the show file has it
    Device::Standing standing;               ///< what the module says of it
    std::optional<StoredCommandXml> updated; ///< as it would be now; for those that have changed

    /// What is sent: the command as it is now, or null when the driver has none.
    const StoredCommandXml* InForce() const;
};

/// Has the module check the stored commands of a show.   [host main]
/// @param find gives the device of a name, or null.
std::vector<CheckedCommand> CheckStoredCommands(const Show& show, const std::function<Device*(const QString&)>& find);

/// What the user has to know of a stored command; empty when it is as it was stored.
QString StandingText(const CheckedCommand& command, const QString& showFile);

/// The values of a command's parameters: "level = 50, seconds = 2". A variable stands in braces.
QString ValuesText(const StoredCommandXml& command);

/// What an update does to the parameters, one text for each: "+ speed = 0", "- seconds = 2", "level = 150 -> 100".
QStringList ChangesText(const StoredCommandXml& before, const StoredCommandXml& after);

} // namespace stagehost
