#include "TimeText.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <string_view>

#include "NumberText.h"

namespace {

constexpr std::size_t kUsedCharacters = 15; // a sign among them
constexpr std::int32_t kLargestTypedFrames = 99;
constexpr std::ptrdiff_t kLongestNumber = 19; // digits of 64 bits

bool IsDigit(char character) {
    return character >= '0' && character <= '9';
}

/// Writes a number that is not negative with at least some digits. @return the end of what was written.
char* WritePadded(char* at, std::int64_t number, std::int32_t digits) {
    for (std::int64_t limit = 10; digits > 1; --digits, limit *= 10)
        if (number < limit)
            *at++ = '0';
    return std::to_chars(at, at + kLongestNumber, number).ptr;
}

/// Cuts a number off the front, as the C library's "%d" does: blanks, a sign, digits. False without digits.
bool CutNumber(std::string_view& text, std::int64_t& number) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
    const bool negative = !text.empty() && text.front() == '-';
    if (negative || (!text.empty() && text.front() == '+'))
        text.remove_prefix(1);
    if (text.empty() || !IsDigit(text.front()))
        return false;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), number); // 15 digits always fit
    text.remove_prefix(static_cast<std::size_t>(read.ptr - text.data()));
    number = negative ? -number : number;
    return true;
}

bool CutCharacter(std::string_view& text, char character) {
    if (text.empty() || text.front() != character)
        return false;
    text.remove_prefix(1);
    return true;
}

/// "%d:%d:%d/%d" with fields in their ranges; what follows the fourth field does not matter.
std::optional<TimeParts> FullForm(std::string_view text, const TimeBase& base) {
    TimeParts parts{};
    const bool whole = CutNumber(text, parts.hours) && CutCharacter(text, ':') && CutNumber(text, parts.minutes) &&
                       CutCharacter(text, ':') && CutNumber(text, parts.seconds) && CutCharacter(text, '/') &&
                       CutNumber(text, parts.frames);
    const bool inRange =
        parts.hours < 24 && parts.minutes < 60 && parts.seconds < 60 && parts.frames <= base.unitsASecond;
    return whole && inRange ? std::optional(parts) : std::nullopt;
}

/// Six digits from the right. A colon counts for nothing, but one
/// at the end, and each pair of neighbours, skips two places.
std::array<std::int64_t, 6> DigitsFromRight(std::string_view text) {
    std::array<std::int64_t, 6> digits{};
    std::size_t place = 0;
    for (std::size_t i = text.size(); i-- > 0;) {
        if (text[i] != ':') {
            if (place < digits.size())
                digits[place++] = text[i] - '0';
        } else if (i + 1 == text.size() || text[i + 1] == ':') {
            place += 2;
        }
    }
    return digits;
}

std::int64_t TypedFrames(std::string_view text, const TimeBase& base) {
    const std::int32_t frames = std::clamp(IntFromText(text), 0, kLargestTypedFrames);
    return frames > base.unitsASecond ? frames % base.unitsASecond : frames;
}

std::optional<TimeParts> FreeForm(std::string_view text, const TimeBase& base) {
    if (text.empty() || text.find_first_not_of("0123456789/.:") != std::string_view::npos)
        return std::nullopt;
    const std::size_t split = std::min(text.find_first_of("/."), text.size());
    const auto digits = DigitsFromRight(text.substr(0, split));
    const std::string_view frames = text.substr(std::min(split + 1, text.size()));
    return TimeParts{digits[5] * 10 + digits[4], digits[3] * 10 + digits[2], digits[1] * 10 + digits[0],
                     TypedFrames(frames, base)};
}

} // namespace

void WriteTimeText(std::int64_t value, const TimeBase& base, TimeTextBuffer& text) {
    const TimeParts parts = SplitTime(value, base);
    std::array<char, 4 * (kLongestNumber + 1)> whole;
    char* at = whole.data();
    if (value < 0)
        *at++ = '-';
    at = WritePadded(at, parts.hours, 2);
    *at++ = ':';
    at = WritePadded(at, parts.minutes, 2);
    *at++ = ':';
    at = WritePadded(at, parts.seconds, 2);
    *at++ = '/';
    at = WritePadded(at, parts.frames, base.frameDigits);
    const std::string_view written(whole.data(), static_cast<std::size_t>(at - whole.data()));
    text[written.copy(text.data(), text.size() - 1)] = 0;
}

std::optional<std::int32_t> TimeFromText(const char* text, const TimeBase& base) {
    if (text == nullptr)
        return std::nullopt;
    std::string_view rest = std::string_view(text).substr(0, kUsedCharacters);
    if (rest.empty())
        return 0;
    const bool negative = rest.front() == '-';
    if (negative || rest.front() == '+')
        rest.remove_prefix(1);
    std::optional<TimeParts> parts = FullForm(rest, base);
    if (!parts)
        parts = FreeForm(rest, base);
    if (!parts)
        return std::nullopt;
    const std::int64_t value = JoinTime(*parts, base);
    return NearestCount(negative ? -value : value);
}
