#include "MScriptMngRemote.h"

#include <algorithm>
#include <chrono>
#include <mutex>
#include <vector>

#include <QThread>

#include "IScriptDevice.h"
#include "MScriptCommonEvent.h"
#include "MScriptParamList.h"

namespace {

constexpr int kPostponedHashBits = 10;
constexpr std::chrono::milliseconds kReleaseTime(50); ///< what a host thread grants a script that is still running

/// Ends every context that is still there, under the registry's lock. A context leaves the registry before it goes. Ending one
/// may make others go: once one has, each is looked up again.
template <typename Context>
void EndAll(ContextRegistry<Context>& contexts) {
    const std::lock_guard<ContextRegistry<Context>> guard(contexts);
    const std::vector<Context*> all = contexts.Snapshot();
    for (Context* context : all)
        if (contexts.Count() == all.size() || contexts.Contains(context))
            context->End();
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
    scriptObjects.Release();
    scriptObjects.DeleteReleased();
    ReleaseAsyncContexts();
}

void MScriptMngRemote::OnDeviceStart() {
    ReleaseAsyncContexts();
}

void MScriptMngRemote::EndContexts() {
    EndAll(*syncContexts);
    EndAll(*asyncContexts);
    scriptWaits.Break();
}

void MScriptMngRemote::ReleaseScriptObjects() {
    ResetPostponed();
    const bool onScriptThread = device == nullptr || QThread::currentThread() == thread();
    if (onScriptThread && !IsDeviceEnding())
        scriptWaits.Allow();
    if (!scriptObjects.Release())
        return;
    if (onScriptThread)
        scriptObjects.DeleteReleased();
    else if (device->PostTask([this] { scriptObjects.DeleteReleased(); }))
        scriptObjects.WaitUntilDeleted(kReleaseTime);
}

void MScriptMngRemote::Tick() {}

void MScriptMngRemote::ReleaseAsyncContexts() {
    for (MyAsyncDeviceExecContext* context : asyncContexts->TakeAll()) {
        context->ForgetHandler();
        context->Release();
    }
}

// The host may be dropping its reference just now: a context that has lost its last one waits for the list's lock in its
// destructor, and one more release does not delete it again.
void MScriptMngRemote::DropDelivered(MyAsyncDeviceExecContext* context) {
    constexpr std::size_t kMostContexts = 1000;
    context->SetDelivered();
    context->Release();
    const std::lock_guard<ContextRegistry<MyAsyncDeviceExecContext>> guard(*asyncContexts);
    if (asyncContexts->Count() <= kMostContexts)
        return;
    const auto isDelivered = [](const MyAsyncDeviceExecContext* listed) { return listed->IsDelivered(); };
    const auto oldest = std::find_if(asyncContexts->begin(), asyncContexts->end(), isDelivered);
    if (oldest != asyncContexts->end())
        (*oldest)->Release();
}

bool MScriptMngRemote::IsDeviceEnding() const {
    return device != nullptr && device->IsEnding();
}

bool MScriptMngRemote::IsLiveObject(const MScriptCommonEvent* object) {
    return scriptObjects.TakeRaised(object);
}

void MScriptMngRemote::PostScriptEvent(const QString& eventName, const MScriptParamList* params,
                                       MScriptCommonEvent* object) {
    if (device == nullptr || params == nullptr || object == nullptr || !scriptObjects.CountRaised(object))
        return;
    MScriptParamList withSource(*params);
    withSource.SetSource(object);
    device->PostScriptEvent(eventName, &withSource, object);
}

void MScriptMngRemote::PostScriptEvents(const QString& eventName, std::vector<MScriptParamList> events,
                                        MScriptCommonEvent* object) {
    if (device == nullptr || object == nullptr || !scriptObjects.CountRaised(object, events.size()))
        return;
    for (MScriptParamList& params : events)
        params.SetSource(object);
    device->PostScriptEvents(eventName, std::move(events), object);
}

const char* MScriptMngRemote::GetDeviceName() const {
    return device != nullptr ? device->GetScriptDeviceName() : "";
}
