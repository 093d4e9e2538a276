#include <algorithm>
#include <utility>

#include "BusyScript.h"
#include "CaseProcess.h"
#include "Cases.h"
#include "HostOdds.h"
#include "Rest.h"

namespace {

/// A short evening: the module comes, two devices work, all go.
/// @return why no commands were sent; empty when they were.
std::string PlayEvening(Trial& trial) {
    ModuleHost host;
    LoadOrFail(host, trial);
    ContextTally tally;
    HostedDevice first(host, "first");
    HostedDevice second(host, "second");
    second->Start();
    if (std::string idle = StartEither(first); !idle.empty())
        return idle;
    for (int number = 0; number < 50; ++number)
        CallScript(first, CallOfWork("x"), tally);
    first.Setup();
    Trial::Expect(tally.WaitUntilEnded(kTrialWait), "the contexts of 50 commands do not end", "they end");
    return {};
}

/// What was found is told first: an evening without commands is one, too.
void SkipIfIdle(const std::string& reason) {
    if (!reason.empty())
        throw Skipped("nothing was found in evenings without commands: " + reason);
}

/// The middle one: what comes once, as a table that grows, is no leak.
long Median(std::vector<long> numbers) {
    std::sort(numbers.begin(), numbers.end());
    return numbers[numbers.size() / 2];
}

std::string Joined(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines)
        text += (text.empty() ? "" : ", ") + line;
    return text.empty() ? "(nothing)" : text;
}

std::vector<std::string> Without(const std::vector<std::string>& all, const std::vector<std::string>& others) {
    std::vector<std::string> rest;
    for (const std::string& one : all)
        if (std::find(others.begin(), others.end(), one) == others.end())
            rest.push_back(one);
    return rest;
}

} // namespace

/// The first evenings load what stays loaded.
void LeavesNothingBehind(Trial& trial) {
    constexpr int kWarm = 3;
    constexpr long kMostBytes = 2048; // an evening
    std::string idle;
    for (int round = 0; round < kWarm; ++round)
        idle = PlayEvening(trial);
    const FiguresAtRest before = MeasureAtRest();
    FiguresAtRest after = before;
    std::vector<long> bytes;
    for (int left = trial.Times(100, 7); left > 0; --left) {
        trial.Step("an evening, " + std::to_string(left) + " to go");
        PlayEvening(trial);
        const FiguresAtRest last = std::exchange(after, MeasureAtRest());
        bytes.push_back(after.heap.bytes - last.heap.bytes);
    }
    const std::string evenings = " behind " + std::to_string(bytes.size()) + " evenings";
    Trial::ExpectCount(after.process.threads - before.process.threads, 0, "threads are left" + evenings);
    Trial::ExpectCount(after.process.descriptors - before.process.descriptors, 0, "descriptors are left" + evenings);
    Trial::Expect(Median(bytes) < kMostBytes,
                  std::to_string(Median(bytes)) + " bytes of the heap are left by an evening",
                  "none; less than " + std::to_string(kMostBytes) + " count as none");
    SkipIfIdle(idle);
}

/// Commands, requests, values, a resource, a transport event and a panel, then the end of all.
void KeepsHostObjects(Trial& trial) {
    ModuleHost host;
    LoadOrFail(host, trial);
    trial.Step("a device at work, its panel, its end");
    ContextTally tally;
    HostedDevice device(host);
    const std::string idle = StartEither(device, TalkingSetup());
    if (idle.empty()) {
        CallScript(device, CallOfWork("x"), tally);
        Trial::Expect(tally.WaitUntilEnded(kTrialWait), "the context of a command does not end", "it ends");
    } else {
        trial.Note("without calls of a script: " + idle);
    }
    HostTime time("track", 100);
    device->OnTimerailEvent(&time, 1);
    IKXPDevicePanel* panel = nullptr;
    device->CreatePanel(1, &panel);
    if (panel != nullptr)
        panel->Release();
    device.End();
    host.Unload();
    const char* const face = g_releasedFace;
    Trial::Expect(face == nullptr,
                  "the module releases an object of the host's: " + std::string(face != nullptr ? face : "none"),
                  "of the host's objects it releases links, and contexts that it has called AddRef of");
}

void LeavesProcessAlone(Trial& trial) {
    const std::vector<std::string> before = DescribeSurroundings();
    const std::string idle = PlayEvening(trial);
    const std::vector<std::string> after = DescribeSurroundings();
    Trial::Expect(after == before, "behind an evening the process has " + Joined(Without(after, before)),
                  Joined(Without(before, after)) + ", as before it");
    SkipIfIdle(idle);
}
