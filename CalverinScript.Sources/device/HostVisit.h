#pragma once

#include "MCalverinScript_Device.h"

/// Counts a call of a host thread or of the tick that may block inside the device, so that Release does not pull the ground from under it.
class MCalverinScript_Device::HostVisit {
public:
    explicit HostVisit(MCalverinScript_Device& device)
        : m_count(device.hostCalls) {
        m_count.Increment();
    }
    ~HostVisit() { m_count.Decrement(); }
    HostVisit(const HostVisit&) = delete;
    HostVisit& operator=(const HostVisit&) = delete;

private:
    InterlockedCounter& m_count;
};
