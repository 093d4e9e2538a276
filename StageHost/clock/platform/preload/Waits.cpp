#include <cerrno>
#include <cstdarg>
#include <cstdint>

#include <linux/futex.h>
#include <sys/syscall.h>

#include "NextCalls.h"
#include "ShowTime.h"

/// The calls of the C library that wait for a time: each waits for as long as that time of the show takes. What may be
/// waited for once more is, when the wait was over before the show's time was: the speed has changed then.

using namespace stagehost::showtime;

namespace {

bool IsTime(const timespec* time) {
    return time != nullptr && time->tv_nsec >= 0 && time->tv_nsec < kSecond;
}

/// Waits until a moment of the show. @param wait one wait until a moment of the system's monotonic clock: 0 or the
/// error.
template <class Wait>
int WaitUntil(std::int64_t moment, Wait wait) {
    for (;;) {
        const timespec end = SystemMoment(moment);
        const int result = wait(end);
        if (result != ETIMEDOUT || Now() >= moment)
            return result;
    }
}

/// Who waits on a condition looks at it at the end of every wait, so one that is over too early is a wake-up without
/// a reason, as POSIX allows it; to wait again here would miss a wake-up in between.
int WaitOnCondition(pthread_cond_t* condition, pthread_mutex_t* mutex, std::int64_t moment) {
    const timespec end = SystemMoment(moment);
    const int result = Next().pthread_cond_clockwait(condition, mutex, CLOCK_MONOTONIC, &end);
    return result == ETIMEDOUT && Now() < moment ? 0 : result;
}

int WaitOnSemaphore(sem_t* semaphore, std::int64_t moment) {
    const int error = WaitUntil(moment, [&](const timespec& end) {
        return Next().sem_clockwait(semaphore, CLOCK_MONOTONIC, &end) == 0 ? 0 : errno;
    });
    errno = error;
    return error == 0 ? 0 : -1;
}

int LockUntil(pthread_mutex_t* mutex, std::int64_t moment) {
    return WaitUntil(moment,
                     [&](const timespec& end) { return Next().pthread_mutex_clocklock(mutex, CLOCK_MONOTONIC, &end); });
}

/// Waits for descriptors. @param wait one wait for a span of the system: the count, 0 when it is over.
template <class Wait>
int WaitForDescriptors(std::int64_t moment, Wait wait) {
    for (;;) {
        const timespec span = SpanUntil(moment);
        const int count = wait(span);
        if (count != 0 || Now() >= moment)
            return count;
    }
}

int Sleep(std::int64_t moment) {
    for (;;) {
        const timespec end = SystemMoment(moment);
        const int result = Next().clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &end, nullptr);
        if (result != 0 || Now() >= moment)
            return result;
    }
}

std::int64_t LeftUntil(std::int64_t moment) {
    const std::int64_t left = moment - Now();
    return left > 0 ? left : 0;
}

int SelectUntil(int count, fd_set* sets[3], std::int64_t moment, const sigset_t* mask) {
    fd_set asked[3] = {};
    for (int index = 0; index < 3; ++index)
        if (sets[index] != nullptr)
            asked[index] = *sets[index];
    return WaitForDescriptors(moment, [&](const timespec& span) {
        for (int index = 0; index < 3; ++index)
            if (sets[index] != nullptr)
                *sets[index] = asked[index];
        return Next().pselect(count, sets[0], sets[1], sets[2], &span, mask);
    });
}

/// A futex wait for a span (FUTEX_WAIT) or until a moment (FUTEX_WAIT_BITSET); see futex(2).
long WaitOnWord(long word, long operation, long value, const timespec* time, long other, long bits) {
    const bool isSpan = (operation & FUTEX_CMD_MASK) == FUTEX_WAIT;
    const clockid_t clock = (operation & FUTEX_CLOCK_REALTIME) != 0 ? CLOCK_REALTIME : CLOCK_MONOTONIC;
    const std::int64_t moment = isSpan ? Now() + FromTimespec(*time) : MomentOf(clock, *time);
    const long plain = operation & ~static_cast<long>(FUTEX_CLOCK_REALTIME);
    for (;;) {
        const timespec wait = isSpan ? SpanUntil(moment) : SystemMoment(moment);
        const long result = Next().syscall(SYS_futex, word, plain, value, &wait, other, bits);
        if (result == 0 || errno != ETIMEDOUT || Now() >= moment)
            return result;
    }
}

bool IsTimedFutexWait(long number, long operation, const timespec* time) {
    const long command = operation & FUTEX_CMD_MASK;
    return number == SYS_futex && (command == FUTEX_WAIT || command == FUTEX_WAIT_BITSET) && IsTime(time);
}

} // namespace

#pragma GCC visibility push(default)
extern "C" {

int clock_nanosleep(clockid_t clock, int flags, const timespec* time, timespec* left) {
    if (!IsOn() || !Follows(clock) || !IsTime(time))
        return Next().clock_nanosleep(clock, flags, time, left);
    const bool isMoment = (flags & TIMER_ABSTIME) != 0;
    const std::int64_t moment = isMoment ? MomentOf(clock, *time) : Now() + FromTimespec(*time);
    const int result = Sleep(moment);
    if (result != 0 && !isMoment && left != nullptr)
        *left = ToTimespec(LeftUntil(moment));
    return result;
}

int nanosleep(const timespec* time, timespec* left) {
    const int error = clock_nanosleep(CLOCK_MONOTONIC, 0, time, left);
    if (error == 0)
        return 0;
    errno = error;
    return -1;
}

int usleep(useconds_t time) {
    const timespec span = ToTimespec(time * kMicro);
    return nanosleep(&span, nullptr);
}

unsigned sleep(unsigned seconds) {
    const timespec span = ToTimespec(seconds * kSecond);
    timespec left{};
    return clock_nanosleep(CLOCK_MONOTONIC, 0, &span, &left) == 0
               ? 0
               : static_cast<unsigned>((FromTimespec(left) + kSecond - 1) / kSecond);
}

int ppoll(pollfd* descriptors, nfds_t count, const timespec* time, const sigset_t* mask) {
    if (!IsOn() || !IsTime(time) || FromTimespec(*time) == 0)
        return Next().ppoll(descriptors, count, time, mask);
    return WaitForDescriptors(Now() + FromTimespec(*time),
                              [&](const timespec& span) { return Next().ppoll(descriptors, count, &span, mask); });
}

int poll(pollfd* descriptors, nfds_t count, int time) {
    const timespec span = ToTimespec(time * kMilli);
    return ppoll(descriptors, count, time < 0 ? nullptr : &span, nullptr);
}

int pselect(int count, fd_set* read, fd_set* write, fd_set* except, const timespec* time, const sigset_t* mask) {
    if (!IsOn() || !IsTime(time) || FromTimespec(*time) == 0)
        return Next().pselect(count, read, write, except, time, mask);
    fd_set* sets[] = {read, write, except};
    return SelectUntil(count, sets, Now() + FromTimespec(*time), mask);
}

/// The system writes what is left of the time; some programs go on with that.
int select(int count, fd_set* read, fd_set* write, fd_set* except, timeval* time) {
    if (time == nullptr)
        return pselect(count, read, write, except, nullptr, nullptr);
    const timespec span = ToTimespec(time->tv_sec * kSecond + time->tv_usec * kMicro);
    const std::int64_t begin = IsOn() ? Now() : 0;
    const int result = pselect(count, read, write, except, &span, nullptr);
    const timespec left = IsOn() ? ToTimespec(LeftUntil(begin + FromTimespec(span))) : timespec{};
    time->tv_sec = left.tv_sec;
    time->tv_usec = left.tv_nsec / kMicro;
    return result;
}

int epoll_pwait2(int set, epoll_event* events, int most, const timespec* time, const sigset_t* mask) {
    if (!IsOn() || !IsTime(time) || FromTimespec(*time) == 0)
        return Next().epoll_pwait2(set, events, most, time, mask);
    return WaitForDescriptors(Now() + FromTimespec(*time), [&](const timespec& span) {
        return Next().epoll_pwait2(set, events, most, &span, mask);
    });
}

int epoll_pwait(int set, epoll_event* events, int most, int time, const sigset_t* mask) {
    const timespec span = ToTimespec(time * kMilli);
    return epoll_pwait2(set, events, most, time < 0 ? nullptr : &span, mask);
}

int epoll_wait(int set, epoll_event* events, int most, int time) {
    return epoll_pwait(set, events, most, time, nullptr);
}

int pthread_cond_timedwait(pthread_cond_t* condition, pthread_mutex_t* mutex, const timespec* time) {
    if (!IsOn() || !IsTime(time))
        return Next().pthread_cond_timedwait(condition, mutex, time);
    return WaitOnCondition(condition, mutex, MomentOf(*time)); // which clock is the condition's own affair
}

int pthread_cond_clockwait(pthread_cond_t* condition, pthread_mutex_t* mutex, clockid_t clock, const timespec* time) {
    if (!IsOn() || !IsTime(time))
        return Next().pthread_cond_clockwait(condition, mutex, clock, time);
    return WaitOnCondition(condition, mutex, MomentOf(clock, *time));
}

int sem_clockwait(sem_t* semaphore, clockid_t clock, const timespec* time) {
    if (!IsOn() || !IsTime(time))
        return Next().sem_clockwait(semaphore, clock, time);
    return WaitOnSemaphore(semaphore, MomentOf(clock, *time));
}

int sem_timedwait(sem_t* semaphore, const timespec* time) {
    return sem_clockwait(semaphore, CLOCK_REALTIME, time);
}

int pthread_mutex_clocklock(pthread_mutex_t* mutex, clockid_t clock, const timespec* time) noexcept {
    if (!IsOn() || !IsTime(time))
        return Next().pthread_mutex_clocklock(mutex, clock, time);
    return LockUntil(mutex, MomentOf(clock, *time));
}

int pthread_mutex_timedlock(pthread_mutex_t* mutex, const timespec* time) noexcept {
    return pthread_mutex_clocklock(mutex, CLOCK_REALTIME, time);
}

/// For the waits on words of memory that toolkits make by themselves.
long syscall(long number, ...) noexcept {
    long words[6] = {};
    va_list rest;
    va_start(rest, number);
    for (long& word : words)
        word = va_arg(rest, long);
    va_end(rest);
    const auto* time =
        reinterpret_cast<const timespec*>(words[3]); // NOLINT(performance-no-int-to-ptr): as the system has it
    if (number == SYS_futex && IsOn() && IsTimedFutexWait(number, words[1], time))
        return WaitOnWord(words[0], words[1], words[2], time, words[4], words[5]);
    return Next().syscall(number, words[0], words[1], words[2], words[3], words[4], words[5]);
}
}
#pragma GCC visibility pop
