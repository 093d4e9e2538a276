#include "MyAsyncDeviceExecContext.h"

#include <utility>

MyAsyncDeviceExecContext::MyAsyncDeviceExecContext(IAsyncDeviceExecContextHandler* doneHandler,
                                                   SharedContextRegistry<MyAsyncDeviceExecContext> liveContexts)
    : asyncHandler(doneHandler)
    , registry(std::move(liveContexts)) {
    registry->Add(this);
}

MyAsyncDeviceExecContext::~MyAsyncDeviceExecContext() {
    registry->Remove(this);
}

KXPCode MyAsyncDeviceExecContext::End() {
    IAsyncDeviceExecContextHandler* first = asyncHandler.exchange(nullptr);
    if (first != nullptr)
        first->OnAsyncContextDone(this);
    else
        Release();
    return KXP_OK;
}
