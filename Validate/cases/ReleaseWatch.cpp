#include "ReleaseWatch.h"

#include <chrono>

#include "Trial.h"

void ReleaseWatch::End(HostedDevice& device) {
    constexpr std::chrono::seconds kReleaseLimit{2};
    constexpr int kSlowOnes = 3;
    device->Stop(); // may wait for a script, as the contract has it
    const auto begin = std::chrono::steady_clock::now();
    device.End();
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
    if (taken > kReleaseLimit && ++m_slow >= kSlowOnes)
        throw SlowRelease("IKXPDevice::Release() took " + std::to_string(taken.count()) + " s, and " +
                          std::to_string(kSlowOnes - 1) + " others took more than 2 s as well; promised: at most 2 s");
}
