#pragma once

#include <cstddef>

/// Memory in pages of its own, for what a host gives out and takes back: once it is gone, any touch ends the process
/// with a report that names what was touched. An address is never used again. The next byte behind it cannot be touched
/// either, as far as the alignment lets it stand at the end of a page.
/// @param alignment a power of two.   [any]
void* GuardedAllocate(std::size_t bytes, std::size_t alignment = 16);

/// A copy of a text, to its last byte.   [any]
char* GuardedCopy(const char* text, std::size_t length);

/// Says what stands there, for the report. @param what a text that outlives the process.
void GuardedName(void* memory, const char* what);

/// Takes the memory back. Null is ignored.
void GuardedFree(void* memory);

/// Objects of the class live in guarded memory.
struct Guarded {
    static void* operator new(std::size_t bytes) { return GuardedAllocate(bytes); }
    static void operator delete(void* memory) { GuardedFree(memory); }
};

/// From now on a crash of this process writes what happened, the guarded object that was touched, and the calls that
/// led there; @param descriptor where to, one line each.   [main, once]
/// An exception that nobody catches is told with its type and text.
void ReportCrashesTo(int descriptor);

/// Ends the process with such a report. @param what "frees ...", behind "crash: ".   [any]
[[noreturn]] void EndWithReport(const char* what);
