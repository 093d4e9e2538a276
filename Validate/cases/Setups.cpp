#include <algorithm>
#include <cstring>
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

/// As it stands in an attribute.
std::string Escaped(const std::string& text) {
    std::string escaped;
    for (const char letter : text)
        if (std::strchr("<>&\"'", letter) != nullptr)
            escaped += "&#" + std::to_string(letter) + ";";
        else
            escaped += letter;
    return escaped;
}

/// What of a setup has to be there again when it is given back.
struct Model {
    std::uint32_t settings = 0;
    std::uint32_t monitors = 0;
    std::vector<std::string> flags; ///< as the text has them
    std::string text;
};

/// A few entries of a kind with names that nobody else has.
std::string RandomEntries(Trial& trial, const std::string& element, std::uint32_t count) {
    static constexpr const char* types[] = {"IntegerData", "RealData", "StringData", "TimeData", "DateData"};
    std::string entries;
    for (std::uint32_t number = 0; number < count; ++number)
        entries += "<" + element + " Name=\"n" + std::to_string(number) + Escaped(RandomWord(trial)) + "\" Type=\"" +
                   types[trial.Roll(std::size(types))] + "\" Value=\"" + Escaped(RandomWord(trial)) + "\"/>";
    return entries;
}

Model RandomModel(Trial& trial) {
    Model model;
    model.settings = trial.Roll(5);
    model.monitors = trial.Roll(5);
    for (const char* flag :
         {"RegisterAllUserGroups", "RemoveDefaultCommandsAndVariables", "ProgrammingMode", "AutoCompletion"})
        model.flags.push_back(std::string(flag) + "=\"" + std::to_string(trial.Roll(2)) + "\"");
    std::string script = RandomWord(trial);
    for (char& letter : script)
        if (letter == '"' || letter == '\'')
            letter = '.';
    model.text = "<DeviceData Version=\"1000\" Name=\"" + Escaped(RandomWord(trial)) + "\"><Setup><Settings>" +
                 RandomEntries(trial, "Setting", model.settings) + "</Settings><Monitors>" +
                 RandomEntries(trial, "Monitor", model.monitors) + "</Monitors><Script";
    for (const std::string& flag : model.flags)
        model.text += " " + flag;
    model.text += "><![CDATA[({ Work: function () { return '" + script + "'; } })]]></Script></Setup></DeviceData>";
    return model;
}

std::uint32_t CountOf(const std::string& what, const std::string& text) {
    std::uint32_t count = 0;
    for (auto place = text.find(what); place != std::string::npos; place = text.find(what, place + 1))
        ++count;
    return count;
}

void ExpectModel(const Model& model, const std::string& given) {
    Trial::ExpectCount(CountOf("<Setting ", given), model.settings, "settings are in the text of GetSetup");
    Trial::ExpectCount(CountOf("<Monitor ", given), model.monitors, "variables are in the text of GetSetup");
    for (const std::string& flag : model.flags)
        Trial::ExpectCount(CountOf(flag, given), 1, "times " + flag + " is in the text of GetSetup");
}

void ExpectSame(const std::string& given, const std::string& expected, const std::string& when) {
    Trial::Expect(given == expected, "IKXPDevice::GetSetup " + when + " gives " + given, expected);
}

/// A text of chance, or one with one piece cut out, doubled, nested, or with one bit turned.
std::string Break(Trial& trial, std::string text) {
    const auto place = trial.Roll(static_cast<std::uint32_t>(text.size()));
    const auto length = 1 + trial.Roll(40);
    std::string piece;
    switch (trial.Roll(6)) {
    case 0:
        return text.substr(0, place);
    case 1:
        return text.erase(place, length);
    case 2:
        return text.insert(place, text.substr(place, length));
    case 3:
        for (std::uint32_t depth = 1U << trial.Roll(17); depth > 0; --depth)
            piece += "<a>";
        return text.insert(place, piece);
    case 4:
        for (std::uint32_t count = 1 + trial.Roll(400); count > 0; --count)
            piece += static_cast<char>(1 + trial.Roll(255));
        return piece;
    default:
        text[place] = static_cast<char>(text[place] ^ (1 << trial.Roll(8)));
        return text.c_str(); // a bit may have been the last of its character
    }
}

} // namespace

void KeepsSetups(Trial& trial) {
    ModuleHost host;
    LoadOrFail(host, trial);
    HostedDevice device(host);
    for (int round = trial.Times(1000000, 50); round > 0; --round) {
        const Model model = RandomModel(trial);
        trial.Step("a setup with " + std::to_string(model.settings) + " settings and " +
                   std::to_string(model.monitors) + " variables");
        if (device->SetSetup(model.text.c_str()) != KXP_OK)
            throw Skipped("the module takes no setup with a script");
        const std::string given = device.Setup();
        ExpectModel(model, given);
        Trial::ExpectCode(device->SetSetup(given.c_str()), KXP_OK, "IKXPDevice::SetSetup(what GetSetup gave)");
        ExpectSame(device.Setup(), given, "behind SetSetup of what it gave");
    }
}

namespace {

void BreakSome(Trial& trial, int rounds) {
    ModuleHost host;
    LoadOrFail(host, trial);
    HostedDevice device(host);
    if (device->SetSetup(BusySetup().c_str()) != KXP_OK)
        throw Skipped("the module takes no setup with a script");
    std::string before = device.Setup();
    while (rounds-- > 0) {
        const std::string broken = Break(trial, before);
        trial.Step("a setup of " + std::to_string(broken.size()) + " bytes");
        if (device->SetSetup(broken.c_str()) != KXP_OK) {
            ExpectSame(device.Setup(), before, "behind a SetSetup that was refused");
            continue;
        }
        Trial::ExpectCode(device->SetSetup(before.c_str()), KXP_OK, "IKXPDevice::SetSetup(what GetSetup gave before)");
        before = device.Setup();
    }
}

} // namespace

/// A module may collect commands of all setups that it has seen: it is loaded anew after some.
void RefusesBrokenSetups(Trial& trial) {
    constexpr int kOfOneLoad = 200;
    for (int left = trial.Times(1000000, 200); left > 0; left -= kOfOneLoad)
        BreakSome(trial, std::min(left, kOfOneLoad));
}

namespace {

/// @return false when the script does not write its variable within the time of a case.
bool WaitForChange(HostedDevice& device) {
    const std::size_t before = device.Variables().Changes("Level");
    const auto end = std::chrono::steady_clock::now() + kTrialWait;
    while (device.Variables().Changes("Level") == before) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

} // namespace

/// Each new setup brings a new definition, with which the values of the old one are deleted, while the script writes
/// them.
void KeepsOffDroppedValues(Trial& trial) {
    ModuleHost host;
    LoadOrFail(host, trial);
    HostedDevice device(host);
    StartScript(device);
    if (!WaitForChange(device))
        throw Skipped("the module runs no script: the one that it was given does not write its variable");
    for (int round = trial.Times(2000, 30); round > 0; --round) {
        trial.Step("SetSetup on a running device");
        Trial::ExpectCode(device->SetSetup(BusySetup(", F" + std::to_string(round % 2) + ": function () {}").c_str()),
                          KXP_OK, "IKXPDevice::SetSetup(a script) on a running device");
        std::this_thread::sleep_for(std::chrono::milliseconds(trial.Roll(4)));
    }
    Trial::Expect(WaitForChange(device),
                  "the script does not write its variable any more behind SetSetup on a running device",
                  "it goes on, or starts anew");
    device.End();
}
