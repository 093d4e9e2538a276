#pragma once

#include <atomic>
#include <cstdint>

/// Sleeps while word holds `expected`, at most timeoutMs (kInfinite of SystemThread.h: for ever). May also return for
/// no reason: callers look at the word and at the time again.
/// @return false after the time-out.   [thread: any]
bool WaitOnAddress(const std::atomic<std::uint32_t>& word, std::uint32_t expected, std::uint32_t timeoutMs);

/// Wakes everybody who sleeps on the word at this address. The memory is not touched, so the word may be gone already.
void WakeAllOnAddress(const void* word);
