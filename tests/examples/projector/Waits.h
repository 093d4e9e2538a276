#pragma once

#include <QString>

/// How long a test waits for what must come, in ms.
inline constexpr int kLongest = 60000;

/// What does not come while a test runs, in ms.
inline constexpr int kNever = 3600000;

/// A text of a test, in UTF-8.
inline QString Text(const char* text) {
    return QString::fromUtf8(text);
}
