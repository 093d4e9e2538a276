#pragma once

#include <QByteArray>
#include <QScriptValue>

class QScriptEngine;

/// @file
/// Bytes between C++ and scripts. Each engine that has the global `Buffer` converts QByteArray in this way, so slots
/// that scripts call may take and return QByteArray, and `QScriptEngine::toScriptValue` makes a Buffer.

/// Whether a value is a Buffer.   [script]
bool IsBuffer(const QScriptValue& value);

/// A new Buffer with the bytes; a plain variant when the script has
/// put something else in the place of the global `Buffer`. [script]
QScriptValue BufferFromBytes(QScriptEngine* engine, const QByteArray& bytes);

/// The bytes of a Buffer, empty for any other value.   [script]
QByteArray BytesFromBuffer(const QScriptValue& value);

/// Makes the two functions the engine's conversion of QByteArray.   [script]
void RegisterBufferConversion(QScriptEngine* engine);
