#pragma once

#include <atomic>

#include "KXPTypes.h"

/// @file
/// What the module is lent without a reference of its own: all of the host's objects but contexts and links.

/// The face of the first such object that the module has released; null while there is none.
inline std::atomic<const char*> g_releasedFace{nullptr};

/// Answers a Release that must not come, and notes it. @param face a text that outlives the process.   [any]
inline KXPCode NoteRelease(const char* face) {
    const char* none = nullptr;
    g_releasedFace.compare_exchange_strong(none, face);
    return KXP_OK;
}
