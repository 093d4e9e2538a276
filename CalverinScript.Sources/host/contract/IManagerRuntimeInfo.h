#pragma once

#include "IMInterface.h"

/// What GetRuntimeInfo fills: a host format of 252 bytes.
struct KXPRuntimeInfo {
    std::uint32_t size; ///< set to 252 by the caller
    char reserved[192]; ///< reserved for the module
    char appName[28];   ///< NUL-terminated short name of the running executable
    char version[28];   ///< NUL-terminated text of the form "6.7.2"
};

static_assert(sizeof(KXPRuntimeInfo) == 252, "the record is a host format of 252 bytes");

/// Length of the path buffer of GetLogSettings, in bytes with the NUL.
enum : std::uint32_t { KXP_LOG_PATH_SIZE = 1024 };

/// What the host tells of itself. Found on the host root as "IManagerRuntimeInfo".
class IManagerRuntimeInfo : public IMInterface {
public:
    /// The host's log.
    /// @param enabled   non-zero when the host wants a log.
    /// @param writerId  the host's writer.
    /// @param path      buffer of KXP_LOG_PATH_SIZE bytes for the log file's path.
    /// @param levelBits level bits: 1 silences, 0x10 command
    /// activity, 0x80 light debug, 0xF0 strong debug. Also handed to
    ///                  the logging library as its first writer option.
    /// @param option    handed to the logging library as its second writer option.
    /// @return below 0xFFFFFFFF when the host gave a log; 0xFFFFFFFF when it has none.   [host main]
    virtual std::uint32_t GetLogSettings(std::uint32_t* enabled, std::uint32_t* writerId, char* path,
                                         std::uint32_t* levelBits, std::uint32_t* option) = 0;

    /// The host's main window, parent of dialogs; 0 when it has none.   [host main]
    virtual KXPWindow GetMainWindow() = 0;

    /// Fills the record, whose size the caller has set. @return non-zero on success.   [host main]
    virtual std::uint32_t GetRuntimeInfo(KXPRuntimeInfo* out) = 0;

    /// The user mode that a control panel is told at Start.   [any]
    virtual std::uint32_t GetUserMode() = 0;

protected:
    ~IManagerRuntimeInfo() = default;
};
