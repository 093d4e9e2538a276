#include "CounterpartEnd.h"

namespace stagehost {

CounterpartEnd::CounterpartEnd(QString name, LineKind kind, FramingRule rule, News news)
    : m_name(std::move(name))
    , m_rule(std::move(rule))
    , m_news(std::move(news))
    , m_endpoint(Endpoint::Make(kind, *this)) {}

void CounterpartEnd::Retire() {
    Leave();
    Resume();
    m_mischief.reset();
    m_news = {
        [](LineId, const QString&) {}, [](LineId, const QByteArray&) {},   [](LineId) {}, [](LineId, const QString&) {},
        [](const QString&) {},         [](const std::function<void()>&) {}};
}

QString CounterpartEnd::BeginAnew(FramingRule rule, News news) {
    m_rule = std::move(rule);
    m_news = std::move(news);
    return m_endpoint->Return();
}

std::optional<QString> CounterpartEnd::Say(LineId line, const QByteArray& bytes) {
    const auto found = m_lines.find(line);
    if (found == m_lines.end())
        return std::nullopt;
    PrankedPiece piece;
    piece.pieces = {bytes};
    if (m_mischief)
        piece = m_mischief->Next(bytes);
    const QString prank = piece.prank == Prank::None ? QString() : NameOf(piece.prank);
    return found->second.speaker->Say(piece) ? std::optional(prank) : std::nullopt;
}

void CounterpartEnd::Close(LineId line, PrankedPiece::End how) {
    const auto found = m_lines.find(line);
    if (found != m_lines.end())
        found->second.speaker->End(how);
}

/// A frame may be cut just now for the script that asks for this: its line stays until that has come back.
void CounterpartEnd::Leave() {
    const auto gone = std::make_shared<std::map<LineId, Line>>(std::move(m_lines));
    m_lines.clear();
    m_endpoint->Leave();
    m_news.enter([gone] {});
}

void CounterpartEnd::Stall() {
    m_isStalled = true;
    m_endpoint->Stall();
    for (const auto& [line, state] : m_lines)
        state.speaker->Hold(true);
}

void CounterpartEnd::Resume() {
    m_isStalled = false;
    for (const auto& [line, state] : m_lines)
        state.speaker->Hold(false);
    m_endpoint->Resume();
}

void CounterpartEnd::Opened(LineId line, const QString& who) {
    auto speaker = std::make_unique<Speaker>(*m_endpoint, line, [this, line] {
        QMetaObject::invokeMethod(
            &m_later, [this, line] { Forget(line, {}); }, Qt::QueuedConnection);
    });
    speaker->Hold(m_isStalled);
    m_lines.emplace(line, Line{Framing(m_rule), std::move(speaker)});
    m_news.opened(line, who);
}

void CounterpartEnd::Came(LineId line, const QByteArray& bytes) {
    m_news.enter([this, line, bytes] {
        const auto found = m_lines.find(line);
        if (found == m_lines.end())
            return;
        found->second.framing.Take(bytes);
        Cut(line);
    });
}

/// A frame may end the line, and with it the rest of the frames.
void CounterpartEnd::Cut(LineId line) {
    QString problem;
    for (auto found = m_lines.find(line); found != m_lines.end(); found = m_lines.find(line)) {
        const auto frame = found->second.framing.Next(&problem);
        if (!problem.isEmpty())
            m_news.problem(problem);
        if (!frame)
            return;
        m_news.took(line, *frame);
    }
}

void CounterpartEnd::Ended(LineId line) {
    m_news.ended(line);
}

void CounterpartEnd::Closed(LineId line, const QString& why) {
    Forget(line, why);
}

void CounterpartEnd::Forget(LineId line, const QString& why) {
    m_news.enter([this, line, why] {
        if (m_lines.erase(line) > 0)
            m_news.closed(line, why);
    });
}

} // namespace stagehost
