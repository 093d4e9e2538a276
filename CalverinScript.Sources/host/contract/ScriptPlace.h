#pragma once

#include <cstddef>
#include <string>

/// @file
/// A script may be put together of several files: those that a driver names with lines "// @include NAME" go in front
/// of it. What a host stores and a device runs is one plain script. In it a comment line of its own leads each piece:
///
///     // @part connection.js
///     the text of connection.js
///     ;// @part projector.js
///     the text of projector.js
///
/// so whoever has the script alone, from a setup or beside a log, can tell where a line of it was written. Names are
/// relative to the driver's folder, with "/" between folders. The ";" ends what a piece may have left open at its end.

/// How a leading line goes on behind ";", which the first one does not have. The name follows, up to the end of the
/// line.
constexpr const char* KXP_SCRIPT_PART = "// @part ";

/// Where a line of a script was written.
struct KXPScriptPlace {
    std::string file; ///< empty in a script that is one file
    int line;         ///< from 1, in that file; 0 for a leading line
};

/// @param script in any 8-bit encoding that has ASCII in it. @param line from 1.   [any]
inline KXPScriptPlace KXPPlaceInScript(const std::string& script, int line) {
    const std::string part = KXP_SCRIPT_PART;
    KXPScriptPlace place;
    place.line = line;
    std::size_t at = 0;
    for (int number = 1; number <= line && at <= script.size(); ++number) {
        std::size_t end = script.find_first_of("\r\n", at);
        end = end == std::string::npos ? script.size() : end;
        const std::size_t begin = at + (at < end && script[at] == ';' ? 1 : 0);
        if (script.compare(begin, part.size(), part) == 0) {
            place.file = script.substr(begin + part.size(), end - begin - part.size());
            place.line = line - number;
        }
        at = end + (script.compare(end, 2, "\r\n") == 0 ? 2 : 1);
    }
    return place;
}
