#pragma once

#include "Threads.h"

/// @file
/// The threads that the contract's headers promise, checked where an operation begins. A debug build stops
/// where a promise is broken; any other logs it once for each operation and goes on, since a show does not stop
/// for a host's mistake.

/// What is known of the calling thread. A thread that never said anything counts as one of the host's.
inline thread_local ThreadWord currentThreadWord = ThreadWord::AnyHostThread;

/// Says that the calling thread is the host's main thread, once and for all.   [host main]
inline void NoteHostMainThread() {
    currentThreadWord = ThreadWord::HostMain;
}

/// Whether the calling thread keeps a promise. A host may come back from within everything that it is called with, so
/// only its main thread can be told from all others.   [any]
inline bool KeepsPromise(ThreadWord promised) {
    return promised != ThreadWord::HostMain || currentThreadWord == ThreadWord::HostMain;
}

/// Stops a debug build; logs it once otherwise.
/// @param operation a literal.   [any]
void ReportBrokenPromise(const char* operation);

/// The one line at the head of an operation.   [any]
inline void ExpectThread(ThreadWord promised, const char* operation) {
    if (!KeepsPromise(promised))
        ReportBrokenPromise(operation);
}
