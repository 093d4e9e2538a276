#include "MTimerailManager.h"

#include <array>

namespace {

using TrackOperation = void (MTimerailManager::*)(std::int32_t);

// The command number is the index.
constexpr std::array<TrackOperation, 5> kTrackOperations = {
    &MTimerailManager::TrackStop,    &MTimerailManager::TrackRun, &MTimerailManager::TrackStart,
    &MTimerailManager::TrackSuspend, &MTimerailManager::TrackEnd,
};

} // namespace

void MTimerailManager::TrackStop(std::int32_t /*argument*/) {
    m_tracking = false;
    m_suspended = false;
    m_state = 0;
}

void MTimerailManager::TrackRun(std::int32_t /*argument*/) {
    m_tracking = true;
    m_state = 1;
}

void MTimerailManager::TrackStart(std::int32_t /*argument*/) {
    m_tracking = true;
    m_suspended = false;
    m_state = 2;
}

void MTimerailManager::TrackSuspend(std::int32_t /*argument*/) {
    m_tracking = false;
    m_suspended = true;
    m_state = 0;
}

void MTimerailManager::TrackEnd(std::int32_t /*argument*/) {
    m_tracking = false;
    m_suspended = false;
    m_state = 0;
}

void MTimerailManager::Reset() {
    m_state = 0;
    m_lastArgument = 0;
    m_tracking = false;
    m_suspended = false;
}

std::int32_t MTimerailManager::ChangeTrackState(std::int32_t command, std::int32_t argument) {
    const std::int32_t before = m_state;
    m_lastArgument = argument;
    const auto index = static_cast<std::size_t>(static_cast<std::uint32_t>(command));
    if (index < kTrackOperations.size())
        (this->*kTrackOperations[index])(argument);
    return before;
}
