#include "MyAsyncDeviceExecContext.h"

MyAsyncDeviceExecContext::MyAsyncDeviceExecContext(IAsyncDeviceExecContextHandler* doneHandler,
                                                   ContextRegistry<MyAsyncDeviceExecContext>& liveContexts)
    : asyncHandler(doneHandler)
    , registry(liveContexts) {
    registry.Add(this);
}

MyAsyncDeviceExecContext::~MyAsyncDeviceExecContext() {
    registry.Remove(this);
}

KXPCode MyAsyncDeviceExecContext::End() {
    IAsyncDeviceExecContextHandler* first = asyncHandler.exchange(nullptr);
    if (first != nullptr)
        first->OnAsyncContextDone(this);
    else
        Release();
    return KXP_OK;
}
