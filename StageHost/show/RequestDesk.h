#pragma once

#include <mutex>
#include <utility>
#include <vector>

#include "Request.h"
#include "ShowModel.h"
#include "Strand.h"

namespace stagehost {

/// Serves the requests of scripts, whichever link they come by.
///
/// - a request for an object that does not exist, or that refuses, is known at once: see Check;
/// - all others are served on threads of the pool, one after the other in the order in which they came; a command of a
///   device goes on beside those that follow;
/// - each is answered exactly once, what never ends when its link or the desk ends.
class RequestDesk {
public:
    /// @param model, pool must outlive the desk.
    RequestDesk(ShowModel& model, WorkerPool& pool);
    ~RequestDesk();
    RequestDesk(const RequestDesk&) = delete;
    RequestDesk& operator=(const RequestDesk&) = delete;

    /// @return 0 when the request can be served; 64 there is no such object, 72 it refuses.   [any]
    KXPCode Check(const Request& request) const;

    /// The same for a registration for a group; the granted group can always be had.   [any]
    KXPCode CheckGroup(const std::string& group) const;

    /// Serves a request that Check let pass.   [any]
    void Serve(Request request, Answer answer);

    /// Answers 75 to all requests of a link that never end.   [any host thread]
    void EndWaiting(const void* link);

    ShowModel& Model() { return m_model; }

private:
    void Run(const Request& request, const Answer& answer);

    ShowModel& m_model;
    Strand m_strand;
    std::mutex m_lock; ///< guards m_waiting
    std::vector<std::pair<const void*, Answer>> m_waiting;
};

} // namespace stagehost
