#include "MyAsyncDeviceExecContext.h"

#include <utility>

#include "GivenReferences.h"

MyAsyncDeviceExecContext::MyAsyncDeviceExecContext(IAsyncDeviceExecContextHandler* doneHandler,
                                                   SharedContextRegistry<MyAsyncDeviceExecContext> liveContexts)
    : m_handler(doneHandler)
    , m_phase(doneHandler != nullptr ? Phase::Waiting : Phase::Refused)
    , m_registry(std::move(liveContexts)) {
    m_registry->Add(this);
}

MyAsyncDeviceExecContext::~MyAsyncDeviceExecContext() {
    m_registry->Remove(this);
    GivenReferences::Instance().Leave(this);
}

/// Whether the request is over and the reference that the host was given is still there.
bool MyAsyncDeviceExecContext::IsHostsToDrop(Phase phase) {
    return phase == Phase::Answered || phase == Phase::Refused;
}

/// Leaves the phase in which it waits. @param found the phase before. @return whether it was that one.
bool MyAsyncDeviceExecContext::Enter(Phase next, Phase& found) {
    found = Phase::Waiting;
    return m_phase.compare_exchange_strong(found, next);
}

KXPCode MyAsyncDeviceExecContext::End() {
    const ContextRegistry<MyAsyncDeviceExecContext>::Visit visit(m_registry);
    Phase found;
    if (Enter(Phase::Answered, found)) {
        m_handler->OnAsyncContextDone(this);
    } else if (found == Phase::GivenUp) {
        if (m_phase.compare_exchange_strong(found, Phase::Late))
            GivenReferences::Instance().Keep(this);
    } else if (IsHostsToDrop(found) && m_phase.compare_exchange_strong(found, Phase::Spent)) {
        GivenReferences::Instance().Leave(this);
        Release();
    }
    return KXP_OK;
}

bool MyAsyncDeviceExecContext::GiveUp() {
    Phase found;
    if (!Enter(Phase::GivenUp, found))
        return false;
    m_handler->OnAsyncContextDone(this);
    return true;
}

bool MyAsyncDeviceExecContext::ForgetHandler() {
    Phase found;
    return Enter(Phase::Refused, found);
}

void MyAsyncDeviceExecContext::Settle() {
    Phase found;
    Enter(Phase::GivenUp, found);
    if (IsHostsToDrop(found))
        GivenReferences::Instance().Keep(this);
    if (m_phase == Phase::Spent) // the host has dropped it meanwhile
        GivenReferences::Instance().Leave(this);
    Release();
}
