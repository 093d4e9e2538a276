#pragma once

#include <cstdint>
#include <map>
#include <string>

namespace stagehost {

class UserDialogs;

/// Which of the two remote links the host offers. A module that gets both takes the newer one for its scripts.
enum class Link { Both, Newer, Older, None };

/// The colours that the host offers to windows of the module.
enum class Theme { None, Dark, Light };

/// Names of themes in show files and for people.
struct ThemeName {
    const char* name;
    Theme theme;
};

inline constexpr ThemeName kThemeNames[] = {{"none", Theme::None}, {"dark", Theme::Dark}, {"light", Theme::Light}};

/// The log that the host offers to the module.
struct LogSettings {
    std::string path; ///< empty: the host has no log
    std::uint32_t writerId = 1;
    std::uint32_t levelBits = 0xF0; ///< see IManagerRuntimeInfo::GetLogSettings
    std::uint32_t option = 0;
};

/// What the host tells the module of itself. All texts are Latin-1.
struct HostSettings {
    std::string appName = "stagehost";            ///< at most 27 characters count
    std::string version = "6.7.2";                ///< at most 27 characters count
    std::uint32_t userMode = 2;                   ///< at first
    Theme theme = Theme::None;                    ///< at first
    std::map<std::uint32_t, std::string> folders; ///< by KXPFolder
    Link link = Link::Both;
    LogSettings log;
    std::uintptr_t mainWindow = 0;  ///< parent of the dialogs; 0 for none
    UserDialogs* dialogs = nullptr; ///< what the user is asked; must outlive the host; null for a host without windows
};

} // namespace stagehost
