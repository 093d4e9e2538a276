#include <atomic>
#include <thread>

#include "BusyScript.h"
#include "Cases.h"

namespace {

/// A flood of commands to a device that works meanwhile, each of which has to be taken.
void Flood(HostedDevice& device, ContextTally& tally, int count, const std::string& argument = "x") {
    for (int number = 0; number < count; ++number)
        CallScript(device, CallOfWork(argument), tally);
}

void ExpectEnds(ContextTally& tally) {
    const bool isInTime = tally.WaitUntilEnded(kTrialWait);
    const std::lock_guard<std::mutex> guard(tally.lock);
    Trial::Expect(isInTime,
                  std::to_string(tally.ended) + " contexts of " + std::to_string(tally.begun) +
                      " that were begun have ended in " + std::to_string(kTrialWait.count()) +
                      " s, on a running device",
                  "all of them");
}

} // namespace

void EndsContextsOnce(Trial& trial) {
    constexpr int kCommands = 200;
    ModuleHost host;
    LoadOrFail(host, trial);
    for (int round = trial.Times(2000, 4); round > 0; --round) {
        ContextTally tally;
        HostedDevice device(host);
        StartScript(device);
        trial.Step("200 commands, then " + std::string(round % 2 == 0 ? "Stop" : "their ends"));
        Flood(device, tally, kCommands);
        if (round % 2 != 0)
            ExpectEnds(tally);
        device.End();
        const std::lock_guard<std::mutex> guard(tally.lock);
        Trial::ExpectCount(tally.begun, kCommands, "contexts of accepted commands were begun");
        Trial::ExpectCount(tally.ended, kCommands, "contexts that were begun have ended behind Release of the device");
        Trial::ExpectCount(tally.wrong, 0, "contexts were begun or ended twice");
        Trial::ExpectCount(HostContext::ReferencesOut(), 0,
                           "references of contexts were not given back behind Release of the device");
    }
}

/// The context takes the parameters along when it ends: what touches them later crashes.
void LetsGoOfParameters(Trial& trial) {
    ModuleHost host;
    LoadOrFail(host, trial);
    const std::string longText(100000, 'x'); // takes its time
    ContextTally tally;
    HostedDevice device(host);
    StartScript(device);
    for (int round = trial.Times(2000, 10); round > 0; --round) {
        trial.Step("20 commands whose parameters go with their contexts");
        Flood(device, tally, 20, longText);
        ExpectEnds(tally);
    }
    device.End();
}

void GivesTextsBack(Trial& trial) {
    ModuleHost host;
    LoadOrFail(host, trial);
    {
        ContextTally tally;
        HostedDevice device(host);
        StartScript(device);
        for (int round = trial.Times(1000, 3); round > 0; --round) {
            trial.Step("100 commands");
            Flood(device, tally, 100);
            ExpectEnds(tally);
        }
    }
    Trial::ExpectCount(HostValue::TextsOut(), 0, "texts of GetValueAsString were not given back with ReleaseString");
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
    /// What was wrong on the main thread. Nothing is thrown through the module.
    const std::string& Wrong() const { return m_wrong; }

private:
    void AskOnMain(const std::string& call, int number) {
        ++m_heardOnMain;
        std::uint32_t count = 0;
        m_host.Module().GetDeviceCount(&count);
        if (count != 1)
            m_wrong =
                "IKXPModule::GetDeviceCount from inside " + call + " gives " + std::to_string(count) + "; promised: 1";
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
    std::string m_wrong; ///< of the main thread
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
    StartScript(device);
    for (int round = trial.Times(400, 2); round > 0; --round) {
        Flood(device, tally, 50);
        device->SetSetup(BusySetup(", Other: function () {}").c_str());
        ExpectEnds(tally);
    }
    device.End();
    host.hearing = nullptr; // the device is gone
    if (!insider.Wrong().empty())
        throw Finding(insider.Wrong());
    Trial::Expect(insider.HeardOnMain() > 0, "the module asks the host for nothing on its main thread",
                  "at least its variables");
    Trial::Expect(insider.Heard() > insider.HeardOnMain(), "the module asks the host for nothing on its other threads",
                  "at least the values of a script");
}
