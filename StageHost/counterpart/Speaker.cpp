#include "Speaker.h"

namespace stagehost {

namespace {

constexpr std::size_t kMostParts = 100000;

} // namespace

Speaker::Speaker(Endpoint& endpoint, LineId line, std::function<void()> over)
    : m_endpoint(endpoint)
    , m_line(line)
    , m_over(std::move(over)) {
    m_timer.setSingleShot(true);
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] {
        m_hasWaited = true;
        Run();
    });
}

bool Speaker::Say(const PrankedPiece& piece) {
    if (m_isLast || m_parts.size() > kMostParts)
        return false;
    m_isLast = piece.end != PrankedPiece::End::None;
    std::chrono::milliseconds wait = piece.wait;
    for (const QByteArray& bytes : piece.pieces) {
        m_parts.push_back({wait, bytes, PrankedPiece::End::None});
        wait = piece.pause;
    }
    if (piece.end != PrankedPiece::End::None)
        m_parts.push_back({std::chrono::milliseconds(0), {}, piece.end});
    Run();
    return true;
}

void Speaker::End(PrankedPiece::End how) {
    m_isLast = true;
    m_parts.push_back({std::chrono::milliseconds(0), {}, how});
    Run();
}

void Speaker::Hold(bool holds) {
    m_holds = holds;
    Run();
}

void Speaker::Run() {
    while (!m_holds && !m_timer.isActive() && !m_parts.empty()) {
        if (m_parts.front().wait.count() > 0 && !m_hasWaited) {
            m_timer.start(m_parts.front().wait);
            return;
        }
        m_hasWaited = false;
        const Part part = m_parts.front();
        m_parts.pop_front();
        Do(part);
    }
}

void Speaker::Do(const Part& part) {
    using End = PrankedPiece::End;
    if (!part.bytes.isEmpty())
        m_endpoint.Send(m_line, part.bytes);
    if (part.end == End::Close)
        m_endpoint.Close(m_line);
    else if (part.end == End::HalfClose)
        m_endpoint.EndSending(m_line);
    else if (part.end == End::Reset)
        m_endpoint.Reset(m_line);
    if (part.end == End::Close || part.end == End::Reset)
        m_over();
}

} // namespace stagehost
