#pragma once

#include <mutex>

#include "IKXPDevice.h"
#include "MainWait.h"

namespace stagehost {

/// The way for the host's threads into a device that the main thread may give up at any time.
class DeviceDoor {
public:
    explicit DeviceDoor(IKXPDevice* device)
        : device_(device) {}
    DeviceDoor(const DeviceDoor&) = delete;
    DeviceDoor& operator=(const DeviceDoor&) = delete;

    /// Runs a call into the device unless the door is closed. @return whether it ran.   [any host thread]
    template <typename Call>
    bool Enter(Call call) {
        {
            const std::lock_guard<std::mutex> hold(lock_);
            if (closed_)
                return false;
            ++inside_;
        }
        call(*device_);
        Leave();
        return true;
    }

    /// Lets nobody in any more; who is inside goes on.   [host main]
    void Close() {
        const std::lock_guard<std::mutex> hold(lock_);
        closed_ = true;
    }

    /// Whether nobody is let in any more.   [any]
    bool IsClosed() const {
        const std::lock_guard<std::mutex> hold(lock_);
        return closed_;
    }

    /// Whether nobody is inside.   [any]
    bool IsEmpty() const {
        const std::lock_guard<std::mutex> hold(lock_);
        return inside_ == 0;
    }

private:
    /// Wakes the main thread if it may be waiting for the door.
    void Leave() {
        {
            const std::lock_guard<std::mutex> hold(lock_);
            --inside_;
            if (!closed_)
                return;
        }
        MainWait::Wake();
    }

    IKXPDevice* const device_; ///< not used any more once the door is closed and nobody is inside
    mutable std::mutex lock_;  ///< guards the fields below
    int inside_ = 0;
    bool closed_ = false;
};

} // namespace stagehost
