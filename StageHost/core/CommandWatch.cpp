#include "CommandWatch.h"

#include <optional>

namespace stagehost {

/// What has been seen since the command was about to be sent.
struct CommandWatch::Seen {
    std::mutex lock; ///< guards the four fields below
    bool leftReady = false;
    bool ready = true;
    std::string error;
    std::optional<std::string> errorAtEnd; ///< of the context: what comes later is another command's

    const bool hasStatus;
    std::optional<std::chrono::steady_clock::time_point> failedSince; ///< of the thread that asks

    const std::function<void()> wake;

    Seen(bool withStatus, std::function<void()> waker)
        : hasStatus(withStatus)
        , wake(std::move(waker)) {}

    void StatusIs(std::int32_t index) {
        {
            const std::lock_guard<std::mutex> hold(lock);
            ready = index == 0;
            leftReady = leftReady || !ready;
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
    : m_seen(std::make_shared<Seen>(status != nullptr, std::move(wake)))
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

std::string CommandWatch::ErrorText() const {
    const std::lock_guard<std::mutex> hold(m_seen->lock);
    return m_seen->errorAtEnd.value_or(m_seen->error);
}

void CommandWatch::StopLooking() {
    m_statusObservation.reset();
    m_errorObservation.reset();
}

CommandWatch::Verdict CommandWatch::Judge(std::chrono::steady_clock::time_point now) {
    const std::uint32_t state = m_context->GetState();
    if (state == ExecContext::kEnded)
        return Verdict::Over;
    const std::lock_guard<std::mutex> hold(m_seen->lock);
    const bool begun = state == ExecContext::kBegun;
    const bool returned = m_seen->leftReady && m_seen->ready;
    const bool failed = !m_seen->error.empty() && m_seen->ready;
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
    return now - *m_seen->failedSince >= kGrace ? Verdict::Failed : Verdict::Running;
}

} // namespace stagehost
