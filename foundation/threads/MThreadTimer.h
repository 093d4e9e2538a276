#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>

#include "IThreadTimerHandler.h"
#include "MThread.h"
#include "TimerPasses.h"

/// A thread that calls its handlers again and again. The period is the sleep between two passes, not a rate: a slow
/// handler stretches it. A handler that does not come back within the patience is left alone with the thread that
/// called it, and called again only after it has come back; the others go on. Without handlers the timer sleeps until
/// there is one. Stopping it never waits for the sleep to end, only for the handler that is running, and for that no
/// longer than the patience.   [thread: any, where nothing else is said]
class MThreadTimer : public MThread {
public:
    static constexpr std::chrono::milliseconds kPatience{1000};

    explicit MThreadTimer(std::uint32_t periodMs = 40, std::uint32_t resolutionMs = 1,
                          std::chrono::milliseconds patience = kPatience);
    ~MThreadTimer() override;

    /// The passes.   [thread: the timer's]
    std::uint32_t Run() override;

    /// Both in milliseconds; the new period counts from the next sleep on, 0 is taken as 1. The resolution is what a
    /// caller asks of a clock; the clock here is always finer, so it is only kept.
    virtual void SetPeriod(std::uint32_t periodMs, std::uint32_t resolutionMs);

    /// Adds a handler behind the others, borrowed until RemoveHandler. Null, and one that is there already, are
    /// ignored. Waits for nobody; the handler joins a running pass.
    virtual void AddHandler(IThreadTimerHandler* handler);

    /// Removes a handler. Waits for the end of a running pass, so that the handler may be destroyed afterwards. Not to
    /// be called from OnTimer; if it is, it takes effect at once, and the rest of the pass goes on.
    /// @return true when no call of the handler is under way any more; false when one has outlived the patience: the
    /// handler must then be kept until that call has come back. No other follows in either case.
    virtual bool RemoveHandler(IThreadTimerHandler* handler);

    std::uint32_t GetPeriod() const { return m_periodMs; }
    std::uint32_t GetResolution() const { return m_resolutionMs; }

private:
    TimerPasses m_passes;
    std::atomic<std::uint32_t> m_periodMs;     // written by owners, read by the timer
    std::atomic<std::uint32_t> m_resolutionMs; // the same
};
