#include "FormatScan.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <cwchar>
#include <string_view>

namespace {

enum class Argument { None, Char, Integer, Real, Text, Pointer };

struct Conversion {
    std::string_view letters;
    Argument argument;
    std::int32_t size;      // of an argument in the default size
    std::int32_t shortSize; // after "h"
};

constexpr Conversion kConversions[] = {
    {"cC", Argument::Char, 1, 1},    {"diu", Argument::Integer, 7, 5}, {"fFeEgGaA", Argument::Real, 12, 12},
    {"xX", Argument::Integer, 8, 8}, {"o", Argument::Integer, 11, 11}, {"sS", Argument::Text, 1, 1},
    {"p", Argument::Pointer, 8, 8},  {"%", Argument::None, 1, 1},
};

constexpr std::int32_t kHashSize = 2; // "0x"

/// A copy of an argument list, read one by one.
class ArgumentReader {
public:
    explicit ArgumentReader(va_list source) { va_copy(m_list, source); }
    ~ArgumentReader() { va_end(m_list); }
    ArgumentReader(const ArgumentReader&) = delete;
    ArgumentReader& operator=(const ArgumentReader&) = delete;

    template <class T>
    T Take() {
        return va_arg(m_list, T); // NOLINT(clang-analyzer-valist.Uninitialized): the analyzer loses the field
    }

private:
    va_list m_list;
};

/// The walk itself.
class Scanner {
public:
    Scanner(const char* format, va_list arguments, TextArguments texts)
        : m_next(format)
        , m_measureTexts(texts == TextArguments::Measure)
        , m_arguments(arguments) {
        m_scan.length = static_cast<std::int64_t>(std::strlen(format)) + 1;
    }

    FormatScan Walk() {
        while (const char* percent = std::strchr(m_next, '%')) {
            m_next = percent + 1;
            if (!ReadConversion(percent))
                break;
        }
        return m_scan;
    }

private:
    bool ReadConversion(const char* start);
    std::int64_t ReadColumns();
    std::int32_t ReadModifiers();
    std::int64_t Consume(const Conversion& conversion, char letter, std::int32_t modifiers);
    std::int64_t ConsumeText(bool wide);
    void ConsumeInteger(std::int32_t modifiers);
    bool Refuse() {
        m_scan.printable = false;
        return false;
    }

    enum Modifier : std::int32_t { kShort = 1, kLong = 2, kLongLong = 4, kLongDouble = 8, kSystemSize = 16 };

    FormatScan m_scan;
    const char* m_next;
    const bool m_measureTexts;
    ArgumentReader m_arguments;
};

// False when the walk cannot go on: what the following arguments are is not known.
bool Scanner::ReadConversion(const char* start) {
    const std::size_t flags = std::strspn(m_next, "-+ #0'I");
    const bool hash = std::memchr(m_next, '#', flags) != nullptr;
    m_next += flags;
    const std::int64_t width = ReadColumns();
    std::int64_t precision = 0;
    if (*m_next == '.') {
        ++m_next;
        precision = ReadColumns();
    }
    const std::int32_t modifiers = ReadModifiers();
    const char letter = *m_next;
    if (letter == '\0' || letter == 'n' || letter == '$')
        return Refuse();
    if (width > FormatScan::kMostColumns || precision > FormatScan::kMostColumns)
        m_scan.printable = false;
    for (const Conversion& conversion : kConversions) {
        if (conversion.letters.find(letter) == std::string_view::npos)
            continue;
        ++m_next;
        const bool prefixed = hash && (letter == 'x' || letter == 'X');
        const std::int64_t size = Consume(conversion, letter, modifiers) + (prefixed ? kHashSize : 0);
        m_scan.length += std::max(width, size) - (m_next - start);
        return true;
    }
    return true; // not a conversion: printed as it stands
}

std::int64_t Scanner::ReadColumns() {
    if (*m_next == '*') {
        ++m_next;
        const std::int64_t columns = m_arguments.Take<int>();
        return columns < 0 ? -columns : columns; // a negative width means "to the left"
    }
    std::int64_t columns = 0;
    for (; *m_next >= '0' && *m_next <= '9'; ++m_next)
        columns = std::min<std::int64_t>(columns * 10 + (*m_next - '0'), INT32_MAX);
    return columns;
}

std::int32_t Scanner::ReadModifiers() {
    std::int32_t modifiers = 0;
    for (;; ++m_next) {
        switch (*m_next) {
        case 'h':
            modifiers |= kShort;
            break;
        case 'l':
            modifiers |= (modifiers & kLong) != 0 ? kLongLong : kLong;
            break;
        case 'q':
            modifiers |= kLongLong;
            break;
        case 'j':
        case 't':
        case 'z':
        case 'Z':
            modifiers |= kSystemSize;
            break;
        case 'L':
            modifiers |= kLongDouble;
            break;
        default:
            return modifiers;
        }
    }
}

std::int64_t Scanner::Consume(const Conversion& conversion, char letter, std::int32_t modifiers) {
    switch (conversion.argument) {
    case Argument::Char:
        m_arguments.Take<int>(); // a wide character is passed in the same size
        break;
    case Argument::Integer:
        ConsumeInteger(modifiers);
        break;
    case Argument::Real:
        if ((modifiers & (kLongDouble | kLongLong)) != 0)
            m_arguments.Take<long double>();
        else
            m_arguments.Take<double>();
        break;
    case Argument::Text:
        return ConsumeText(letter == 'S' || (modifiers & kLong) != 0);
    case Argument::Pointer:
        m_arguments.Take<void*>();
        break;
    case Argument::None:
        break;
    }
    return (modifiers & kShort) != 0 ? conversion.shortSize : conversion.size;
}

void Scanner::ConsumeInteger(std::int32_t modifiers) {
    if ((modifiers & (kLongLong | kLongDouble | kSystemSize)) != 0)
        m_arguments.Take<long long>();
    else if ((modifiers & kLong) != 0)
        m_arguments.Take<long>();
    else
        m_arguments.Take<int>();
}

std::int64_t Scanner::ConsumeText(bool wide) {
    const void* text = m_arguments.Take<const void*>();
    if (text == nullptr || !m_measureTexts)
        return 1;
    const std::size_t length =
        wide ? std::wcslen(static_cast<const wchar_t*>(text)) : std::strlen(static_cast<const char*>(text));
    return static_cast<std::int64_t>(length) + 1;
}

} // namespace

FormatScan ScanFormat(const char* format, va_list arguments, TextArguments texts) {
    return Scanner(format, arguments, texts).Walk();
}
