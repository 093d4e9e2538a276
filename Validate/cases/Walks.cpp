#include <map>

#include "BusyScript.h"
#include "Cases.h"

namespace {

/// A device with what the host knows of it.
struct Known {
    std::unique_ptr<HostedDevice> device;
    std::string name;
    bool isRunning = false;
};

/// One walk: some devices, and calls at random whose answers are known beforehand.
class Walk {
public:
    Walk(Trial& trial, ModuleHost& host)
        : m_trial(trial)
        , m_host(host) {}

    void Go(int steps) {
        while (steps-- > 0)
            (this->*kSteps[m_trial.Roll(std::size(kSteps))])();
        m_devices.clear();
        ExpectCount();
    }

private:
    using Step = void (Walk::*)();

    void Create() {
        if (m_devices.size() >= kMostDevices)
            return;
        const std::string name = "desk " + std::to_string(m_trial.Roll(1000));
        m_trial.Step("CreateDevice " + name);
        m_devices.push_back({std::make_unique<HostedDevice>(m_host, name), name});
        ExpectCount();
    }
    void Release() {
        if (m_devices.empty())
            return;
        const std::size_t number = Pick();
        m_trial.Step("Stop and Release of " + m_devices[number].name);
        m_devices.erase(m_devices.begin() + static_cast<std::ptrdiff_t>(number));
        ExpectCount();
    }
    void Start() {
        OnOne("Start", [](Known& known) {
            Trial::ExpectCode((*known.device)->Start(), KXP_OK, "IKXPDevice::Start()");
            known.isRunning = true;
        });
    }
    void Stop() {
        OnOne("Stop", [](Known& known) {
            Trial::ExpectCode((*known.device)->Stop(), KXP_OK, "IKXPDevice::Stop()");
            known.isRunning = false;
        });
    }
    void Rename() {
        OnOne("SetName", [this](Known& known) {
            known.name = "desk " + std::to_string(m_trial.Roll(1000));
            (*known.device)->SetName(known.name.c_str());
        });
    }
    void Setup() {
        OnOne("SetSetup", [this](Known& known) {
            const std::string setup = BusySetup(", Extra" + std::to_string(m_trial.Roll(9)) + ": function () {}");
            if ((*known.device)->SetSetup(setup.c_str()) == KXP_OK)
                known.name = "desk";
        });
    }
    void BadSetup() {
        OnOne("SetSetup of no setup", [](Known& known) {
            Trial::ExpectCode((*known.device)->SetSetup("<Other/>"), KXP_BAD_SETUP, "IKXPDevice::SetSetup(<Other/>)");
        });
    }
    void Work() {
        OnOne("ExecuteCommand", [this](Known& known) {
            const KXPCode code = known.device->Send(m_function, CallOfWork("x"), &m_tally);
            Trial::Expect(code == KXP_OK || code == KXP_BAD_COMMAND || code == KXP_SCRIPT_FAILED,
                          "IKXPDevice::ExecuteCommand(" + std::to_string(m_function) + ", Work) answers " +
                              std::to_string(code),
                          "0, 1 or 3");
        });
    }
    void Unknown() {
        OnOne("ExecuteCommand of an unknown command", [](Known& known) {
            Trial::ExpectCode(known.device->Send(123456, {"a"}), KXP_BAD_COMMAND,
                              "IKXPDevice::ExecuteCommand(123456, ...)");
        });
    }
    void Look() {
        OnOne("IsRunning, GetName, GetDefinition", [](Known& known) {
            IKXPDevice& device = **known.device;
            Trial::ExpectCode(device.IsRunning(), known.isRunning ? KXP_OK : KXP_NO, "IKXPDevice::IsRunning()");
            const char* const name = device.GetName();
            Trial::Expect(name != nullptr && known.name == name,
                          "IKXPDevice::GetName() gives " + (name != nullptr ? "\"" + std::string(name) + "\"" : "null"),
                          "\"" + known.name +
                              "\", from the last SetName, or from the Name of a setup that was applied "
                              "since");
            device.GetDefinition();
        });
    }

    template <typename Work>
    void OnOne(const char* what, const Work& work) {
        if (m_devices.empty())
            return;
        Known& known = m_devices[Pick()];
        if (m_function < 0)
            m_function = known.device->CommandId("Execute Function With Params");
        m_trial.Step(what + (" on " + known.name));
        work(known);
    }
    std::size_t Pick() { return m_trial.Roll(static_cast<std::uint32_t>(m_devices.size())); }
    void ExpectCount() {
        std::uint32_t count = 0;
        m_host.Module().GetDeviceCount(&count);
        Trial::ExpectCount(count, static_cast<long>(m_devices.size()),
                           "devices are counted by IKXPModule::GetDeviceCount");
    }

    static constexpr std::size_t kMostDevices = 4;
    static constexpr Step kSteps[] = {&Walk::Create, &Walk::Release,  &Walk::Start, &Walk::Stop,    &Walk::Rename,
                                      &Walk::Setup,  &Walk::BadSetup, &Walk::Work,  &Walk::Unknown, &Walk::Look};
    Trial& m_trial;
    ModuleHost& m_host;
    ContextTally m_tally;
    std::vector<Known> m_devices; ///< gone before the tally
    std::int32_t m_function = -1;
};

} // namespace

void TakesWalks(Trial& trial) {
    ModuleHost host;
    LoadOrFail(host, trial);
    constexpr std::uint32_t kMostSteps = 60;
    for (int walk = trial.Times(100000, 12); walk > 0; --walk)
        Walk(trial, host).Go(1 + static_cast<int>(trial.Roll(kMostSteps)));
}
