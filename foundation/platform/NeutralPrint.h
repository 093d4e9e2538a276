#pragma once

#include <cstdarg>
#include <cstddef>

/// Prints as vsnprintf does, but always with the neutral locale, whatever the host process has set: a decimal point is
/// a point. Writes at most size bytes with the terminator; with size 0 only measures. Consumes the arguments.
/// @return the length of the whole text without terminator, negative when the format cannot be printed.   [thread: any]
int NeutralPrint(char* buffer, std::size_t size, const char* format, va_list arguments);
