#include "MCalverinScript_Device.h"

#include <algorithm>
#include <mutex>
#include <vector>

#include <QElapsedTimer>
#include <QThread>

#include "IModuleServices.h"
#include "ModuleShared.h"
#include "ThreadPromise.h"

namespace {

constexpr std::uint32_t kHostCallEndMs = 50;

/// Released devices in which somebody still is.
struct AbandonedDevices {
    std::mutex lock; ///< never held while a device goes: that may call the host, which may release another one
    std::vector<MCalverinScript_Device*> devices;
};

AbandonedDevices& Abandoned() {
    static AbandonedDevices abandoned;
    return abandoned;
}

/// Polls a condition that another thread makes true, for a time that a person does not notice.
template <typename Condition>
bool WaitUntil(Condition condition, std::uint32_t limitMs) {
    QElapsedTimer clock;
    clock.start();
    while (!condition()) {
        if (clock.hasExpired(limitMs))
            return false;
        QThread::usleep(200);
    }
    return true;
}

} // namespace

bool MCalverinScript_Device::IsUsable() const {
    return crossing.IsUsable();
}

KXPCode MCalverinScript_Device::Release() {
    ExpectThread(ThreadWord::HostMain, "IKXPDevice::Release");
    if (!door.Leave())
        return KXP_OK;
    LetGo();
    if (WaitUntil([this] { return HasEnded(); }, kHostCallEndMs)) {
        delete this;
    } else {
        const std::lock_guard<std::mutex> guard(Abandoned().lock);
        Abandoned().devices.push_back(this);
    }
    SweepAbandoned();
    return KXP_OK;
}

/// From the end of it on nothing of the host is used or used by this device.
void MCalverinScript_Device::LetGo() {
    if (!door.Close())
        return;
    const HostDoor::Visit visit(door); // a request that ends here may make the host release the device
    ending = true;
    for (IEndingRoom* room : endings)
        room->BeginEnd();
    for (IEndingRoom* room : endings)
        room->End();
    SetStarted(false);
    SetRunning(false);
    if (module != nullptr)
        module->RemoveDevice(this);
    Unlist();
    if (MKXPDeviceBase::GetCount() == 0)
        ModuleShared::ReleaseLast();
}

bool MCalverinScript_Device::HasEnded() const {
    return std::all_of(endings.begin(), endings.end(), [](const IEndingRoom* room) { return room->HasEnded(); });
}

std::size_t MCalverinScript_Device::SweepAbandoned() {
    AbandonedDevices& abandoned = Abandoned();
    std::vector<MCalverinScript_Device*> over;
    std::size_t left = 0;
    {
        const std::lock_guard<std::mutex> guard(abandoned.lock);
        auto& devices = abandoned.devices;
        const auto isInUse = [](const MCalverinScript_Device* device) { return !device->HasEnded(); };
        const auto ended = std::partition(devices.begin(), devices.end(), isInUse);
        over.assign(ended, devices.end());
        devices.erase(ended, devices.end());
        left = devices.size();
    }
    for (MCalverinScript_Device* device : over)
        delete device;
    return left;
}
