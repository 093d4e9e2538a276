#include "ActionObjects.h"

#include "HostCodes.h"

namespace stagehost {

Cue::Cue(CueSpec spec, ChangeFeed& feed, ActionPlayer player)
    : ShowObject(ObjectKind::Cue, spec.name, spec.conduct)
    , m_action(std::move(spec.action))
    , m_feed(feed)
    , m_player(std::move(player)) {}

void Cue::Go() {
    {
        const std::lock_guard<std::mutex> hold(m_lock);
        m_feed.Tell(ObjectKind::Cue, Name(), "Count", std::to_string(++m_count));
    }
    m_player(m_action, [this](const std::string& what) { m_feed.Tell(ObjectKind::Cue, Name(), "Error", what); });
}

std::vector<ObjectProperty> Cue::Properties() const {
    const std::lock_guard<std::mutex> hold(m_lock);
    return {{"Count", std::to_string(m_count)}};
}

void Cue::Perform(const std::string& action, const Parameters& parameters, const Answer& answer) {
    if (action != "Go")
        return answer({kNoSuchAction});
    if (!parameters.List().empty())
        return answer({kBadParameters});
    Go();
    answer({KXP_OK, std::string()});
}

LoadableShow::LoadableShow(LoadableShowSpec spec, ChangeFeed& feed, ActionPlayer player)
    : ShowObject(ObjectKind::Show, spec.name, spec.conduct)
    , m_action(std::move(spec.action))
    , m_feed(feed)
    , m_player(std::move(player)) {}

KXPCode LoadableShow::Load(std::int32_t time) {
    if (time < 0)
        return kBadValue;
    {
        const std::lock_guard<std::mutex> hold(m_lock);
        m_loaded = true;
        m_time = time;
        m_feed.Tell(ObjectKind::Show, Name(), kLoadedProperty, std::to_string(time));
    }
    m_player(m_action, [this](const std::string& what) { m_feed.Tell(ObjectKind::Show, Name(), "Error", what); });
    return KXP_OK;
}

std::vector<ObjectProperty> LoadableShow::Properties() const {
    const std::lock_guard<std::mutex> hold(m_lock);
    return {{kLoadedProperty, m_loaded ? "true" : "false"}, {"Time", std::to_string(m_time)}};
}

void LoadableShow::Perform(const std::string& action, const Parameters& parameters, const Answer& answer) {
    if (action != "Load")
        return answer({kNoSuchAction});
    const auto time = parameters.WholeOr("Time", 0);
    if (!parameters.AreAmong({"Time"}) || !time)
        return answer({kBadParameters});
    const KXPCode code = Load(*time);
    answer({code, code == KXP_OK ? std::optional(std::string()) : std::nullopt});
}

} // namespace stagehost
