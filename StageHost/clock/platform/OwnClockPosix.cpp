#include "OwnClock.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <new>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "ClockPage.h"

namespace stagehost {

namespace {

constexpr std::int64_t kSecond = 1000 * 1000 * 1000;
constexpr std::int64_t kLookAgain = 20 * 1000 * 1000; // ns
constexpr std::int64_t kLookSoon = 100 * 1000;
constexpr const char* kPreload = "LD_PRELOAD"; // of the loader, see ld.so(8)

/// The system's time, past the library that changes it.
std::int64_t SystemTime(clockid_t clock) {
    timespec now{};
    syscall(SYS_clock_gettime, clock, &now);
    return now.tv_sec * kSecond + now.tv_nsec;
}

std::string OwnFolder() {
    return "/proc/" + std::to_string(getpid()) + "/fd/";
}

ClockPage* Map(int file, int protection) {
    void* memory = mmap(nullptr, sizeof(ClockPage), protection, MAP_SHARED, file, 0);
    return memory == MAP_FAILED ? nullptr : static_cast<ClockPage*>(memory);
}

std::string Variable(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? std::string() : value;
}

/// The page lives as long as a process has it open; those that are started find it at the one that directs the show.
std::string MakePage(std::optional<std::int64_t> wallSeconds) {
    const int file = memfd_create("stagehost clock", 0);
    ClockPage* page =
        file >= 0 && ftruncate(file, sizeof(ClockPage)) == 0 ? Map(file, PROT_READ | PROT_WRITE) : nullptr;
    if (page == nullptr)
        return {};
    ClockFace face;
    face.systemAnchor = face.showAnchor = SystemTime(CLOCK_MONOTONIC);
    face.wallAhead = (wallSeconds ? *wallSeconds * kSecond : SystemTime(CLOCK_REALTIME)) - face.showAnchor;
    face.lookAgain = kLookAgain;
    (new (page) ClockPage)->Write(face);
    return OwnFolder() + std::to_string(file);
}

bool IsLibraryThere() {
    const auto has = reinterpret_cast<int (*)()>(dlsym(RTLD_DEFAULT, "stagehost_has_show_time"));
    return has != nullptr && has() != 0;
}

ClockPage* OpenPage() {
    const std::string path = Variable(kClockVariable);
    if (path.empty() || !IsLibraryThere())
        return nullptr;
    const bool isOwn = path.compare(0, OwnFolder().size(), OwnFolder()) == 0;
    const int file = open(path.c_str(), (isOwn ? O_RDWR : O_RDONLY) | O_CLOEXEC);
    return file < 0 ? nullptr : Map(file, isOwn ? PROT_READ | PROT_WRITE : PROT_READ);
}

ClockPage* Page() {
    static ClockPage* const page = OpenPage();
    return page;
}

bool IsDirector() {
    return Variable(kClockVariable).compare(0, OwnFolder().size(), OwnFolder()) == 0 && IsLibraryThere();
}

void SetClock(int speed, std::int64_t lookAgain) {
    if (!IsDirector() || Page() == nullptr)
        return;
    ClockFace face = Page()->Read();
    const std::int64_t now = SystemTime(CLOCK_MONOTONIC);
    face.showAnchor = face.ShowAt(now);
    face.systemAnchor = now;
    face.speed = speed;
    face.lookAgain = lookAgain;
    Page()->Write(face);
}

} // namespace

std::string EnterOwnClock(const std::string& library, char** arguments, std::optional<std::int64_t> wallSeconds) {
    if (Variable(kClockVariable).compare(0, OwnFolder().size(), OwnFolder()) == 0)
        return library + ": the system's loader does not take it";
    if (access(library.c_str(), R_OK) != 0)
        return library + ": " + std::strerror(errno);
    if (library.find_first_of(" :") != std::string::npos)
        return library + ": the system's loader takes no blanks and colons in that path";
    const std::string page = MakePage(wallSeconds);
    if (page.empty())
        return std::string("no memory for a clock: ") + std::strerror(errno);
    const std::string others = Variable(kPreload);
    setenv(kPreload, (others.empty() ? library : library + ":" + others).c_str(), 1);
    setenv(kClockVariable, page.c_str(), 1);
    execv("/proc/self/exe", arguments);
    return std::string("cannot begin anew: ") + std::strerror(errno);
}

bool DirectsOwnClock() {
    return IsDirector();
}

bool HasOwnClock() {
    return Page() != nullptr;
}

void RestOwnClock(bool mayGrow) {
    SetClock(1, mayGrow ? kLookAgain : 0);
}

void RunOwnClock(int speed) {
    if (!DirectsOwnClock())
        return;
    SetClock(0, kLookSoon);
    const timespec moment{0, kLookAgain + kLookAgain / 4};
    syscall(SYS_clock_nanosleep, CLOCK_MONOTONIC, 0, &moment, nullptr);
    SetClock(speed, 0);
}

int OwnClockSpeed() {
    return Page() == nullptr ? 1 : static_cast<int>(std::max<std::int64_t>(Page()->Read().speed, 1));
}

} // namespace stagehost
