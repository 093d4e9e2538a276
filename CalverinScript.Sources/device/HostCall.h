#pragma once

#include "MCalverinScript_Device.h"

/// Counts a call of a host thread or of the tick that may block inside the device, so that Release does not pull the ground from under it.
class MCalverinScript_Device::HostCall {
public:
    explicit HostCall(MCalverinScript_Device& device)
        : m_count(device.hostCalls) {
        m_count.Increment();
    }
    ~HostCall() { m_count.Decrement(); }
    HostCall(const HostCall&) = delete;
    HostCall& operator=(const HostCall&) = delete;

private:
    InterlockedCounter& m_count;
};
