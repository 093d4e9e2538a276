#include "MScriptMngRemote.h"

#include <mutex>

#include "IScriptDevice.h"

namespace {

constexpr int kPostponedHashBits = 10;

/// Ends every context that is still there. A context leaves the registry before it goes, and ending one may make others go, so
/// each is looked up again under the registry's lock.
template <typename Context>
void EndAll(ContextRegistry<Context>& contexts) {
    const std::lock_guard<ContextRegistry<Context>> guard(contexts);
    for (Context* context : contexts.Snapshot())
        if (contexts.Contains(context))
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

MScriptMngRemote::~MScriptMngRemote() {
    ReleaseScriptObjects();
    ReleaseAsyncContexts();
}

void MScriptMngRemote::OnDeviceStart() {
    ReleaseAsyncContexts();
}

void MScriptMngRemote::EndContexts() {
    EndAll(*syncContexts);
    EndAll(*asyncContexts);
}

void MScriptMngRemote::ReleaseScriptObjects() {
    ResetPostponed();
}

void MScriptMngRemote::Tick() {}

void MScriptMngRemote::ReleaseAsyncContexts() {
    for (MyAsyncDeviceExecContext* context : asyncContexts->TakeAll()) {
        context->ForgetHandler();
        context->Release();
    }
}

bool MScriptMngRemote::IsDeviceEnding() const {
    return device != nullptr && device->IsEnding();
}

bool MScriptMngRemote::IsLiveObject(const MScriptCommonEvent* /*object*/) const {
    return false;
}
