#pragma once

#include <deque>
#include <functional>
#include <memory>

#include <QTimer>

#include "DeleteLater.h"
#include "Mischief.h"

namespace stagehost {

/// Hands pieces of bytes on in their order, each at its time.   [host main]
class Passage : public std::enable_shared_from_this<Passage> {
public:
    using End = PrankedPiece::End;

    /// Where it leads. Both may let go of the passage.
    struct Outlet {
        std::function<void(const QByteArray& bytes)> send;
        std::function<void(End end)> end;
    };

    static std::shared_ptr<Passage> To(Outlet outlet);
    Passage(const Passage&) = delete;
    Passage& operator=(const Passage&) = delete;

    /// Hands a piece on, at once when nothing waits and the piece has no wait of its own.
    void Pass(const PrankedPiece& piece);
    /// Ends the way behind all that was passed.
    void PassEnd(End end);
    /// Forgets what waits; nothing leaves any more.
    void Stop();

    /// Bytes that wait.
    qint64 Waiting() const { return m_size; }

private:
    struct Step {
        std::chrono::milliseconds wait;
        QByteArray bytes;
        End end;
    };

    explicit Passage(Outlet outlet);
    void Add(std::chrono::milliseconds wait, const QByteArray& bytes, End end);
    void Run();

    const Outlet m_outlet;
    std::deque<Step> m_steps;
    qint64 m_size = 0;
    DeletedLater<QTimer> m_timer{new QTimer};
    bool m_runs = false;
    bool m_isStopped = false;
};

} // namespace stagehost
