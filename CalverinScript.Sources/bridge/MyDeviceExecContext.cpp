#include "MyDeviceExecContext.h"

#include <utility>

MyDeviceExecContext::MyDeviceExecContext(SharedContextRegistry<MyDeviceExecContext> liveContexts)
    : m_doneEvent(true)
    , m_registry(std::move(liveContexts)) {
    m_registry->Add(this);
}

MyDeviceExecContext::~MyDeviceExecContext() {
    m_registry->Remove(this);
}

KXPCode MyDeviceExecContext::Begin() {
    m_doneEvent.Reset();
    if (m_givenUp)
        m_doneEvent.Set();
    return KXP_OK;
}

KXPCode MyDeviceExecContext::End() {
    m_doneEvent.Set();
    return KXP_OK;
}

void MyDeviceExecContext::GiveUp() {
    m_givenUp = true;
    m_doneEvent.Set();
}

void MyDeviceExecContext::Wait() {
    m_doneEvent.Wait(kInfinite);
}
