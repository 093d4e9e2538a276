#pragma once

#include <atomic>
#include <memory>

#include <QObject>
#include <QScriptValue>

#include "ContextRegistry.h"
#include "EventSources.h"
#include "IAsyncDeviceExecContextHandler.h"
#include "IHostServices.h"
#include "IManagerRemote.h"
#include "IMScriptManagerRemoteLogger.h"
#include "IScriptObjectOwner.h"
#include "MIObjectMap.h"
#include "MisfitLog.h"
#include "MyAsyncDeviceExecContext.h"
#include "MyDeviceExecContext.h"
#include "ScriptWaits.h"
#include "TakenResources.h"

class IScriptDevice;
class MScriptCommonEvent;
class MScriptResource;
class MyPostponedObject;
class ObjectRequest;
class QScriptEngine;

/// The object behind the script global `QCalverin`: the host as a script sees it. One for each device,
/// owned by the device.
///
/// It owns what a script makes through it and the requests that are on their way to the host, and ends them all when
/// the device stops. Each of the host's links may be missing; what needs it then gives its neutral result.
class MScriptMngRemote : public QObject,
                         public IManagerRemoteHandler,
                         public IAsyncDeviceExecContextHandler,
                         public IMScriptManagerRemoteLogger,
                         public IScriptObjectOwner {
    Q_OBJECT

public:
    /// All but the engine may be null and are borrowed for the object's life.   [host main]
    MScriptMngRemote(IScriptDevice* device, IManagerRemote* remote, IManagerRemote2* remote2,
                     IVariableManager* variables, QScriptEngine* engine);
    ~MScriptMngRemote() override;
    /// Lets go of the script's objects and requests; no thread of theirs is in this object any more. The end of it.
    /// [script]
    void ShutThreadsOut();

    // The device's life
    /// Before the script starts: gives up the asynchronous requests of the last run, and lets the next one wait.   [any host thread]
    void OnDeviceStart();
    /// Ends every request that is on its way, each once, and every wait of the script, for an answer or in one of its objects; what
    /// the same run of the script would wait for after that is not waited for.   [any but script]
    void EndContexts();
    /// The script is called anew behind EndContexts, for its stop function: it may wait, unless RefuseWaits has come.   [script]
    void AllowWaitsOfStop() { m_scriptWaits.BeginStopFunction(); }
    /// Ends the wait of a script; none begins until AllowWaits.   [any but script]
    void RefuseWaits() { m_scriptWaits.Refuse(); }
    /// A script is about to be loaded, which may wait. Does nothing from EndContexts to OnDeviceStart.   [script]
    void AllowWaits() { m_scriptWaits.Allow(); }
    /// Whether an answer of the host is inside this object, which has to outlive it.   [any]
    bool HasAnswersUnderWay() const { return m_asyncContexts->HasVisits(); }
    /// Drops what the script made: pending results and objects. No event of theirs is delivered any more. The objects
    /// are deleted on the script thread; a host thread waits for that, but for a moment only when a script is still
    /// running.   [any host thread, script]
    void ReleaseScriptObjects();
    /// Takes resources that the device has let go. No event of theirs is delivered any more, and nothing is flushed.
    /// They are deleted on the script thread, those that the script has taken with what it has made.   [host main]
    void RetireResources(std::vector<std::unique_ptr<MScriptResource>> resources);
    /// Periodic service while the device runs.   [tick]
    void Tick();
    /// Looks at the state of each resource that the script has taken.   [tick]
    void ServiceResources();

    // What scripts call. The order, the parameter names and the defaults are the script interface. All on the script thread; no
    // method throws. Codes: 0 done, 16 no asynchronous road, 19 no link or an argument refused, 48 no such variable, any other
    // is the host's.

    /// Opens a user screen. @param iPosition 0 or 1; anything else is refused.
    Q_INVOKABLE unsigned int OpenUserScreen(const QString& sUSName = QString(), int iPosition = 0, int iLeft = 0,
                                            int iTop = 0);
    Q_INVOKABLE unsigned int CloseUserScreen(const QString& sUSName = QString());
    Q_INVOKABLE unsigned int GotoPage(const QString& sUSName = QString(), int iPageNumber = 0);
    Q_INVOKABLE unsigned int StartTask(const QString& sTaskName = QString());
    Q_INVOKABLE unsigned int PauseTask(const QString& sTaskName = QString());
    Q_INVOKABLE unsigned int StopTask(const QString& sTaskName = QString(), int iMode = 0);
    Q_INVOKABLE unsigned int GotoLabel(const QString& sTaskName = QString(), const QString& sLabel = QString());
    Q_INVOKABLE unsigned int GotoLine(const QString& sTaskName = QString(), int iLineNumber = 0);
    Q_INVOKABLE unsigned int GotoTime(const QString& sTaskName = QString(), int iTime = 0);
    Q_INVOKABLE unsigned int LoadShow(const QString& sShowName = QString(), int iTime = 0);
    /// Registers for changes below an object. The older link has no way to ask for events.
    Q_INVOKABLE unsigned int RegisterGroup(const QString& sParentObject = QString(), bool bAcceptEvent = false);
    Q_INVOKABLE unsigned int UnregisterGroup(const QString& sParentObject = QString());
    /// Sets the function that hears of changes, called with the object's name and the value. Needs the newer link.
    Q_INVOKABLE unsigned int OnVariableChange(const QScriptValue& expression);
    /// @param uiObjectType 0 to 30, 100 or 1000; anything else gives "". @return the host's list, "" on failure.
    Q_INVOKABLE QString GetObjectList(const QString& sParentObject = QString(), uint uiObjectType = 0);
    Q_INVOKABLE QString GetObject(const QString& sObject = QString(), unsigned short unDepth = 0);
    Q_INVOKABLE unsigned int SetProperty(const QString& sObject = QString(), const QString& sProperty = QString(),
                                         const QString& sValue = QString());
    Q_INVOKABLE unsigned int SetPropertyAsInt(const QString& sObject = QString(), const QString& sProperty = QString(),
                                              int iValue = 0);
    Q_INVOKABLE QString GetProperty(const QString& sObject = QString(), const QString& sProperty = QString());
    Q_INVOKABLE int GetPropertyAsInt(const QString& sObject = QString(), const QString& sProperty = QString());
    /// Runs an action on an object and waits for its result text; "" when it fails. See PerformParameters.h.
    Q_INVOKABLE QString Perform(const QString& sObject = QString(), const QString& sAction = QString(),
                                const QString& sParamsType = QStringLiteral("XML"), const QString& sParam1 = QString(),
                                const QString& sParam2 = QString(), const QString& sParam3 = QString(),
                                const QString& sParam4 = QString(), const QString& sParam5 = QString(),
                                const QString& sParam6 = QString(), const QString& sParam7 = QString(),
                                const QString& sParam8 = QString(), const QString& sParam9 = QString(),
                                const QString& sParam10 = QString());
    /// The same without waiting: the function is called with the result text, or without argument when there is none.
    Q_INVOKABLE unsigned int PerformAsync(const QScriptValue& expression, const QString& sObject = QString(),
                                          const QString& sAction = QString(),
                                          const QString& sParamsType = QStringLiteral("XML"),
                                          const QString& sParam1 = QString(), const QString& sParam2 = QString(),
                                          const QString& sParam3 = QString(), const QString& sParam4 = QString(),
                                          const QString& sParam5 = QString(), const QString& sParam6 = QString(),
                                          const QString& sParam7 = QString(), const QString& sParam8 = QString(),
                                          const QString& sParam9 = QString(), const QString& sParam10 = QString());
    Q_INVOKABLE unsigned int SetValue(const QString& sVariable = QString(), const QString& sValue = QString());
    /// The value is a text; one that is no whole number sets 0.
    Q_INVOKABLE unsigned int SetValueAsInteger(const QString& sVariable = QString(), const QString& sValue = QString());
    Q_INVOKABLE int GetValueAsInteger(const QString& sVariable = QString());
    Q_INVOKABLE double GetValueAsReal(const QString& sVariable = QString());
    Q_INVOKABLE QString GetValueAsString(const QString& sVariable = QString());
    /// @param delay in milliseconds. @return the timer's id, -1 when expression is no function.
    Q_INVOKABLE int SetInterval(const QScriptValue& expression, int delay);
    Q_INVOKABLE void ClearInterval(int timerId);
    Q_INVOKABLE int SetTimeout(const QScriptValue& expression, int delay);
    Q_INVOKABLE void ClearTimeout(int timerId);
    /// Writes to the module's log; see IMScriptManagerRemoteLogger for the types.   [any]
    Q_INVOKABLE void TraceMessage(const QString& sMessage = QString(),
                                  const QString& sMessageType = QStringLiteral("NORMAL")) override;
    /// Index of an item in a script array of texts, -1 when it is not there.
    Q_INVOKABLE int EnumStringToIndex(const QScriptValue& Items, const QString& sItem = QString());
    Q_INVOKABLE int DateStringToDay(const QString& sDate = QString());
    Q_INVOKABLE int DateStringToMonth(const QString& sDate = QString());
    Q_INVOKABLE int DateStringToYear(const QString& sDate = QString());
    /// 1 Sunday to 7 Saturday.
    Q_INVOKABLE int DateStringToDayOfWeekAsNumber(const QString& sDate = QString());
    Q_INVOKABLE int TimeStringToHours(const QString& sTime = QString(), int iTimeCodeType = 4);
    Q_INVOKABLE int TimeStringToMinutes(const QString& sTime = QString(), int iTimeCodeType = 4);
    Q_INVOKABLE int TimeStringToSeconds(const QString& sTime = QString(), int iTimeCodeType = 4);
    Q_INVOKABLE int TimeStringToFrames(const QString& sTime = QString(), int iTimeCodeType = 4);
    // The object factories. What they make belongs to this object until the device stops. Without an engine each gives
    // an invalid value. Without a device what they make does nothing to the network.

    /// A new MScriptUDP for "udp4", a new TCPClient for any other text.
    Q_INVOKABLE QScriptValue CreateSocket(const QString& sType = QString());
    /// A new HTTPClient.
    Q_INVOKABLE QScriptValue CreateHTTPClient();
    /// The object of a resource that a setting of the device names; it stays the device's. The first time in a run its
    /// state is told anew.
    /// @param svSignature a JSON text or an object with "Type", "ResourceID" and, for channels, "ChannelIndex".
    /// @return an invalid value for anything else and without a device.
    Q_INVOKABLE QScriptValue GetResource(const QScriptValue& svSignature);
    /// Keeps the user command in execution open until SetResult. @return the id for SetResult, 0 when there
    /// is nothing to postpone.
    Q_INVOKABLE int PostponeResult();
    /// Answers a postponed user command. Unknown ids and 0 do nothing.
    Q_INVOKABLE void SetResult(int iID, const QString& sResult = QString());

    /// Has the host asked about an object, for a dialog; also while a script runs, waits or hangs. A device that is ending asks nobody.
    /// @param request as ObjectRequest::Ask.   [host main]
    void AskAboutObject(ObjectRequest& request);

    /// The engine whose scripts call it; may be null.
    QScriptEngine* GetScriptEngine() const { return m_engine; }

    // The group granted to this device
    KXPCode RegisterRootGroup();
    KXPCode UnregisterRootGroup();

    // Postponed results of user commands
    /// Allows or ends postponing around one user command. The postponed result itself, if any,
    /// stays open.   [script, command]
    void SetPostponeAllowed(bool allowed);
    /// Whether the user command in execution has postponed its result.   [script, command]
    bool HasPostponed() const { return m_currentPostponed != nullptr; }
    /// Says in the log, in one line, that the host gets less of a result than the script has given.   [script]
    void TellLostCharacters(const QString& result);
    /// Ends every postponed user command without an answer.   [any host thread, script]
    void ResetPostponed();

    /// Says in the log that a variable has not taken what the script gave it; see MisfitLog for how often.   [script]
    /// @param why as WhyMisfit gives it. @param items of an enumeration, where they are known.
    void TellMisfit(const QString& variable, const QString& text, const QString& why, const QStringList& items = {});

    // Script objects
    /// The objects that raise events.   [script, but for what it says itself]
    EventSources& GetEventSources() { return m_eventSources; }
    /// Takes an event that was posted off the count of its object. @return whether it may be delivered: the object is still there.
    /// Called once for each.   [script]
    bool TakeRaised(const MScriptCommonEvent* object);

    /// An asynchronous request is over, whoever hears of it: it leaves the list and loses the module's reference. Does nothing for one
    /// that is not in the list, and never touches it.   [any]
    void SettleAsyncContext(MyAsyncDeviceExecContext* context);
    /// Keeps a request of the list alive while the result is held; null when it is not in the list.   [any]
    std::shared_ptr<MyAsyncDeviceExecContext> HoldAsyncContext(MyAsyncDeviceExecContext* context);
    /// The list that asynchronous contexts join. It holds the module's reference to each.   [any]
    const SharedContextRegistry<MyAsyncDeviceExecContext>& GetAsyncContexts() const { return m_asyncContexts; }

    // IManagerRemoteHandler
    KXPCode QueryInterface(const char* name, void** out) override;
    KXPCode Release() override;
    KXPCode OnPropertyChange(const char* object, const char* property, const char* value, std::uint32_t flag,
                             std::uint32_t reserved) override;
    KXPCode Reserved2(void* argument1, void* argument2, void* argument3) override;

    // IScriptObjectOwner
    void PostScriptEvent(const QString& eventName, const MScriptParamList* params, MScriptCommonEvent* object) override;
    void PostScriptEvents(const QString& eventName, std::vector<MScriptParamList> events,
                          MScriptCommonEvent* object) override;
    ScriptWaits* GetWaits() override { return &m_scriptWaits; }
    void FlushChannels() override;
    std::string GetDeviceName() const override;

    // IAsyncDeviceExecContextHandler
    void OnAsyncContextDone(MyAsyncDeviceExecContext* context) override;

private:
    // One mechanism for all that goes through a link, see HostCalls.h
    template <typename Operation>
    KXPCode CallAndWait(Operation operation, MString* text = nullptr);
    template <typename Newer, typename Older, typename... Arguments>
    KXPCode Forward(Newer newer, Older older, const Arguments&... arguments);
    template <typename Newer, typename Older, typename... Arguments>
    QString ForwardForText(Newer newer, Older older, const Arguments&... arguments);
    KXPCode RegisterNamedGroup(const char* group, const char* options);
    KXPCode UnregisterNamedGroup(const char* group);
    bool IsDeviceEnding() const;
    template <typename Object>
    QScriptValue Create();
    template <typename Post>
    void PostOrTakeBack(const MScriptCommonEvent* object, std::uint64_t count, Post post);
    IData* FindVariable(const QString& name) const;
    template <typename Use>
    bool UseVariable(const QString& name, Use use);
    void ReleaseAsyncContexts();
    void DropRefused(MyAsyncDeviceExecContext* context);

    IScriptDevice* const m_device;
    IManagerRemote* const m_remote;
    IManagerRemote2* const m_remote2;
    IVariableManager* const m_variableManager;
    QScriptEngine* const m_engine;

    const SharedContextRegistry<MyDeviceExecContext> m_syncContexts;
    const SharedContextRegistry<MyAsyncDeviceExecContext> m_asyncContexts;

    MisfitLog m_misfits;                        ///< script
    QString m_lastValueText;                    ///< result of the last GetValueAsString: script
    std::atomic<bool> m_postponeAllowed{false}; ///< written by the command thread and, at a load, by the script thread
    std::atomic<MyPostponedObject*>
        m_currentPostponed{}; ///< written by the script thread in a command, read by the command thread
    MIObjectMap m_postponedMap;
    EventSources m_eventSources;
    ScriptWaits m_scriptWaits;
    TakenResources m_takenResources;
};
