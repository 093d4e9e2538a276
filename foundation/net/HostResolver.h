#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>

/// Finds the address of a host in a way that can be given up: the system's resolver may be silent for many seconds, and
/// cannot be interrupted. So a name is looked up on a thread of its own, which a cancelled caller leaves behind: it
/// ends when the system has answered, and touches nothing that belongs to the caller.
class HostResolver {
public:
    enum class Outcome { Pending, Found, NotFound, Cancelled };

    /// How often Cancel was called. Whoever begins something that
    /// Cancel is to end notes the count before.   [thread: any]
    std::uint32_t GetCancelCount() const;

    /// The address of a dotted text or a name, in network byte order. Dotted texts need no look-up. Waits until the
    /// system has answered, or, when Cancel was called since cancelCount was noted, at most until then.
    /// @return Found, NotFound or Cancelled.   [thread: any, one at a time]
    Outcome Resolve(const std::string& host, std::uint32_t cancelCount, std::uint32_t& address);

    /// Ends the running Resolve, and those to come that noted the count before.   [thread: any]
    void Cancel();

private:
    struct Question;
    std::shared_ptr<Question> Ask(const std::string& host, std::uint32_t cancelCount);

    mutable std::mutex m_lock;
    std::uint32_t m_cancelCount = 0;      // under m_lock
    std::shared_ptr<Question> m_question; // the running one; under m_lock
};
