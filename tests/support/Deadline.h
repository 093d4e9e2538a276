#pragma once

#include <chrono>
#include <cstdint>
#include <thread>

/// How long a test waits for what must happen, in milliseconds: long enough for a loaded machine under a sanitizer.
inline constexpr std::uint32_t kDeadlineMs = 20000;

/// Looks again and again until the condition holds: at once for a while, then each millisecond, which leaves the
/// processor to what it waits for. @return false when it does not within the deadline.
template <class Condition>
bool Eventually(Condition condition) {
    constexpr int kLooksAtOnce = 100;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(kDeadlineMs);
    for (int looks = 0; !condition(); ++looks) {
        if (std::chrono::steady_clock::now() > deadline)
            return false;
        if (looks < kLooksAtOnce)
            std::this_thread::yield();
        else
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}
