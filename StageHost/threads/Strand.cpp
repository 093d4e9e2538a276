#include "Strand.h"

#include <deque>
#include <mutex>

namespace stagehost {

struct Strand::State {
    std::mutex lock; ///< guards the fields below
    std::deque<std::function<void()>> queue;
    bool served = false; ///< a thread of the pool is at the queue

    void Serve();
};

void Strand::State::Serve() {
    std::unique_lock<std::mutex> hold(lock);
    while (!queue.empty()) {
        {
            const auto call = std::move(queue.front());
            queue.pop_front();
            hold.unlock();
            call();
        }
        hold.lock();
    }
    served = false;
}

Strand::Strand(WorkerPool& pool)
    : m_pool(pool)
    , m_state(std::make_shared<State>()) {}

void Strand::Post(std::function<void()> call) {
    {
        const std::lock_guard<std::mutex> hold(m_state->lock);
        m_state->queue.push_back(std::move(call));
        if (m_state->served)
            return;
        m_state->served = true;
    }
    m_pool.Run([state = m_state] { state->Serve(); });
}

} // namespace stagehost
