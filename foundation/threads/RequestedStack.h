#pragma once

#include <cstddef>

/// The stack in bytes that the module asks for at each of its threads, and that they report. What the system gives them
/// is what it and the script engine need, which is more.
inline constexpr std::size_t kRequestedStackSize = 8193;
