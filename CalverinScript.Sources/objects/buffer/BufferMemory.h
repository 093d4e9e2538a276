#pragma once

#include <new>

#include <QScriptContext>
#include <QScriptValue>

/// @file
/// What a script may ask for. The engine cannot carry a C++ exception, and the system
/// hands out more memory than it has, so a size that no show needs is refused before
/// anything is allocated, and an allocation that fails becomes a script error.

/// The most bytes of one Buffer.
inline constexpr qint64 kMaxBufferBytes = qint64(1) << 30;
/// The most characters of one text that a Buffer gives. The engine holds two copies of two bytes each for a moment.
inline constexpr qint64 kMaxBufferText = qint64(1) << 28;

/// Throws the script error for a size that cannot be had. @return the error.   [script]
QScriptValue RefuseSize(QScriptContext* context, qint64 bytes);

/// Whether a text of so many characters can be handed to the engine, which would end the process if it could not. [any]
bool IsTextPossible(qint64 characters);

/// Runs work that needs so many bytes, or throws the script error when they cannot be had.
/// @return what the work gives, or the error.   [script]
template <typename Work>
QScriptValue WithMemoryFor(QScriptContext* context, qint64 bytes, Work work) {
    if (bytes > kMaxBufferBytes)
        return RefuseSize(context, bytes);
    try {
        return work();
    } catch (const std::bad_alloc&) {
        return RefuseSize(context, bytes);
    }
}
