#pragma once

#include <chrono>
#include <cstdint>
#include <thread>

/// How long a test waits for what must happen, in milliseconds: long enough for a loaded machine under a sanitizer.
inline constexpr std::uint32_t kDeadlineMs = 20000;

/// Looks again and again until the condition holds. @return false when it does not within the deadline.
template <class Condition>
bool Eventually(Condition condition) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(kDeadlineMs);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline)
            return false;
        std::this_thread::yield();
    }
    return true;
}
