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

/// The system lists a thread for a moment longer than its end can be waited for: looks until nothing changes for a
/// while.
ProcessFigures MeasureAtRest() {
    constexpr int kLooksAlike = 20;
    constexpr std::chrono::milliseconds kLook(10);
    const auto end = std::chrono::steady_clock::now() + kTrialWait;
    ProcessFigures figures = MeasureProcess();
    for (int alike = 0; alike < kLooksAlike && std::chrono::steady_clock::now() < end; ++alike) {
        std::this_thread::sleep_for(kLook);
        const ProcessFigures now = MeasureProcess();
        if (now.threads != figures.threads || now.descriptors != figures.descriptors)
            alike = 0;
        figures = now;
    }
    return figures;
}

} // namespace

/// The first evenings load what stays loaded.
void LeavesNothingBehind(Trial& trial) {
    constexpr int kWarm = 3;
    constexpr long kSlackKilobytes = 1024; // a round, for what the allocator keeps in pieces
    for (int round = 0; round < kWarm; ++round)
        PlayEvening(trial);
    const ProcessFigures before = MeasureAtRest();
    const int rounds = trial.Times(100, 5);
    for (int round = 0; round < rounds; ++round) {
        trial.Step("evening " + std::to_string(round));
        PlayEvening(trial);
    }
    const ProcessFigures after = MeasureAtRest();
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
