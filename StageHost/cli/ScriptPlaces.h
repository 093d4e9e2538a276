#pragma once

#include <QJsonObject>
#include <QStringList>

#include "Show.h"

/// @file
/// Places in scripts, as the module's log tells them (LogLines.h), and what a user of the show calls them.

namespace stagehost {

/// A line of a script's text.
struct ScriptPlace {
    QString file;
    int line;
};

/// Where a line of what a device runs comes from: everything that tells a place goes through here.
/// @param device null for one that is not known. @param logged as the log has it.   [any]
ScriptPlace PlaceOf(const Show& show, const ShowDevice* device, const ScriptPlace& logged);

/// The lines of the log about a failure with the places that a user knows.   [any]
QStringList UsersPlaces(const Show& show, const ShowDevice* device, const QStringList& lines);

/// The same for programs: "file", "line", "column", "message", "source", "calls" and "note"; empty for no lines. [any]
QJsonObject PlaceJson(const QStringList& lines);

} // namespace stagehost
