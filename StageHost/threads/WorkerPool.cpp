#include "WorkerPool.h"

#include <atomic>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <system_error>
#include <thread>

#include "MainWait.h"

namespace stagehost {

namespace {

constexpr std::chrono::milliseconds kGraceAtEnd(200);

class PooledTask final : public Task {
public:
    explicit PooledTask(std::function<void()> call)
        : m_call(std::move(call)) {}

    bool IsDone() const override { return m_phase == Phase::Done; }

    bool Withdraw() override {
        if (!Begin())
            return false;
        End();
        return true;
    }

    void Run() {
        if (!Begin())
            return;
        m_call();
        End();
        MainWait::Wake();
    }

private:
    enum class Phase { Waiting, Begun, Done };

    /// Whether the call is the caller's from now on.
    bool Begin() {
        Phase waiting = Phase::Waiting;
        return m_phase.compare_exchange_strong(waiting, Phase::Begun);
    }

    void End() {
        m_call = nullptr;
        m_phase = Phase::Done;
    }

    std::function<void()> m_call; ///< used by whose Begin it was
    std::atomic<Phase> m_phase{Phase::Waiting};
};

} // namespace

struct WorkerPool::State {
    std::mutex lock; ///< guards the fields below
    std::condition_variable changed;
    std::deque<std::shared_ptr<PooledTask>> queue;
    std::size_t threads = 0;
    std::size_t idle = 0;
    bool closing = false;

    static void Serve(const std::shared_ptr<State>& state);
    static void AddThread(const std::shared_ptr<State>& state);
};

/// Under the lock. @throw std::system_error when the system has none left.
void WorkerPool::State::AddThread(const std::shared_ptr<State>& state) {
    std::thread([state] { Serve(state); }).detach();
    ++state->threads;
}

void WorkerPool::State::Serve(const std::shared_ptr<State>& state) {
    std::unique_lock<std::mutex> hold(state->lock);
    for (;;) {
        ++state->idle;
        state->changed.wait(hold, [&] { return state->closing || !state->queue.empty(); });
        --state->idle;
        if (state->queue.empty())
            break;
        const auto task = state->queue.front();
        state->queue.pop_front();
        hold.unlock();
        task->Run();
        hold.lock();
    }
    --state->threads;
    state->changed.notify_all();
}

WorkerPool::WorkerPool()
    : m_state(std::make_shared<State>()) {
    const std::lock_guard<std::mutex> hold(m_state->lock);
    State::AddThread(m_state);
}

WorkerPool::~WorkerPool() {
    Close(kGraceAtEnd);
}

std::shared_ptr<Task> WorkerPool::Run(std::function<void()> call) {
    auto task = std::make_shared<PooledTask>(std::move(call));
    const std::lock_guard<std::mutex> hold(m_state->lock);
    m_state->queue.push_back(task);
    try {
        if (m_state->queue.size() > m_state->idle)
            State::AddThread(m_state);
    } catch (const std::system_error&) {
        // It waits for one of the threads that there are.
    }
    m_state->changed.notify_one();
    return task;
}

bool WorkerPool::Close(std::chrono::milliseconds limit) {
    std::unique_lock<std::mutex> hold(m_state->lock);
    m_state->closing = true;
    m_state->changed.notify_all();
    return m_state->changed.wait_for(hold, limit, [this] { return m_state->threads == 0; });
}

} // namespace stagehost
