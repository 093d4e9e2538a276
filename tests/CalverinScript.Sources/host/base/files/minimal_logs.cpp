#include <cstdint>

#define EXPORTED extern "C" __attribute__((visibility("default")))

/// A logging library with the four obligatory entries and no other.
EXPORTED void* logsEInitializeLibrary(const char* /*programName*/, const void* record) {
    return const_cast<void*>(record);
}

EXPORTED std::int32_t logsEFinalizeLibrary(void* /*handle*/) {
    return 41;
}

EXPORTED std::int32_t logsEWriteMessage(void* /*handle*/, std::int32_t /*level*/, const char* /*text*/) {
    return 42;
}

EXPORTED std::int32_t logsEFlush(void* /*handle*/) {
    return 43;
}
