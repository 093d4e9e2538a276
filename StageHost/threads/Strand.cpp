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
    : pool_(pool)
    , state_(std::make_shared<State>()) {}

void Strand::Post(std::function<void()> call) {
    {
        const std::lock_guard<std::mutex> hold(state_->lock);
        state_->queue.push_back(std::move(call));
        if (state_->served)
            return;
        state_->served = true;
    }
    pool_.Run([state = state_] { state->Serve(); });
}

} // namespace stagehost
