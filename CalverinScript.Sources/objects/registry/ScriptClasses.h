#pragma once

#include <array>

#include <QScriptValue>

class QScriptEngine;

/// A class that scripts make objects of: the name of its global constructor, and how that is made for an engine.
struct ScriptClass {
    const char* name;
    QScriptValue (*makeConstructor)(QScriptEngine& engine);
};

/// All of them, in the order in which an engine gets them.
extern const std::array<ScriptClass, 3> kScriptClasses;

/// Gives an engine the global constructors. What they make
/// belongs to the engine and its scripts.   [the engine's thread]
void InstallScriptClasses(QScriptEngine& engine);
