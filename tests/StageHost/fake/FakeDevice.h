#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "FakeScript.h"
#include "IKXPDevice.h"

/// A device that behaves as its script says, well or badly. The ways of a function:
///
///     say TEXT       the result is that text
///     echo           the result is the eight texts with "|" between them
///     fail TEXT      the error is that text, the command ends
///     held TEXT      the error is that text, the command does not end
///     refuse CODE    ExecuteCommand gives that code
///     elsewhere      ends on a thread of its own, after the device is ready again
///     early          ends before ExecuteCommand has returned
///     twice          ends two times
///     never          the device is ready again without an error, but the command does not end
///     hang           never ends; the device stays busy
///     block          ExecuteCommand itself does not return
///
/// What hangs hangs until Release, which lets every blocked call return.
class FakeDevice final : public IKXPDevice {
public:
    explicit FakeDevice(const char* definition);
    virtual ~FakeDevice() = default;

    KXPCode QueryInterface(const char* name, void** out) override;
    KXPCode Release() override;
    void SetDeviceVariables(IDeviceVariables* variables) override;
    KXPCode QueryCapability(std::uint32_t capability) override;
    void SetName(const char* name) override;
    const char* GetName() override;
    KXPCode ShowSetup(void* ignored) override;
    KXPCode IsRunning() override;
    KXPCode Start() override;
    KXPCode Stop() override;
    KXPCode OnTimerailEvent(ITimeData* time, std::int32_t action) override;
    KXPBitmap GetBitmap() override;
    KXPCode GetSetup(char** out) override;
    KXPCode SetSetup(const char* setup) override;
    KXPCode UpdateCommand(const char* commandXml, char** out) override;
    KXPCode Reserved14(void* argument) override;
    KXPCode Reserved15(void* argument) override;
    KXPCode Reserved16(void* argument) override;
    KXPCode ExecuteCommand(std::int32_t id, IObjectParams* params, IExecContext* context) override;
    KXPCode ReleaseString(char** text) override;
    const char* GetDefinition() override;
    KXPCode Reserved20() override;
    KXPCode CreatePanel(std::uint32_t kind, IKXPDevicePanel** out) override;

private:
    /// What calls that are still blocked go on to use after the device is gone.
    struct Gate {
        std::mutex lock; ///< guards released
        std::condition_variable changed;
        bool released = false;

        void WaitForRelease();
        void Open();
    };

    using Work = std::function<void()>;

    void Serve();
    void Post(Work work);
    void Set(const char* variable, const std::string& text);
    void SetStatus(std::int32_t index);
    void Load(const std::string& text, bool readable);
    KXPCode Execute(const std::string& name, IObjectParams* params, IExecContext* context);
    void Behave(const std::string& way, IObjectParams* params, IExecContext* context);
    static std::string ParamText(IObjectParams* params, std::uint32_t index);
    static void SetResult(IObjectParams* params, const std::string& text);

    const std::string m_definition;
    std::string m_name;
    std::string m_setup;
    IDeviceVariables* m_variables = nullptr;
    FakeScript m_script;
    std::shared_ptr<Gate> m_gate = std::make_shared<Gate>();

    std::mutex m_lock; ///< guards the four fields below
    std::deque<Work> m_queue;
    bool m_running = false;
    bool m_busy = false;
    int m_calls = 0; ///< of Stop, that have not returned
    std::condition_variable m_changed;
    std::thread m_worker;
    std::vector<std::thread> m_helpers;
};
