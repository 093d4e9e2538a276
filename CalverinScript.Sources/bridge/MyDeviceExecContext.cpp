#include "MyDeviceExecContext.h"

#include <utility>

MyDeviceExecContext::MyDeviceExecContext(SharedContextRegistry<MyDeviceExecContext> liveContexts)
    : doneEvent(true)
    , registry(std::move(liveContexts)) {
    registry->Add(this);
}

MyDeviceExecContext::~MyDeviceExecContext() {
    registry->Remove(this);
}

KXPCode MyDeviceExecContext::Begin() {
    doneEvent.Reset();
    if (givenUp)
        doneEvent.Set();
    return KXP_OK;
}

KXPCode MyDeviceExecContext::End() {
    doneEvent.Set();
    return KXP_OK;
}

void MyDeviceExecContext::GiveUp() {
    givenUp = true;
    doneEvent.Set();
}

void MyDeviceExecContext::Wait() {
    doneEvent.Wait(kInfinite);
}
