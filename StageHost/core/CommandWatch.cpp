#include "CommandWatch.h"

#include <optional>

#include "ShowClock.h"

namespace stagehost {

/// What has been seen since the command was about to be sent.
struct CommandWatch::Seen {
    std::mutex lock; ///< guards the fields down to errorAtEnd
    bool leftReady = false;
    bool ready = true;
    bool answered = false; ///< the command has written its result
    std::string error;
    std::optional<std::string> errorAtReturn; ///< when the device was back at "Ready" for the first time
    std::optional<std::string> errorAtEnd;    ///< of the context: what comes later is another command's

    const bool hasStatus;
    const bool wasIdle; ///< the device did nothing when the command was sent, so its first work is this command
    std::optional<std::chrono::steady_clock::time_point> failedSince; ///< of the thread that asks

    const std::function<void()> wake;

    Seen(const HostValue* status, std::function<void()> waker)
        : hasStatus(status != nullptr)
        , wasIdle(status != nullptr && status->Int() == 0)
        , wake(std::move(waker)) {}

    /// What the command itself has failed with. Under the lock.
    std::string OwnError() const {
        if (answered)
            return {};
        if (wasIdle && errorAtReturn)
            return *errorAtReturn;
        return errorAtEnd.value_or(error);
    }

    void StatusIs(std::int32_t index) {
        {
            const std::lock_guard<std::mutex> hold(lock);
            ready = index == 0;
            leftReady = leftReady || !ready;
            if (ready && leftReady && !errorAtReturn)
                errorAtReturn = error;
        }
        wake();
    }

    void ErrorIs(std::string text) {
        {
            const std::lock_guard<std::mutex> hold(lock);
            error = std::move(text);
        }
        wake();
    }

    void ResultIsThere() {
        const std::lock_guard<std::mutex> hold(lock);
        answered = answered || !errorAtEnd;
    }

    void ContextEnded() {
        {
            const std::lock_guard<std::mutex> hold(lock);
            errorAtEnd = error;
        }
        wake();
    }
};

CommandWatch::CommandWatch(const std::shared_ptr<HostValue>& status, const std::shared_ptr<HostValue>& error,
                           std::function<void()> wake)
    : m_seen(std::make_shared<Seen>(status.get(), std::move(wake)))
    , m_context(new ExecContext([seen = m_seen] { seen->ContextEnded(); })) {
    if (status)
        m_statusObservation = status->Observe([seen = m_seen, value = std::weak_ptr<HostValue>(status)] {
            if (const auto alive = value.lock())
                seen->StatusIs(alive->Int());
        });
    if (error)
        m_errorObservation = error->Observe([seen = m_seen, value = std::weak_ptr<HostValue>(error)] {
            if (const auto alive = value.lock())
                seen->ErrorIs(alive->Text());
        });
}

CommandWatch::~CommandWatch() {
    m_context->Release();
}

void CommandWatch::LookAtResult(HostValue& result) {
    m_resultObservation = result.Observe([seen = m_seen] { seen->ResultIsThere(); });
}

bool CommandWatch::IsAnswered() const {
    const std::lock_guard<std::mutex> hold(m_seen->lock);
    return m_seen->answered;
}

std::string CommandWatch::OwnError() const {
    const std::lock_guard<std::mutex> hold(m_seen->lock);
    return m_seen->OwnError();
}

void CommandWatch::StopLooking() {
    m_statusObservation.reset();
    m_errorObservation.reset();
    m_resultObservation.reset();
}

CommandWatch::Verdict CommandWatch::Judge(std::chrono::steady_clock::time_point now) {
    const std::uint32_t state = m_context->GetState();
    if (state == ExecContext::kEnded)
        return Verdict::Over;
    const std::lock_guard<std::mutex> hold(m_seen->lock);
    const bool begun = state == ExecContext::kBegun;
    const bool returned = m_seen->leftReady && m_seen->ready;
    const bool failed = m_seen->ready && !m_seen->OwnError().empty();
    if (!failed) {
        m_seen->failedSince.reset();
        if (begun || (m_seen->hasStatus && !returned))
            return Verdict::Running;
        return m_seen->hasStatus ? Verdict::Over : Verdict::Unseen;
    }
    if (!begun && returned)
        return Verdict::Failed;
    if (!m_seen->failedSince)
        m_seen->failedSince = now;
    return now - *m_seen->failedSince >= MachineTime(kGrace) ? Verdict::Failed : Verdict::Running;
}

} // namespace stagehost
