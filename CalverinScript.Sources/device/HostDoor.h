#pragma once

#include <atomic>

#include "IEndingRoom.h"
#include "InterlockedCounter.h"
#include "VisitGate.h"

/// The door through which the host's threads and the tick come into a device. Once it is closed the device
/// refuses every operation but its release; those who are inside then may still be waiting there, and the device
/// has to outlive them.
class HostDoor final : public IEndingRoom {
public:
    /// @param values what scripts enter around each use of a value. A script is turned away there while the host, which is
    /// just replacing the values, waits for it in here.
    explicit HostDoor(VisitGate& values)
        : m_values(values) {}
    HostDoor(const HostDoor&) = delete;
    HostDoor& operator=(const HostDoor&) = delete;

    /// One call that may block inside the device.   [any host thread, tick]
    class Visit {
    public:
        explicit Visit(HostDoor& door)
            : m_inside(door.m_inside)
            , m_standstill(door.m_values) {
            m_inside.Increment();
        }
        ~Visit() { m_inside.Decrement(); }
        Visit(const Visit&) = delete;
        Visit& operator=(const Visit&) = delete;

    private:
        InterlockedCounter& m_inside;
        const VisitGate::Standstill m_standstill;
    };

    /// @return false when it was closed already.   [host main]
    bool Close() { return !m_closed.exchange(true); }
    bool IsClosed() const { return m_closed; }
    /// @return true for the one release that ends the device's memory: a host may release it once more from what it is
    /// told while that one runs.   [host main]
    bool Leave() { return !m_left.exchange(true); }

    // IEndingRoom
    bool HasEnded() const override { return m_inside.Read() == 0; }

private:
    VisitGate& m_values;
    std::atomic<bool> m_closed{false}; ///< written by the host's main thread, read by all
    std::atomic<bool> m_left{false};
    InterlockedCounter m_inside;
};
