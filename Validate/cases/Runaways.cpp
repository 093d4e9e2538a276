#include <algorithm>
#include <cstdio>
#include <thread>

#include "BusyScript.h"
#include "Cases.h"

namespace {

/// One way of a script never to come back.
struct Runaway {
    const char* name;
    const char* before; ///< runs once, ahead of it
    const char* loop;
};

constexpr Runaway kRunaways[] = {
    {"a loop", "", "for (;;) {}"},
    {"a loop of calls", "function nothing() {}", "for (;;) nothing();"},
    {"recursion that is caught", "function deeper() { return deeper() + 1; }",
     "for (;;) { try { deeper(); } catch (e) {} }"},
    {"a walk round a ring", "var a = {}; a.a = a; function walk(o) { for (var k in o) walk(o[k]); }",
     "for (;;) { try { walk(a); } catch (e) {} }"},
    {"a text that grows", "var s = '';", "for (;;) { s += '0123456789'; if (s.length > 1e6) s = ''; }"},
    {"regular expressions", "var s = new Array(31).join('a');", "for (;;) /(a+)+b/.test(s);"},
    {"allocation", "", "for (;;) new Array(1000).join('ab').split('b');"},
    {"timers without a pause", "for (var i = 0; i < 5000; ++i) QCalverin.SetInterval(function () {}, 0);",
     "for (;;) {}"},
    {"sorting", "var big = []; for (var i = 0; i < 1000; ++i) big.push(i);",
     "for (;;) big.sort(function (x, y) { return y - x; });"},
    {"bytes", "var bytes = new Buffer(1000);", "for (;;) for (var i = 0; i < 1000; ++i) bytes[i] = i;"},
    {"documents", "", "for (;;) new XMLDocument().Parse('<a><b/></a>');"},
    {"calls of the host", "", "for (;;) QCalverin.Perform('host', 'Nothing');"},
};

constexpr const char* kInside = "77";

std::string SetupOf(const Runaway& runaway) {
    return SetupWith("var script = { Device: { Level: 0 }, Run: function () { " + std::string(runaway.before) +
                         " script.Device.Level = " + kInside + "; " + runaway.loop + " } }; script;",
                     "Level");
}

/// Asks the devices in turn. @return how long each answer took, in milliseconds, in order of length.
std::vector<double> Latencies(std::vector<std::unique_ptr<HostedDevice>>& others, int count) {
    std::vector<double> all;
    for (int number = 0; number < count; ++number) {
        HostedDevice& device = *others[static_cast<std::size_t>(number) % others.size()];
        ContextTally tally;
        const auto begin = std::chrono::steady_clock::now();
        CallScript(device, CallOfWork("x"), tally);
        Trial::Expect(tally.WaitUntilEnded(kTrialWait),
                      "a command of another device does not end in " + std::to_string(kTrialWait.count()) + " s",
                      "it ends, whatever other scripts do");
        const std::chrono::duration<double, std::milli> taken = std::chrono::steady_clock::now() - begin;
        all.push_back(taken.count());
    }
    std::sort(all.begin(), all.end());
    return all;
}

void Meet(Trial& trial, ModuleHost& host, const Runaway& runaway, std::vector<std::unique_ptr<HostedDevice>>& others) {
    ContextTally tally;
    HostedDevice device(host, "runaway");
    trial.Step("the script of the kind: " + std::string(runaway.name));
    StartScript(device, SetupOf(runaway), {"Run"});
    std::vector<std::string> texts(kFunctionParameters);
    texts[0] = "Run";
    CallScript(device, texts, tally);
    if (!WaitForText(device, "Level", kInside)) {
        device.GiveUp()->Release(); // a Stop would wait for it
        throw Finding("the variable Level of a script that then runs on stays as it was; promised: what it wrote");
    }
    trial.Step("other devices beside " + std::string(runaway.name));
    const std::vector<double> latencies = Latencies(others, trial.Times(2000, 20));
    trial.Step("Release of a device with " + std::string(runaway.name));
    device.GiveUp()->Release();
    Trial::Expect(tally.WaitUntilEnded(kTrialWait),
                  "the context of a command whose script never returns does not end behind Release of the device",
                  "it ends");
    char line[120];
    std::snprintf(line, sizeof line, "%-26s others answer in %.2f ms, %.1f ms at worst", runaway.name,
                  latencies[latencies.size() / 2], latencies.back());
    trial.Note(line);
}

} // namespace

/// Stop would wait for the script, as the contract has it: the device is released instead.
void BearsRunaways(Trial& trial) {
    constexpr std::size_t kOthers = 3;
    ModuleHost host;
    LoadOrFail(host, trial);
    std::vector<std::unique_ptr<HostedDevice>> others;
    while (others.size() < kOthers) {
        others.push_back(std::make_unique<HostedDevice>(host, "desk " + std::to_string(others.size())));
        StartScript(*others.back());
    }
    for (const Runaway& runaway : kRunaways)
        Meet(trial, host, runaway, others);
    for (auto& device : others)
        device->End();
}
