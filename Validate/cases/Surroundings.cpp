#include <thread>

#include "BusyScript.h"
#include "CaseProcess.h"
#include "Cases.h"

namespace {

/// A short evening: the module comes, two devices work, all go.
void PlayEvening(Trial& trial) {
    ModuleHost host;
    LoadOrFail(host, trial);
    ContextTally tally;
    HostedDevice first(host, "first");
    HostedDevice second(host, "second");
    StartBusy(first);
    second->Start();
    const std::int32_t command = FunctionCommand(first);
    for (int number = 0; number < 50; ++number)
        first.Send(command, CallOfWork("x"), &tally);
    first.Setup();
    Trial::Expect(tally.WaitUntilEnded(kTrialWait), "the contexts end");
}

} // namespace

/// The first evenings load what stays loaded.
void LeavesNothingBehind(Trial& trial) {
    constexpr int kWarm = 3;
    constexpr int kLooks = 200;
    constexpr long kSlackKilobytes = 1024; // a round, for what the allocator keeps in pieces
    for (int round = 0; round < kWarm; ++round)
        PlayEvening(trial);
    const ProcessFigures before = MeasureProcess();
    const int rounds = trial.Times(100, 5);
    for (int round = 0; round < rounds; ++round) {
        trial.Step("evening " + std::to_string(round));
        PlayEvening(trial);
    }
    ProcessFigures after = MeasureProcess();
    // The system lists a thread for a moment longer than its end can be waited for.
    for (int look = 0; after.threads > before.threads && look < kLooks; ++look) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        after = MeasureProcess();
    }
    Trial::Expect(after.threads == before.threads,
                  std::to_string(after.threads - before.threads) + " threads are left");
    Trial::Expect(after.descriptors == before.descriptors,
                  std::to_string(after.descriptors - before.descriptors) + " descriptors are left");
    Trial::Expect(after.kilobytes - before.kilobytes < rounds * kSlackKilobytes,
                  std::to_string(after.kilobytes - before.kilobytes) + " KB are left by " + std::to_string(rounds) +
                      " evenings");
}

void LeavesProcessAlone(Trial& trial) {
    const std::string before = DescribeSurroundings();
    PlayEvening(trial);
    const std::string after = DescribeSurroundings();
    Trial::Expect(after == before, "before: " + before + " after: " + after);
}
