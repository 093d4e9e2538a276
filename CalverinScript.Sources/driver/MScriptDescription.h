#pragma once

#include <chrono>
#include <memory>

#include <QMetaType>
#include <QString>

#include "LimitedRun.h"

class QScriptEngine;
class QScriptValue;

/// What a script says of itself in `Info`: `Title`, `Author`, `Version` and `Description`.   [the engine's thread]
struct MScriptDescription {
    QString fileName; ///< without its folder; empty when made from text
    QString title;    ///< the file's base name when the script gives none
    QString author;
    QString version;
    QString description;
    QString displayText; ///< filled by GetDisplayText

    /// Reads and evaluates a script file. @return null unless the file exists and there is an engine.
    static std::unique_ptr<MScriptDescription> FromFile(const QString& path, QScriptEngine* engine,
                                                        std::chrono::milliseconds limit = kAnalysisLimit);
    /// What a file is called while nothing is known of its script.
    static MScriptDescription OfFile(const QString& path);
    /// Evaluates a script. @return null without an engine.
    static std::unique_ptr<MScriptDescription> FromText(const QString& text, QScriptEngine* engine,
                                                        std::chrono::milliseconds limit = kAnalysisLimit);
    /// Evaluates a script; a record stays as it was when that fails or takes longer than the limit.
    static void Parse(const QString& text, QScriptEngine& engine, MScriptDescription& record,
                      std::chrono::milliseconds limit = kAnalysisLimit);
    /// Takes what the value of an evaluation says.
    void Take(const QScriptValue& published);
    /// Takes what another record has of a script's own; what that does not say, null texts, stays.
    void TakeSaid(const MScriptDescription& said);

    /// "title (file name)".
    const QString& GetDisplayText();
};

Q_DECLARE_METATYPE(MScriptDescription*)
