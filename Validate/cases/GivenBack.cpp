#include <algorithm>
#include <limits>

#include "BusyScript.h"
#include "Cases.h"
#include "HeapWatch.h"
#include "IKXPDevicePanel.h"
#include "Rest.h"

namespace {

/// What is done over and over.
struct Scenery {
    ModuleHost& host;
    HostedDevice& device;
    ContextTally& tally;
    std::string setup;
    bool hasScript;
};

void MakeDevice(Scenery& scenery) {
    HostedDevice device(scenery.host, "spare");
}

void MakePanel(Scenery& scenery) {
    IKXPDevicePanel* panel = nullptr;
    scenery.device->CreatePanel(1, &panel);
    if (panel != nullptr)
        panel->Release();
}

void SendCommand(Scenery& scenery) {
    if (!scenery.hasScript)
        return;
    CallScript(scenery.device, CallOfWork("a text that is too long to stand in its own place"), scenery.tally);
    scenery.tally.WaitUntilEnded(kTrialWait);
}

struct Act {
    const char* name;
    int times;  ///< between two looks at the heap
    long slack; ///< bytes of each time that count as none
    void (*play)(Scenery& scenery);
};

constexpr long kSlack = 16;
constexpr long kSlackOfScripts = 256; ///< an engine keeps what it knows of a script until its collector comes by

constexpr Act kActs[] = {
    {"IKXPDevice::GetSetup and ReleaseString", 50, kSlack, [](Scenery& s) { s.device.Setup(); }},
    {"IKXPModule::CreateDevice and IKXPDevice::Release", 10, kSlack, &MakeDevice},
    {"IKXPDevice::SetSetup of what GetSetup gave", 3, kSlack, [](Scenery& s) { s.device->SetSetup(s.setup.c_str()); }},
    {"IKXPDevice::ExecuteCommand and the end of its context", 50, kSlack, &SendCommand},
    {"IKXPDevice::CreatePanel and IKXPDevicePanel::Release", 10, kSlack, &MakePanel},
    {"IKXPDevice::Stop and Start", 10, kSlackOfScripts,
     [](Scenery& s) {
         s.device->Stop();
         s.device->Start();
     }},
};

/// The least by which the heap grows with one time of the act: what a collector of garbage has not come to yet, it
/// takes in another round.
long LeastGrowth(const Act& act, Scenery& scenery, int rounds) {
    long least = std::numeric_limits<long>::max();
    long before = 0;
    for (int round = 0; round <= rounds; ++round) {
        for (int count = 0; count < act.times; ++count)
            act.play(scenery);
        const long now = MeasureAtRest().heap.bytes;
        if (round > 0)
            least = std::min(least, (now - before) / act.times);
        before = now;
    }
    return least;
}

} // namespace

/// What is made and given back again and again takes no more memory the tenth time than the first.
void FreesWhatIsGivenBack(Trial& trial) {
    if (MeasureHeap().blocks == 0)
        throw Skipped("the heap cannot be watched in this build");
    ModuleHost host;
    LoadOrFail(host, trial);
    ContextTally tally;
    HostedDevice device(host);
    // timers would make noise
    const std::string idle = StartEither(device, SetupWith("({ Work: function (a) { return a; } })", "Level"));
    Scenery scenery{host, device, tally, device.Setup(), idle.empty()};
    for (const Act& act : kActs) {
        trial.Step(act.name);
        const long growth = LeastGrowth(act, scenery, trial.Times(200, 5));
        Trial::Expect(growth < act.slack,
                      std::to_string(growth) + " bytes of the heap are left by each time of " + act.name,
                      "none; less than " + std::to_string(act.slack) + " count as none");
    }
    if (!idle.empty())
        trial.Note("without commands: " + idle);
}
