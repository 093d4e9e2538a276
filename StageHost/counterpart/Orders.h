#pragma once

#include <functional>
#include <memory>

#include <QByteArray>

namespace stagehost {

/// What a show says to a process that plays a device, on standard input: a line for each order, and the end of it for
/// the end. It is read on a thread of its own, so that a script which does not come back keeps nobody from ending: the
/// process is then left at once, a second after standard input has ended.   [host main]
class Orders {
public:
    static constexpr int kLongest = 1024 * 1024; ///< bytes of a line

    /// What hears, all on the main thread.
    struct Takers {
        std::function<void(const QByteArray& line)> take;
        std::function<void(qint64 size)> takeTooLong; ///< of a line that is not kept
        std::function<void()> end;                    ///< behind the last
    };

    explicit Orders(Takers takers);
    ~Orders();
    Orders(const Orders&) = delete;
    Orders& operator=(const Orders&) = delete;

private:
    struct State;
    std::shared_ptr<State> m_state; ///< shared with the thread, which may outlive this object
};

} // namespace stagehost
