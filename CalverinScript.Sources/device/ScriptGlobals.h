#pragma once

#include <QSet>
#include <QString>

class MScriptMngRemote;
class QScriptEngine;

/// @file
/// What a script finds in its engine beside ECMAScript itself: the same for a device's engine and for an analysis.

/// Gives the engine its global objects. The bridge stays owned by the caller and must outlive the engine's use of it.
/// [script, or the thread that owns an analysis engine]
void SetUpScriptGlobals(QScriptEngine& engine, MScriptMngRemote& remote);

/// Has `print` write into the log, as TraceMessage does, with the name of the device: the engine's own writes into the output of
/// the host's process. A device's engine alone has it.   [host main]
void InstallPrint(QScriptEngine& engine, MScriptMngRemote& remote);

/// Gives an engine that only analyses the same globals, once, with a bridge of its own that has no device
/// and no links: a script analyses as it runs, and does nothing to the show. The bridge belongs to the
/// engine.   [the engine's thread]
void SetUpAnalysisGlobals(QScriptEngine& engine);

/// The names that the global object of a set-up engine has before any script ran. They are never published.   [any]
const QSet<QString>& BuiltInNames();
