#include "ChannelBank.h"

#include <QTimer>

namespace stagehost {

namespace {

constexpr std::chrono::milliseconds kRampStep(40);

bool IsWithin(const ChannelPlan& plan, std::int32_t value) {
    return value >= plan.minimum && value <= plan.maximum;
}

} // namespace

ChannelBank::ChannelBank(ChannelsPlan plan, ChannelNews& news)
    : m_plan(std::move(plan))
    , m_news(news) {
    for (std::size_t type = 0; type < kChannelTypeCount; ++type) {
        for (std::size_t index = 0; index < m_plan[type].size(); ++index) {
            const ChannelPlan& channel = m_plan[type][index];
            m_channels[type].push_back({static_cast<ChannelType>(type), index, &channel, channel.value, {}, {}});
        }
    }
    m_thread.Run([this] {
        m_steps = std::make_unique<QTimer>();
        m_steps->setInterval(kRampStep);
        QObject::connect(m_steps.get(), &QTimer::timeout, m_steps.get(), [this] { Step(); });
    });
}

ChannelBank::~ChannelBank() {
    m_thread.Run([this] { m_steps.reset(); });
}

std::int32_t ChannelBank::Value(ChannelType type, std::size_t index) const {
    const std::lock_guard<std::mutex> hold(m_lock);
    return m_channels[static_cast<std::size_t>(type)][index].value;
}

bool ChannelBank::SetOutput(ChannelType type, std::size_t index, std::int32_t value) {
    const std::lock_guard<std::mutex> hold(m_lock);
    Channel& channel = At(type, index);
    if (IsDigital(type))
        value = value != 0 ? 1 : 0;
    if (!IsOutput(type) || !IsWithin(*channel.plan, value))
        return false;
    channel.pending = value;
    return true;
}

void ChannelBank::Flush() {
    const std::lock_guard<std::mutex> hold(m_lock);
    for (auto& channels : m_channels) {
        for (auto& channel : channels) {
            if (!channel.pending)
                continue;
            channel.ramp.reset();
            ChangeLocked(channel, *channel.pending);
            channel.pending.reset();
        }
    }
}

bool ChannelBank::SetByHand(ChannelType type, std::size_t index, std::int32_t value) {
    {
        const std::lock_guard<std::mutex> hold(m_lock);
        Channel& channel = At(type, index);
        if (!IsWithin(*channel.plan, value))
            return false;
        channel.ramp.reset();
        ChangeLocked(channel, value);
    }
    m_thread.Run([] {}); // behind the news of the change
    return true;
}

bool ChannelBank::Ramp(ChannelType type, std::size_t index, std::int32_t to, std::chrono::milliseconds duration) {
    const std::lock_guard<std::mutex> hold(m_lock);
    Channel& channel = At(type, index);
    if (!IsWithin(*channel.plan, to))
        return false;
    channel.ramp = ChannelRamp{channel.value, to, RampClock::now(), duration};
    m_thread.Post([this] {
        Step();
        m_steps->start();
    });
    return true;
}

void ChannelBank::ChangeLocked(Channel& channel, std::int32_t value) {
    if (channel.value == value)
        return;
    channel.value = value;
    m_thread.Post(
        [this, type = channel.type, index = channel.index, value] { m_news.ValueChanged(type, index, value); });
}

void ChannelBank::Step() {
    const auto now = RampClock::now();
    bool isMoving = false;
    const std::lock_guard<std::mutex> hold(m_lock);
    for (auto& channels : m_channels) {
        for (auto& channel : channels) {
            if (!channel.ramp)
                continue;
            ChangeLocked(channel, channel.ramp->ValueAt(now));
            if (channel.ramp->IsOver(now))
                channel.ramp.reset();
            isMoving = isMoving || channel.ramp.has_value();
        }
    }
    if (!isMoving)
        m_steps->stop();
}

} // namespace stagehost
