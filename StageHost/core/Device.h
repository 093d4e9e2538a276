#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "CommandCall.h"
#include "CommandOutcome.h"
#include "DeviceObject.h"
#include "DeviceVariables.h"
#include "HostedModule.h"
#include "StoredCommandXml.h"
#include "WorkerPool.h"

namespace stagehost {

/// One device of the show, driven in the contract's order of calls.
///
/// Start, Stop and commands run on threads of the pool with a time limit, since a script may never return. A device
/// that did not come back in time is released on the main thread, which makes a blocked Start or Stop return. All
/// operations come on the main thread.
class Device {
public:
    using Milliseconds = std::chrono::milliseconds;

    /// @param module must outlive the device. @param name Latin-1, allowed by IsObjectName.
    /// @param conduct how the device takes requests of scripts.
    Device(HostedModule& module, std::string name, Conduct conduct = Conduct::Normal);

    /// Stops and releases the device if that has not happened.
    ~Device();
    Device(const Device&) = delete;
    Device& operator=(const Device&) = delete;

    /// Why a device could not be made.
    struct Problem {
        bool badSetup = false; ///< the stored setup was refused; otherwise the module is at fault
        QString text;
    };

    /// Makes the device in the module, applies the stored setup and takes over the definition. Without a stored setup
    /// the device is given its own first one, as after a setup dialog that was accepted unchanged. From then on scripts
    /// and tasks can find the device.
    /// A device that does not take its setup is usable all the same: it can be given another one.
    /// @return nothing on success.
    std::optional<Problem> Create(const std::string& setup);

    /// Gives the device a setup; before its start. An empty one stands for its own first one.
    /// @return nothing on success.
    std::optional<Problem> TakeSetup(const std::string& setup);

    /// Opens the device's setup dialog and waits until it is closed; before its start.
    /// @return as IKXPDevice::ShowSetup.
    KXPCode ShowSetup();

    /// The device's control panel, released by the caller; null when it makes none.
    IKXPDevicePanel* CreatePanel();

    /// What has become of a stored command in the edition of the driver that the device runs.
    enum class Standing {
        Valid,
        Changed, ///< it is there, with other parameters or another number
        Gone
    };

    /// Asks the module whether a stored command of the device is still as it was stored.
    Standing Check(const StoredCommandXml& stored);

    /// A stored command as the device's commands are now, with what the user entered.
    /// @return nothing when the device makes nothing of it.
    std::optional<StoredCommandXml> Update(const StoredCommandXml& stored);

    /// @return false when the start has not come back within the limit, or before the user wants the program to end.
    bool Start(Milliseconds limit);

    /// @return false when the stop has not come back in time.
    bool Stop(Milliseconds limit);

    /// Whether the device has been released.
    bool IsOver() const { return m_device == nullptr; }

    /// Sends a command and waits for its end. A parameter that is not named keeps its default.
    /// @param command its name or id. @param inputs must be parameters of the command, see CheckInputs.
    CommandOutcome Send(const CommandDefinition& command, const std::vector<ParameterInput>& inputs,
                        Milliseconds limit);

    /// Stops the device if it runs, releases it and waits for calls that were blocked. Requests that wait for it or
    /// that it has made are answered with 75.
    /// @return false when something of it is still running: only leaving the process at once ends that.
    bool Shutdown(Milliseconds limit);

    /// Whether the device may still hold a command that failed: the next one waits for that, some seconds long.
    bool MayHold() const { return m_mayHold; }

    const std::string& Name() const { return m_name; }
    DeviceVariables& Variables() { return *m_variables; }
    std::shared_ptr<HostValue> Status() const { return m_variables->FindState("Status"); }
    std::string ErrorText() const;
    /// Whether the device shows failures of its script in no variable.
    bool IsBlocked() const { return m_blocked; } ///< a call into the device has not come back in time
    bool IsSilent() const { return m_variables->FindState("Error") == nullptr; }

    /// Asks the device for its definition and takes it over if it has changed.
    /// @return the text, null when there is none.
    const char* RefreshDefinition();

    /// The device's setup as it gives it, for the show file; nothing where it gives none, as for want of memory.
    std::optional<std::string> Setup() const;

private:
    /// A command on its way; kept until the device has let go of it.
    struct Call : CommandCall {
        using CommandCall::CommandCall;
        std::shared_ptr<Task> task;
        KXPCode code = KXP_OK; ///< written by the task, read when it is done
    };

    /// One of the waits of MainWait.
    using Wait = bool (*)(const std::function<bool()>& condition, Milliseconds limit);

    CommandOutcome Await(Call& call, Milliseconds limit);
    CommandOutcome Unanswered();
    void Complete(CommandOutcome& outcome, const Call& call) const;
    void Settle();
    bool RunInTime(const std::shared_ptr<Task>& task, Milliseconds limit, Wait wait);
    void WithdrawCalls();
    bool AllBack() const;

    Host& TheHost() { return m_module.TheHost(); }

    HostedModule& m_module;
    WorkerPool& m_pool;
    const std::string m_name;
    const Conduct m_conduct;
    const std::shared_ptr<DeviceVariables> m_variables;
    std::shared_ptr<DeviceObject> m_object; ///< the device as scripts and tasks see it; null before Create
    IKXPDevice* m_device = nullptr;
    bool m_started = false;
    bool m_blocked = false; ///< a call did not come back in time: the next Stop will hardly do better
    bool m_mayHold = false; ///< the last command failed without ending: the device may hold it still
    std::vector<std::shared_ptr<Task>> m_tasks; ///< those that have not been seen to come back
    std::vector<std::shared_ptr<Call>> m_calls; ///< those whose context may still be used
};

} // namespace stagehost
