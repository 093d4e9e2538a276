#include <algorithm>
#include <atomic>
#include <thread>

#include "BusyScript.h"
#include "CaseProcess.h"
#include "Cases.h"
#include "ReleaseWatch.h"

namespace {

/// What the host's main thread does while another one sends commands.
void Disturb(Trial& trial, HostedDevice& device) {
    switch (trial.Roll(4)) {
    case 0:
        device->Stop();
        break;
    case 1:
        Trial::ExpectCode(device->SetSetup(BusySetup(", Other: function () {}").c_str()), KXP_OK,
                          "IKXPDevice::SetSetup(a script)");
        break;
    case 2:
        device->Stop();
        Trial::ExpectCode(device->Start(), KXP_OK, "IKXPDevice::Start()");
        break;
    default:
        break;
    }
}

} // namespace

void EndsAtAnyInstant(Trial& trial) {
    ReleaseWatch watch;
    ModuleHost host;
    LoadOrFail(host, trial);
    for (int round = trial.Times(1000, 10); round > 0; --round) {
        ContextTally tally;
        HostedDevice device(host);
        StartScript(device);
        const std::int32_t command = FunctionCommand(device);
        CallScript(device, CallOfWork("x"), tally);
        std::atomic<bool> isOver{false};
        std::thread caller([&] {
            for (int number = 0; number < 5000 && !isOver; ++number)
                device.Send(command, CallOfWork("x"), &tally);
        });
        const auto pause = std::chrono::microseconds(trial.Roll(8000));
        trial.Step("the end of a device after " + std::to_string(pause.count()) +
                   " us of commands from another thread");
        std::this_thread::sleep_for(pause);
        Disturb(trial, device);
        isOver = true;
        caller.join(); // calls and Release do not overlap: the contract promises that to the module
        watch.End(device);
        const bool isInTime = tally.WaitUntilEnded(kTrialWait);
        const std::lock_guard<std::mutex> guard(tally.lock);
        Trial::Expect(isInTime,
                      std::to_string(tally.ended) + " contexts of " + std::to_string(tally.begun) +
                          " that were begun have ended behind Release of the device",
                      "all of them");
    }
}

void StopsAndStartsOften(Trial& trial) {
    ModuleHost host;
    LoadOrFail(host, trial);
    HostedDevice device(host);
    StartBusy(device);
    const int rounds = trial.Times(10000, 40);
    for (int round = 0; round < rounds; ++round) {
        trial.Step("start " + std::to_string(round));
        Trial::ExpectCode(device->Stop(), KXP_OK, "IKXPDevice::Stop()");
        Trial::ExpectCode(device->IsRunning(), KXP_NO, "IKXPDevice::IsRunning() behind Stop");
        Trial::ExpectCode(device->Start(), KXP_OK, "IKXPDevice::Start()");
        Trial::ExpectCode(device->IsRunning(), KXP_OK, "IKXPDevice::IsRunning() behind Start");
    }
    device.End();
}

void TakesManyDevices(Trial& trial) {
    ModuleHost host;
    LoadOrFail(host, trial);
    const std::string calm = SetupWith("({ Work: function (a) { return a; } })", "Level"); // timers would take it all
    std::vector<std::unique_ptr<HostedDevice>> devices;
    const int count = std::min(trial.Times(1 << 14, 16), 256); // all of them from level 7 on
    for (int number = 0; number < count; ++number) {
        trial.Step("device " + std::to_string(number));
        devices.push_back(std::make_unique<HostedDevice>(host, "desk " + std::to_string(number)));
        StartBusy(*devices.back(), calm);
    }
    std::uint32_t counted = 0;
    host.Module().GetDeviceCount(&counted);
    Trial::ExpectCount(counted, count, "devices are counted by IKXPModule::GetDeviceCount");
    for (std::uint32_t number = 0; number < counted; ++number)
        Trial::Expect(host.Module().GetDevice(number) == &**devices[number],
                      "IKXPModule::GetDevice(" + std::to_string(number) + ") gives another device",
                      "the one that was made at that place");
    for (auto& device : devices) {
        trial.Step("the end of a device");
        device->End();
    }
    host.Module().GetDeviceCount(&counted);
    Trial::ExpectCount(counted, 0, "devices are counted by IKXPModule::GetDeviceCount when all are released");
}

/// One factory may stay behind: the host forgets it with the module.
void LoadsOften(Trial& trial) {
    std::string idle;
    for (int round = trial.Times(100, 5); round > 0; --round) {
        trial.Step("load, " + std::to_string(round) + " to go");
        ContextTally tally;
        ModuleHost host;
        LoadOrFail(host, trial);
        std::uint32_t count = 1;
        host.Module().GetDeviceCount(&count);
        Trial::ExpectCount(count, 0, "devices are counted by IKXPModule::GetDeviceCount behind the load");
        HostedDevice device(host);
        idle = StartEither(device);
        if (idle.empty()) {
            CallScript(device, CallOfWork("x"), tally);
            Trial::Expect(tally.WaitUntilEnded(kTrialWait), "the context of a command does not end", "it ends");
        }
        device.End();
        host.Unload();
        Trial::Expect(host.Factories().size() <= 1,
                      std::to_string(host.Factories().size()) +
                          " factories are registered behind Release of the module",
                      "at most IScriptTextSelector");
    }
    if (!idle.empty())
        trial.Note("without calls of a script: " + idle);
}

void LetsGoOfDevices(Trial& trial) {
    for (int round = trial.Times(200, 2); round > 0; --round) {
        ModuleHost host;
        LoadOrFail(host, trial);
        HostedDevice device(host);
        StartBusy(device);
        trial.Step("the module's Release while a device runs");
        host.Module().Terminate(nullptr);
        host.Module().Release();
        trial.Step("Start of the device, which the host has not released, behind Release of its module");
        Trial::ExpectCode(device->Start(), KXP_NOT_IMPLEMENTED, "IKXPDevice::Start() of a device whose module is gone");
        trial.Step("Release of the device, behind Release of its module");
        device.GiveUp()->Release();
        trial.Step("a second Release of the module, which does nothing");
        Trial::ExpectCode(host.Module().Release(), KXP_OK, "IKXPModule::Release() once more");
        host.Forget();
    }
}
