#include "WorkerPool.h"

#include <atomic>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

#include "MainWait.h"

namespace stagehost {

namespace {

constexpr std::chrono::milliseconds kGraceAtEnd(200);

class PooledTask final : public Task {
public:
    explicit PooledTask(std::function<void()> call)
        : m_call(std::move(call)) {}

    bool IsDone() const override { return m_done.load(std::memory_order_acquire); }

    void Run() {
        m_call();
        m_call = nullptr;
        m_done.store(true, std::memory_order_release);
        MainWait::Wake();
    }

private:
    std::function<void()> m_call;
    std::atomic<bool> m_done{false};
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
};

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
    : m_state(std::make_shared<State>()) {}

WorkerPool::~WorkerPool() {
    Close(kGraceAtEnd);
}

std::shared_ptr<Task> WorkerPool::Run(std::function<void()> call) {
    auto task = std::make_shared<PooledTask>(std::move(call));
    const std::lock_guard<std::mutex> hold(m_state->lock);
    m_state->queue.push_back(task);
    if (m_state->queue.size() > m_state->idle) {
        ++m_state->threads;
        std::thread([state = m_state] { State::Serve(state); }).detach();
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
