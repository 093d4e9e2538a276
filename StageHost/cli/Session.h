#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <vector>

#include <QJsonObject>
#include <QTimer>

#include "Device.h"
#include "DeviceSettings.h"
#include "Failure.h"
#include "Host.h"
#include "HostedModule.h"
#include "Interrupt.h"
#include "LogFollower.h"
#include "LogScreen.h"
#include "ObjectKinds.h"
#include "Options.h"
#include "PassingFolder.h"
#include "Peers.h"
#include "Show.h"
#include "StoredCommands.h"
#include "ThrownTexts.h"

namespace stagehost {

/// What is said to somebody who names a device that the show does not have, with those that it has.
Failure NoDevice(const Show& show, const QString& name);

/// One run of the host: the module loaded, the show's variables and devices made.
/// Every call into the module is bounded in time, and Ctrl-C breaks off what is
/// waited for, so that the devices are stopped before the program ends.   [host main]
class Session {
public:
    explicit Session(const Options& options);

    /// Ends everything that Close has not ended.
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /// Loads the module and makes the show's variables and devices.
    MaybeFailure Open(const Show& show);

    /// Starts the peers of the show first, so that settings and ports can name them.
    MaybeFailure OpenWithPeers(const Show& show);

    /// Starts every device, and loads its script into it.
    MaybeFailure Start();

    /// Starts one device. @return what is wrong when it does not come back in time.
    MaybeFailure StartDevice(Device& device);

    /// Stops a device that runs and starts it with another setup. Its variables keep their values. One that does not
    /// come back from its stop is released, and another takes its place.
    MaybeFailure Restart(const QString& name, const std::string& setup);

    /// Whether a call of a device or a peer is waited for.
    bool IsBusy() const { return m_calls > 0; }

    /// Loads a show device's script, if it has one, into its device.
    MaybeFailure LoadScript(Device& device, const ShowDevice& described);

    /// Loads a script file into a device by its command "Load From File"; one that is put together of several as text.
    MaybeFailure LoadFile(Device& device, const QString& path);

    MaybeFailure LoadText(Device& device, const QString& text);

    /// Sends a command by its name or id with inputs that are checked first.
    /// @param outcome receives how it went, when it was sent.
    MaybeFailure Send(Device& device, const QString& command, const std::vector<ParameterInput>& inputs,
                      CommandOutcome* outcome);

    /// Why the device does not take such a command; empty when it does.
    static QString WhyNotSent(Device& device, const QString& command, const std::vector<ParameterInput>& inputs);

    /// Sends a stored command of the show, as the driver of now has it.
    MaybeFailure SendStored(const QString& name, CommandOutcome* outcome);

    /// Has the module check the stored commands anew and tells the user what is not as it was stored. Open has done so.
    void CheckStored();
    const std::vector<CheckedCommand>& StoredOnes() const { return m_stored; }

    /// Whether the device has not taken its setup of the show file, and runs with a new one.
    bool HasRefusedSetup(const QString& device) const { return m_refusedSetups.contains(device); }

    /// What the device's setup of now says, apart from what "settings" and --set say: the setup as it may be stored.
    MaybeFailure SetupToKeep(const Device& device, QString& setup) const;
    /// What "settings" and --set say.
    DeviceSettings& Settings() { return m_settings; }

    /// Leaves out, while the show is opened, what a command that writes the show file tells by itself.
    void SetQuiet(bool quiet) { m_quiet = quiet; }

    /// The window that the module's dialogs belong to; before Open.
    void SetMainWindow(std::uintptr_t window) { m_mainWindow = window; }
    /// What the module's dialogs let the user choose with; before Open. Outlives the session; null for none.
    void SetDialogs(UserDialogs* dialogs) { m_dialogs = dialogs; }

    /// Waits until a condition holds, as long as the wait says or for the limit of answers. A name that is not there,
    /// and a condition that can never hold, is a failure at once.
    MaybeFailure WaitFor(const ShowWait& wait);
    /// Has a peer of the show do something. @param result receives what a call gave.
    MaybeFailure Work(const PeerDeed& deed, QString* result);
    /// Lets a time pass while the show goes on. @return a failure when the user ends it.
    static MaybeFailure Pause(std::chrono::milliseconds time);

    Device* FindDevice(const QString& name);

    /// What is said to somebody who names what the show does not have, with the names that it has.
    Failure NoDevice(const QString& name) const { return stagehost::NoDevice(m_show, name); }
    Failure NoPeer(const QString& name) const;
    Failure NoVariable(const QString& name) const;
    Failure NoObject(ObjectKind kind, const QString& name) const;
    Failure NoObject(const QString& name) const; ///< of any kind

    const std::vector<std::unique_ptr<Device>>& Devices() const { return m_devices; }
    const Peers& RunningPeers() const { return m_peers; }
    Host& TheHost() { return *m_host; }

    /// Prints what scripts have thrown beside the calls that were made, up to now.
    /// @return the first of it in this run, a failure with 1; nothing when there was none.
    MaybeFailure TellThrown();

    /// A command's end as JSON, with what was thrown beside it up to now: then the run is not
    /// "ok", whatever the result.
    /// @param failure the command's own.
    QJsonObject OutcomeJson(const CommandOutcome& outcome, const MaybeFailure& failure);

    /// Ends the devices of a run that has waited in vain, so that a script which did not come back can tell where it
    /// was.
    /// @param failure receives that.
    void TellWhereItHangs(Failure& failure);

    /// Stops and releases the devices, ends the module. When something in the module cannot be ended, the process is
    /// left at once, with the exit code given or, when that is 0, with that of "no answer".
    /// @return the exit code given, or 1 for 0 when scripts have thrown something that nobody waited for.
    int Close(int exitCode);

private:
    MaybeFailure PrepareLog(HostSettings& settings);
    MaybeFailure LoadModule();
    MaybeFailure MakeDevice(std::size_t index);
    MaybeFailure MakeAnew(const QString& name, const std::string& setup);
    /// Does something with a device. @return what its script threw meanwhile.
    std::vector<ThrownText> HearThrown(const Device& device, const std::function<void()>& work);
    QStringList JudgeThrown(const Device& device, std::vector<ThrownText> thrown, CommandOutcome& outcome);
    QStringList UsersPlace(const QString& device, const QStringList& place) const;
    MaybeFailure WaitForFrame(const PeerReceipt& receipt, std::chrono::milliseconds limit);
    void TakeLine(const QString& line);
    void EndDevices(int lateCode);
    void AwaitStopped(std::ptrdiff_t scripts);
    void TellStopped();
    void LookAtLog();
    MaybeFailure SetupToGive(const ShowDevice& described, const QString& stored, std::string& setup);
    MaybeFailure FirstSetup(const ShowDevice& described, QString& setup) const;
    void TellOtherEdition(const ShowDevice& described) const;

    const Options& m_options;
    const Interrupt m_interrupt;
    Show m_show;
    std::unique_ptr<PassingFolder> m_logFolder; ///< holds the log that nobody wants to keep; null otherwise
    ThrownTexts m_thrown;
    LogScreen m_screen;
    QStringList m_logNames;                  ///< the devices whose lines the log may hold
    std::unique_ptr<LogFollower> m_follower; ///< null before Open
    QTimer m_teller;                         ///< prints what scripts throw while nothing else happens
    std::unique_ptr<Host> m_host;
    std::unique_ptr<HostedModule> m_module;
    std::vector<std::unique_ptr<Device>> m_devices;
    std::vector<CheckedCommand> m_stored;
    /// By the device, the values of variables that an edition which has started is still to be given.
    std::map<QString, std::map<std::string, std::string>> m_unstarted;
    int m_calls = 0; ///< of devices and peers, that are waited for
    bool m_haveDevicesEnded = false;
    DeviceSettings m_settings;
    QStringList m_refusedSetups;
    Peers m_peers;
    bool m_quiet = false;
    std::uintptr_t m_mainWindow = 0;
    UserDialogs* m_dialogs = nullptr;
};

/// The text of a path for the border: the full path, or one from the working folder when only that can be carried.
MaybeFailure PathForBorder(const QString& path, std::string& border);

/// The setup that the device gives. @return what is told where it gives none: then nothing may be stored.
MaybeFailure SetupOfDevice(const Device& device, QString& setup);

} // namespace stagehost
