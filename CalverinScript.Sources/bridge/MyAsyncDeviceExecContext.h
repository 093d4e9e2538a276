#pragma once

#include <atomic>

#include <QObject>

#include "ContextRegistry.h"
#include "IAsyncDeviceExecContextHandler.h"
#include "MDefaultDeviceExecContext.h"

/// The context of an asynchronous request: its end is handed to a handler, once, and leaves the state alone.
class MyAsyncDeviceExecContext : public QObject, public MDefaultDeviceExecContext {
    Q_OBJECT

public:
    /// Joins the registry.
    /// @param doneHandler borrowed until the first End or ForgetHandler; may be null.
    MyAsyncDeviceExecContext(IAsyncDeviceExecContextHandler* doneHandler,
                             SharedContextRegistry<MyAsyncDeviceExecContext> liveContexts);
    ~MyAsyncDeviceExecContext() override;

    /// Tells the handler at the first call; every later one, and the first without a handler, drops a reference.
    KXPCode End() override;

    /// From now on nobody is told: the request has been given up, and an End that still comes drops a reference.
    /// @return false when somebody has been told already.   [any]
    bool ForgetHandler() { return asyncHandler.exchange(nullptr) != nullptr; }

    /// The script has had its answer, or gets none: what is left is the host's reference.   [script]
    void SetDelivered() { delivered = true; }
    bool IsDelivered() const { return delivered; }

private:
    std::atomic<bool> delivered{false};
    std::atomic<IAsyncDeviceExecContextHandler*> asyncHandler; ///< taken by whoever ends first
    const SharedContextRegistry<MyAsyncDeviceExecContext> registry;
};
