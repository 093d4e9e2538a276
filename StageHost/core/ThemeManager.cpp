#include "ThemeManager.h"

#include <algorithm>
#include <iterator>

namespace stagehost {

namespace {

/// One colour in each theme, as 0x00BBGGRR.
struct ColorRow {
    std::uint32_t id;
    std::uint32_t dark;
    std::uint32_t light;
};

constexpr ColorRow kColors[] = {
    {1, 0x00F0F0F0, 0x00202020}, // text
    {0, 0x00303030, 0x00F4F4F4}, // background
    {6, 0x00804010, 0x00804010}, // selected
    {7, 0x00FFFFFF, 0x00FFFFFF}, // selected text
    {8, 0x00484848, 0x00FFFFFF}, // field
};

} // namespace

ThemeManager::ThemeManager(FaceTable& faces, Theme theme)
    : HostFace(faces)
    , m_theme(theme) {
    SetTheme(theme);
    OfferAsWhile(m_isOffered, "IThemeManager");
}

void ThemeManager::SetTheme(Theme theme) {
    m_theme = theme;
    m_isOffered = theme != Theme::None;
}

std::uint32_t ThemeManager::GetColor(std::uint32_t id) {
    const auto* row =
        std::find_if(std::begin(kColors), std::end(kColors), [id](const auto& color) { return color.id == id; });
    if (row == std::end(kColors))
        row = std::begin(kColors);
    return m_theme == Theme::Light ? row->light : row->dark;
}

} // namespace stagehost
