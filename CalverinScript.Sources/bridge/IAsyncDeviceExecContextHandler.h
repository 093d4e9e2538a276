#pragma once

class MyAsyncDeviceExecContext;

/// Is told that an asynchronous request is over.
class IAsyncDeviceExecContextHandler {
public:
    /// The host has ended the context. Comes once for each context.   [any]
    virtual void OnAsyncContextDone(MyAsyncDeviceExecContext* context) = 0;

protected:
    ~IAsyncDeviceExecContextHandler() = default;
};
