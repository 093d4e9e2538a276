#pragma once

#include <string>

/// The full path of the file (shared library or program) whose code or data holds `address`, links resolved. Empty when
/// no loaded file holds it, as for memory of the heap or the stack. Pass the address of a function of your own to learn
/// where your module was loaded from.   [thread: any]
std::string ModuleFileOf(const void* address);

/// The full path of the running program. Empty only when the system refuses to tell.   [thread: any]
std::string ExecutableFile();
