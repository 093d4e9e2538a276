#pragma once

#include <string>

#include "ModuleHost.h"

/// How long the Releases of some devices take.   [host main]
class ReleaseWatch {
public:
    /// Stops the device and releases it. Throws a finding at the third one that takes too long: one or two may be the
    /// machine's fault.
    void End(HostedDevice& device);

private:
    int m_slow = 0;
};
