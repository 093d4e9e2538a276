#pragma once

#include "IThreadTimerHandler.h"
#include "MLock.h"
#include "MThread.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <vector>

/// A thread that calls its handlers again and again. The period is the sleep between two passes, not a rate: a slow
/// handler stretches it. Without handlers the thread sleeps until there is one. Stopping it never waits for the sleep
/// to end, only for the handler that is running.   [thread: any, where nothing else is said]
class MThreadTimer : public MThread {
public:
    explicit MThreadTimer(std::uint32_t periodMs = 40, std::uint32_t resolutionMs = 1);
    ~MThreadTimer() override;

    /// The passes.   [thread: the timer's]
    std::uint32_t Run() override;

    /// Both in milliseconds; the new period counts from the next sleep on, 0 is taken as 1. The resolution is what a
    /// caller asks of a clock; the clock here is always finer, so it is only kept.
    virtual void SetPeriod(std::uint32_t periodMs, std::uint32_t resolutionMs);

    /// Adds a handler behind the others, borrowed until RemoveHandler. Null, and one that is there already, are
    /// ignored. Waits for the end of a running pass. Not to be called from OnTimer; if it is, the handler joins the
    /// running pass.
    virtual void AddHandler(IThreadTimerHandler* handler);

    /// Removes a handler. Waits for the end of a running pass, so that the handler may be destroyed afterwards. Not to
    /// be called from OnTimer; if it is, it takes effect at once, and the rest of the pass goes on.
    virtual void RemoveHandler(IThreadTimerHandler* handler);

    std::uint32_t GetPeriod() const { return m_periodMs; }
    std::uint32_t GetResolution() const { return m_resolutionMs; }

private:
    bool RunPass(); // false when there was nobody to call

    MLock m_passLock;                             // held for each pass
    std::vector<IThreadTimerHandler*> m_handlers; // under m_passLock
    std::size_t m_next = 0;                       // the next handler of the running pass; under m_passLock
    std::atomic<std::uint32_t> m_periodMs;        // written by owners, read by the timer
    std::atomic<std::uint32_t> m_resolutionMs;    // the same
};
