#pragma once

#include <cstdint>
#include <memory>
#include <mutex>

#include "MCommandObject.h"

/// First in, first out. The commands are linked through themselves, so that appending never allocates and cannot fail.
/// - Commands leave in the order in which Append returned.
/// - A command that has been appended leaves exactly once: by TakeOldest,
///   as the dropped one of an Append, by Clear, or with the queue.   [thread: any]
class CommandQueue {
public:
    CommandQueue() = default;
    ~CommandQueue();
    CommandQueue(const CommandQueue&) = delete;
    CommandQueue& operator=(const CommandQueue&) = delete;

    /// Appends a command. When the queue holds more than maxQueued before, its oldest one makes room.
    /// @return that oldest one, or null.
    std::unique_ptr<MCommandObject> Append(std::unique_ptr<MCommandObject> command, std::int32_t maxQueued);

    /// Null when the queue is empty.
    std::unique_ptr<MCommandObject> TakeOldest();

    /// Deletes all commands but those that are kept, outside the queue's lock. One that is appended meanwhile stays.
    void Clear();

    /// With true, what is appended from here on outlives a Clear, until a call with false; another one with true
    /// changes nothing.
    void KeepFromHere(bool keeps);

    std::int32_t Count() const;
    bool IsEmpty() const { return Count() == 0; }

private:
    MCommandObject* Unlink(); // with m_mutex held and the queue not empty
    MCommandObject* UnlinkOld();

    mutable std::mutex m_mutex;
    MCommandObject* m_head = nullptr; // the oldest; under m_mutex
    MCommandObject* m_tail = nullptr; // under m_mutex
    std::int32_t m_count = 0;         // under m_mutex
    std::int32_t m_old = 0;           // commands from the oldest on that are not kept; under m_mutex
    bool m_keeps = false;             // what is appended; under m_mutex
};
