#pragma once

#include <cstdint>
#include <memory>
#include <mutex>

#include "MCommandObject.h"

/// First in, first out. The commands are linked through themselves, so that appending never allocates and cannot fail.
/// - Commands leave in the order in which Append returned.
/// - A command that has been appended leaves exactly once: by TakeOldest,
///   as the dropped one of an Append, or by Clear.   [thread: any]
class CommandQueue {
public:
    CommandQueue() = default;
    ~CommandQueue() { Clear(); }
    CommandQueue(const CommandQueue&) = delete;
    CommandQueue& operator=(const CommandQueue&) = delete;

    /// Appends a command. When the queue holds more than maxQueued before, its oldest one makes room.
    /// @return that oldest one, or null.
    std::unique_ptr<MCommandObject> Append(std::unique_ptr<MCommandObject> command, std::int32_t maxQueued);

    /// Null when the queue is empty.
    std::unique_ptr<MCommandObject> TakeOldest();

    /// Deletes all commands, outside the queue's lock. One that is appended meanwhile stays.
    void Clear();

    std::int32_t Count() const;
    bool IsEmpty() const { return Count() == 0; }

private:
    MCommandObject* Unlink(); // with m_mutex held and the queue not empty

    mutable std::mutex m_mutex;
    MCommandObject* m_head = nullptr; // the oldest; under m_mutex
    MCommandObject* m_tail = nullptr; // under m_mutex
    std::int32_t m_count = 0;         // under m_mutex
};
