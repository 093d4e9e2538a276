#pragma once

#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>
#include <optional>
#include <type_traits>
#include <utility>
#include <vector>

#include <QObject>
#include <QScriptValue>

#include "CompletionGate.h"
#include "EnumHelpers.h"
#include "HostServices.h"
#include "HostValues.h"
#include "ICommandObjectHandler.h"
#include "IHostServices.h"
#include "IKXPDevice.h"
#include "IManagerRemote.h"
#include "InterlockedCounter.h"
#include "IScriptDevice.h"
#include "IThreadHandler.h"
#include "IThreadTimerHandler.h"
#include "MKXPDeviceBase.h"
#include "MScriptCommonEvent.h"
#include "MScriptParamList.h"
#include "MString.h"
#include "MTimerailManager.h"
#include "MyAsyncDeviceExecContext.h"
#include "MyCommandManager.h"
#include "ResourceRoom.h"
#include "RunState.h"
#include "ScriptCallbacks.h"
#include "ScriptEntrance.h"
#include "ScriptSet.h"
#include "ScriptTimers.h"
#include "SetupFormat.h"
#include "StoredSetup.h"
#include "VariableAccessor.h"

class CommandRoad;
class EventArguments;
class ICommandWork;
class IModuleServices;
class IResourceProvider;
class IScanHost;
class ISetupInterface;
class MScriptEngineAgent;
class MScriptMngRemote;
class MScriptThread;
class QImage;
struct ScanResult;
class ScriptDebugger;
class QThread;
template <typename... Parameters>
struct MarshalledCallRow;

/// A device whose behaviour is a script.
///
/// It turns the host's calls into queued commands and commands into script calls. Three threads work for it: its command
/// thread takes one command after the other, the module's tick thread watches over them, and its script thread runs nothing
/// but Qt's event loop and, on it, the engine, all that the script calls and every slot here. All other threads reach the
/// script through a marshalled call and wait for its completion, or leave a task in the inbox.
///
/// `mutex` is held for each entry into the script. Lock order: the command manager's lock, `mutex`, a script object's lock.
class MCalverinScript_Device : public QObject,
                               public MKXPDeviceBase,
                               public MTimerailManager,
                               public MyCommandManager,
                               public IThreadTimerHandler,
                               public IThreadHandler,
                               public IKXPDevice,
                               public ICommandObjectHandler,
                               public IScriptDevice {
    Q_OBJECT

public:
    /// @param moduleServices borrowed for the device's life. @param setup may be null. @param name copied, may be null.
    /// [host main]
    MCalverinScript_Device(IModuleServices* moduleServices, ISetupInterface* setup, const char* name);

    /// Whether the script thread runs, or the debugger makes one needless. A device without one is of no use and is released
    /// at once.   [host main]
    bool IsUsable() const;

    /// Ends the device as its release does, but for its memory: it leaves the host and the module, and refuses every operation
    /// from then on but Release. For a module that goes before its devices. Does nothing when it has been done.   [host main]
    void LetGo();
    /// Whether nothing runs any more in a device that has been let go, so that it may be deleted.   [host main]
    bool HasEnded() const;

    // IKXPDevice
    KXPCode QueryInterface(const char* name, void** out) override;
    KXPCode Release() override;
    void SetDeviceVariables(IDeviceVariables* variables) override;
    KXPCode QueryCapability(std::uint32_t capability) override;
    void SetName(const char* newName) override;
    const char* GetName() override;
    KXPCode ShowSetup(void* ignored) override;
    using MKXPDeviceBase::IsRunning;
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

    // The setup, as dialogs and stored texts give it
    /// Opens the setup dialog with a script of the library chosen; null chooses none.   [host main]
    KXPCode ShowSetupDialog(const char* scriptName);
    /// The script that Start runs: the file when there is one, the text otherwise.   [host main, not while started]
    void SetSetupScript(const QString& fileName, const QString& text);
    /// The values that the script finds in its `Setup` before _mStart.   [host main, not while started]
    void SetSetupSettings(const QList<MScriptSetting>& settings);
    /// Whether the group granted to this device is registered at each load.   [host main]
    void SetRegisterAllUserGroups(bool enabled);
    /// How a stored command relates to the user commands of this device.
    /// @param params with them the command is looked up by the function that they name, without by its id.
    /// @return 0 gone, 1 other parameters or none to compare, 2 valid.   [host main]
    int ValidateCommand(std::int32_t id, IObjectParams* params);

    // What a setup dialog needs: BeginSetup, its own analyses by EvaluateScript, then one of the two others
    /// Before the dialog fills its form.   [host main]
    void BeginSetup();
    /// The setup as the device has it now, all but the commands.   [host main]
    DeviceSetup GetCurrentSetup();
    /// Takes over what the dialog holds, once the host has taken the definition that follows from it. The script has to have been
    /// analysed before.
    /// @param setup its commands and module commands are not read. @param scriptFile path of the script's file, may be empty.
    /// @return 0, 771 the commands have changed, 13 the host refused and the device is as it was.   [host main]
    KXPCode AcceptSetup(const DeviceSetup& setup, const QString& scriptFile);
    /// Lets go of the resources that the device has taken, and takes those that the settings name. A dialog calls it
    /// when its user has chosen one.   [host main]
    void ResolveResources(const ScriptSettings& settings);
    /// The dialog was left without: the resources are those of the device's own settings again. @return 13.   [host
    /// main]
    KXPCode CancelSetup();
    /// What the open dialog says about the default commands and variables.   [host main]
    void SetPendingRemoveDefaults(bool remove) { storedSetup.SetPendingRemoval(remove); }
    std::uint32_t GetModuleDeviceNumber() const { return storedSetup.GetDeviceNumber(); }
    void SetModuleDeviceNumber(std::uint32_t number) { storedSetup.SetDeviceNumber(number); }
    /// Looks up the device's five default variables at the host: null where it has none of that name.   [any host thread]
    void BindDefaultVariables();

    // Calls that cross to the script thread. Each waits for its completion; on the script thread itself it runs at once.
    /// Loads a file and evaluates it. @return whether it could be read and evaluated.   [any]
    bool LoadScriptCommand(const char* fileName, bool stopMode);
    /// Evaluates a text. @return whether it could be evaluated.   [any]
    bool EvaluateScriptCommand(const QString& text, bool stopMode);
    /// Evaluates a text in this device, or analyses it on an engine of the caller's on the calling thread.   [any]
    bool EvaluateScript(const QString& text, QScriptEngine* analysisEngine);
    /// Calls a function of the script. @param params null, or eight texts, the first null ending the list.   [any]
    bool ExecuteScriptFunction(const char* name, IData* result, const char** params);
    /// Delivers an asynchronous result to its function.   [any]
    bool ExecuteCallBack(MyAsyncDeviceExecContext* context);
    /// Calls _mStop, if the script has one, and waits 25 ms at most.   [any]
    bool ExecuteStopFunction();

    /// Leaves a task for the script thread. It runs outside the script, behind what was left before it.
    /// @return false when the device is ending.   [any]
    bool PostTask(ScriptInbox::Task task) override { return entrance.Post(std::move(task)); }
    /// Delivers an event of a script object to its listener, later. Does nothing without both pointers. @return 1.   [any]
    int PostScriptEvent(const QString& name, const MScriptParamList* params, MScriptCommonEvent* event) override;
    /// The same for several events of one name, which share one task.   [any]
    void PostScriptEvents(const QString& name, std::vector<MScriptParamList> events,
                          MScriptCommonEvent* event) override;

    // The five operations of the command road. With execute false each posts a command, with execute true it does the work at once.
    bool LoadScriptFromFile(IExecContext* context, const char* fileName, bool execute);
    bool LoadScriptFromText(IExecContext* context, const char* text, bool execute);
    bool ExecuteScriptFunction(IExecContext* context, const char* name, bool execute);
    bool ExecuteScriptFunctionWithParams(IExecContext* context, const char* name, IData* result, const char** params,
                                         bool execute);
    bool ExecuteCallBack(IExecContext* context, MyAsyncDeviceExecContext* asyncContext, bool execute);

    /// The single way in which failures reach the user: the variable "Error" and the dialogs. A null text does nothing, an
    /// empty one clears. In stop mode only the dialogs hear of it.   [any]
    void ReportError(const QString& text, bool stopMode);

    /// Makes the context and notes the function for an asynchronous request.
    /// @return null when the value is no function.   [script]
    MyAsyncDeviceExecContext* MakeAsyncContext(const QScriptValue& function) override;
    void ForgetAsyncContext(MyAsyncDeviceExecContext* context) override { callbacks.Forget(context); }

    /// The answer of an asynchronous request will never be delivered: its function goes as soon as the script thread is free, and the
    /// request at once. Nothing of a request that is gone already is touched.   [any]
    void DropAsyncResult(MyAsyncDeviceExecContext* context);

    // MyCommandManager
    using MyCommandManager::ExecuteCommand;
    bool ExecuteCommand(MCommandObject* command) override;

    // ICommandObjectHandler
    void OnCommandCreated(void* context) override;
    void OnCommandDestroyed(void* context) override;

    // IScriptDevice
    std::string GetScriptDeviceName() override { return CopyName(); }
    void PostAsyncResult(MyAsyncDeviceExecContext* context) override;
    void PostPropertyChange(const char* object, const char* property, const char* value, bool objectFollows) override;
    MCommandObject* TakeExecutingCommand() override;
    void WriteCommandResult(MCommandObject* command, const QString& text) override;
    VisitGate* GetValueGate() override { return &values.Gate(); }
    bool IsEnding() const override { return ending; }
    MScriptResource* FindResource(const QScriptValue& signature) override;
    int SetInterval(const QScriptValue& function, int delayMs) override { return SlotSetInterval(function, delayMs); }
    void ClearInterval(int id) override { SlotClearInterval(id); }
    int SetTimeout(const QScriptValue& function, int delayMs) override { return SlotSetTimeout(function, delayMs); }
    void ClearTimeout(int id) override { SlotClearTimeout(id); }
    unsigned int SetPropertyChangeCallback(const QScriptValue& function) override {
        return SlotSetPropertyChangeCallback(function);
    }

    // IThreadTimerHandler, IThreadHandler
    void OnTimer(std::uint32_t nowMs) override;
    std::uint32_t ThreadRun(MThread* thread) override;

    /// Called by the script thread at its start and before its end.   [script]
    void OnScriptThreadStarted(MScriptThread* thread);
    void OnScriptThreadEnding();

    // What dialogs, panels and tests look at
    MScriptMngRemote* GetRemote() const { return remote.get(); }
    QScriptEngine* GetEngine() const { return engine.get(); }
    ScriptEntrance& GetEntrance() { return entrance; }
    const ScriptSet& GetLiveSet() const { return live; }
    const ScriptSet& GetStopSet() const { return stop; }
    /// What the last analysis saw, for the dialog whose analyses these are.   [host main]
    ScriptSet& GetStopSet() { return stop; }
    /// The module that made the device; null in a device without one.
    IModuleServices* GetModule() const { return module; }
    /// How the user left the setup dialog the last time.   [host main]
    SetupMemory& GetSetupMemory() { return storedSetup.Memory(); }
    /// Null unless the configuration file enables it.
    ScriptDebugger* GetDebugger() const { return debugger.get(); }
    MScriptThread* GetScriptThread() const { return scriptThread.get(); }
    std::int32_t GetStackCount() const;
    bool HasStopFunction() const { return runState.hasStopFunction; }
    std::vector<MScriptCommand> GetCommands() const { return storedSetup.GetCommands(); }
    std::vector<MScriptVariable> GetLiveVariables() const { return storedSetup.GetVariables(); }
    std::vector<MScriptSetting> GetSetupSettings() const { return storedSetup.GetSettings(); }
    QString GetSetupScriptText() const { return storedSetup.GetScriptText(); }
    QString GetSetupScriptFileName() const { return storedSetup.GetScriptFileName(); }
    bool GetRemoveDefaults() const { return storedSetup.GetChoices().removeDefaults; }
    /// The script's own word at the last analysis; nothing when it has none.   [host main]
    std::optional<bool> GetScriptOptionRemoveDefaults() const { return storedSetup.GetScriptsRemoval(); }
    /// Whether the default commands and variables are gone: the script's word, or else the setup's.
    bool GetAppliedRemoveDefaults() const { return storedSetup.IsRemovalApplied(); }
    /// The resources of the host that the settings name.   [host main]
    const std::vector<ResourceRequest>& GetResourceRequests() const { return resources->GetRequests(); }

    /// Devices that were released while their script would not end. They are looked through at each creation and release,
    /// and those whose script has ended since are deleted.
    /// @return how many are left.   [host main]
    static std::size_t SweepAbandoned();

Q_SIGNALS:
    void SignalShowDebugger();
    void SignalNotifyErrorChange(const QString& text);
    void SignalNotifyLineErrorChange(int line);
    void SignalNotifyScriptChange(const QString& text);
    void SignalNotifyScriptFileNameChange(const QString& fileName);
    bool SignalLoadScriptCommand(const char* fileName, bool stopMode);
    bool SignalEvaluateScriptCommand(const QString& text, bool stopMode);
    bool SignalEvaluateScript(const QString& text, bool stopMode);
    bool SignalExecuteScriptFunction(const char* name, IData* result, const char** params);
    bool SignalExecuteCallBack(MyAsyncDeviceExecContext* context);
    bool SignalExecuteScript_mStop();
    bool SignalExecuteScriptEventCallBack(const QString& name, const MScriptParamList& params,
                                          MScriptCommonEvent* event);
    void SignalLoadScriptCommandFinished();
    void SignalEvaluateScriptCommandFinished();
    void SignalEvaluateScriptFinished();
    void SignalExecuteScriptFunctionFinished();
    void SignalExecuteCallBackFinished();
    void SignalExecuteScript_mStopFinished();
    void SignalOnPropertyChange(QString object, QString property, QString value, bool objectFollows);
    void SignalScriptError(const QScriptValue& exception);

public Q_SLOTS:
    void SlotShowDebugger();
    virtual void SlotHandlerException(const QScriptValue& exception);
    virtual bool SlotLoadScriptCommand(const char* fileName, bool stopMode);
    virtual bool SlotEvaluateScriptCommand(const QString& text, bool stopMode);
    virtual bool SlotEvaluateScript(const QString& text, bool stopMode);
    virtual bool SlotExecuteScriptFunction(const char* name, IData* result, const char** params);
    virtual bool SlotExecuteCallBack(MyAsyncDeviceExecContext* context);
    virtual bool SlotExecuteScript_mStop();
    virtual bool SlotExecuteScriptEventCallBack(const QString& name, const MScriptParamList& params,
                                                MScriptCommonEvent* event);
    int SlotSetInterval(const QScriptValue& expression, int delay);
    void SlotClearInterval(int id);
    int SlotSetTimeout(const QScriptValue& expression, int delay);
    void SlotClearTimeout(int id);
    unsigned int SlotSetPropertyChangeCallback(const QScriptValue& function);
    void SlotOnPropertyChange(const QString& object, const QString& property, const QString& value, bool objectFollows);

protected:
    /// Release is the only way to end a device.
    ~MCalverinScript_Device() override;
    void timerEvent(QTimerEvent* event) override;

private:
    friend struct MarshalledCallTable;

    class HostVisit;

    // Construction
    void MakeEngine();
    void JoinModule();
    void ConnectSignals();
    void StartScriptThread();

    // End
    void EndScriptThread();
    void LeaveHost();
    bool IsHostInside() const;

    // Marshalling
    template <typename... Parameters>
    struct OpenCall;
    template <typename... Parameters>
    bool Marshal(const MarshalledCallRow<Parameters...>& row, const std::common_type_t<Parameters>&... parameters);
    template <typename Row, typename Work>
    bool RunSlot(const Row& row, Work work);
    bool ClearStateOnScriptThread();
    bool OnScriptThread() const { return entrance.IsOnScriptThread(); }
    void FireDeferredTimers();
    void ClearScriptState();

    // Commands
    class RoadWork;
    void MakeRoad(std::size_t threadStackSize);
    bool MayPost() const;
    bool HasFunction(const char* name);
    template <typename Condition>
    bool FindCommand(Condition condition, MScriptCommand& found);
    KXPCode PostBuiltIn(std::int32_t id, IObjectParams* params, IExecContext* context);
    KXPCode PostUserCommand(std::int32_t id, IObjectParams* params, IExecContext* context);
    void StopCommandThread();
    void FinishRequestedStop();
    void SetStatus(DeviceStatus status) { values.SetStatus(status); }

    // Script work
    bool LoadScriptFile(ScriptSet& set, const char* fileName);
    bool RunLoadedScript();
    struct EvaluationFailure;
    bool EvaluateLive(const QString& text);
    bool AnalyseText(const QString& text);
    std::chrono::milliseconds AnalysisLimit() const;
    static std::optional<EvaluationFailure> FindFailure(QScriptEngine& engine, const QScriptValue& value);
    void ReportFailure(const EvaluationFailure& failure, bool stopMode);
    ScanResult ScanPublished(const ScriptSet& set, IScanHost& host, bool stopMode);
    static void Publish(ScriptSet& set, const ScanResult& found);
    EnumHelpers::Target EnumTarget();
    bool FindMonitoredEnum(const QString& name, MScriptVariable& found);
    void CleanupBeforeEvaluate();
    void AfterEvaluate();
    void GiveSettingsToScript();
    void PublishFunctionList();
    QScriptValue CallScript(QScriptValue function, const QScriptValueList& arguments);
    bool CallNamedFunction(const char* name, IData* result, const char** params);
    void DeliverResult(const QScriptValue& value, IData* result);
    void ReportUncaught();
    void CheckUncaught();
    void FinishStopRequest();
    void ClearTimers();
    int StartTimer(ScriptTimers::Kind kind, const QScriptValue& function, int delayMs);
    void FireTimer(int id);

    // Setup
    void TakeStoredSetup(const DeviceSetup& setup);
    void TakeStoredScript(const SetupScript& script);
    void TakeAcceptedSetup(const DeviceSetup& setup, const SetupScript& script, const QString& scriptFile);
    void TakeScript(const QString& fileName, const QString& text);
    void Analyse();
    bool CanBeStored(DeviceSetup setup);
    void ResolveChangedResources();
    bool IsFirstDevice() const;
    void AssignIds(bool keepOld);
    void CommitStopFunctions();
    bool MakeDefinition(const ScriptCommands& definedCommands, const ScriptVariables& variables, bool hideDefaults,
                        bool resetDefaultIds, std::string& text);
    void BindLiveVariables();
    void MergeLegacy();

    IModuleServices* const module;         ///< not owned
    ISetupInterface* const setupInterface; ///< not owned, may be null
    HostServices services;                 ///< found when the device is made
    std::unique_ptr<QImage> bitmap;        ///< cache of GetBitmap; host main
    IKXPDevicePanel* panel = nullptr;      ///< the last one created; not owned
    QThread* homeThread = nullptr;         ///< where the device was made, and goes back to before it ends
    InterlockedCounter hostCalls;          ///< host calls that are inside the device

    // The rooms
    std::atomic<bool> gone{false};   ///< set once by LetGo: the host's operations are refused
    bool analysisEnded = true;       ///< the last analysis came to its end by itself; host main
    std::atomic<bool> ending{false}; ///< set once by Release: nothing enters the script any more
    HostValues values{ending};       ///< the host's values of the device's variables
    StoredSetup storedSetup;         ///< what the host keeps of the device
    std::recursive_mutex mutex;      ///< guards the engine's state: every entry into the script takes it
    CompletionGate gate;
    ScriptEntrance entrance{mutex, ending, [this] { FireDeferredTimers(); }, this}; ///< with the engine's thread
    EnumHelpers enumHelpers{EnumTarget()};

    std::unique_ptr<ICommandWork> roadWork; ///< what the road needs of this device
    std::unique_ptr<CommandRoad> road;      ///< made before all that posts

    RunState runState; ///< where start and stop are
    bool debuggerEnabled = false;

    // The script's world. The engine, what it shows and what hangs on it go in the reverse of this order.
    std::unique_ptr<MScriptThread> scriptThread; ///< null while the debugger is enabled
    std::unique_ptr<QScriptEngine> engine;
    MScriptEngineAgent* agent = nullptr; ///< owned by the engine, installed with the debugger only
    std::unique_ptr<MScriptMngRemote> remote;
    std::unique_ptr<ScriptDebugger> debugger;       ///< null unless it is enabled
    ScriptSet live;                                 ///< what the engine runs
    ScriptSet stop;                                 ///< what an analysis sees
    std::unique_ptr<EventArguments> eventArguments; ///< for the engine, with which it is made; script
    std::unique_ptr<ResourceRoom> resources;        ///< made with the bridge, which outlives it
    ScriptTimers timers{*this};
    ScriptCallbacks callbacks;
};
