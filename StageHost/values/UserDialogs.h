#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "KXPTypes.h"

namespace stagehost {

/// A day of the calendar.
struct CalendarDay {
    std::int32_t year = 1900;
    std::int32_t month = 1; ///< 1 to 12
    std::int32_t day = 1;
};

/// What a host with a window asks its user. All texts are Latin-1.   [all: host main]
class UserDialogs {
public:
    /// Has the user choose one of several names.
    /// @param chosen the place of the one that is chosen at first, below 0 for none. @param parent the window in front,
    /// 0 for none.
    /// @return the place of the chosen one; nothing when cancelled.
    virtual std::optional<std::size_t> ChooseName(const std::string& title, const std::vector<std::string>& names,
                                                  int chosen, KXPWindow parent) = 0;
    /// Has the user choose a day. @return nothing when cancelled.
    virtual std::optional<CalendarDay> ChooseDay(const CalendarDay& chosen, KXPWindow parent) = 0;

protected:
    ~UserDialogs() = default;
};

} // namespace stagehost
