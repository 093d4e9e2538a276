#include "ScriptBacklog.h"

#include <algorithm>
#include <mutex>
#include <utility>

struct ScriptBacklog::State {
    std::mutex lock;
    Tell tell;           ///< under lock; empty once the object is gone
    BacklogLoad waiting; ///< under lock
    bool full = false;   ///< under lock: told, and not yet taken back

    void Note(const BacklogLoad& load) {
        const std::lock_guard<std::mutex> guard(lock);
        waiting.events += load.events;
        waiting.bytes += load.bytes;
        SetFull(full || waiting.events >= kMost.events || waiting.bytes >= kMost.bytes);
    }
    void Forget(const BacklogLoad& load) {
        const std::lock_guard<std::mutex> guard(lock);
        waiting.events -= load.events;
        waiting.bytes -= load.bytes;
        SetFull(full && (waiting.events > kMost.events / 2 || waiting.bytes > kMost.bytes / 2));
    }
    void SetFull(bool isFull) {
        if (std::exchange(full, isFull) != isFull && tell)
            tell(isFull);
    }
};

ScriptBacklog::ScriptBacklog(Tell tell)
    : m_state(std::make_shared<State>()) {
    m_state->tell = std::move(tell);
}

ScriptBacklog::~ScriptBacklog() {
    const std::lock_guard<std::mutex> guard(m_state->lock);
    m_state->tell = nullptr;
}

BacklogLoad ScriptBacklog::GetRoom() const {
    const std::lock_guard<std::mutex> guard(m_state->lock);
    const BacklogLoad& waiting = m_state->waiting;
    return {kMost.events - std::min(waiting.events, kMost.events), kMost.bytes - std::min(waiting.bytes, kMost.bytes)};
}

ScriptBacklog::Ticket ScriptBacklog::Add(const BacklogLoad& load) {
    struct Place {
        Place(std::shared_ptr<State> theState, const BacklogLoad& theLoad)
            : state(std::move(theState))
            , load(theLoad) {}
        Place(const Place&) = delete;
        Place& operator=(const Place&) = delete;
        ~Place() { state->Forget(load); }
        const std::shared_ptr<State> state;
        const BacklogLoad load;
    };
    Ticket ticket = std::make_shared<const Place>(m_state, load);
    m_state->Note(load);
    return ticket;
}
