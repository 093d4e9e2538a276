#pragma once

#include <deque>
#include <functional>

#include <QTimer>

#include "Endpoint.h"
#include "Mischief.h"

namespace stagehost {

/// Says on one line what is due, in order, with the waits and ends that a prank asks for.   [host main]
class Speaker {
public:
    /// @param endpoint must outlive the speaker. @param over is called once the line was closed or reset here, and does
    /// not delete the speaker.
    Speaker(Endpoint& endpoint, LineId line, std::function<void()> over);

    /// @return false when the line was to end before this, or too much waits already; it is left out then.
    bool Say(const PrankedPiece& piece);
    /// Ends the line behind what waits.
    void End(PrankedPiece::End how);
    /// Says nothing until it goes on.
    void Hold(bool holds);

private:
    struct Part {
        std::chrono::milliseconds wait{0};
        QByteArray bytes;
        PrankedPiece::End end = PrankedPiece::End::None;
    };

    void Run();
    void Do(const Part& part);

    Endpoint& m_endpoint;
    const LineId m_line;
    const std::function<void()> m_over;
    std::deque<Part> m_parts;
    QTimer m_timer; ///< runs while the first part waits
    bool m_hasWaited = false;
    bool m_holds = false;
    bool m_isLast = false; ///< behind what waits the line ends
};

} // namespace stagehost
