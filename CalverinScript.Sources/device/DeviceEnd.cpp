#include "MCalverinScript_Device.h"

#include <algorithm>
#include <vector>

#include <QElapsedTimer>
#include <QThread>

#include "IModuleServices.h"
#include "ModuleShared.h"
#include "ThreadPromise.h"

namespace {

constexpr std::uint32_t kHostCallEndMs = 50;

/// Released devices whose script would not end. Host main thread alone.
std::vector<MCalverinScript_Device*>& AbandonedDevices() {
    static std::vector<MCalverinScript_Device*> devices;
    return devices;
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
    if (WaitUntil([this] { return HasEnded(); }, kHostCallEndMs))
        delete this;
    else
        AbandonedDevices().push_back(this);
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
    std::vector<MCalverinScript_Device*>& devices = AbandonedDevices();
    const auto over = [](MCalverinScript_Device* device) {
        if (!device->HasEnded())
            return false;
        delete device;
        return true;
    };
    devices.erase(std::remove_if(devices.begin(), devices.end(), over), devices.end());
    return devices.size();
}
