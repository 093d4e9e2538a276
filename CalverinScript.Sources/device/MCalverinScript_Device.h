#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <type_traits>
#include <vector>

#include <QObject>
#include <QScriptValue>

#include "HostDoor.h"
#include "HostServices.h"
#include "HostValues.h"
#include "ICommandObjectHandler.h"
#include "IKXPDevice.h"
#include "IScriptDevice.h"
#include "IThreadHandler.h"
#include "IThreadTimerHandler.h"
#include "MKXPDeviceBase.h"
#include "MScriptCommonEvent.h"
#include "MScriptParamList.h"
#include "MTimerailManager.h"
#include "MyAsyncDeviceExecContext.h"
#include "MyCommandManager.h"
#include "ScriptCrossing.h"
#include "ShownScript.h"
#include "StopGate.h"
#include "StoredSetup.h"
#include "TickSeat.h"
#include "UserCommands.h"

class CommandRoad;
class HostCommands;
class IModuleServices;
class ISetupInterface;
class MScriptMngRemote;
class MScriptThread;
class QImage;
class ScriptAnalysis;
class ScriptHandlers;
class ScriptProgram;
class ScriptWorld;
class SetupDesk;
template <typename Object>
class SetAside;
template <typename... Parameters>
struct MarshalledCallRow;

/// A device whose behaviour is a script.
///
/// It turns the host's calls into queued commands and commands into script calls. Three threads work for it: its
/// command thread takes one command after the other, the module's tick thread watches over them, and its script
/// thread runs nothing but Qt's event loop and, on it, the engine, all that the script calls and every slot
/// here. All other threads reach the script through a marshalled call and wait for its completion, or leave a
/// task in the inbox.
///
/// `mutex` is held for each entry into the script. Lock order: the command manager's lock, `mutex`,
/// a script object's lock.
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
    /// @param moduleServices borrowed for the device's life. @param setup may be null. @param name copied, may
    /// be null. [host main]
    MCalverinScript_Device(IModuleServices* moduleServices, ISetupInterface* setup, const char* name);

    /// Whether the script thread runs, or the debugger makes one needless. A device without one is of no use and is
    /// released at once.   [host main]
    bool IsUsable() const;

    /// Ends the device as its release does, but for its memory: it leaves the host and the module, and refuses
    /// every operation from then on but Release. For a module that goes before its devices. Does nothing when it
    /// has been done.   [host main]
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

    // The setup
    /// Opens the setup dialog with a script of the library chosen; null chooses none.   [host main]
    KXPCode ShowSetupDialog(const char* scriptName);
    /// What the host keeps of the device. Its script and settings are not changed while the device is started.
    StoredSetup& GetStoredSetup() { return storedSetup; }
    /// Where dialogs read and change it.
    SetupDesk& GetSetupDesk() const { return *desk; }
    HostDoor& GetDoor() { return door; }
    /// What the last analysis of a script saw, and how long one may take.   [host main]
    ScriptAnalysis& GetAnalysis() const { return *analysis; }
    /// Empties the completion table, which all devices share, and fills it anew with what this device may see. The host is asked
    /// for all of its objects, which may take a while, and may release the device meanwhile.
    /// @param fill false leaves the table empty.   [host main]
    void RebuildCompletionTable(bool fill);
    /// As UserCommands::Validate.   [host main]
    int ValidateCommand(std::int32_t id, IObjectParams* params) { return commands.Validate(id, params); }

    // What control panels show and change
    /// The script that runs, or will run.   [any]
    ShownScript::State GetShownScript() const { return shown.Get(); }
    /// Runs a script in place of the one that runs, at once, and waits for it.
    /// @param fileName its file; empty for the text alone. @return whether it could be evaluated; not when the device is let go
    /// meanwhile.   [host main]
    bool UpdateScript(const QString& fileName, const QString& text);

    // Calls that cross to the script thread. Each waits for its completion; on the script thread itself
    // it runs at once.
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
    bool PostTask(ScriptInbox::Task task) override { return GetEntrance().Post(std::move(task)); }
    /// Delivers an event of a script object to its listener, later. Does nothing without both
    /// pointers. @return 1.   [any]
    int PostScriptEvent(const QString& name, const MScriptParamList* params, MScriptCommonEvent* event) override;
    /// The same for several events of one name, which share one task.   [any]
    void PostScriptEvents(const QString& name, std::vector<MScriptParamList> events,
                          MScriptCommonEvent* event) override;

    // The five operations of the command road. With execute false each posts a command, with execute true it does
    // the work at once.
    bool LoadScriptFromFile(IExecContext* context, const char* fileName, bool execute);
    bool LoadScriptFromText(IExecContext* context, const char* text, bool execute);
    bool ExecuteScriptFunction(IExecContext* context, const char* name, bool execute);
    bool ExecuteScriptFunctionWithParams(IExecContext* context, const char* name, IData* result, const char** params,
                                         bool execute);
    bool ExecuteCallBack(IExecContext* context, MyAsyncDeviceExecContext* asyncContext, bool execute);

    /// The single way in which failures reach the user: the variable "Error" and the dialogs. A null text does
    /// nothing, an empty one clears. In stop mode only the dialogs hear of it.   [any]
    void ReportError(const QString& text, bool stopMode);
    /// Says that memory ran out, in "Error" and in the log. @param work as LogWantOfMemory.   [any]
    void TellWantOfMemory(const char* work);
    /// Writes a failure and what there is to be told of its place into the log.   [script]
    void LogFailure(const QString& text, const QStringList& details);

    /// Makes the context and notes the function for an asynchronous request.
    /// @return null when the value is no function.   [script]
    MyAsyncDeviceExecContext* MakeAsyncContext(const QScriptValue& function) override;
    void ForgetAsyncContext(MyAsyncDeviceExecContext* context) override;
    /// The answer of an asynchronous request will never be delivered.   [any]
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
    /// The engine with all that stands in it.
    ScriptWorld& GetWorld() const { return *world; }
    MScriptMngRemote* GetRemote() const;
    QScriptEngine* GetEngine() const;
    ScriptEntrance& GetEntrance() { return crossing.Entrance(); }
    /// The module that made the device; null in a device without one.
    IModuleServices* GetModule() const { return module; }
    MScriptThread* GetScriptThread() const { return crossing.GetThread(); }
    /// Commands that are posted and not over.   [any]
    std::int32_t GetStackCount() const;
    bool HasStopFunction() const;
    std::vector<MScriptCommand> GetCommands() const { return commands.Get(); }

    /// Devices that were released while their script would not end. They are looked through at each creation and
    /// release, and those whose script has ended since are deleted.
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

    class Links;
    class AnalysisReports;

    // Construction
    bool WantsDebugger() const;
    void ConnectSignals();

    static SetAside<MCalverinScript_Device>& Abandoned();

    // Run
    void Begin();
    void End();
    void RunStoredScript();
    void StartCommandThread();
    void StopCommandThread();
    void FinishRequestedStop();
    void TellPanels(bool running);
    void LoadBitmap();

    // Marshalling
    template <typename... Parameters>
    class OpenCall;
    template <typename... Parameters>
    bool Marshal(const MarshalledCallRow<Parameters...>& row, const std::common_type_t<Parameters>&... parameters);
    template <typename Row, typename Work>
    bool RunSlot(const Row& row, Work work);
    void TellException(const QScriptValue& exception);
    bool ClearStateOnScriptThread();
    void ClearScriptState();
    void ShowScript(const QString& fileName, const QString& text);

    bool MayPost() const;
    void TakePropertyChange(const char* object, const char* property, const char* value, bool objectFollows);

    // NOLINTBEGIN(readability-identifier-naming): the fields of a device have agreed names
    IModuleServices* const module;         ///< not owned
    ISetupInterface* const setupInterface; ///< not owned, may be null
    std::unique_ptr<QImage> bitmap;        ///< cache of GetBitmap; host main
    ShownScript shown;                     ///< what panels show of the script
    std::recursive_mutex mutex;            ///< guards the engine's state: every entry into the script takes it
    std::atomic<bool> ending{false};       ///< set once by LetGo: nothing enters the script any more

    // The rooms. Each says itself which threads come to it; what stands below uses what stands above,
    // and goes before it.
    const HostServices services; ///< what the host offers
    HostValues values;           ///< the host's values of the device's variables
    HostDoor door;               ///< the host's threads inside the device
    StopGate stops;              ///< those of them that stop it
    StoredSetup storedSetup;     ///< what the host keeps of the device
    UserCommands commands;       ///< the commands that the script adds
    const std::unique_ptr<Links> links;
    const std::unique_ptr<AnalysisReports> analysisReports;
    ScriptCrossing crossing;                          ///< the script thread and the way there
    const std::unique_ptr<ScriptWorld> world;         ///< the engine and all that stands in it
    const std::unique_ptr<ScriptHandlers> handlers;   ///< functions of the script that are called back
    const std::unique_ptr<ScriptAnalysis> analysis;   ///< what a script would publish
    const std::unique_ptr<SetupDesk> desk;            ///< where the setup is read and changed
    const std::unique_ptr<ScriptProgram> program;     ///< the script that runs
    const std::unique_ptr<CommandRoad> road;          ///< the command thread and its queue
    const std::unique_ptr<HostCommands> hostCommands; ///< the commands that the host sends
    TickSeat seat{*this};                             ///< the watchdog's tick
    const std::array<IEndingRoom*, 6> endings;        ///< the rooms that end with the device, in their order
    // NOLINTEND(readability-identifier-naming)
};
