#pragma once

#include <cstdint>
#include <map>

/// One way to colour the dialogs.
struct Look {
    const char* name;
    bool hasDarkPalette;
    std::map<std::uint32_t, std::uint32_t> theme; ///< the host's, 0x00BBGGRR; empty for none
};

inline const Look kLooks[] = {
    {"light", false, {}},
    {"dark", true, {}},
    {"theme", false, {{0, 0x00303030}, {1, 0x00F0F0F0}, {6, 0x00804010}, {7, 0x00FFFFFF}, {8, 0x00484848}}},
    {"theme_dark", true, {{0, 0x00303030}, {1, 0x00F0F0F0}, {6, 0x00804010}, {7, 0x00FFFFFF}, {8, 0x00484848}}},
    {"theme_light", false, {{0, 0x00F4F4F4}, {1, 0x00202020}, {6, 0x00804010}, {7, 0x00FFFFFF}, {8, 0x00FFFFFF}}},
};
