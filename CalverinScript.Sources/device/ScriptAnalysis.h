#pragma once

#include <chrono>

#include <QString>

#include "MScriptDescription.h"
#include "ScriptSet.h"

class HostValues;
class IModuleServices;
class IScriptReports;
class StoredSetup;
struct HostServices;

/// A look at a script on an engine of the caller's: what it would publish, without anything that it
/// does reaching the show.
///
/// It touches nothing of the script that runs and does not wait for it. A script that never comes back is ended after
/// a limit, since the host's main thread waits here.   [all: host main]
class ScriptAnalysis {
public:
    /// All are borrowed for this object's life. @param module may be null; its configuration file says the limit.
    ScriptAnalysis(IModuleServices* module, const HostServices& services, HostValues& values, StoredSetup& setup,
                   IScriptReports& reports);
    ScriptAnalysis(const ScriptAnalysis&) = delete;
    ScriptAnalysis& operator=(const ScriptAnalysis&) = delete;

    /// Reads a file and shows it, without looking at what it publishes. @return whether it could be read.
    bool LoadFile(const char* fileName);
    /// Shows a text in the same way. @return true.
    bool LoadText(const QString& text);
    /// Evaluates a text on an engine, which gets the globals of a device's, and scans its value. What it publishes takes
    /// the place of what was found before; after a failure that stays. @return whether it could be evaluated.
    bool RunOn(QScriptEngine& engine, const QString& text);
    /// The same on the engine of the run that is under way; nothing outside one.
    bool Run(const QString& text);

    /// Whether the last run came to its end by itself.
    bool HasEndedByItself() const { return m_endedByItself; }
    /// Whether the last run was of this text and had to be ended, as another one of it would have to be.
    bool IsKnownNotToEnd(const QString& text) const { return !m_endedByItself && m_text == text; }
    /// Whether the last run was of this text and was good, so that another one of it would find the same.
    bool Knows(const QString& text) const;
    /// What the script of the last good run says of itself.
    const MScriptDescription& GetDescription() const { return m_description; }
    /// Lets go of the value of the last run, whose engine is about to go.
    void ForgetValue() { m_set.global = QScriptValue(); }

    /// What the last good run has found.
    ScriptSet& GetSet() { return m_set; }
    const ScriptSet& GetSet() const { return m_set; }

    /// How long a run may take.
    std::chrono::milliseconds Limit() const;

private:
    IModuleServices* const m_module;
    const HostServices& m_services;
    HostValues& m_values;
    StoredSetup& m_setup;
    IScriptReports& m_reports;
    ScriptSet m_set;
    MScriptDescription m_description;
    QString m_text;         ///< of the last run, as are the next three
    bool m_removed = false; ///< whether it went by removed defaults
    bool m_isGood = false;
    bool m_endedByItself = true;
};
