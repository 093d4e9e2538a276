#pragma once

#include <atomic>

#include "HostFace.h"
#include "HostSettings.h"
#include "IManagerRuntimeInfo.h"

namespace stagehost {

/// What the host tells of itself: its name and version, its log, its main window, its user mode.
class RuntimeInfo final : public HostFace<IManagerRuntimeInfo> {
public:
    /// @param settings must outlive this object and does not change; its user mode is the first one.
    RuntimeInfo(FaceTable& faces, const HostSettings& settings);

    /// A null place is left out; the host has a log when its settings name a file.
    std::uint32_t GetLogSettings(std::uint32_t* enabled, std::uint32_t* writerId, char* path, std::uint32_t* levelBits,
                                 std::uint32_t* option) override;
    /// 0 for a host that shows no windows.
    KXPWindow GetMainWindow() override;
    /// @return 0 for a null record and for one of another size than 252.
    std::uint32_t GetRuntimeInfo(KXPRuntimeInfo* out) override;
    std::uint32_t GetUserMode() override;

    /// The host goes into another user mode.   [host main]
    void SetUserMode(std::uint32_t userMode) { m_userMode = userMode; }

private:
    const HostSettings& m_settings;
    std::atomic<std::uint32_t> m_userMode; ///< written by the host's main thread, read by any
};

} // namespace stagehost
