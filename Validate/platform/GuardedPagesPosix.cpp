#include "GuardedPages.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <mutex>
#include <utility>

#include <execinfo.h>
#include <sys/mman.h>
#include <ucontext.h>
#include <unistd.h>

#include "HeapWatch.h"
#include "ThrownText.h"

namespace {

constexpr std::size_t kPlaces = std::size_t(1) << 26; // of address space, not of memory, as is the next
constexpr std::size_t kSpace = std::size_t(1) << 42;
constexpr int kFrames = 24;
constexpr std::size_t kSignalStack = 1 << 16;

/// One piece of guarded memory. Places are only added, in the order of their addresses, so that the crash handler may
/// look for one at any instant.
struct Place {
    char* begin = nullptr;
    std::size_t bytes = 0; ///< of whole pages
    std::atomic<const char*> what{nullptr};
    std::atomic<bool> isGone{false};
};

void* Reserve(std::size_t bytes, int protection) {
    void* const memory = mmap(nullptr, bytes, protection, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (memory == MAP_FAILED)
        std::abort();
    return memory;
}

Place* const g_places = static_cast<Place*>(Reserve(kPlaces * sizeof(Place), PROT_READ | PROT_WRITE));
std::atomic<std::size_t> g_count{0};
std::mutex g_lock;      ///< of the next two
char* g_next = nullptr; ///< where the next piece begins, in address space that nobody may touch yet
std::size_t g_left = 0; ///< bytes of that
int g_report = STDERR_FILENO;

std::size_t PageSize() {
    static const auto size = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    return size;
}

Place* PlaceOf(const void* memory) {
    const auto* address = static_cast<const char*>(memory);
    Place* const end = g_places + g_count.load();
    Place* const behind =
        std::upper_bound(g_places, end, address, [](const char* one, const Place& place) { return one < place.begin; });
    if (behind == g_places || address >= (behind - 1)->begin + (behind - 1)->bytes)
        return nullptr;
    return behind - 1;
}

/// A piece behind all others.
Place& TakePlace(std::size_t bytes) {
    const std::lock_guard<std::mutex> guard(g_lock);
    const std::size_t number = g_count;
    if (g_next == nullptr) {
        g_next = static_cast<char*>(Reserve(kSpace, PROT_NONE));
        g_left = kSpace;
    }
    if (number >= kPlaces || bytes > g_left)
        std::abort();
    Place& place = g_places[number];
    place.begin = std::exchange(g_next, g_next + bytes);
    place.bytes = bytes;
    g_left -= bytes;
    g_count = number + 1;
    return place;
}

void Say(const char* text) {
    [[maybe_unused]] const auto written = write(g_report, text, std::strlen(text));
}

[[noreturn]] void EndWithFrames(int exitCode) {
    Say("\n");
    std::array<void*, kFrames> frames{};
    backtrace_symbols_fd(frames.data(), backtrace(frames.data(), kFrames), g_report);
    _exit(exitCode);
}

/// Whether a register of the processor holds a pointer that was read from memory behind its free.
bool HasFreedPointer(const void* context) {
    const auto& registers = static_cast<const ucontext_t*>(context)->uc_mcontext;
    std::array<unsigned char, sizeof(void*)> gone{};
    gone.fill(kGoneByte);
    const auto* bytes = reinterpret_cast<const unsigned char*>(&registers);
    for (std::size_t place = 0; place + sizeof(void*) <= sizeof(registers); place += sizeof(void*))
        if (std::memcmp(bytes + place, gone.data(), gone.size()) == 0)
            return true;
    return false;
}

/// Only what a signal handler may call, but for the backtrace, whose library was loaded beforehand.
void TellCrash(int signal, siginfo_t* info, void* context) {
    Say(signal == SIGSEGV || signal == SIGBUS ? "crash: touches memory that it may not"
                                              : "crash: the process is ended");
    if (HasFreedPointer(context))
        Say(", by a pointer out of an object or a block that was freed before");
    if (const Place* place = signal == SIGSEGV || signal == SIGBUS ? PlaceOf(info->si_addr) : nullptr) {
        const char* what = place->what;
        Say(place->isGone ? ", which the host has deleted: " : ", beyond the end of ");
        Say(what != nullptr ? what : "an object of the host");
    }
    EndWithFrames(128 + signal);
}

void TellThrown() {
    EndWithReport((TextOfThrown() + " leaves the module where nothing may be thrown").c_str());
}

} // namespace

void EndWithReport(const char* what) {
    Say("crash: ");
    Say(what);
    EndWithFrames(128 + SIGABRT);
}

void* GuardedAllocate(std::size_t bytes, std::size_t alignment) {
    const std::size_t page = PageSize();
    const std::size_t rounded = (bytes + alignment - 1) / alignment * alignment;
    const std::size_t pages = (rounded + page - 1) / page * page;
    const Place& place = TakePlace(pages + page);
    if (mprotect(place.begin, pages, PROT_READ | PROT_WRITE) != 0)
        std::abort();
    return place.begin + (pages - rounded);
}

char* GuardedCopy(const char* text, std::size_t length) {
    auto* const copy = static_cast<char*>(GuardedAllocate(length + 1, 1));
    std::memcpy(copy, text, length + 1);
    return copy;
}

void GuardedName(void* memory, const char* what) {
    if (Place* place = PlaceOf(memory))
        place->what = what;
}

void GuardedFree(void* memory) {
    Place* place = memory != nullptr ? PlaceOf(memory) : nullptr;
    if (place == nullptr)
        return;
    place->isGone = true;
    [[maybe_unused]] void* const same =
        mmap(place->begin, place->bytes, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED | MAP_NORESERVE, -1,
             0); // keeps the address, gives the memory back
}

void ReportCrashesTo(int descriptor) {
    g_report = descriptor;
    std::array<void*, 1> first{};
    backtrace(first.data(), 1); // loads what it needs
    static std::array<char, kSignalStack> stack;
    const stack_t own{stack.data(), 0, stack.size()};
    sigaltstack(&own, nullptr);
    struct sigaction action {};
    action.sa_sigaction = &TellCrash;
    action.sa_flags = SA_SIGINFO | SA_ONSTACK;
    for (const int signal : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT})
        sigaction(signal, &action, nullptr);
    std::set_terminate(&TellThrown);
}
