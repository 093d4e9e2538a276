#include <thread>

#include "BusyScript.h"
#include "Cases.h"

namespace {

std::string RandomWord(Trial& trial) {
    static const std::string letters = "abcXYZ019 _<>&\"'\xE4\xFF";
    std::string word(1 + trial.Roll(12), 'a');
    for (char& letter : word)
        letter = letters[trial.Roll(static_cast<std::uint32_t>(letters.size()))];
    return word;
}

/// A text with one piece cut out, doubled, or with one bit turned.
std::string Break(Trial& trial, std::string text) {
    const auto place = trial.Roll(static_cast<std::uint32_t>(text.size()));
    const auto length = 1 + trial.Roll(40);
    switch (trial.Roll(4)) {
    case 0:
        return text.substr(0, place);
    case 1:
        return text.erase(place, length);
    case 2:
        return text.insert(place, text.substr(place, length));
    default:
        text[place] = static_cast<char>(text[place] ^ (1 << trial.Roll(8)));
        return text;
    }
}

} // namespace

void KeepsSetups(Trial& trial) {
    ModuleHost host;
    LoadOrFail(host, trial);
    HostedDevice device(host);
    for (int round = trial.Times(1000000, 50); round > 0; --round) {
        const std::string name = RandomWord(trial);
        trial.Step("a script with a text of " + std::to_string(name.size()) + " characters");
        std::string quoted;
        for (const char letter : name)
            quoted += letter == '"' || letter == '\'' ? '.' : letter;
        if (device->SetSetup(BusySetup(", Text: '" + quoted + "'").c_str()) != KXP_OK)
            throw Skipped("the module takes no setup with a script");
        const std::string given = device.Setup();
        Trial::ExpectCode(device->SetSetup(given.c_str()), KXP_OK, "SetSetup of what GetSetup gave");
        const std::string again = device.Setup();
        Trial::Expect(again == given, "GetSetup gives what SetSetup was given");
    }
}

void RefusesBrokenSetups(Trial& trial) {
    ModuleHost host;
    LoadOrFail(host, trial);
    HostedDevice device(host);
    if (device->SetSetup(BusySetup().c_str()) != KXP_OK)
        throw Skipped("the module takes no setup with a script");
    std::string before = device.Setup();
    for (int round = trial.Times(1000000, 200); round > 0; --round) {
        const std::string broken = Break(trial, before);
        trial.Step("a setup of " + std::to_string(broken.size()) + " bytes");
        if (device->SetSetup(broken.c_str()) != KXP_OK) {
            Trial::Expect(device.Setup() == before, "a refused setup changes nothing");
            continue;
        }
        Trial::ExpectCode(device->SetSetup(before.c_str()), KXP_OK, "SetSetup of the setup of before");
        before = device.Setup();
    }
}

/// Each new setup brings a new definition, with which the values of the old one are deleted, while the script writes
/// them.
void KeepsOffDroppedValues(Trial& trial) {
    ModuleHost host;
    LoadOrFail(host, trial);
    HostedDevice device(host);
    StartBusy(device);
    for (int round = trial.Times(2000, 30); round > 0; --round) {
        trial.Step("SetSetup on a running device");
        Trial::ExpectCode(device->SetSetup(BusySetup(", F" + std::to_string(round % 2) + ": function () {}").c_str()),
                          KXP_OK, "SetSetup on a running device");
        std::this_thread::sleep_for(std::chrono::milliseconds(trial.Roll(4)));
    }
    device.End();
}
