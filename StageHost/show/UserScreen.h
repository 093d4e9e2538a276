#pragma once

#include <mutex>

#include "ChangeFeed.h"
#include "ShowObject.h"

namespace stagehost {

/// A user screen: open or not, at a place, on one of its pages. The page stays while the screen is closed.
class UserScreen final : public ShowObject {
public:
    /// @param feed must outlive the screen.
    UserScreen(UserScreenSpec spec, ChangeFeed& feed);

    /// Opens the screen or moves it. @param position 0 left and top are pixels of the desktop, 1 of the host's window.
    /// @return 0, 68 another position.
    KXPCode Open(std::int32_t position, std::int32_t left, std::int32_t top);
    /// @return 0, 74 it is not open.
    KXPCode Close();
    /// @param page from 1. @return 0, 69 no such page.
    KXPCode GotoPage(std::int32_t page);

    /// "Open", "Page" (the number, can be set), "PageName", "Pages", "Position", "Left", "Top".
    std::vector<ObjectProperty> Properties() const override;
    KXPCode SetProperty(const std::string& property, const std::string& value) override;
    /// "Open" (Position, Left, Top), "Close", "GotoPage" (Page).
    void Perform(const std::string& action, const Parameters& parameters, const Answer& answer) override;

private:
    KXPCode Run(const std::string& action, const Parameters& parameters);

    const std::vector<std::string> m_pages;
    ChangeFeed& m_feed;
    mutable std::mutex m_lock; ///< guards the fields below
    bool m_open = false;
    std::int32_t m_page = 1;
    std::int32_t m_position = 0;
    std::int32_t m_left = 0;
    std::int32_t m_top = 0;
};

} // namespace stagehost
