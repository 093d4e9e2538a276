#include "GuardedPages.h"

#include <array>
#include <atomic>
#include <csignal>
#include <cstdlib>
#include <cstring>

#include <execinfo.h>
#include <sys/mman.h>
#include <unistd.h>

namespace {

constexpr std::size_t kPlaces = std::size_t(1) << 26; // of address space, not of memory
constexpr std::size_t kAlignment = 16;
constexpr int kFrames = 24;
constexpr std::size_t kSignalStack = 1 << 16;

/// One piece of guarded memory. Places are only added, so that the crash handler may read them at any instant.
struct Place {
    char* begin = nullptr;
    std::size_t bytes = 0; ///< of whole pages
    std::atomic<const char*> what{nullptr};
    std::atomic<bool> isGone{false};
};

Place* const g_places = static_cast<Place*>(
    mmap(nullptr, kPlaces * sizeof(Place), PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0));
std::atomic<std::size_t> g_count{0};
int g_report = STDERR_FILENO;

std::size_t PageSize() {
    static const auto size = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    return size;
}

Place* PlaceOf(const void* memory) {
    const auto* address = static_cast<const char*>(memory);
    for (std::size_t number = g_count.load(); number-- > 0;)
        if (address >= g_places[number].begin && address < g_places[number].begin + g_places[number].bytes)
            return &g_places[number];
    return nullptr;
}

void Say(const char* text) {
    [[maybe_unused]] const auto written = write(g_report, text, std::strlen(text));
}

/// Only what a signal handler may call, but for the backtrace, whose library was loaded beforehand.
void TellCrash(int signal, siginfo_t* info, void*) {
    Say(signal == SIGSEGV || signal == SIGBUS ? "crash: touches memory that it may not"
                                              : "crash: the process is ended");
    if (const Place* place = signal == SIGSEGV || signal == SIGBUS ? PlaceOf(info->si_addr) : nullptr) {
        const char* what = place->what;
        Say(place->isGone ? ", which the host has deleted: " : ", beyond the end of ");
        Say(what != nullptr ? what : "an object of the host");
    }
    Say("\n");
    std::array<void*, kFrames> frames{};
    backtrace_symbols_fd(frames.data(), backtrace(frames.data(), kFrames), g_report);
    _exit(128 + signal);
}

} // namespace

/// The object ends where its pages end, as far as its alignment allows, and a page that nobody may touch comes behind.
void* GuardedAllocate(std::size_t bytes) {
    const std::size_t page = PageSize();
    const std::size_t rounded = (bytes + kAlignment - 1) / kAlignment * kAlignment;
    const std::size_t pages = (rounded + page - 1) / page * page;
    const std::size_t number = g_count.fetch_add(1);
    void* memory = mmap(nullptr, pages + page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (number >= kPlaces || memory == MAP_FAILED)
        std::abort();
    mprotect(static_cast<char*>(memory) + pages, page, PROT_NONE);
    g_places[number].bytes = pages + page;
    g_places[number].begin = static_cast<char*>(memory);
    return static_cast<char*>(memory) + (pages - rounded);
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
}
