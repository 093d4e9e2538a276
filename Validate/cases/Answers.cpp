#include <array>

#include "BusyScript.h"
#include "Cases.h"

namespace {

constexpr std::size_t kHuge = 1 << 20;

void ExpectFaces(IMInterface& object, const char* const* begin, const char* const* end, const std::string& what) {
    int canary = 0;
    void* out = &canary;
    Trial::ExpectCode(object.QueryInterface("INobodyHasThis", &out), KXP_NO_INTERFACE,
                      what + "'s QueryInterface of an unknown face");
    Trial::Expect(out == nullptr, what + "'s QueryInterface of an unknown face clears the pointer");
    Trial::ExpectCode(object.QueryInterface(nullptr, &out), KXP_BAD_INTERFACE_ARG,
                      what + "'s QueryInterface of a null name");
    Trial::ExpectCode(object.QueryInterface(*begin, nullptr), KXP_BAD_INTERFACE_ARG,
                      what + "'s QueryInterface into a null pointer");
    for (const char* const* name = begin; name != end; ++name) {
        Trial::ExpectCode(object.QueryInterface(*name, &out), KXP_OK, what + "'s QueryInterface of " + *name);
        void* again = nullptr;
        static_cast<IMInterface*>(out)->QueryInterface(*name, &again);
        Trial::Expect(again == out, what + " gives the same " + *name + " from each face");
    }
}

/// Texts that no host should send, each of which has been sent by one.
std::vector<std::string> OddTexts() {
    std::string all;
    for (int character = 1; character < 256; ++character)
        all += static_cast<char>(character);
    return {"",         " ",      "\xE4\xF6\xFC", all,    std::string(kHuge, 'x'), "<", "<![CDATA[", "%s%n%s",
            "../../..", "\"'&<>", "-1",           "1e999"};
}

} // namespace

void AnswersForFaces(Trial& trial) {
    ModuleHost host;
    LoadOrFail(host, trial);
    const std::array<const char*, 1> ofModule = {"IKXPModule"};
    trial.Step("the module");
    ExpectFaces(host.Module(), ofModule.begin(), ofModule.end(), "the module");
    const std::array<const char*, 2> ofDevice = {"IMInterface", "IKXPDevice"};
    const HostedDevice device(host);
    trial.Step("the device");
    ExpectFaces(*device, ofDevice.begin(), ofDevice.end(), "the device");
}

void RefusesNulls(Trial& trial) {
    ModuleHost host;
    LoadOrFail(host, trial);
    IKXPModule& module = host.Module();
    trial.Step("the module");
    Trial::ExpectCode(module.CreateDevice(nullptr, nullptr), KXP_NULL_ARGUMENT, "CreateDevice into null");
    Trial::ExpectCode(module.GetModuleVersion(nullptr), KXP_OK, "GetModuleVersion into null");
    Trial::ExpectCode(module.GetDeviceCount(nullptr), KXP_OK, "GetDeviceCount into null");
    Trial::Expect(module.GetDevice(0xFFFFFFFF) == nullptr, "GetDevice beyond the list gives null");
    Trial::ExpectCode(module.CheckCommand(nullptr, nullptr, 0, nullptr), KXP_OK, "CheckCommand of no device");
    HostedDevice device(host);
    IKXPDevice* occupied = &*device;
    Trial::ExpectCode(module.CreateDevice(nullptr, &occupied), KXP_NULL_ARGUMENT,
                      "CreateDevice into an occupied pointer");
    trial.Step("the device");
    Trial::ExpectCode(device->GetSetup(nullptr), KXP_NULL_ARGUMENT, "GetSetup into null");
    Trial::ExpectCode(device->SetSetup(nullptr), KXP_NULL_ARGUMENT, "SetSetup of null");
    Trial::ExpectCode(device->SetSetup(""), KXP_NULL_ARGUMENT, "SetSetup of an empty text");
    Trial::ExpectCode(device->ReleaseString(nullptr), KXP_NULL_ARGUMENT, "ReleaseString of null");
    Trial::ExpectCode(device->CreatePanel(1, nullptr), KXP_NULL_ARGUMENT, "CreatePanel into null");
    Trial::ExpectCode(device->UpdateCommand(nullptr, nullptr), KXP_NOT_IMPLEMENTED, "UpdateCommand of null");
    Trial::ExpectCode(device->ExecuteCommand(0, nullptr, nullptr), KXP_BAD_COMMAND,
                      "ExecuteCommand without parameters");
    device->SetName(nullptr);
    Trial::Expect(device->GetName() != nullptr && *device->GetName() == '\0', "a null name is the empty one");
    Trial::ExpectCode(device->OnTimerailEvent(nullptr, 0), KXP_OK, "OnTimerailEvent without a time");
}

void TakesGarbage(Trial& trial) {
    ModuleHost host;
    LoadOrFail(host, trial);
    HostedDevice device(host);
    device->Start();
    for (const std::string& text : OddTexts()) {
        trial.Step("a text of " + std::to_string(text.size()) + " bytes: " + text.substr(0, 20));
        device->SetName(text.c_str());
        Trial::Expect(device->GetName() == text, "the name is the text that was given");
        char* out = nullptr;
        if (device->UpdateCommand(text.c_str(), &out) == KXP_OK)
            device->ReleaseString(&out);
        Trial::Expect(device->SetSetup(text.c_str()) != KXP_OK, "no such text is a setup");
        for (int id = -2; id < 6; ++id)
            device.Send(id, std::vector<std::string>(10, text));
    }
    for (const std::int32_t action : {-1, 5, INT32_MAX, INT32_MIN})
        device->OnTimerailEvent(nullptr, action);
    for (std::uint32_t capability = 0; capability < 5; ++capability)
        Trial::ExpectCode(device->QueryCapability(capability), capability == 1 || capability == 2 ? KXP_OK : KXP_NO,
                          "QueryCapability of " + std::to_string(capability));
    device.End();
}
