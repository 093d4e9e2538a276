#include <string>

#include "BusyScript.h"
#include "Cases.h"
#include "CommandTags.h"
#include "ReleaseWatch.h"

namespace {

void ExpectOneModule(ModuleHost& host) {
    Trial::ExpectCode(host.EntryPoint()(nullptr), KXP_NULL_ARGUMENT, "GetKXPEntryPoint(null)");
    for (int count = 0; count < 2; ++count) {
        IKXPModule* module = nullptr;
        Trial::ExpectCode(host.EntryPoint()(&module), KXP_OK, "GetKXPEntryPoint(out) once more");
        Trial::Expect(module == &host.Module(), "GetKXPEntryPoint(out) once more gives another module",
                      "the same at every call until it is released");
    }
}

void ExpectNumbers(IKXPModule& module) {
    constexpr std::uint32_t kVersion = 999;
    std::uint32_t version = 0;
    Trial::ExpectCode(module.GetModuleVersion(&version), KXP_OK, "IKXPModule::GetModuleVersion(out)");
    Trial::Expect(version == kVersion, "IKXPModule::GetModuleVersion(out) gives " + std::to_string(version),
                  std::to_string(kVersion));
    std::uint32_t count = 0;
    module.GetDeviceCount(&count);
    Trial::Expect(module.GetDevice(count) == nullptr,
                  "IKXPModule::GetDevice(" + std::to_string(count) + ") of as many devices gives one", "null");
}

void ExpectNoDeviceYet(ModuleHost& host) {
    IKXPDevice* device = nullptr;
    const std::string call = "IKXPModule::CreateDevice(null, out) ahead of SetDeviceHost";
    Trial::ExpectCode(host.Module().CreateDevice(nullptr, &device), KXP_NO_DEVICE_HOST, call);
    Trial::Expect(device == nullptr, call + " answers 17 and gives a device", "none");
}

void ExpectNoSecondDevice(IKXPModule& module, IKXPDevice& first) {
    IKXPDevice* occupied = &first;
    Trial::ExpectCode(module.CreateDevice(nullptr, nullptr), KXP_NULL_ARGUMENT, "IKXPModule::CreateDevice(null, null)");
    Trial::ExpectCode(module.CreateDevice(nullptr, &occupied), KXP_NULL_ARGUMENT,
                      "IKXPModule::CreateDevice(null, what holds a device)");
    Trial::Expect(occupied == &first, "IKXPModule::CreateDevice(null, what holds a device) changes it",
                  "it stays as it was");
}

void ExpectCapabilities(IKXPDevice& device) {
    for (std::uint32_t code : {0U, 1U, 2U, 3U, 4U, 5U, 8U, 16U, 17U, 100U, 1000U, 0x80000000U, 0xFFFFFFFFU})
        Trial::ExpectCode(device.QueryCapability(code), code == 1 || code == 2 ? KXP_OK : KXP_NO,
                          "IKXPDevice::QueryCapability(" + std::to_string(code) + ")");
}

void ExpectName(IKXPDevice& device, const char* given, const std::string& expected, const std::string& call) {
    device.SetName(given);
    const char* const name = device.GetName();
    Trial::Expect(name != nullptr && expected == name,
                  "IKXPDevice::GetName() behind " + call + " gives " +
                      (name != nullptr ? "\"" + std::string(name) + "\"" : "null"),
                  "\"" + expected + "\"");
}

void ExpectNames(IKXPDevice& device) {
    for (const std::size_t length : {1, 8, 16, 20, 31, 32, 63, 64, 127, 128, 255, 256, 300}) {
        const std::string name(length, 'n');
        ExpectName(device, name.c_str(), name, "SetName of " + std::to_string(length) + " characters");
    }
    ExpectName(device, nullptr, "", "SetName(null)");
    ExpectName(device, "stated", "stated", "SetName(stated)");
}

void ExpectTexts(HostedDevice& device) {
    Trial::ExpectCode(device->GetSetup(nullptr), KXP_NULL_ARGUMENT, "IKXPDevice::GetSetup(null)");
    Trial::ExpectCode(device->ReleaseString(nullptr), KXP_NULL_ARGUMENT, "IKXPDevice::ReleaseString(null)");
    char* text = nullptr;
    Trial::ExpectCode(device->GetSetup(&text), KXP_OK, "IKXPDevice::GetSetup(out)");
    Trial::Expect(text != nullptr, "IKXPDevice::GetSetup(out) answers 0 and gives null", "a text");
    device.GiveBack(text);
}

void ExpectNoOtherPanels(IKXPDevice& device) {
    Trial::ExpectCode(device.CreatePanel(1, nullptr), KXP_NULL_ARGUMENT, "IKXPDevice::CreatePanel(1, null)");
    for (const std::uint32_t kind : {0U, 2U, 9U, 0xFFFFFFFFU}) {
        IKXPDevicePanel* panel = nullptr;
        const std::string call = "IKXPDevice::CreatePanel(" + std::to_string(kind) + ", out)";
        Trial::ExpectCode(device.CreatePanel(kind, &panel), KXP_NOT_IMPLEMENTED, call);
        Trial::Expect(panel == nullptr, call + " answers 19 and gives a panel", "none");
    }
}

void ExpectCheckedCommands(ModuleHost& host, IKXPDevice& device) {
    const auto check = [&host](IKXPDevice* of, std::int32_t id) {
        HostParams params({"x"}, host.hearing);
        return host.Module().CheckCommand(nullptr, of, id, &params);
    };
    const auto call = [](const std::string& of, std::int32_t id) {
        return "IKXPModule::CheckCommand(null, " + of + ", " + std::to_string(id) + ", params)";
    };
    for (const CommandTag& command : CommandsOf(device.GetDefinition())) {
        const KXPCode code = check(&device, command.id);
        Trial::Expect(code == KXP_OK || code == KXP_NULL_ARGUMENT,
                      call("device", command.id) + " of a command that the definition has answers " +
                          std::to_string(code),
                      "0 or 2");
    }
    constexpr std::int32_t kNobodys = 123456;
    Trial::ExpectCode(check(&device, kNobodys), KXP_COMMANDS_CHANGED, call("device", kNobodys));
    Trial::ExpectCode(check(nullptr, kNobodys), KXP_OK, call("null", kNobodys));
}

/// A setup has the name of its device in it.
void ExpectSetupToRename(IKXPDevice& device) {
    if (device.SetSetup(BusySetup().c_str()) != KXP_OK)
        return;
    const char* const name = device.GetName();
    Trial::Expect(name != nullptr && std::string(name) == "desk",
                  "IKXPDevice::GetName() behind SetSetup of a setup with Name=\"desk\" gives " +
                      (name != nullptr ? "\"" + std::string(name) + "\"" : "null"),
                  "\"desk\"");
}

/// Of devices that have nothing to do: if it takes long here, then everywhere.
void ExpectQuickReleases(ModuleHost& host) {
    constexpr int kDevices = 3;
    ReleaseWatch watch;
    for (int count = 0; count < kDevices; ++count) {
        HostedDevice device(host, "spare");
        device->Start();
        watch.End(device);
    }
}

} // namespace

/// What the headers state as a number, a text or a code, whatever the module is.
void AnswersAsStated(Trial& trial) {
    ModuleHost host;
    const std::string problem = host.Open(trial.ModuleFile());
    if (!problem.empty())
        throw Finding(problem);
    trial.Step("the entry point and the module");
    ExpectOneModule(host);
    ExpectNoDeviceYet(host);
    host.Introduce();
    HostedDevice device(host, "stated");
    ExpectNumbers(host.Module());
    ExpectNoSecondDevice(host.Module(), *device);
    ExpectCheckedCommands(host, *device);
    trial.Step("the device");
    ExpectCapabilities(*device);
    ExpectNames(*device);
    ExpectTexts(device);
    ExpectNoOtherPanels(*device);
    Trial::ExpectCode(device->IsRunning(), KXP_NO, "IKXPDevice::IsRunning() ahead of Start");
    Trial::ExpectCode(device->ExecuteCommand(3, nullptr, nullptr), KXP_BAD_COMMAND,
                      "IKXPDevice::ExecuteCommand(3, null, null)");
    trial.Step("Start and Stop");
    Trial::ExpectCode(CallModule("IKXPDevice::Start()", [&] { return device->Start(); }), KXP_OK,
                      "IKXPDevice::Start()");
    Trial::ExpectCode(CallModule("IKXPDevice::Stop()", [&] { return device->Stop(); }), KXP_OK, "IKXPDevice::Stop()");
    ExpectSetupToRename(*device);
    device.End();
    trial.Step("Release of devices");
    ExpectQuickReleases(host);
}
