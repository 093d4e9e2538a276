#pragma once

#include <cstddef>
#include <mutex>

#include "MLockedList.h"

/// Who is told of a socket's events. Each handler is in it once, borrowed until Remove. The lock is held while handlers
/// are called, and is recursive: a handler may add and remove handlers, itself among them, and Remove on another thread
/// waits for the end of the call that runs.   [thread: any]
template <class Handler>
class HandlerList {
public:
    /// Null is no handler.
    void Add(Handler* handler) {
        if (handler)
            m_handlers.AddUnique(handler);
    }
    void Remove(Handler* handler) { m_handlers.Remove(handler); }
    void Clear() { m_handlers.Clear(); }

    /// Calls every handler in turn. Looks at the list anew for each, since the one before may have changed it.
    template <class Call>
    void Tell(Call call) {
        const std::lock_guard<HandlerList> guard(*this);
        for (std::ptrdiff_t position = 0; position < m_handlers.end() - m_handlers.begin(); ++position)
            call(*m_handlers.begin()[position]);
    }

    /// For those who tell several things in a row.
    void lock() { m_handlers.lock(); }
    void unlock() { m_handlers.unlock(); }

private:
    MLockedList<Handler*> m_handlers;
};
