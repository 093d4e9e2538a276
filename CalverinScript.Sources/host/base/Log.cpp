#include "Log.h"

#include <algorithm>
#include <atomic>
#include <cctype>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <mutex>
#include <shared_mutex>

#include "ConfigFile.h"
#include "HostText.h"
#include "IManagerRuntimeInfo.h"
#include "LogLibrary.h"
#include "ModuleFile.h"
#include "RunWithinMemory.h"

namespace {

constexpr const char* kSection = "LOGSE";
constexpr std::uint32_t kSilenceBit = 1;
constexpr std::uint32_t kCommandActivityBits = 0x10;
constexpr int kOutputOff = 0;
constexpr int kOutputOwnFile = 2;

/// Level bits of the texts of LogFileLogLevel.
struct LevelName {
    const char* text;
    std::uint32_t bits;
};
constexpr LevelName kLevelNames[] = {
    {"normal", 0}, {"cmdactivity", kCommandActivityBits}, {"lightdebug", 0x80}, {"strongdebug", 0xF0}};

/// Level bits from which on the levels 0 to 3 are wanted.
constexpr std::uint32_t kLevelThresholds[] = {0, 0x10, 0x80, 0xF0};

struct LogSwitches {
    bool logCommands = false;
    int output = 1;
    std::string level;
};

/// Where and how to log, decided by the configuration file and the host.
struct LogTarget {
    bool on = false;
    std::uint32_t levelBits = 0;
    LogRecord record;
};

/// The open log. `library` and `handle` are changed under `lock` held alone and used with it shared; the atomic fields
/// are what callers test before they format anything.
struct LogState {
    std::shared_mutex lock;
    LogLibrary library;
    std::atomic<void*> handle{nullptr};
    std::atomic<bool> on{false};
    std::atomic<bool> logCommands{false};
    std::atomic<std::uint32_t> levelBits{0};
};

LogState& State() {
    static LogState state;
    return state;
}

LogSwitches ReadSwitches(const void* moduleHandle) {
    const std::string path = ConfigPath(moduleHandle, "cfg");
    LogSwitches switches;
    switches.logCommands = ReadConfigInt(path, kSection, "LogFileLogCommands", 0) != 0;
    switches.output = ReadConfigInt(path, kSection, "OutputLogFile", 1);
    switches.level = ReadConfigText(path, kSection, "LogFileLogLevel", "");
    return switches;
}

std::uint32_t BitsOfLevelText(const LogSwitches& switches) {
    if (switches.level.empty())
        return switches.logCommands ? kCommandActivityBits : 0;
    std::string lower = switches.level;
    std::transform(lower.begin(), lower.end(), lower.begin(), [](unsigned char c) { return std::tolower(c); });
    const auto* found = std::find_if(std::begin(kLevelNames), std::end(kLevelNames),
                                     [&](const LevelName& name) { return lower == name.text; });
    return found != std::end(kLevelNames) ? found->bits : 0;
}

void CopyPath(LogRecord& record, const std::string& path) {
    const std::size_t length = std::min(path.size(), sizeof(record.path) - 1);
    std::memcpy(record.path, path.data(), length);
    record.path[length] = '\0';
}

/// The module's own log file with writer 0.
void UseOwnFile(LogTarget& target, const void* moduleHandle, bool on) {
    target.on = on;
    target.record.writerId = on ? 0u : static_cast<std::uint32_t>(-1);
    CopyPath(target.record, ConfigPath(moduleHandle, "log"));
}

LogTarget DecideTarget(const LogSwitches& switches, const void* moduleHandle, IMInterface* host) {
    LogTarget target;
    auto* info = QueryFace<IManagerRuntimeInfo>(host, "IManagerRuntimeInfo");
    if (info != nullptr) {
        std::uint32_t enabled = 0;
        std::uint32_t writerId = 0;
        LogRecord fromHost;
        const bool given = info->GetLogSettings(&enabled, &writerId, fromHost.path, &fromHost.option1,
                                                &fromHost.option2) < 0xFFFFFFFFu;
        if (!given || switches.output == kOutputOwnFile) {
            UseOwnFile(target, moduleHandle, switches.output == kOutputOwnFile);
        } else {
            fromHost.path[sizeof(fromHost.path) - 1] = '\0';
            target.on = enabled != 0;
            target.record = fromHost;
            target.record.writerId = writerId;
            CopyPath(target.record, ToFilePath(fromHost.path));
            target.levelBits = fromHost.option1;
        }
    }
    target.levelBits |= BitsOfLevelText(switches);
    const bool silenced = (target.levelBits & kSilenceBit) != 0 && switches.output != kOutputOwnFile;
    if (silenced || switches.output == kOutputOff)
        target.on = false;
    return target;
}

} // namespace

bool OpenLog(const void* moduleHandle, const char* programName, IMInterface* host) {
    if (moduleHandle == nullptr || host == nullptr)
        return false;
    CloseLog();
    const LogSwitches switches = ReadSwitches(moduleHandle);
    const LogTarget target = DecideTarget(switches, moduleHandle, host);
    if (!target.on)
        return false;
    LogState& state = State();
    const std::unique_lock<std::shared_mutex> alone(state.lock);
    if (!state.library.Load(ModuleFileOf(moduleHandle)))
        return false;
    void* handle = state.library.Initialize(programName, target.record);
    if (handle == nullptr) {
        state.library.UnloadWhenUnused();
        return false;
    }
    state.handle = handle;
    state.levelBits = target.levelBits;
    state.logCommands = switches.logCommands;
    state.on = true;
    return true;
}

void CloseLog() {
    LogState& state = State();
    if (!state.on.exchange(false))
        return;
    const std::unique_lock<std::shared_mutex> alone(state.lock);
    state.library.Finalize(state.handle.exchange(nullptr));
    state.library.UnloadWhenUnused();
}

bool IsLogOn(bool commandsOnly) {
    const LogState& state = State();
    return state.on.load(std::memory_order_relaxed) &&
           (!commandsOnly || state.logCommands.load(std::memory_order_relaxed));
}

bool IsLevelOn(int level) {
    if (!IsLogOn(false) || level < 0 || level >= static_cast<int>(std::size(kLevelThresholds)))
        return false;
    return State().levelBits.load(std::memory_order_relaxed) >= kLevelThresholds[level];
}

void* LogHandle() {
    return State().handle.load();
}

void LogWantOfMemory(const char* device, const char* work) {
    constexpr int kTroubleLevel = 5;
    RunWithinMemory([=] {
        if (IsLogOn(false))
            WriteLog(LogHandle(), kTroubleLevel, "CalverinScript_ [%s] Not enough memory for %s.", device, work);
    });
}

std::int32_t WriteLog(void* handle, int level, const char* format, ...) {
    LogState& state = State();
    if (handle == nullptr || format == nullptr)
        return LogLibrary::kAbsent;
    char line[kLogLineSize];
    va_list arguments;
    va_start(arguments, format);
    const int length = std::vsnprintf(line, sizeof(line), format, arguments);
    va_end(arguments);
    if (length < 0)
        return LogLibrary::kAbsent;
    const std::shared_lock<std::shared_mutex> shared(state.lock);
    if (handle != state.handle.load())
        return LogLibrary::kAbsent;
    return state.library.WriteMessage(handle, level, line);
}
