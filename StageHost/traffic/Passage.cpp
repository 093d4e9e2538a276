#include "Passage.h"

#include <utility>

namespace stagehost {

std::shared_ptr<Passage> Passage::To(Outlet outlet) {
    return std::shared_ptr<Passage>(new Passage(std::move(outlet)));
}

Passage::Passage(Outlet outlet)
    : m_outlet(std::move(outlet)) {
    m_timer->setSingleShot(true);
    m_timer->setTimerType(Qt::PreciseTimer);
    QObject::connect(m_timer.get(), &QTimer::timeout, m_timer.get(), [this] { Run(); });
}

void Passage::Pass(const PrankedPiece& piece) {
    std::chrono::milliseconds wait = piece.wait;
    for (const QByteArray& bytes : piece.pieces) {
        Add(wait, bytes, End::None);
        wait = piece.pause;
    }
    if (piece.end != End::None)
        Add(piece.pieces.empty() ? piece.wait : std::chrono::milliseconds(0), {}, piece.end);
    Run();
}

void Passage::PassEnd(End end) {
    Add(std::chrono::milliseconds(0), {}, end);
    Run();
}

void Passage::Stop() {
    m_isStopped = true;
    m_timer->stop();
    m_steps.clear();
    m_size = 0;
}

void Passage::Add(std::chrono::milliseconds wait, const QByteArray& bytes, End end) {
    m_steps.push_back({wait, bytes, end});
    m_size += bytes.size();
}

void Passage::Run() {
    if (m_runs || m_timer->isActive())
        return;
    const auto stays = shared_from_this();
    m_runs = true;
    while (!m_isStopped && !m_steps.empty()) {
        if (const auto wait = std::exchange(m_steps.front().wait, {}); wait.count() > 0) {
            m_timer->start(wait);
            break;
        }
        const Step step = std::move(m_steps.front());
        m_steps.pop_front();
        m_size -= step.bytes.size();
        if (step.end == End::None)
            m_outlet.send(step.bytes);
        else
            m_outlet.end(step.end);
    }
    m_runs = false;
}

} // namespace stagehost
