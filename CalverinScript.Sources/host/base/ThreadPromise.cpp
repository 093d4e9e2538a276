#include "ThreadPromise.h"

#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <set>
#include <string>

#include "Log.h"

namespace {

constexpr int kPromiseLevel = 5;
constexpr bool kStopsThere = CALVERIN_DEBUG_BUILD != 0;

bool IsFirstOf(const char* operation) {
    static std::mutex lock;
    static std::set<std::string> told; // under lock
    const std::lock_guard<std::mutex> guard(lock);
    return told.insert(operation).second;
}

} // namespace

void ReportBrokenPromise(const char* operation) {
    if (kStopsThere) {
        std::fprintf(stderr, "%s: not on the host's main thread\n", operation);
        std::abort();
    }
    if (IsFirstOf(operation))
        WriteLog(LogHandle(), kPromiseLevel, "kxpCalverinScript %s: not on the host's main thread", operation);
}
