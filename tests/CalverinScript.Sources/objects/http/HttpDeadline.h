#pragma once

#include <chrono>

/// How long a test waits for what must happen: long enough for a loaded machine under a sanitizer.
inline constexpr std::chrono::seconds kHttpDeadline(30);
