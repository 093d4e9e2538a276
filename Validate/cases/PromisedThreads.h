#pragma once

#include <vector>

/// An operation of the host that a module may call on one kind of thread alone. The tests hold the table against the
/// contract's headers.
struct PromisedThread {
    const char* face;
    const char* name;
    const char* word; ///< of the page of threads: "host main" or "script"
};

const std::vector<PromisedThread>& AllPromisedThreads();
