#pragma once

#include <memory>
#include <mutex>
#include <optional>

#include "ChannelPlan.h"
#include "ChannelRamp.h"
#include "EventThread.h"

class QTimer;

namespace stagehost {

/// Hears of channels. Called on the bank's thread, without any lock of the bank's.
class ChannelNews {
public:
    virtual void ValueChanged(ChannelType type, std::size_t index, std::int32_t value) = 0;

protected:
    ~ChannelNews() = default;
};

/// The channels of one resource.
///
/// - each change is told once, and the changes of all channels in the order in which they happened;
/// - what a device sets stands from Flush on, and all channels change together there;
/// - a ramp takes a step each 40 ms and ends when something else sets its channel.
class ChannelBank {
public:
    /// @param news must outlive the bank.
    ChannelBank(ChannelsPlan plan, ChannelNews& news);
    ~ChannelBank();
    ChannelBank(const ChannelBank&) = delete;
    ChannelBank& operator=(const ChannelBank&) = delete;

    const ChannelsPlan& Plan() const { return m_plan; }

    /// The channel's value. The channel is one of the plan, here and below.   [any]
    std::int32_t Value(ChannelType type, std::size_t index) const;

    /// What a device sets: for outputs only, a digital one is on for all but 0. @return false beyond the limits. [any]
    bool SetOutput(ChannelType type, std::size_t index, std::int32_t value);
    void Flush();

    /// What the user sets, at once; whoever listens has heard of it. @return false beyond the limits.   [any]
    bool SetByHand(ChannelType type, std::size_t index, std::int32_t value);

    /// Moves a channel to a value in that time. @return false beyond the limits.   [any]
    bool Ramp(ChannelType type, std::size_t index, std::int32_t to, std::chrono::milliseconds duration);

private:
    struct Channel {
        ChannelType type;
        std::size_t index;
        const ChannelPlan* plan;
        std::int32_t value;
        std::optional<std::int32_t> pending; ///< set by a device, not flushed yet
        std::optional<ChannelRamp> ramp;
    };

    Channel& At(ChannelType type, std::size_t index) { return m_channels[static_cast<std::size_t>(type)][index]; }
    void ChangeLocked(Channel& channel, std::int32_t value);
    void Step();

    const ChannelsPlan m_plan;
    ChannelNews& m_news;
    mutable std::mutex m_lock; ///< guards m_channels
    std::array<std::vector<Channel>, kChannelTypeCount> m_channels;
    std::unique_ptr<QTimer> m_steps; ///< lives on the thread; runs while there are ramps
    EventThread m_thread;
};

} // namespace stagehost
