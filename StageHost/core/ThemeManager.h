#pragma once

#include <atomic>

#include "HostFace.h"
#include "HostSettings.h"
#include "IHostServices.h"

namespace stagehost {

/// The colours in which the host draws itself. A host without a theme does not offer this face.
class ThemeManager final : public HostFace<IThemeManager> {
public:
    ThemeManager(FaceTable& faces, Theme theme);

    /// Takes another theme.   [host main]
    void SetTheme(Theme theme);
    /// A colour that the theme does not have is that of the text.
    std::uint32_t GetColor(std::uint32_t id) override;

private:
    std::atomic<Theme> m_theme; ///< written by the host's main thread, as is the next
    std::atomic<bool> m_isOffered{false};
};

} // namespace stagehost
