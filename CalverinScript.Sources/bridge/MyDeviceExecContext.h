#pragma once

#include "ContextRegistry.h"
#include "MDefaultDeviceExecContext.h"
#include "MEvent.h"

/// The context of a synchronous request: the script thread waits on it. Begin and End move the event alone, so the
/// state stays as it was made and no handler is told. The event starts set, so that a request that the host never began
/// is not waited for.
class MyDeviceExecContext : public MDefaultDeviceExecContext {
public:
    /// Joins the registry.
    explicit MyDeviceExecContext(SharedContextRegistry<MyDeviceExecContext> liveContexts);
    ~MyDeviceExecContext() override;

    KXPCode Begin() override;
    KXPCode End() override;

    /// Waits without limit until the host, or the end of the device, ends the context.   [script]
    void Wait();

private:
    MEvent doneEvent;
    const SharedContextRegistry<MyDeviceExecContext> registry;
};
