#include "CommandWaiter.h"

#include <algorithm>

#include "HostCodes.h"

namespace stagehost {

namespace {

/// Whether a command is over, and how.
std::optional<Reply> ReplyOf(CommandCall& call) {
    using Verdict = CommandWatch::Verdict;
    const bool begun = call.watch->Context()->GetState() == ExecContext::kBegun;
    const Verdict verdict = begun ? Verdict::Running : call.watch->Judge(std::chrono::steady_clock::now());
    if (verdict == Verdict::Running)
        return std::nullopt;
    std::string error = call.watch->ErrorText();
    if (verdict == Verdict::Failed || !error.empty())
        return Reply{kActionFailed, {}, std::move(error)};
    return Reply{KXP_OK, call.ResultText(), {}};
}

} // namespace

struct CommandWaiter::Bell {
    std::mutex lock; ///< guards the fields below
    std::condition_variable rung;
    bool look = false;
    bool waiting = false; ///< there is something to look at from time to time
    bool ending = false;

    void Ring(bool& flag) {
        {
            const std::lock_guard<std::mutex> hold(lock);
            flag = true;
        }
        rung.notify_one();
    }

    /// @return false at the end.
    bool Wait() {
        std::unique_lock<std::mutex> hold(lock);
        const auto called = [this] { return look || ending; };
        if (waiting)
            rung.wait_for(hold, kLook, called);
        else
            rung.wait(hold, called);
        look = false;
        return !ending;
    }
};

CommandWaiter::CommandWaiter()
    : bell_(std::make_shared<Bell>())
    , thread_([this] { Serve(); }) {}

CommandWaiter::~CommandWaiter() {
    bell_->Ring(bell_->ending);
    thread_.join();
    for (const auto& left : waiting_)
        left.answer({kEnding});
}

std::function<void()> CommandWaiter::Waker() {
    return [bell = bell_] { bell->Ring(bell->look); };
}

void CommandWaiter::Add(std::shared_ptr<CommandCall> call, const void* device, Answer answer) {
    {
        const std::lock_guard<std::mutex> hold(lock_);
        waiting_.push_back({std::move(call), device, std::move(answer)});
    }
    bell_->Ring(bell_->look);
}

void CommandWaiter::EndWaiting(const void* device) {
    std::vector<Answer> ended;
    {
        const std::lock_guard<std::mutex> hold(lock_);
        for (auto& entry : waiting_) {
            if (entry.device == device)
                ended.push_back(std::move(entry.answer));
        }
        waiting_.erase(
            std::remove_if(waiting_.begin(), waiting_.end(), [&](const auto& entry) { return entry.device == device; }),
            waiting_.end());
    }
    for (const auto& answer : ended)
        answer({kEnding});
}

void CommandWaiter::Serve() {
    while (bell_->Wait()) {
        for (const auto& [answer, reply] : TakeOver())
            answer(reply);
    }
}

std::vector<std::pair<Answer, Reply>> CommandWaiter::TakeOver() {
    std::vector<std::pair<Answer, Reply>> over;
    const std::lock_guard<std::mutex> hold(lock_);
    for (auto entry = waiting_.begin(); entry != waiting_.end();) {
        auto reply = ReplyOf(*entry->call);
        if (!reply) {
            ++entry;
            continue;
        }
        over.emplace_back(std::move(entry->answer), std::move(*reply));
        entry = waiting_.erase(entry);
    }
    const std::lock_guard<std::mutex> bell(bell_->lock);
    bell_->waiting = !waiting_.empty();
    return over;
}

} // namespace stagehost
