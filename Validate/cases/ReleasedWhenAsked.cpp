#include <algorithm>
#include <atomic>
#include <functional>
#include <iterator>
#include <mutex>
#include <thread>

#include "BusyScript.h"
#include "Cases.h"

namespace {

/// What a module asks of the host itself, which is no matter of one device.
constexpr const char* kCallsOfTheRoot[] = {"QueryInterface",  "GetLogSettings",    "GetMainWindow",
                                           "GetRuntimeInfo",  "GetFolder",         "GetRemote",
                                           "RegisterFactory", "UnregisterFactory", "GetResource"};

/// Stops and releases the device from inside the n-th question that comes on the main thread, and hears what comes
/// behind that, on whatever thread.
class ReleasingHost {
public:
    ReleasingHost(HostedDevice& device, int question)
        : m_device(device)
        , m_left(question) {}

    void Hear(const char* call) {
        if (std::all_of(std::begin(kCallsOfTheRoot), std::end(kCallsOfTheRoot),
                        [call](const char* root) { return std::string(root) != call; }))
            HearOfDevice(call);
    }
    void Begin() { m_listens = true; }
    bool HasReleased() const { return m_isReleased; }
    /// What was asked behind the release; empty for nothing.
    std::string Wrong() const {
        const std::lock_guard<std::mutex> guard(m_lock);
        return m_wrong;
    }

private:
    void HearOfDevice(const char* call) {
        if (m_isReleased) {
            const std::lock_guard<std::mutex> guard(m_lock);
            m_wrong =
                std::string(call) + " is called on what belongs to a device that was released from inside " + m_asked;
        } else if (m_listens && std::this_thread::get_id() == m_main && --m_left == 0) {
            m_listens = false; // a Stop asks as well
            m_asked = call;
            m_device->Stop();
            m_device.GiveUp()->Release();
            m_isReleased = true;
            if (m_asked == "GetVariable" || m_asked == "SetDefinition") // else a value of these is what was asked
                m_device.Variables().Drop();
        }
    }

    HostedDevice& m_device;
    const std::thread::id m_main = std::this_thread::get_id();
    bool m_listens = false; ///< of the main thread, as the next two
    int m_left;
    std::string m_asked;
    std::atomic<bool> m_isReleased{false};
    mutable std::mutex m_lock;
    std::string m_wrong; ///< behind the lock
};

struct AskingOperation {
    const char* name;
    bool isRunning; ///< whether the device has been started
    void (*call)(HostedDevice& device);
};

constexpr AskingOperation kAskingOperations[] = {
    {"SetSetup of a stopped device", false,
     [](HostedDevice& device) { device->SetSetup(BusySetup(", Other: function () {}").c_str()); }},
    {"SetSetup of a running device", true,
     [](HostedDevice& device) { device->SetSetup(BusySetup(", Other: function () {}").c_str()); }},
    {"GetSetup", true,
     [](HostedDevice& device) {
         char* text = nullptr;
         device->GetSetup(&text); // goes with the process where there is no device to give it back to
     }},
    {"GetDefinition", false, [](HostedDevice& device) { device->GetDefinition(); }},
    {"Start", false, [](HostedDevice& device) { device->Start(); }},
    {"SetName", true, [](HostedDevice& device) { device->SetName("other"); }},
};

/// @return whether the operation has asked so often that the device was released.
bool ReleaseAtQuestion(ModuleHost& host, const AskingOperation& operation, int question) {
    HostedDevice device(host);
    device->SetSetup(BusySetup().c_str());
    ReleasingHost releasing(device, question);
    host.hearing = [&releasing](const char* call) { releasing.Hear(call); };
    if (operation.isRunning)
        device->Start();
    const IKXPDevice* const gone = &*device;
    releasing.Begin();
    operation.call(device);
    const bool hasReleased = releasing.HasReleased();
    if (hasReleased)
        host.DropLink(gone);
    else
        device.End();
    const std::string wrong = releasing.Wrong();
    host.hearing = nullptr;
    Trial::Expect(wrong.empty(), std::string(operation.name) + ", question " + std::to_string(question) + ": " + wrong,
                  "behind Release the module begins no call on the device's variables, values and link");
    return hasReleased;
}

} // namespace

void AsksNothingOnceReleased(Trial& trial) {
    ModuleHost host;
    LoadOrFail(host, trial);
    int released = 0;
    for (const AskingOperation& operation : kAskingOperations)
        for (int question = 1; question <= trial.Times(400, 5); ++question) {
            trial.Step(std::string(operation.name) + ", released at question " + std::to_string(question));
            if (!ReleaseAtQuestion(host, operation, question))
                break;
            ++released;
        }
    Trial::Expect(released > 0, "the module asks the host for nothing on its main thread", "at least its variables");
}
