#pragma once

#include <functional>
#include <mutex>

#include "ChangeFeed.h"
#include "ShowObject.h"

namespace stagehost {

/// Runs an action of the show; failures go to the second argument, at once or later, on any host thread.
using ActionPlayer = std::function<void(const ActionSpec&, std::function<void(const std::string&)>)>;

/// A cue: something that the show does when somebody says "Go". It counts how often that was.
class Cue final : public ShowObject {
public:
    /// @param feed must outlive the cue.
    Cue(CueSpec spec, ChangeFeed& feed, ActionPlayer player);

    /// Runs the cue's action.
    void Go();

    /// "Count", which cannot be set.
    std::vector<ObjectProperty> Properties() const override;
    /// "Go".
    void Perform(const std::string& action, const Parameters& parameters, const Answer& answer) override;

private:
    const ActionSpec m_action;
    ChangeFeed& m_feed;
    const ActionPlayer m_player;
    mutable std::mutex m_lock; ///< guards m_count
    std::int32_t m_count = 0;
};

/// Property of a show that scripts have loaded.
inline constexpr const char* kLoadedProperty = "Loaded";

/// A show that can be loaded beside the one that plays. Loading it runs its action and notes the time asked for.
class LoadableShow final : public ShowObject {
public:
    /// @param feed must outlive the show.
    LoadableShow(LoadableShowSpec spec, ChangeFeed& feed, ActionPlayer player);

    /// @param time ms, not negative. @return 0, 68.
    KXPCode Load(std::int32_t time);

    /// "Loaded" ("true" or "false") and "Time" in ms, which cannot be set.
    std::vector<ObjectProperty> Properties() const override;
    /// "Load" (Time).
    void Perform(const std::string& action, const Parameters& parameters, const Answer& answer) override;

private:
    const ActionSpec m_action;
    ChangeFeed& m_feed;
    const ActionPlayer m_player;
    mutable std::mutex m_lock; ///< guards the fields below
    bool m_loaded = false;
    std::int32_t m_time = 0;
};

} // namespace stagehost
