#include "CommandWaiter.h"

#include <algorithm>
#include <utility>

#include "HostCodes.h"
#include "ShowClock.h"

namespace stagehost {

namespace {

/// Whether a command is over, and how.
std::optional<Reply> ReplyOf(CommandCall& call) {
    using Verdict = CommandWatch::Verdict;
    const bool begun = call.watch->Context()->GetState() == ExecContext::kBegun;
    const Verdict verdict = begun ? Verdict::Running : call.watch->Judge(std::chrono::steady_clock::now());
    if (verdict == Verdict::Running)
        return std::nullopt;
    std::string error = call.watch->OwnError();
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
            rung.wait_for(hold, MachineTime(kLook), called);
        else
            rung.wait(hold, called);
        look = false;
        return !ending;
    }
};

CommandWaiter::CommandWaiter()
    : m_bell(std::make_shared<Bell>())
    , m_thread([this] { Serve(); }) {}

CommandWaiter::~CommandWaiter() {
    m_bell->Ring(m_bell->ending);
    m_thread.join();
    for (const auto& left : m_waiting)
        left.answer({kEnding});
}

std::function<void()> CommandWaiter::Waker() {
    return [bell = m_bell] { bell->Ring(bell->look); };
}

void CommandWaiter::Add(std::shared_ptr<CommandCall> call, const void* device, Answer answer) {
    {
        const std::lock_guard<std::mutex> hold(m_lock);
        m_waiting.push_back({std::move(call), device, std::move(answer)});
    }
    m_bell->Ring(m_bell->look);
}

void CommandWaiter::EndWaiting(const void* device) {
    std::vector<Answer> ended;
    {
        const std::lock_guard<std::mutex> hold(m_lock);
        for (auto& entry : m_waiting) {
            if (entry.device == device)
                ended.push_back(std::move(entry.answer));
        }
        m_waiting.erase(std::remove_if(m_waiting.begin(), m_waiting.end(),
                                       [&](const auto& entry) { return entry.device == device; }),
                        m_waiting.end());
    }
    for (const auto& answer : ended)
        answer({kEnding});
}

std::vector<std::string> CommandWaiter::TakeFailures() {
    const std::lock_guard<std::mutex> hold(m_lock);
    return std::exchange(m_failures, {});
}

void CommandWaiter::Serve() {
    while (m_bell->Wait()) {
        for (const auto& [answer, reply] : TakeOver())
            answer(reply);
    }
}

std::vector<std::pair<Answer, Reply>> CommandWaiter::TakeOver() {
    std::vector<std::pair<Answer, Reply>> over;
    const std::lock_guard<std::mutex> hold(m_lock);
    for (auto entry = m_waiting.begin(); entry != m_waiting.end();) {
        auto reply = ReplyOf(*entry->call);
        if (!reply) {
            ++entry;
            continue;
        }
        if (reply->code == kActionFailed)
            m_failures.push_back(reply->problem);
        over.emplace_back(std::move(entry->answer), std::move(*reply));
        entry = m_waiting.erase(entry);
    }
    const std::lock_guard<std::mutex> bell(m_bell->lock);
    m_bell->waiting = !m_waiting.empty();
    return over;
}

} // namespace stagehost
