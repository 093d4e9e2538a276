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
    : seen_(std::make_shared<Seen>(status != nullptr, std::move(wake)))
    , context_(new ExecContext([seen = seen_] { seen->ContextEnded(); })) {
    if (status)
        statusObservation_ = status->Observe([seen = seen_, value = std::weak_ptr<HostValue>(status)] {
            if (const auto alive = value.lock())
                seen->StatusIs(alive->Int());
        });
    if (error)
        errorObservation_ = error->Observe([seen = seen_, value = std::weak_ptr<HostValue>(error)] {
            if (const auto alive = value.lock())
                seen->ErrorIs(alive->Text());
        });
}

CommandWatch::~CommandWatch() {
    context_->Release();
}

std::string CommandWatch::ErrorText() const {
    const std::lock_guard<std::mutex> hold(seen_->lock);
    return seen_->errorAtEnd.value_or(seen_->error);
}

void CommandWatch::StopLooking() {
    statusObservation_.reset();
    errorObservation_.reset();
}

CommandWatch::Verdict CommandWatch::Judge(std::chrono::steady_clock::time_point now) {
    const std::uint32_t state = context_->GetState();
    if (state == ExecContext::kEnded)
        return Verdict::Over;
    const std::lock_guard<std::mutex> hold(seen_->lock);
    const bool begun = state == ExecContext::kBegun;
    const bool returned = seen_->leftReady && seen_->ready;
    const bool failed = !seen_->error.empty() && seen_->ready;
    if (!failed) {
        seen_->failedSince.reset();
        if (begun || (seen_->hasStatus && !returned))
            return Verdict::Running;
        return seen_->hasStatus ? Verdict::Over : Verdict::Unseen;
    }
    if (!begun && returned)
        return Verdict::Failed;
    if (!seen_->failedSince)
        seen_->failedSince = now;
    return now - *seen_->failedSince >= kGrace ? Verdict::Failed : Verdict::Running;
}

} // namespace stagehost
