#include "ShowTime.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/time.h>

#include "ClockPage.h"
#include "NextCalls.h"
#include "OwnClock.h"

namespace stagehost::showtime {

namespace {

std::int64_t SystemNow() {
    timespec now{};
    Next().clock_gettime(CLOCK_MONOTONIC, &now);
    return FromTimespec(now);
}

/// Other libraries ask for the time before this one has been initialised, so the page is looked for at the first
/// question. A process that finds none, since the show has gone, lives in the system's time.
const ClockPage* OpenPage() {
    const char* path = std::getenv(kClockVariable);
    const int file = path == nullptr ? -1 : open(path, O_RDONLY | O_CLOEXEC);
    if (file < 0)
        return nullptr;
    void* memory = mmap(nullptr, sizeof(ClockPage), PROT_READ, MAP_SHARED, file, 0);
    close(file);
    return memory == MAP_FAILED ? nullptr : static_cast<const ClockPage*>(memory);
}

const ClockPage* Page() {
    static const ClockPage* const page = OpenPage();
    return page;
}

/// ns of the system until a moment of the show; 0 for one that has come.
std::int64_t SystemUntil(std::int64_t moment) {
    const ClockFace face = Page()->Read();
    const std::int64_t left = moment - face.ShowAt(SystemNow());
    if (left <= 0)
        return 0;
    const std::int64_t span = face.speed > 0 ? (left + face.speed - 1) / face.speed : left;
    return face.lookAgain != 0 ? std::min(span, face.lookAgain) : span;
}

std::int64_t Distance(std::int64_t one, std::int64_t other) {
    return one > other ? one - other : other - one;
}

bool IsWall(clockid_t clock) {
    return clock == CLOCK_REALTIME || clock == CLOCK_REALTIME_COARSE;
}

} // namespace

bool IsOn() {
    return Page() != nullptr;
}

std::int64_t Now() {
    return Page()->Read().ShowAt(SystemNow());
}

bool Follows(clockid_t clock) {
    return IsWall(clock) || clock == CLOCK_MONOTONIC || clock == CLOCK_MONOTONIC_RAW ||
           clock == CLOCK_MONOTONIC_COARSE || clock == CLOCK_BOOTTIME;
}

timespec Shown(clockid_t clock) {
    const ClockFace face = Page()->Read();
    return ToTimespec(face.ShowAt(SystemNow()) + (IsWall(clock) ? face.wallAhead : 0));
}

std::int64_t MomentOf(clockid_t clock, const timespec& time) {
    return FromTimespec(time) - (IsWall(clock) ? Page()->Read().wallAhead : 0);
}

std::int64_t MomentOf(const timespec& time) {
    const std::int64_t now = Now();
    const std::int64_t asMonotonic = MomentOf(CLOCK_MONOTONIC, time);
    const std::int64_t asWall = MomentOf(CLOCK_REALTIME, time);
    return Distance(asMonotonic, now) < Distance(asWall, now) ? asMonotonic : asWall;
}

timespec SpanUntil(std::int64_t moment) {
    return ToTimespec(SystemUntil(moment));
}

timespec SystemMoment(std::int64_t moment) {
    const std::int64_t span = SystemUntil(moment);
    return ToTimespec(SystemNow() + span);
}

timespec ToTimespec(std::int64_t time) {
    timespec split{};
    split.tv_sec = static_cast<time_t>(time / kSecond);
    split.tv_nsec = static_cast<long>(time % kSecond);
    if (split.tv_nsec < 0) {
        split.tv_nsec += kSecond;
        --split.tv_sec;
    }
    return split;
}

/// Programs write "for ever" as the largest number: it stays one.
std::int64_t FromTimespec(const timespec& time) {
    constexpr std::int64_t kLongest = std::numeric_limits<std::int64_t>::max() / 4;
    return time.tv_sec > kLongest / kSecond ? kLongest : time.tv_sec * kSecond + time.tv_nsec;
}

} // namespace stagehost::showtime

using namespace stagehost::showtime;

#pragma GCC visibility push(default)
extern "C" {

int clock_gettime(clockid_t clock, timespec* time) noexcept {
    if (!IsOn() || !Follows(clock))
        return Next().clock_gettime(clock, time);
    *time = Shown(clock);
    return 0;
}

int gettimeofday(timeval* time, void* zone) noexcept {
    if (zone != nullptr)
        *static_cast<struct timezone*>(zone) = {};
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    time->tv_sec = now.tv_sec;
    time->tv_usec = now.tv_nsec / kMicro;
    return 0;
}

time_t time(time_t* kept) noexcept {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    if (kept != nullptr)
        *kept = now.tv_sec;
    return now.tv_sec;
}

int timespec_get(timespec* time, int base) noexcept {
    return base == TIME_UTC && clock_gettime(CLOCK_REALTIME, time) == 0 ? base : 0;
}

/// Tells the program that this library is there.
int stagehost_has_show_time() {
    return IsOn() ? 1 : 0;
}
}
#pragma GCC visibility pop
