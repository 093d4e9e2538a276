#include "WaitAddress.h"

#include <cerrno>
#include <climits>
#include <ctime>

#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "SystemThread.h"

static_assert(sizeof(std::atomic<std::uint32_t>) == sizeof(std::uint32_t), "the system waits on the plain word");
static_assert(std::atomic<std::uint32_t>::is_always_lock_free);

bool WaitOnAddress(const std::atomic<std::uint32_t>& word, std::uint32_t expected, std::uint32_t timeoutMs) {
    timespec duration{};
    duration.tv_sec = static_cast<time_t>(timeoutMs / 1000);
    duration.tv_nsec = static_cast<long>(timeoutMs % 1000) * 1000000;
    const timespec* limit = timeoutMs == kInfinite ? nullptr : &duration;
    return syscall(SYS_futex, &word, FUTEX_WAIT_PRIVATE, expected, limit, nullptr, 0) == 0 || errno != ETIMEDOUT;
}

void WakeAllOnAddress(const void* word) {
    syscall(SYS_futex, word, FUTEX_WAKE_PRIVATE, INT_MAX, nullptr, nullptr, 0);
}
