#pragma once

#include <chrono>
#include <optional>

#include <QJsonObject>
#include <QString>
#include <QStringList>

#include "MScriptDescription.h"
#include "NoteTable.h"
#include "ScriptFault.h"
#include "ScriptScan.h"

/// What is wrong with a script.
struct ScriptProblem {
    int line = 0; ///< from 1; 0 when it is not known
    QString text;
    QString file{};      ///< the path of the one of the driver's files that it is in; empty for the driver itself
    ScriptFault fault{}; ///< the same with its place; without a text where nothing of the script is wrong
    bool isLate = false; ///< the script was stopped
};

/// What a script publishes, or its problem.
struct ScriptReport {
    MScriptDescription info;
    ScanResult published;    ///< commands have the numbers that they get in an empty show
    QList<ScriptNote> notes; ///< by their lines
    std::optional<ScriptProblem> problem;
    QStringList files; ///< the driver and those that go in front of it, see ScriptParts
    QString script;    ///< all of them as one script; null when they cannot be put together
};

/// Analyses a script as a device does that is not running: with the same globals, without a host. The script's top
/// level runs.
/// @param fileName shown as the title unless the script gives one.
/// @param limit what the script does after it is stopped, as far as an engine can be; 0 for no limit.   [the main
/// thread]
ScriptReport AnalyseScript(const QString& text, const QString& fileName,
                           std::chrono::milliseconds limit = std::chrono::milliseconds(0));

/// Shows settings with values that a host gives them, of the form NAME=VALUE. Those that the script does not have are
/// left out.
void GiveSettings(ScriptReport& report, const QStringList& words);

/// The report as programs read it; docs/drivers.md has its form.
/// @param withScript whether the script is in it.
QJsonObject ToJson(const ScriptReport& report, bool withScript = false);

/// The report of a script that publishes something as people read it: tables, and a line for each note as compilers
/// write them. Each line ended.
/// @param file the script as notes name it.
QString ToText(const ScriptReport& report, const QString& file);
