#pragma once

#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

#include "CommandCall.h"
#include "Reply.h"

namespace stagehost {

/// Waits, on one thread of its own, for the ends of all commands that scripts and tasks have sent.
///
/// A command whose context the device has begun is over when that ends. Any other is over when CommandWatch says so.
class CommandWaiter {
public:
    CommandWaiter();
    /// Answers 75 to what is left.
    ~CommandWaiter();
    CommandWaiter(const CommandWaiter&) = delete;
    CommandWaiter& operator=(const CommandWaiter&) = delete;

    /// Makes the waiter look again; given to the calls that it waits for.   [any]
    std::function<void()> Waker();

    /// Waits for a command that the device has accepted; the answer is given on the waiter's thread.
    /// @param device the device that runs it, as a key.   [any host thread]
    void Add(std::shared_ptr<CommandCall> call, const void* device, Answer answer);

    /// Answers 75 to all that wait for a device.   [any host thread]
    void EndWaiting(const void* device);

    /// What commands have failed with since it was asked last: whoever sent them has been told.   [any]
    std::vector<std::string> TakeFailures();

private:
    struct Bell;
    struct Waiting {
        std::shared_ptr<CommandCall> call;
        const void* device;
        Answer answer;
    };

    void Serve();
    std::vector<std::pair<Answer, Reply>> TakeOver();

    const std::shared_ptr<Bell> m_bell; ///< shared with the calls, which may outlive the waiter
    std::mutex m_lock;                  ///< guards the two lists
    std::vector<Waiting> m_waiting;
    std::vector<std::string> m_failures;
    std::thread m_thread;
};

} // namespace stagehost
