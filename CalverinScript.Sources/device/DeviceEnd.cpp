#include "MCalverinScript_Device.h"

#include <algorithm>
#include <atomic>
#include <chrono>

#include <QThread>

#include "FreeMemory.h"
#include "IModuleServices.h"
#include "ISetupInterface.h"
#include "ModuleShared.h"
#include "SetAside.h"
#include "ThreadPromise.h"
#include "TimeLimit.h"

namespace {

constexpr std::chrono::milliseconds kHostCallEnd(50);
constexpr std::chrono::milliseconds kMemoryRest(1000);

/// Polls a condition that another thread makes true, for a time that a person does not notice.
template <typename Condition>
void WaitUntil(Condition condition, std::chrono::milliseconds time) {
    const TimeLimit limit{time};
    while (!condition() && !limit.IsOver())
        QThread::usleep(200);
}

/// Hands back what devices have left free, in pieces between those that others use: with devices that come and go it would
/// grow for hours. Once a second at most, since a host that ends releases all it has.   [host main; any, for hosts that release there]
void ReturnDevicesMemory() {
    using Clock = std::chrono::steady_clock;
    static std::atomic<Clock::rep> restsUntil{0};
    const Clock::rep now = Clock::now().time_since_epoch().count();
    Clock::rep until = restsUntil;
    const Clock::rep next = now + Clock::duration(kMemoryRest).count();
    if (now >= until && restsUntil.compare_exchange_strong(until, next))
        ReturnFreeMemory();
}

} // namespace

bool MCalverinScript_Device::IsUsable() const {
    return crossing.IsUsable() && seat.IsTaken();
}

KXPCode MCalverinScript_Device::Release() {
    ExpectThread(ThreadWord::HostMain, "IKXPDevice::Release");
    if (!door.Leave())
        return KXP_OK;
    LetGo();
    WaitUntil([this] { return HasEnded(); }, kHostCallEnd);
    Abandoned().Add(this);
    Abandoned().Sweep();
    ReturnDevicesMemory();
    return KXP_OK;
}

/// From the end of it on nothing of the host is used or used by this device.
void MCalverinScript_Device::LetGo() {
    if (!door.Close())
        return;
    const HostDoor::Visit visit(door); // a request that ends here may make the host release the device
    stops.Open();
    ending = true;
    if (setupInterface != nullptr)
        setupInterface->ForgetDevice(*this);
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
    return Abandoned().Sweep();
}

/// Released devices in which somebody still is.
SetAside<MCalverinScript_Device>& MCalverinScript_Device::Abandoned() {
    static SetAside<MCalverinScript_Device> abandoned(
        [](const MCalverinScript_Device& device) { return device.HasEnded(); },
        [](MCalverinScript_Device* device) { delete device; });
    return abandoned;
}
