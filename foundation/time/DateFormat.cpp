#include "DateFormat.h"

#include <atomic>

namespace {

constexpr char kFallback = '1';
constexpr std::string_view kSeparators = "/-.";
constexpr int kOrders = 3;

/// Written by the program's set-up, read by any thread that reads or writes a date.
std::atomic<char> defaultFormat{kFallback};

bool IsFormat(char format) {
    return format >= '0' && format <= '8';
}

/// The first character of the pattern outside single quotes that is one of some; 0 when there is none.
char FirstOf(std::string_view pattern, std::string_view some) {
    bool quoted = false;
    for (const char character : pattern) {
        if (character == '\'')
            quoted = !quoted;
        else if (!quoted && some.find(character) != std::string_view::npos)
            return character;
    }
    return 0;
}

DateOrder OrderOfPattern(std::string_view pattern) {
    switch (FirstOf(pattern, "dMmyY")) {
    case 'M':
    case 'm':
        return DateOrder::MonthFirst;
    case 'y':
    case 'Y':
        return DateOrder::YearFirst;
    default:
        return DateOrder::DayFirst;
    }
}

} // namespace

DateOrder DateOrderOf(char format) {
    return IsFormat(format) ? static_cast<DateOrder>((format - '0') % kOrders) : DateOrder::DayFirst;
}

char WrittenSeparator(char format) {
    return kSeparators[static_cast<std::size_t>(((IsFormat(format) ? format : kFallback) - '0') / kOrders)];
}

char ReadSeparator(char format) {
    const auto code = static_cast<unsigned char>(format); // the same on platforms where a plain char has no sign
    if (code < '3')
        return '/';
    return code < '6' ? '-' : '.';
}

void SetDefaultDateFormat(char format) {
    defaultFormat.store(IsFormat(format) ? format : kFallback, std::memory_order_relaxed);
}

char DefaultDateFormat() {
    return defaultFormat.load(std::memory_order_relaxed);
}

char DateFormatOfPattern(std::string_view pattern) {
    const char separator = FirstOf(pattern, kSeparators);
    const int group = separator ? static_cast<int>(kSeparators.find(separator)) : 0;
    return static_cast<char>('0' + static_cast<int>(OrderOfPattern(pattern)) + group * kOrders);
}
