#include "MScriptMngRemote.h"

#include <chrono>
#include <thread>
#include <utility>

#include <QThread>

#include "IScriptDevice.h"
#include "MScriptCommonEvent.h"
#include "MScriptParamList.h"
#include "MScriptResource.h"

namespace {

constexpr int kPostponedHashBits = 10;
constexpr std::chrono::milliseconds kReleaseTime(50); ///< what a host thread grants a script that is still running

/// Ends every context that is still there in the host's place.
template <typename Context>
void GiveUpAll(ContextRegistry<Context>& contexts) {
    for (Context* context : contexts.HoldAll()) {
        context->GiveUp();
        context->Release();
    }
}

} // namespace

MScriptMngRemote::MScriptMngRemote(IScriptDevice* scriptDevice, IManagerRemote* olderLink, IManagerRemote2* newerLink,
                                   IVariableManager* variables, QScriptEngine* scriptEngine)
    : device(scriptDevice)
    , remote(olderLink)
    , remote2(newerLink)
    , variableManager(variables)
    , engine(scriptEngine)
    , syncContexts(std::make_shared<ContextRegistry<MyDeviceExecContext>>())
    , asyncContexts(std::make_shared<ContextRegistry<MyAsyncDeviceExecContext>>())
    , postponedMap(kPostponedHashBits, true) {}

/// The script is over and nobody else knows this object any more.
MScriptMngRemote::~MScriptMngRemote() {
    ResetPostponed();
    eventSources.Release();
    eventSources.DeleteReleased();
    ReleaseAsyncContexts();
    while (HasAnswersUnderWay())
        std::this_thread::yield();
}

void MScriptMngRemote::OnDeviceStart() {
    scriptWaits.Reopen();
    ReleaseAsyncContexts();
}

void MScriptMngRemote::EndContexts() {
    scriptWaits.EndRun();
    GiveUpAll(*syncContexts);
    GiveUpAll(*asyncContexts);
}

void MScriptMngRemote::ReleaseScriptObjects() {
    ResetPostponed();
    takenResources.Clear();
    const bool onScriptThread = device == nullptr || QThread::currentThread() == thread();
    if (!eventSources.Release())
        return;
    if (onScriptThread)
        eventSources.DeleteReleased();
    else if (device->PostTask([this] { eventSources.DeleteReleased(); }))
        eventSources.WaitUntilDeleted(kReleaseTime);
}

/// What no task is taken for any more goes with this object.
void MScriptMngRemote::RetireResources(std::vector<std::unique_ptr<MScriptResource>> resources) {
    takenResources.Clear();
    if (resources.empty())
        return;
    for (std::unique_ptr<MScriptResource>& resource : resources)
        eventSources.Retire(std::move(resource));
    if (device != nullptr)
        device->PostTask([this] { eventSources.DeleteReleased(); });
}

void MScriptMngRemote::Tick() {
    ServiceResources();
}

void MScriptMngRemote::ServiceResources() {
    takenResources.Service();
}

void MScriptMngRemote::FlushChannels() {
    takenResources.Flush();
}

void MScriptMngRemote::ReleaseAsyncContexts() {
    for (MyAsyncDeviceExecContext* context : asyncContexts->HoldAll()) {
        SettleAsyncContext(context);
        context->Release();
    }
}

/// Leaving the registry decides who drops the module's reference, since a start may be about to drop them all.
void MScriptMngRemote::SettleAsyncContext(MyAsyncDeviceExecContext* context) {
    if (asyncContexts->Remove(context))
        context->Settle();
}

std::shared_ptr<MyAsyncDeviceExecContext> MScriptMngRemote::HoldAsyncContext(MyAsyncDeviceExecContext* context) {
    if (!asyncContexts->Hold(context))
        return nullptr;
    return {context, [](MyAsyncDeviceExecContext* held) { held->Release(); }};
}

bool MScriptMngRemote::IsDeviceEnding() const {
    return device != nullptr && device->IsEnding();
}

bool MScriptMngRemote::TakeRaised(const MScriptCommonEvent* object) {
    return eventSources.TakeRaised(object);
}

void MScriptMngRemote::PostScriptEvent(const QString& eventName, const MScriptParamList* params,
                                       MScriptCommonEvent* object) {
    if (device == nullptr || params == nullptr || object == nullptr || !eventSources.CountRaised(object))
        return;
    MScriptParamList withSource(*params);
    withSource.SetSource(object);
    device->PostScriptEvent(eventName, &withSource, object);
}

void MScriptMngRemote::PostScriptEvents(const QString& eventName, std::vector<MScriptParamList> events,
                                        MScriptCommonEvent* object) {
    if (device == nullptr || object == nullptr || !eventSources.CountRaised(object, events.size()))
        return;
    for (MScriptParamList& params : events)
        params.SetSource(object);
    device->PostScriptEvents(eventName, std::move(events), object);
}

std::string MScriptMngRemote::GetDeviceName() const {
    return device != nullptr ? device->GetScriptDeviceName() : std::string();
}
