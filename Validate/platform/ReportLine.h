#pragma once

#include <string>

/// Writes "kind: text" as one line. A descriptor below 0 takes nothing. Line feeds of the text become spaces.   [any]
void WriteReportLine(int descriptor, const char* kind, std::string text);
