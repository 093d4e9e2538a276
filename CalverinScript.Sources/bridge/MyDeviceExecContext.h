#pragma once

#include <atomic>

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

    /// The maker waits no longer: ends the context for good, so that a Begin that still comes changes nothing.   [any]
    void GiveUp();

    /// Waits without limit until the host ends the context or the maker gives it up.   [script]
    void Wait();

private:
    MEvent m_doneEvent;
    std::atomic<bool> m_givenUp{false};
    const SharedContextRegistry<MyDeviceExecContext> m_registry;
};
