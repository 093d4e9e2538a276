#include "LogLibrary.h"

#include <algorithm>
#include <iterator>

namespace {

constexpr const char* kLibraryName = "logsE";

std::string FileBeside(const std::string& file, const std::string& name) {
    return file.substr(0, file.find_last_of("/\\") + 1) + name;
}

} // namespace

const char* const LogLibrary::kEntryNames[kEntryCount] = {
    "logsEInitializeLibrary", "logsEFinalizeLibrary",  "logsEWriteMessage",  "logsEFlush",
    "logsEGetWriterCounter",  "logsEWriteMessage2",    "logsEGetWriterName", "logsEGetWriterID",
    "logsEGetEngineStatus",   "logsEGetEngineStatusEx"};

bool LogLibrary::Load(const std::string& besideFile) {
    if (IsLoaded())
        return true;
    const std::string fileName = DynamicLibrary::FileName(kLibraryName);
    if (!m_library.Open(FileBeside(besideFile, fileName)) && !m_library.Open(fileName))
        return false;
    for (int entry = 0; entry < kEntryCount; ++entry)
        m_entries[entry] = m_library.Find(kEntryNames[entry]);
    const bool complete = std::all_of(m_entries, m_entries + kObligatory, [](void* e) { return e != nullptr; });
    if (!complete) {
        std::fill(std::begin(m_entries), std::end(m_entries), nullptr);
        m_library.Close();
    }
    return complete;
}

void LogLibrary::UnloadWhenUnused() {
    if (!IsLoaded() || GetWriterCounter() != 0)
        return;
    std::fill(std::begin(m_entries), std::end(m_entries), nullptr);
    m_library.Close();
}

void* LogLibrary::Initialize(const char* programName, const LogRecord& record) const {
    const auto call = As<void* (*)(const char*, const LogRecord*)>(kInitialize);
    return call != nullptr ? call(programName, &record) : nullptr;
}

std::int32_t LogLibrary::Finalize(void* handle) const {
    const auto call = As<std::int32_t (*)(void*)>(kFinalize);
    return call != nullptr ? call(handle) : Missing();
}

std::int32_t LogLibrary::WriteMessage(void* handle, std::int32_t level, const char* text) const {
    const auto call = As<std::int32_t (*)(void*, std::int32_t, const char*)>(kWriteMessage);
    return call != nullptr ? call(handle, level, text) : Missing();
}

std::int32_t LogLibrary::Flush(void* handle) const {
    const auto call = As<std::int32_t (*)(void*)>(kFlush);
    return call != nullptr ? call(handle) : Missing();
}

std::int32_t LogLibrary::GetWriterCounter() const {
    const auto call = As<std::int32_t (*)()>(kGetWriterCounter);
    return call != nullptr ? call() : Missing();
}
