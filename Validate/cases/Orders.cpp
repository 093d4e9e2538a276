#include <algorithm>
#include <string>

#include "BusyScript.h"
#include "Cases.h"

namespace {

/// A module with one device, and what the host knows of them.
struct Scene {
    explicit Scene(ModuleHost& itsHost)
        : host(itsHost)
        , variables(new HostVariables(host.hearing)) {
        Trial::ExpectCode(host.Module().CreateDevice(nullptr, &device), KXP_OK, "CreateDevice");
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

    /// A device whose module is gone refuses.
    void ExpectCode(KXPCode code, KXPCode expected, const char* operation,
                    KXPCode refusal = KXP_NOT_IMPLEMENTED) const {
        Trial::ExpectCode(code, isModuleGone ? refusal : expected, operation);
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
    const std::uint32_t expected = (s.device != nullptr ? 1 : 0) + (s.spare != nullptr ? 1 : 0);
    Trial::Expect(count == expected, "GetDeviceCount gives " + std::to_string(expected));
    Trial::Expect((s.host.Module().GetDevice(0) != nullptr) == (expected > 0), "GetDevice gives a device that is");
}

void MakeSpare(Scene& s) {
    if (s.spare == nullptr)
        s.host.Module().CreateDevice(nullptr, &s.spare);
    ExpectCount(s);
}

void ReleaseModule(Scene& s) {
    Trial::ExpectCode(s.host.Module().Release(), KXP_OK, "Release of the module");
    s.isModuleGone = true;
    s.isRunning = false;
}

void ReleaseDevice(Scene& s) {
    Trial::ExpectCode(std::exchange(s.device, nullptr)->Release(), KXP_OK, "Release of the device");
    s.isRunning = false;
}

void Start(Scene& s) {
    s.ExpectCode(s.device->Start(), KXP_OK, "Start");
    s.isRunning = !s.isModuleGone;
}

void Stop(Scene& s) {
    s.ExpectCode(s.device->Stop(), KXP_OK, "Stop");
    s.isRunning = false;
}

void ExpectRunning(Scene& s) {
    Trial::ExpectCode(s.device->IsRunning(), s.isRunning ? KXP_OK : KXP_NO, "IsRunning");
}

void ReadSetup(Scene& s) {
    char* text = nullptr;
    s.ExpectCode(s.device->GetSetup(&text), KXP_OK, "GetSetup");
    if (text != nullptr)
        s.device->ReleaseString(&text);
}

void Execute(Scene& s) {
    HostParams params(CallOfWork("x"), s.host.hearing);
    const KXPCode code = s.device->ExecuteCommand(123456, &params, nullptr);
    Trial::Expect(code != KXP_OK, "ExecuteCommand of an unknown command is refused");
}

void MakePanel(Scene& s) {
    IKXPDevicePanel* panel = nullptr;
    s.ExpectCode(s.device->CreatePanel(9, &panel), KXP_NOT_IMPLEMENTED, "CreatePanel of an unknown kind");
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
         s.ExpectCode(s.device->QueryInterface("IKXPDevice", &face), KXP_OK, "QueryInterface", KXP_NO_INTERFACE);
     }},
    {Call::Device, "SetDeviceVariables", [](Scene& s) { s.device->SetDeviceVariables(s.variables.get()); }},
    {Call::Device, "QueryCapability",
     [](Scene& s) { s.ExpectCode(s.device->QueryCapability(1), KXP_OK, "QueryCapability", KXP_NO); }},
    {Call::Device, "SetName", [](Scene& s) { s.device->SetName("desk"); }},
    {Call::Device, "GetName", [](Scene& s) { Trial::Expect(s.device->GetName() != nullptr, "GetName gives a text"); }},
    {Call::Device, "IsRunning", &ExpectRunning},
    {Call::Device, "Start", &Start},
    {Call::Device, "Stop", &Stop},
    {Call::Device, "OnTimerailEvent",
     [](Scene& s) { s.ExpectCode(s.device->OnTimerailEvent(nullptr, 1), KXP_OK, "OnTimerailEvent"); }},
    {Call::Device, "GetBitmap", [](Scene& s) { s.device->GetBitmap(); }},
    {Call::Device, "GetSetup", &ReadSetup},
    {Call::Device, "SetSetup",
     [](Scene& s) { s.ExpectCode(s.device->SetSetup(BusySetup().c_str()), KXP_OK, "SetSetup"); }},
    {Call::Device, "UpdateCommand",
     [](Scene& s) {
         char* out = nullptr;
         Trial::ExpectCode(s.device->UpdateCommand("<x/>", &out), KXP_NOT_IMPLEMENTED, "UpdateCommand");
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
        Trial::ExpectCode(scene.device->SetSetup(BusySetup().c_str()), KXP_OK, "SetSetup");
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
