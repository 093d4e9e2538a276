#pragma once

#include <QScriptEngine>
#include <QScriptValue>

#include "ScriptFacing.h"

/// @file
/// How objects of this library stand before a script: with the methods of their own class alone, without Qt's.

/// The script's view of an object that C++ owns: dropping it
/// deletes nothing. Asked again, gives the same view.   [script]
QScriptValue WrapOwnedByHost(QScriptEngine& engine, QObject* object);

/// The script's view of an object that goes when the script has dropped it.
/// @param bytes what the object takes beside its view, as the collector is told.   [script]
QScriptValue WrapOwnedByScript(QScriptEngine& engine, QObject* object, int bytes);

/// What such a constructor function does.   [script]
template <typename Class>
QScriptValue ConstructForScript(QScriptContext* context, QScriptEngine* caller) {
    QScriptValue object = WrapOwnedByScript(*caller, new ScriptFacing<Class>, static_cast<int>(sizeof(Class)));
    object.setPrototype(context->callee().property(QStringLiteral("prototype")));
    return object;
}

/// The constructor function of a class, from its meta-object: `new Name()` gives an object that the script owns, and
/// `instanceof` knows it.   [script]
template <typename Class>
QScriptValue ScriptConstructor(QScriptEngine& engine) {
    return engine.newQMetaObject(&Class::staticMetaObject,
                                 engine.newFunction(&ScriptFunction<&ConstructForScript<Class>>));
}
