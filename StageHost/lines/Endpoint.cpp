#include "Endpoint.h"

#include <utility>

#include "PtyEndpoint.h"
#include "TcpEndpoint.h"
#include "UdpEndpoint.h"

namespace stagehost {

std::unique_ptr<Endpoint> Endpoint::Make(LineKind kind, EndpointNews& news) {
    switch (kind) {
    case LineKind::Tcp:
        return std::make_unique<TcpEndpoint>(news);
    case LineKind::Udp:
        return std::make_unique<UdpEndpoint>(news);
    case LineKind::Serial:
        return std::make_unique<PtyEndpoint>(news);
    }
    return nullptr;
}

QJsonObject Endpoint::PlaceJson() const {
    return {{NameOf(m_place.kind),
             m_place.kind == LineKind::Serial ? QJsonValue(m_place.path) : QJsonValue(static_cast<int>(m_place.port))}};
}

void Endpoint::Send(LineId line, const QByteArray& bytes) {
    if (Channel* channel = Find(line))
        channel->Send(bytes);
}

qint64 Endpoint::Unsent(LineId line) const {
    const Channel* channel = Find(line);
    return channel == nullptr ? 0 : channel->Unsent();
}

void Endpoint::EndSending(LineId line) {
    if (Channel* channel = Find(line))
        channel->EndSending();
}

void Endpoint::Close(LineId line) {
    const auto found = m_lines.find(line);
    if (found == m_lines.end())
        return;
    const auto channel = found->second;
    m_lines.erase(found);
    channel->Close();
    LineIsOver(line, true);
}

void Endpoint::Reset(LineId line) {
    const auto found = m_lines.find(line);
    if (found == m_lines.end())
        return;
    const auto channel = found->second;
    m_lines.erase(found);
    channel->Reset();
    LineIsOver(line, true);
}

void Endpoint::SetReading(LineId line, bool reads) {
    if (Channel* channel = Find(line))
        channel->SetReading(reads);
}

std::vector<LineId> Endpoint::Lines() const {
    std::vector<LineId> lines;
    for (const auto& [line, channel] : m_lines)
        lines.push_back(line);
    return lines;
}

void Endpoint::Stall() {
    m_isStalled = true;
    LetIn(false);
    for (const auto& [line, channel] : m_lines)
        channel->SetReading(false);
}

void Endpoint::Resume() {
    m_isStalled = false;
    LetIn(true);
    for (const auto& [line, channel] : m_lines)
        channel->SetReading(true);
}

void Endpoint::Leave() {
    if (std::exchange(m_hasLeft, true))
        return;
    CloseDoor();
    CloseAll();
    DoLeave();
}

QString Endpoint::Return() {
    if (!m_hasLeft)
        return {};
    QString problem = DoReturn();
    m_hasLeft = !problem.isEmpty();
    if (!m_hasLeft)
        LetIn(!m_isStalled);
    return problem;
}

LineId Endpoint::Add(const std::shared_ptr<Channel>& channel, const QString& who) {
    const LineId line = ++m_last;
    m_lines[line] = channel;
    channel->SetNews({[this, line](const QByteArray& bytes) { m_news.Came(line, bytes); },
                      {},
                      [this, line] { m_news.Ended(line); },
                      [this, line] { m_news.Drained(line); },
                      {},
                      [this, line](const QString& why, bool) { Forget(line, why); }});
    if (m_isStalled)
        channel->SetReading(false);
    m_news.Opened(line, who);
    return line;
}

Channel* Endpoint::Find(LineId line) const {
    const auto found = m_lines.find(line);
    return found == m_lines.end() ? nullptr : found->second.get();
}

void Endpoint::CloseAll() {
    for (const LineId line : Lines())
        Close(line);
}

void Endpoint::Forget(LineId line, const QString& why) {
    if (m_lines.erase(line) == 0)
        return;
    m_news.Closed(line, why);
    LineIsOver(line, false);
}

} // namespace stagehost
