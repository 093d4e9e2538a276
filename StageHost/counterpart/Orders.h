#pragma once

#include <functional>
#include <memory>

#include <QByteArray>

namespace stagehost {

/// What a show says to a process that plays a device, on standard input: a line for each order, and the end of it for
/// the end. It is read on a thread of its own, so that a script which does not come back keeps nobody from ending: the
/// process is then left at once, a second after standard input has ended. What has nobody at its other end, a file or
/// /dev/null, is not read.   [host main]
class Orders {
public:
    /// @param take gets each line, and @param end is called behind the last, both on the main thread.
    Orders(std::function<void(const QByteArray& line)> take, std::function<void()> end);
    ~Orders();
    Orders(const Orders&) = delete;
    Orders& operator=(const Orders&) = delete;

private:
    struct State;
    std::shared_ptr<State> m_state; ///< shared with the thread, which may outlive this object
};

} // namespace stagehost
