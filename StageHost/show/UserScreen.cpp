#include "UserScreen.h"

#include "HostCodes.h"
#include "WholeNumber.h"

namespace stagehost {

UserScreen::UserScreen(UserScreenSpec spec, ChangeFeed& feed)
    : ShowObject(ObjectKind::UserScreen, spec.name, spec.conduct)
    , m_pages(std::move(spec.pages))
    , m_feed(feed) {}

KXPCode UserScreen::Open(std::int32_t position, std::int32_t left, std::int32_t top) {
    if (position != 0 && position != 1)
        return kBadValue;
    const std::lock_guard<std::mutex> hold(m_lock);
    m_position = position;
    m_left = left;
    m_top = top;
    if (!m_open)
        m_feed.Tell(ObjectKind::UserScreen, Name(), "Open", "true");
    m_open = true;
    return KXP_OK;
}

KXPCode UserScreen::Close() {
    const std::lock_guard<std::mutex> hold(m_lock);
    if (!m_open)
        return kNotRunning;
    m_open = false;
    m_feed.Tell(ObjectKind::UserScreen, Name(), "Open", "false");
    return KXP_OK;
}

KXPCode UserScreen::GotoPage(std::int32_t page) {
    const std::lock_guard<std::mutex> hold(m_lock);
    if (page < 1 || static_cast<std::size_t>(page) > m_pages.size())
        return kNoSuchPlace;
    if (page != m_page)
        m_feed.Tell(ObjectKind::UserScreen, Name(), "Page", std::to_string(page));
    m_page = page;
    return KXP_OK;
}

std::vector<ObjectProperty> UserScreen::Properties() const {
    const std::lock_guard<std::mutex> hold(m_lock);
    return {{"Open", m_open ? "true" : "false"},
            {"Page", std::to_string(m_page)},
            {"PageName", m_pages[static_cast<std::size_t>(m_page) - 1]},
            {"Pages", std::to_string(m_pages.size())},
            {"Position", std::to_string(m_position)},
            {"Left", std::to_string(m_left)},
            {"Top", std::to_string(m_top)}};
}

KXPCode UserScreen::SetProperty(const std::string& property, const std::string& value) {
    if (property != "Page")
        return ShowObject::SetProperty(property, value);
    const auto page = ParseWholeNumber(value);
    return page ? GotoPage(*page) : KXPCode{kBadValue};
}

void UserScreen::Perform(const std::string& action, const Parameters& parameters, const Answer& answer) {
    const KXPCode code = Run(action, parameters);
    answer({code, code == KXP_OK ? std::optional(std::string()) : std::nullopt});
}

KXPCode UserScreen::Run(const std::string& action, const Parameters& parameters) {
    if (action == "Close")
        return parameters.List().empty() ? Close() : KXPCode{kBadParameters};
    if (action == "GotoPage") {
        const auto page = parameters.WholeOr("Page", 0);
        return page && parameters.AreAmong({"Page"}) ? GotoPage(*page) : KXPCode{kBadParameters};
    }
    if (action != "Open")
        return kNoSuchAction;
    const auto position = parameters.WholeOr("Position", 0);
    const auto left = parameters.WholeOr("Left", 0);
    const auto top = parameters.WholeOr("Top", 0);
    const bool fit = parameters.AreAmong({"Position", "Left", "Top"}) && position && left && top;
    return fit ? Open(*position, *left, *top) : KXPCode{kBadParameters};
}

} // namespace stagehost
