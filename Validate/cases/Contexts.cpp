#include <atomic>

#include "BusyScript.h"
#include "Cases.h"

namespace {

/// A flood of commands to a device that works meanwhile.
/// @return how many were taken.
int Flood(HostedDevice& device, ContextTally& tally, int count, const std::string& argument = "x") {
    const std::int32_t command = FunctionCommand(device);
    int taken = 0;
    for (int number = 0; number < count; ++number)
        taken += device.Send(command, CallOfWork(argument), &tally) == KXP_OK ? 1 : 0;
    return taken;
}

} // namespace

void EndsContextsOnce(Trial& trial) {
    ModuleHost host;
    LoadOrFail(host, trial);
    for (int round = trial.Times(2000, 4); round > 0; --round) {
        ContextTally tally;
        HostedDevice device(host);
        StartBusy(device);
        trial.Step("200 commands, then " + std::string(round % 2 == 0 ? "Stop" : "their ends"));
        const int taken = Flood(device, tally, 200);
        if (round % 2 != 0)
            Trial::Expect(tally.WaitUntilEnded(kTrialWait), "the contexts end without a Stop");
        device.End();
        const std::lock_guard<std::mutex> guard(tally.lock);
        Trial::Expect(taken > 0, "a running device takes commands");
        Trial::Expect(tally.begun == taken,
                      std::to_string(tally.begun) + " contexts of " + std::to_string(taken) + " were begun");
        Trial::Expect(tally.ended == taken,
                      std::to_string(tally.ended) + " contexts of " + std::to_string(taken) + " were ended");
        Trial::Expect(tally.wrong == 0, "no context is begun or ended twice");
    }
}

/// The context takes the parameters along when it ends: what touches them later crashes.
void LetsGoOfParameters(Trial& trial) {
    ModuleHost host;
    LoadOrFail(host, trial);
    const std::string longText(100000, 'x'); // takes its time
    ContextTally tally;
    HostedDevice device(host);
    StartBusy(device);
    for (int round = trial.Times(2000, 10); round > 0; --round) {
        trial.Step("20 commands whose parameters go with their contexts");
        Flood(device, tally, 20, longText);
        Trial::Expect(tally.WaitUntilEnded(kTrialWait), "the contexts end");
    }
    device.End();
}

void GivesTextsBack(Trial& trial) {
    ModuleHost host;
    LoadOrFail(host, trial);
    {
        ContextTally tally;
        HostedDevice device(host);
        StartBusy(device);
        for (int round = trial.Times(1000, 3); round > 0; --round) {
            trial.Step("100 commands");
            Flood(device, tally, 100);
            Trial::Expect(tally.WaitUntilEnded(kTrialWait), "the contexts end");
        }
    }
    Trial::Expect(HostValue::TextsOut() == 0, std::to_string(HostValue::TextsOut()) + " texts were not given back");
}

void TakesCallsFromInside(Trial& trial) {
    constexpr int kMost = 5000;
    constexpr int kCommandEach = 7;
    ModuleHost host;
    LoadOrFail(host, trial);
    ContextTally tally;
    HostedDevice device(host);
    const std::int32_t command = FunctionCommand(device);
    thread_local bool isInside = false;
    std::atomic<int> heard{0};
    host.hearing = [&](const char* call) {
        if (isInside || heard >= kMost)
            return;
        isInside = true;
        trial.Step(std::string("from inside ") + call);
        device->IsRunning();
        device->GetName();
        if (++heard % kCommandEach == 0)
            device.Send(command, CallOfWork("from inside"), &tally);
        isInside = false;
    };
    StartBusy(device);
    for (int round = trial.Times(400, 2); round > 0; --round) {
        Flood(device, tally, 50);
        device->SetSetup(BusySetup(", Other: function () {}").c_str());
        Trial::Expect(tally.WaitUntilEnded(kTrialWait), "the contexts end");
    }
    device.End();
    Trial::Expect(heard > 0, "the module asks the host for something");
}
