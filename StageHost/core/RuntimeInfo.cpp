#include "RuntimeInfo.h"

#include <algorithm>

namespace stagehost {

namespace {

constexpr std::uint32_t kNoLog = 0xFFFFFFFFu;

/// Copies what fits and always ends with a NUL.
void CopyText(const std::string& text, char* out, std::size_t size) {
    const std::size_t length = std::min(text.size(), size - 1);
    std::fill(std::copy_n(text.data(), length, out), out + size, '\0');
}

void Store(std::uint32_t* out, std::uint32_t value) {
    if (out != nullptr)
        *out = value;
}

} // namespace

RuntimeInfo::RuntimeInfo(FaceTable& faces, const HostSettings& settings)
    : HostFace(faces)
    , m_settings(settings)
    , m_userMode(settings.userMode) {
    OfferAs("IManagerRuntimeInfo");
}

std::uint32_t RuntimeInfo::GetLogSettings(std::uint32_t* enabled, std::uint32_t* writerId, char* path,
                                          std::uint32_t* levelBits, std::uint32_t* option) {
    const LogSettings& log = m_settings.log;
    if (log.path.empty())
        return kNoLog;
    Store(enabled, 1);
    Store(writerId, log.writerId);
    Store(levelBits, log.levelBits);
    Store(option, log.option);
    if (path != nullptr)
        CopyText(log.path, path, KXP_LOG_PATH_SIZE);
    return KXP_OK;
}

KXPWindow RuntimeInfo::GetMainWindow() {
    return m_settings.mainWindow;
}

std::uint32_t RuntimeInfo::GetRuntimeInfo(KXPRuntimeInfo* out) {
    if (out == nullptr || out->size != sizeof(KXPRuntimeInfo))
        return 0;
    CopyText(m_settings.appName, out->appName, sizeof(out->appName));
    CopyText(m_settings.version, out->version, sizeof(out->version));
    return 1;
}

std::uint32_t RuntimeInfo::GetUserMode() {
    return m_userMode;
}

} // namespace stagehost
