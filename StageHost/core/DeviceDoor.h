#pragma once

#include <mutex>

#include "IKXPDevice.h"
#include "MainWait.h"

namespace stagehost {

/// The way for the host's threads into a device that the main thread may give up at any time.
class DeviceDoor {
public:
    explicit DeviceDoor(IKXPDevice* device)
        : m_device(device) {}
    DeviceDoor(const DeviceDoor&) = delete;
    DeviceDoor& operator=(const DeviceDoor&) = delete;

    /// Runs a call into the device unless the door is closed. @return whether it ran.   [any host thread]
    template <typename Call>
    bool Enter(Call call) {
        {
            const std::lock_guard<std::mutex> hold(m_lock);
            if (m_closed)
                return false;
            ++m_inside;
        }
        call(*m_device);
        Leave();
        return true;
    }

    /// Lets nobody in any more; who is inside goes on.   [host main]
    void Close() {
        const std::lock_guard<std::mutex> hold(m_lock);
        m_closed = true;
    }

    /// Whether nobody is let in any more.   [any]
    bool IsClosed() const {
        const std::lock_guard<std::mutex> hold(m_lock);
        return m_closed;
    }

    /// Whether nobody is inside.   [any]
    bool IsEmpty() const {
        const std::lock_guard<std::mutex> hold(m_lock);
        return m_inside == 0;
    }

private:
    /// Wakes the main thread if it may be waiting for the door.
    void Leave() {
        {
            const std::lock_guard<std::mutex> hold(m_lock);
            --m_inside;
            if (!m_closed)
                return;
        }
        MainWait::Wake();
    }

    IKXPDevice* const m_device; ///< not used any more once the door is closed and nobody is inside
    mutable std::mutex m_lock;  ///< guards the fields below
    int m_inside = 0;
    bool m_closed = false;
};

} // namespace stagehost
