#pragma once

#include "IEndingRoom.h"
#include "IThreadTimerHandler.h"
#include "ModuleShared.h"

/// The seat of one device at the module's tick.   [all: host main]
class TickSeat final : public IEndingRoom {
public:
    /// @param handler borrowed; ticked from Take to End.
    explicit TickSeat(IThreadTimerHandler& handler)
        : m_handler(handler) {}

    void Take() { ModuleShared::Acquire().tickTimer.AddHandler(&m_handler); }

    // IEndingRoom
    /// Waits for a tick that is inside the device, but for a moment only.
    void End() override {
        if (ModuleShared* shared = ModuleShared::Get())
            shared->tickTimer.RemoveHandler(&m_handler);
    }

private:
    IThreadTimerHandler& m_handler;
};
