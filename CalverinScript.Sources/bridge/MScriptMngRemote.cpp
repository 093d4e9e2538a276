#include "MScriptMngRemote.h"

#include <chrono>
#include <new>
#include <thread>
#include <utility>

#include <QThread>

#include "IScriptDevice.h"
#include "MScriptCommonEvent.h"
#include "MScriptParamList.h"
#include "MScriptResource.h"
#include "RunWithinMemory.h"

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
    : m_device(scriptDevice)
    , m_remote(olderLink)
    , m_remote2(newerLink)
    , m_variableManager(variables)
    , m_engine(scriptEngine)
    , m_syncContexts(std::make_shared<ContextRegistry<MyDeviceExecContext>>())
    , m_asyncContexts(std::make_shared<ContextRegistry<MyAsyncDeviceExecContext>>())
    , m_postponedMap(kPostponedHashBits, true) {}

/// The script is over and nobody else knows this object any more.
MScriptMngRemote::~MScriptMngRemote() {
    ShutThreadsOut();
}

void MScriptMngRemote::ShutThreadsOut() {
    ResetPostponed();
    m_eventSources.Release();
    m_eventSources.DeleteReleased();
    ReleaseAsyncContexts();
    while (HasAnswersUnderWay())
        std::this_thread::yield();
}

void MScriptMngRemote::OnDeviceStart() {
    m_scriptWaits.Reopen();
    ReleaseAsyncContexts();
}

void MScriptMngRemote::EndContexts() {
    m_scriptWaits.EndRun();
    GiveUpAll(*m_syncContexts);
    GiveUpAll(*m_asyncContexts);
}

void MScriptMngRemote::ReleaseScriptObjects() {
    ResetPostponed();
    m_takenResources.Clear();
    const bool onScriptThread = m_device == nullptr || QThread::currentThread() == thread();
    if (!m_eventSources.Release())
        return;
    if (onScriptThread)
        m_eventSources.DeleteReleased();
    else if (m_device->PostTask([this] { m_eventSources.DeleteReleased(); }))
        m_eventSources.WaitUntilDeleted(kReleaseTime);
}

/// What no task is taken for any more goes with this object.
void MScriptMngRemote::RetireResources(std::vector<std::unique_ptr<MScriptResource>> resources) {
    m_takenResources.Clear();
    if (resources.empty())
        return;
    for (std::unique_ptr<MScriptResource>& resource : resources)
        m_eventSources.Retire(std::move(resource));
    if (m_device != nullptr)
        m_device->PostTask([this] { m_eventSources.DeleteReleased(); });
}

void MScriptMngRemote::Tick() {
    ServiceResources();
}

void MScriptMngRemote::ServiceResources() {
    m_takenResources.Service();
}

void MScriptMngRemote::FlushChannels() {
    m_takenResources.Flush();
}

void MScriptMngRemote::ReleaseAsyncContexts() {
    for (MyAsyncDeviceExecContext* context : m_asyncContexts->HoldAll()) {
        SettleAsyncContext(context);
        context->Release();
    }
}

/// Leaving the registry decides who drops the module's reference, since a start may be about to drop them all.
void MScriptMngRemote::SettleAsyncContext(MyAsyncDeviceExecContext* context) {
    if (m_asyncContexts->Remove(context))
        context->Settle();
}

std::shared_ptr<MyAsyncDeviceExecContext> MScriptMngRemote::HoldAsyncContext(MyAsyncDeviceExecContext* context) {
    if (!m_asyncContexts->Hold(context))
        return nullptr;
    return {context, [](MyAsyncDeviceExecContext* held) { held->Release(); }};
}

bool MScriptMngRemote::IsDeviceEnding() const {
    return m_device != nullptr && m_device->IsEnding();
}

bool MScriptMngRemote::TakeRaised(const MScriptCommonEvent* object) {
    return m_eventSources.TakeRaised(object);
}

void MScriptMngRemote::PostScriptEvent(const QString& eventName, const MScriptParamList* params,
                                       MScriptCommonEvent* object) {
    if (m_device == nullptr || params == nullptr || object == nullptr || !m_eventSources.CountRaised(object))
        return;
    const auto post = [&] {
        MScriptParamList withSource(*params);
        withSource.SetSource(object);
        m_device->PostScriptEvent(eventName, &withSource, object);
    };
    PostOrTakeBack(object, 1, post);
}

void MScriptMngRemote::PostScriptEvents(const QString& eventName, std::vector<MScriptParamList> events,
                                        MScriptCommonEvent* object) {
    const std::uint64_t count = events.size();
    if (m_device == nullptr || object == nullptr || !m_eventSources.CountRaised(object, count))
        return;
    const auto post = [&] {
        for (MScriptParamList& params : events)
            params.SetSource(object);
        m_device->PostScriptEvents(eventName, std::move(events), object);
    };
    PostOrTakeBack(object, count, post);
}

/// Events that were counted and are not on their way would be waited for without end.
template <typename Post>
void MScriptMngRemote::PostOrTakeBack(const MScriptCommonEvent* object, std::uint64_t count, Post post) {
    if (RunWithinMemory(post))
        return;
    for (std::uint64_t i = 0; i < count; ++i)
        m_eventSources.TakeRaised(object);
    throw std::bad_alloc();
}

std::string MScriptMngRemote::GetDeviceName() const {
    return m_device != nullptr ? m_device->GetScriptDeviceName() : std::string();
}
