#pragma once

#include <atomic>

#include <QObject>

#include "ContextRegistry.h"
#include "IAsyncDeviceExecContextHandler.h"
#include "MDefaultDeviceExecContext.h"

/// The context of an asynchronous request: its end is handed to a handler, once, and leaves the state alone.
///
/// Two references belong to a request: the maker's, with which it is made, and one that the host is given. A host may
/// add more. Whoever ends it first, host or maker, tells the handler. What a host does after the maker has given the
/// request up touches living memory and reaches nobody, in whatever order and however often it comes.
class MyAsyncDeviceExecContext : public QObject, public MDefaultDeviceExecContext {
    Q_OBJECT

public:
    /// Joins the registry.
    /// @param doneHandler borrowed until the first End, GiveUp or ForgetHandler has returned; may be null.
    MyAsyncDeviceExecContext(IAsyncDeviceExecContextHandler* doneHandler,
                             SharedContextRegistry<MyAsyncDeviceExecContext> liveContexts);
    ~MyAsyncDeviceExecContext() override;

    /// The host's answer. The first call tells the handler. The second, or the first without a handler, drops the
    /// reference that the host was given; all others change nothing. An answer to a request that was given up drops
    /// that reference too, but not at once: see GivenReferences.
    KXPCode End() override;

    /// The maker waits no longer: ends the request in the host's place, and tells the handler. The host still owes its
    /// answer and keeps what it was given.
    /// @return false when it was over already.   [any]
    bool GiveUp();

    /// From now on nobody is told: the host has refused the request, and an End that still comes drops a reference.
    /// @return false when somebody has been told already.   [any]
    bool ForgetHandler();

    /// The maker has done with it: drops the maker's reference, and what the host was given goes to GivenReferences
    /// unless the host still owes its answer. Call it once.   [any]
    void Settle();

    /// Whether it was ended, by the host or by the maker.   [any]
    bool IsOver() const { return m_phase != Phase::Waiting; }

private:
    enum class Phase {
        Waiting,  ///< for the host's answer
        Answered, ///< by the host, and the handler was told
        Refused,  ///< by the host, or there was no handler
        GivenUp,  ///< by the maker: the host still owes its answer
        Late,     ///< the host has answered what was given up
        Spent     ///< by the host, which has dropped what it was given
    };

    static bool IsHostsToDrop(Phase phase);
    bool Enter(Phase next, Phase& found);

    IAsyncDeviceExecContextHandler* const m_handler;
    std::atomic<Phase> m_phase;
    const SharedContextRegistry<MyAsyncDeviceExecContext> m_registry;
};
