#pragma once

#include <cstdint>
#include <string>

#include <gtest/gtest.h>

#include "MTime.h"

constexpr std::int32_t kFilm = 0;
constexpr std::int32_t kVideo25 = 1;
constexpr std::int32_t kVideo30 = 2;
constexpr std::int32_t kDropFrame = 3;
constexpr std::int32_t kMilliseconds = 5;
constexpr std::int32_t kSmallest = -2147483647 - 1;
constexpr std::int32_t kLargest = 2147483647;

inline MTime TimeOf(std::int32_t value, std::int32_t type) {
    MTime time(value);
    time.SetType(type);
    return time;
}

inline std::string TextOf(std::int32_t value, std::int32_t type) {
    return TimeOf(value, type).GetText();
}

/// The value that a text gives, starting from a value that no test expects, so that it shows when the value stayed.
constexpr std::int32_t kStayed = 123456789;
inline std::int32_t ValueOf(const char* text, std::int32_t type) {
    MTime time = TimeOf(kStayed, type);
    const bool changed = time.SetFromText(text);
    EXPECT_EQ(changed, time.GetValue() != kStayed);
    return time.GetValue();
}

inline MTime Converting(std::int32_t value, std::int32_t type, std::int32_t targetType) {
    MTime time = TimeOf(value, type);
    time.SetTargetType(targetType);
    return time;
}
