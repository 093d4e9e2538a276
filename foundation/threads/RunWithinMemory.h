#pragma once

#include <new>

/// Runs work at a root, from where an exception would go on into code that cannot carry one, and end the process: the
/// body of a thread, a handler of events, a destructor, a function that an engine or a host calls.
/// @return false where memory ran out, and the work was left where it was.   [thread: any]
template <typename Work>
bool RunWithinMemory(Work&& work) {
    try {
        work();
        return true;
    } catch (const std::bad_alloc&) {
        return false;
    }
}
