#pragma once

#include <cstdarg>
#include <cstdint>

/// What a printf format would do with its arguments, found out without printing.
struct FormatScan {
    /// An upper estimate of the printed length with terminator, by fixed sizes: a number of more digits than its fixed
    /// size is printed longer than this.
    std::int64_t length = 0;

    /// False for a format that must not be printed: it writes to memory ("%n"), numbers its arguments ("%1$d"), ends
    /// within a conversion, or asks for a width or precision beyond kMostColumns.
    bool printable = true;

    static constexpr std::int32_t kMostColumns = 1000000;
};

enum class TextArguments { Measure, Skip };

/// Walks a format along with its arguments, which stay as they are for the caller. With Skip the texts of "%s" are not
/// looked at (and count as null), so that a text limited by its precision alone need not be terminated.
FormatScan ScanFormat(const char* format, va_list arguments, TextArguments texts);
