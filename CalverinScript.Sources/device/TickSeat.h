#pragma once

#include "IEndingRoom.h"
#include "IThreadTimerHandler.h"
#include "ModuleShared.h"
#include "RunWithinMemory.h"

/// The seat of one device at the module's tick.   [all: host main]
class TickSeat final : public IEndingRoom {
public:
    /// @param handler borrowed; ticked from Take to End.
    explicit TickSeat(IThreadTimerHandler& handler)
        : m_handler(handler) {}

    void Take() {
        m_isTaken = RunWithinMemory([this] { ModuleShared::Acquire().tickTimer.AddHandler(&m_handler); });
    }
    /// Whether there was memory for it.
    bool IsTaken() const { return m_isTaken; }

    // IEndingRoom
    /// Waits for a tick that is inside the device, but for a moment only.
    void End() override {
        if (ModuleShared* shared = ModuleShared::Get())
            shared->tickTimer.RemoveHandler(&m_handler);
    }

private:
    IThreadTimerHandler& m_handler;
    bool m_isTaken = false;
};
