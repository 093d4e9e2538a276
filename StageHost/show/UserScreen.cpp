#include "UserScreen.h"

#include "HostCodes.h"
#include "WholeNumber.h"

namespace stagehost {

UserScreen::UserScreen(UserScreenSpec spec, ChangeFeed& feed)
    : ShowObject(ObjectKind::UserScreen, spec.name, spec.conduct)
    , pages_(std::move(spec.pages))
    , feed_(feed) {}

KXPCode UserScreen::Open(std::int32_t position, std::int32_t left, std::int32_t top) {
    if (position != 0 && position != 1)
        return kBadValue;
    const std::lock_guard<std::mutex> hold(lock_);
    position_ = position;
    left_ = left;
    top_ = top;
    if (!open_)
        feed_.Tell(ObjectKind::UserScreen, Name(), "Open", "true");
    open_ = true;
    return KXP_OK;
}

KXPCode UserScreen::Close() {
    const std::lock_guard<std::mutex> hold(lock_);
    if (!open_)
        return kNotRunning;
    open_ = false;
    feed_.Tell(ObjectKind::UserScreen, Name(), "Open", "false");
    return KXP_OK;
}

KXPCode UserScreen::GotoPage(std::int32_t page) {
    const std::lock_guard<std::mutex> hold(lock_);
    if (page < 1 || static_cast<std::size_t>(page) > pages_.size())
        return kNoSuchPlace;
    if (page != page_)
        feed_.Tell(ObjectKind::UserScreen, Name(), "Page", std::to_string(page));
    page_ = page;
    return KXP_OK;
}

std::vector<ObjectProperty> UserScreen::Properties() const {
    const std::lock_guard<std::mutex> hold(lock_);
    return {{"Open", open_ ? "true" : "false"},
            {"Page", std::to_string(page_)},
            {"PageName", pages_[static_cast<std::size_t>(page_) - 1]},
            {"Pages", std::to_string(pages_.size())},
            {"Position", std::to_string(position_)},
            {"Left", std::to_string(left_)},
            {"Top", std::to_string(top_)}};
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
