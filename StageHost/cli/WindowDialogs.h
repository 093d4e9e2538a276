#pragma once

#include "UserDialogs.h"

namespace stagehost {

/// The user's dialogs in windows. Each is closed as cancelled when the window in front of which it stands goes.   [host
/// main]
class WindowDialogs final : public UserDialogs {
public:
    std::optional<std::size_t> ChooseName(const std::string& title, const std::vector<std::string>& names, int chosen,
                                          KXPWindow parent) override;
    std::optional<CalendarDay> ChooseDay(const CalendarDay& chosen, KXPWindow parent) override;
};

} // namespace stagehost
