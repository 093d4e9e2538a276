#pragma once

#include <functional>
#include <memory>

#include "WorkerPool.h"

namespace stagehost {

/// Calls that run one after the other, in the order in which they were given, on threads of the pool.
///
/// What was given runs also when the strand itself has gone: calls own what they touch.
class Strand {
public:
    /// @param pool must outlive the strand.
    explicit Strand(WorkerPool& pool);

    /// Runs a call behind those given before.   [any]
    void Post(std::function<void()> call);

private:
    struct State;
    WorkerPool& m_pool;
    const std::shared_ptr<State> m_state; ///< shared with the thread that serves it
};

} // namespace stagehost
