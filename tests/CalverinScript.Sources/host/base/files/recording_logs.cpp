#include <cstring>

#include "LogRecorder.h"

#define EXPORTED extern "C" __attribute__((visibility("default")))

EXPORTED LogRecorder Recorder;
LogRecorder Recorder;

namespace {

std::uint32_t FieldAt(const char* record, std::size_t offset) {
    std::uint32_t value = 0;
    std::memcpy(&value, record + offset, sizeof(value));
    return value;
}

} // namespace

/// Reads the record by offsets, as another compiler's library would.
EXPORTED void* logsEInitializeLibrary(const char* programName, const void* record) {
    const auto* bytes = static_cast<const char*>(record);
    Recorder.programName = programName;
    Recorder.recordSize = FieldAt(bytes, 0);
    Recorder.path = bytes + 4;
    Recorder.writerId = FieldAt(bytes, 1028);
    Recorder.option1 = FieldAt(bytes, 1032);
    Recorder.option2 = FieldAt(bytes, 1036);
    Recorder.reserved = FieldAt(bytes, 1040);
    if (Recorder.refuse)
        return nullptr;
    ++Recorder.writers;
    return &Recorder;
}

EXPORTED std::int32_t logsEFinalizeLibrary(void* /*handle*/) {
    --Recorder.writers;
    return 0;
}

EXPORTED std::int32_t logsEWriteMessage(void* /*handle*/, std::int32_t level, const char* text) {
    Recorder.lines.push_back({level, text});
    return 5;
}

EXPORTED std::int32_t logsEFlush(void* /*handle*/) {
    return 0;
}

EXPORTED std::int32_t logsEGetWriterCounter() {
    return Recorder.writers + Recorder.otherWriters;
}
