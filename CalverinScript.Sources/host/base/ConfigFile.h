#pragma once

#include <string>

/// @file
/// The configuration file beside the module: sections in square brackets, "key = value" lines, ";" comments. Names of
/// sections and keys are compared without regard to case; a value may stand in quotes, which are taken off. Any thread.

/// Path of the file that belongs to a module: the file's full name with its extension replaced.
/// @param moduleHandle any address inside the module; null means the running executable.
/// @param extension    without the point; null means "ini". A file name without a point gets it appended.
/// @return empty when the platform does not know the file.
std::string ConfigPath(const void* moduleHandle, const char* extension);

/// A whole number from the file: the digits at the start of the value, behind an optional "-".
/// @return fallback when file, section or key is missing; 0 when the value starts with no digit.
int ReadConfigInt(const std::string& path, const char* section, const char* key, int fallback);

/// A text from the file, or the fallback when file, section or key is missing.
std::string ReadConfigText(const std::string& path, const char* section, const char* key, const char* fallback);
