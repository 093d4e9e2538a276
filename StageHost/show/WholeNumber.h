#pragma once

#include <charconv>
#include <cstdint>
#include <optional>
#include <string>

namespace stagehost {

/// The number of a text that is a whole number of 32 bits in decimal and nothing else.   [any]
inline std::optional<std::int32_t> ParseWholeNumber(const std::string& text) {
    std::int32_t number = 0;
    const char* end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, number);
    return read.ec == std::errc() && read.ptr == end ? std::optional(number) : std::nullopt;
}

} // namespace stagehost
