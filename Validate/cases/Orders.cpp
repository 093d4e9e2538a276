#include <algorithm>
#include <string>
#include <utility>

#include "BusyScript.h"
#include "Cases.h"

namespace {

/// A module with one device, and what the host knows of them.
struct Scene {
    explicit Scene(ModuleHost& itsHost)
        : host(itsHost)
        , variables(new HostVariables(host.hearing)) {
        Trial::ExpectCode(host.Module().CreateDevice(nullptr, &device), KXP_OK, "IKXPModule::CreateDevice(null, out)");
    }
    ~Scene() {
        for (IKXPDevice* one : {device, spare})
            if (one != nullptr) {
                one->Stop();
                one->Release();
                host.DropLink(one);
            }
        if (isModuleGone)
            host.Forget();
    }
    Scene(const Scene&) = delete;
    Scene& operator=(const Scene&) = delete;

    /// A device whose module is gone refuses: with 19, or with what the operation answers when it has nothing to give.
    void ExpectCode(KXPCode code, KXPCode expected, const std::string& call,
                    KXPCode nothing = KXP_NOT_IMPLEMENTED) const {
        if (!isModuleGone)
            Trial::ExpectCode(code, expected, "IKXPDevice::" + call);
        else if (code != nothing)
            Trial::ExpectCode(code, KXP_NOT_IMPLEMENTED, "IKXPDevice::" + call + " of a device whose module is gone");
    }

    ModuleHost& host;
    const std::unique_ptr<HostVariables> variables; ///< gone after the device
    IKXPDevice* device = nullptr;                   ///< null once it is released
    IKXPDevice* spare = nullptr;
    bool isRunning = false;
    bool isModuleGone = false;
};

/// One call that a host may make at the wrong time.
struct Call {
    enum Whom {
        ModuleLife, ///< of the module, which is then loaded anew
        Module,
        Device
    };
    Whom whom;
    const char* name;
    void (*make)(Scene& scene);
};

void ExpectCount(Scene& s) {
    std::uint32_t count = 0;
    s.host.Module().GetDeviceCount(&count);
    const int expected = (s.device != nullptr ? 1 : 0) + (s.spare != nullptr ? 1 : 0);
    Trial::ExpectCount(count, expected, "devices are counted by IKXPModule::GetDeviceCount");
    const bool isThere = s.host.Module().GetDevice(0) != nullptr;
    Trial::Expect(isThere == (expected > 0),
                  std::string("IKXPModule::GetDevice(0) gives ") + (isThere ? "a device" : "null") + " of " +
                      std::to_string(expected),
                  isThere ? "null" : "a device");
}

void MakeSpare(Scene& s) {
    if (s.spare == nullptr)
        s.host.Module().CreateDevice(nullptr, &s.spare);
    ExpectCount(s);
}

void ReleaseModule(Scene& s) {
    Trial::ExpectCode(s.host.Module().Release(), KXP_OK, "IKXPModule::Release()");
    s.isModuleGone = true;
    s.isRunning = false;
}

void ReleaseDevice(Scene& s) {
    Trial::ExpectCode(std::exchange(s.device, nullptr)->Release(), KXP_OK, "IKXPDevice::Release()");
    s.isRunning = false;
}

void Start(Scene& s) {
    s.ExpectCode(s.device->Start(), KXP_OK, "Start()");
    s.isRunning = !s.isModuleGone;
}

void Stop(Scene& s) {
    s.ExpectCode(s.device->Stop(), KXP_OK, "Stop()");
    s.isRunning = false;
}

void ExpectRunning(Scene& s) {
    s.ExpectCode(s.device->IsRunning(), s.isRunning ? KXP_OK : KXP_NO, "IsRunning()", KXP_NO);
}

void ReadSetup(Scene& s) {
    char* text = nullptr;
    s.ExpectCode(s.device->GetSetup(&text), KXP_OK, "GetSetup(out)");
    if (text != nullptr)
        s.device->ReleaseString(&text);
}

void Execute(Scene& s) {
    HostParams params(CallOfWork("x"), s.host.hearing);
    const KXPCode code = s.device->ExecuteCommand(123456, &params, nullptr);
    Trial::Expect(code != KXP_OK, "IKXPDevice::ExecuteCommand(123456, ...) answers 0", "a refusal");
}

void MakePanel(Scene& s) {
    IKXPDevicePanel* panel = nullptr;
    s.ExpectCode(s.device->CreatePanel(9, &panel), KXP_NOT_IMPLEMENTED, "CreatePanel(9, out)");
}

constexpr Call kCalls[] = {
    {Call::ModuleLife, "Initialize", [](Scene& s) { s.host.Module().Initialize(s.host.Root(), nullptr, nullptr); }},
    {Call::ModuleLife, "SetDeviceHost", [](Scene& s) { s.host.Module().SetDeviceHost(&s.host); }},
    {Call::Module, "GetDefinition", [](Scene& s) { s.host.Module().GetDefinition(); }},
    {Call::Module, "GetDeviceCount", &ExpectCount},
    {Call::Module, "CreateDevice", &MakeSpare},
    {Call::Module, "CheckCommand",
     [](Scene& s) {
         HostParams params({"x"}, s.host.hearing);
         s.host.Module().CheckCommand(nullptr, s.device, 3, &params);
     }},
    {Call::ModuleLife, "Terminate", [](Scene& s) { s.host.Module().Terminate(nullptr); }},
    {Call::ModuleLife, "Release of the module", &ReleaseModule},
    {Call::Device, "QueryInterface",
     [](Scene& s) {
         void* face = nullptr;
         const KXPCode code = s.device->QueryInterface("IKXPDevice", &face);
         if (code != KXP_OK || !s.isModuleGone) // a device whose module is gone may answer as before
             s.ExpectCode(code, KXP_OK, "QueryInterface(IKXPDevice, out)", KXP_NO_INTERFACE);
     }},
    {Call::Device, "SetDeviceVariables", [](Scene& s) { s.device->SetDeviceVariables(s.variables.get()); }},
    {Call::Device, "QueryCapability",
     [](Scene& s) { s.ExpectCode(s.device->QueryCapability(1), KXP_OK, "QueryCapability(1)", KXP_NO); }},
    {Call::Device, "SetName", [](Scene& s) { s.device->SetName("desk"); }},
    {Call::Device, "GetName",
     [](Scene& s) { Trial::Expect(s.device->GetName() != nullptr, "IKXPDevice::GetName() gives null", "a text"); }},
    {Call::Device, "IsRunning", &ExpectRunning},
    {Call::Device, "Start", &Start},
    {Call::Device, "Stop", &Stop},
    {Call::Device, "OnTimerailEvent",
     [](Scene& s) { s.ExpectCode(s.device->OnTimerailEvent(nullptr, 1), KXP_OK, "OnTimerailEvent(null, 1)"); }},
    {Call::Device, "GetBitmap", [](Scene& s) { s.device->GetBitmap(); }},
    {Call::Device, "GetSetup", &ReadSetup},
    {Call::Device, "SetSetup",
     [](Scene& s) { s.ExpectCode(s.device->SetSetup(BusySetup().c_str()), KXP_OK, "SetSetup(a script)"); }},
    {Call::Device, "UpdateCommand",
     [](Scene& s) {
         char* out = nullptr;
         s.ExpectCode(s.device->UpdateCommand("<x/>", &out), KXP_NOT_IMPLEMENTED, "UpdateCommand(<x/>, out)");
     }},
    {Call::Device, "ExecuteCommand", &Execute},
    {Call::Device, "GetDefinition", [](Scene& s) { s.device->GetDefinition(); }},
    {Call::Device, "CreatePanel", &MakePanel},
    {Call::Device, "Release of the device", &ReleaseDevice},
};
constexpr std::uint32_t kCallCount = std::size(kCalls);

/// How far the device has come before the two calls.
constexpr const char* kStages[] = {"new", "set up", "running"};

bool IsPossible(const Scene& scene, const Call& call) {
    if (call.whom == Call::Device)
        return scene.device != nullptr;
    return !scene.isModuleGone || call.make == &ReleaseModule;
}

void BringTo(Scene& scene, std::uint32_t stage) {
    if (stage > 0) {
        scene.device->SetDeviceVariables(scene.variables.get());
        scene.device->SetName("desk");
        Trial::ExpectCode(scene.device->SetSetup(BusySetup().c_str()), KXP_OK, "IKXPDevice::SetSetup(a script)");
        scene.device->GetDefinition();
    }
    if (stage > 1)
        Start(scene);
}

void Play(ModuleHost& host, std::initializer_list<const Call*> calls, std::uint32_t stage) {
    Scene scene(host);
    BringTo(scene, stage);
    for (const Call* call : calls)
        if (IsPossible(scene, *call))
            call->make(scene);
    if (scene.device != nullptr)
        ExpectRunning(scene);
    if (!scene.isModuleGone)
        ExpectCount(scene);
}

} // namespace

/// The module is loaded once for all pairs that leave it as it was. Each pair at each stage has a number; the dice deal
/// them.
void TakesWrongOrders(Trial& trial) {
    std::vector<std::uint32_t> deck(kCallCount * kCallCount * std::size(kStages));
    for (std::uint32_t number = 0; number < deck.size(); ++number)
        deck[number] = number;
    for (std::uint32_t left = static_cast<std::uint32_t>(deck.size()); left > 1; --left)
        std::swap(deck[left - 1], deck[trial.Roll(left)]);
    deck.resize(std::min<std::size_t>(deck.size(), static_cast<std::size_t>(trial.Times(1 << 20, 60))));
    std::unique_ptr<ModuleHost> host;
    for (const std::uint32_t number : deck) {
        const Call& first = kCalls[number % kCallCount];
        const Call& second = kCalls[number / kCallCount % kCallCount];
        const std::uint32_t stage = number / kCallCount / kCallCount;
        trial.Step(std::string(first.name) + ", then " + second.name + " on a device that is " + kStages[stage]);
        if (host == nullptr)
            LoadOrFail(*(host = std::make_unique<ModuleHost>()), trial);
        Play(*host, {&first, &second}, stage);
        if (first.whom == Call::ModuleLife || second.whom == Call::ModuleLife)
            host.reset();
    }
}
