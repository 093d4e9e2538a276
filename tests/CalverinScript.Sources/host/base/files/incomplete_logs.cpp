#include <cstdint>
#include <cstdlib>

#define EXPORTED extern "C" __attribute__((visibility("default")))

/// A logging library without logsEFlush: it must not be used at all.
EXPORTED void* logsEInitializeLibrary(const char* /*programName*/, const void* /*record*/) {
    std::abort();
}

EXPORTED std::int32_t logsEFinalizeLibrary(void* /*handle*/) {
    std::abort();
}

EXPORTED std::int32_t logsEWriteMessage(void* /*handle*/, std::int32_t /*level*/, const char* /*text*/) {
    std::abort();
}
