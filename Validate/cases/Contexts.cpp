#include <atomic>
#include <thread>

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

namespace {

/// What a host may ask from inside any of its operations, whatever the thread; and, on its main thread, what belongs
/// there.
class Insider {
public:
    Insider(Trial& trial, ModuleHost& host, HostedDevice& device, ContextTally& tally)
        : m_trial(trial)
        , m_host(host)
        , m_device(device)
        , m_tally(tally)
        , m_command(FunctionCommand(device)) {}

    void Hear(const char* call) {
        thread_local bool isInside = false;
        if (isInside || m_heard >= kMost)
            return;
        isInside = true;
        m_trial.Step(std::string("from inside ") + call);
        const int number = ++m_heard;
        m_device->IsRunning();
        m_device->GetName();
        m_device->QueryCapability(1);
        m_device->OnTimerailEvent(nullptr, kNoAction);
        if (number % kCommandEach == 0)
            m_device.Send(m_command, CallOfWork("from inside"), &m_tally);
        if (std::this_thread::get_id() == m_main)
            AskOnMain(call, number);
        isInside = false;
    }
    int Heard() const { return m_heard; }
    int HeardOnMain() const { return m_heardOnMain; }

private:
    void AskOnMain(const std::string& call, int number) {
        ++m_heardOnMain;
        std::uint32_t count = 0;
        m_host.Module().GetDeviceCount(&count);
        Trial::Expect(count == 1, "GetDeviceCount from inside");
        m_device->SetName("from inside");
        m_device.Setup();
        if (call == "SetDefinition" || call == "GetVariable" || number % kSetupEach == 0)
            m_device->SetSetup(BusySetup(", Inside: function () {}").c_str());
    }

    static constexpr int kMost = 5000;
    static constexpr int kCommandEach = 7;
    static constexpr int kSetupEach = 50;
    static constexpr std::int32_t kNoAction = 9;
    Trial& m_trial;
    ModuleHost& m_host;
    HostedDevice& m_device;
    ContextTally& m_tally;
    const std::int32_t m_command;
    const std::thread::id m_main = std::this_thread::get_id();
    std::atomic<int> m_heard{0};
    std::atomic<int> m_heardOnMain{0};
};

} // namespace

void TakesCallsFromInside(Trial& trial) {
    ModuleHost host;
    LoadOrFail(host, trial);
    ContextTally tally;
    HostedDevice device(host);
    Insider insider(trial, host, device, tally);
    host.hearing = [&](const char* call) { insider.Hear(call); };
    StartBusy(device);
    for (int round = trial.Times(400, 2); round > 0; --round) {
        Flood(device, tally, 50);
        device->SetSetup(BusySetup(", Other: function () {}").c_str());
        Trial::Expect(tally.WaitUntilEnded(kTrialWait), "the contexts end");
    }
    device.End();
    host.hearing = nullptr; // the device is gone
    Trial::Expect(insider.HeardOnMain() > 0, "the module asks the host for something on its main thread");
    Trial::Expect(insider.Heard() > insider.HeardOnMain(), "and on others");
}
