#include "logsE.h"

#include <algorithm>
#include <iterator>

#include "LogWriters.h"

using logsE::LogWriter;
using logsE::LogWriters;

namespace {

std::string TextOf(const char* text) {
    return text == nullptr ? "" : text;
}

std::int32_t CopyOut(const std::string& text, char* buffer, std::uint32_t size) {
    const std::size_t length = std::min<std::size_t>(text.size(), size - 1);
    *std::copy_n(text.data(), length, buffer) = '\0';
    return LOGSE_OK;
}

bool IsBuffer(const char* buffer, std::uint32_t size) {
    return buffer != nullptr && size > 0;
}

} // namespace

void* logsEInitializeLibrary(const char* programName, const LogsERecord* record) {
    if (record == nullptr || record->size != sizeof(LogsERecord))
        return nullptr;
    const bool hasEnd = std::find(std::begin(record->path), std::end(record->path), '\0') != std::end(record->path);
    return hasEnd ? LogWriters::Instance().Add(TextOf(programName), *record) : nullptr;
}

std::int32_t logsEFinalizeLibrary(void* handle) {
    return LogWriters::Instance().Remove(handle) ? LOGSE_OK : LOGSE_BAD_HANDLE;
}

std::int32_t logsEWriteMessage(void* handle, std::int32_t level, const char* text) {
    return LogWriters::Instance().With(
        handle, [&](LogWriter& writer) { return writer.Write(level, writer.ProgramName(), TextOf(text)); });
}

std::int32_t logsEFlush(void* handle) {
    return LogWriters::Instance().With(handle, [](LogWriter& writer) { return writer.Flush(); });
}

std::int32_t logsEGetWriterCounter() {
    return LogWriters::Instance().Count();
}

std::int32_t logsEWriteMessage2(void* handle, std::int32_t level, const char* source, const char* text) {
    return LogWriters::Instance().With(
        handle, [&](LogWriter& writer) { return writer.Write(level, TextOf(source), TextOf(text)); });
}

std::int32_t logsEGetWriterName(void* handle, char* buffer, std::uint32_t size) {
    if (!IsBuffer(buffer, size))
        return LOGSE_BAD_ARGUMENT;
    return LogWriters::Instance().With(
        handle, [&](const LogWriter& writer) { return CopyOut(writer.ProgramName(), buffer, size); });
}

std::int32_t logsEGetWriterID(void* handle) {
    return LogWriters::Instance().With(handle, [](const LogWriter& writer) { return writer.WriterId(); });
}

std::int32_t logsEGetEngineStatus(void* handle) {
    return LogWriters::Instance().With(handle, [](const LogWriter& writer) { return writer.Status(); });
}

std::int32_t logsEGetEngineStatusEx(void* handle, char* buffer, std::uint32_t size) {
    if (!IsBuffer(buffer, size))
        return LOGSE_BAD_ARGUMENT;
    return LogWriters::Instance().With(handle, [&](const LogWriter& writer) {
        CopyOut(writer.StatusText(), buffer, size);
        return writer.Status();
    });
}
