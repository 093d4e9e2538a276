#include <algorithm>
#include <atomic>
#include <thread>

#include "BusyScript.h"
#include "CaseProcess.h"
#include "Cases.h"

namespace {

/// What the host's main thread does while another one sends commands.
void Disturb(Trial& trial, HostedDevice& device) {
    switch (trial.Roll(4)) {
    case 0:
        device->Stop();
        break;
    case 1:
        Trial::ExpectCode(device->SetSetup(BusySetup(", Other: function () {}").c_str()), KXP_OK, "SetSetup");
        break;
    case 2:
        device->Stop();
        Trial::ExpectCode(device->Start(), KXP_OK, "Start");
        break;
    default:
        break;
    }
}

} // namespace

void EndsAtAnyInstant(Trial& trial) {
    ModuleHost host;
    LoadOrFail(host, trial);
    for (int round = trial.Times(1000, 10); round > 0; --round) {
        ContextTally tally;
        HostedDevice device(host);
        StartBusy(device);
        const std::int32_t command = FunctionCommand(device);
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
        device.End();
        Trial::Expect(tally.WaitUntilEnded(kTrialWait), "each context that was begun is ended");
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
        Trial::ExpectCode(device->Stop(), KXP_OK, "Stop");
        Trial::ExpectCode(device->IsRunning(), KXP_NO, "IsRunning behind Stop");
        Trial::ExpectCode(device->Start(), KXP_OK, "Start");
        Trial::ExpectCode(device->IsRunning(), KXP_OK, "IsRunning behind Start");
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
    Trial::Expect(counted == devices.size(), "GetDeviceCount counts all");
    for (std::uint32_t number = 0; number < counted; ++number)
        Trial::Expect(host.Module().GetDevice(number) == &**devices[number], "GetDevice gives them in their order");
    for (auto& device : devices) {
        trial.Step("the end of a device");
        device->End();
    }
    host.Module().GetDeviceCount(&counted);
    Trial::Expect(counted == 0, "GetDeviceCount counts none at the end");
}

/// One factory may stay behind: the host forgets it with the module.
void LoadsOften(Trial& trial) {
    for (int round = trial.Times(100, 5); round > 0; --round) {
        trial.Step("load, " + std::to_string(round) + " to go");
        ContextTally tally;
        ModuleHost host;
        LoadOrFail(host, trial);
        std::uint32_t count = 1;
        host.Module().GetDeviceCount(&count);
        Trial::Expect(count == 0, "a module that was just loaded has no devices");
        HostedDevice device(host);
        StartBusy(device);
        Trial::ExpectCode(device.Send(FunctionCommand(device), CallOfWork("x"), &tally), KXP_OK, "ExecuteCommand");
        Trial::Expect(tally.WaitUntilEnded(kTrialWait), "the context ends");
        device.End();
        host.Unload();
        Trial::Expect(host.Factories().size() <= 1, "the module takes its factories back");
    }
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
        trial.Step("Start of a device whose module is gone");
        Trial::ExpectCode(device->Start(), KXP_NOT_IMPLEMENTED, "Start of a device whose module is gone");
        trial.Step("Release of a device whose module is gone");
        device.GiveUp()->Release();
        host.Forget();
    }
}
