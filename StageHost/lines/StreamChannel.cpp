#include "StreamChannel.h"

#include <array>
#include <utility>

namespace stagehost {

namespace {

constexpr std::size_t kPiece = 64 * 1024;
constexpr std::chrono::milliseconds kPatienceWithRest(5000);
constexpr int kCompactAbove = 1024 * 1024; // bytes that have left and still stand in front

} // namespace

std::shared_ptr<StreamChannel> StreamChannel::Over(int descriptor) {
    std::shared_ptr<StreamChannel> channel(new StreamChannel(descriptor));
    channel->Watch();
    return channel;
}

std::shared_ptr<StreamChannel> StreamChannel::OverTerminal(int descriptor) {
    auto channel = Over(descriptor);
    channel->m_isTerminal = true;
    return channel;
}

std::shared_ptr<StreamChannel> StreamChannel::ConnectTo(const NetAddress& address) {
    std::string problem;
    std::shared_ptr<StreamChannel> channel(new StreamChannel(BeginConnect(address, problem)));
    channel->m_problem = QString::fromStdString(problem);
    channel->m_connects = true;
    channel->Watch();
    if (channel->m_descriptor < 0)
        QTimer::singleShot(0, channel->m_patience.get(), [channel] { channel->Lose(channel->m_problem, false); });
    return channel;
}

StreamChannel::StreamChannel(int descriptor)
    : m_descriptor(descriptor) {
    m_patience->setSingleShot(true);
    QObject::connect(m_patience.get(), &QTimer::timeout, m_patience.get(), [this] { LetGo(&CloseWithReset); });
}

StreamChannel::~StreamChannel() {
    LetGo(&CloseLine);
}

void StreamChannel::Watch() {
    if (m_descriptor < 0)
        return;
    m_readable = std::make_unique<QSocketNotifier>(m_descriptor, QSocketNotifier::Read);
    m_writable = std::make_unique<QSocketNotifier>(m_descriptor, QSocketNotifier::Write);
    QObject::connect(m_readable.get(), &QSocketNotifier::activated, m_readable.get(), [this] { ReadyToRead(); });
    QObject::connect(m_writable.get(), &QSocketNotifier::activated, m_writable.get(), [this] { ReadyToWrite(); });
    ListenToNotifiers();
}

void StreamChannel::ListenToNotifiers() {
    if (m_descriptor < 0)
        return;
    m_readable->setEnabled(!m_connects && (m_reads || m_closes) && !m_hearsNoMore);
    m_writable->setEnabled(m_connects || Unsent() > 0);
}

void StreamChannel::Send(const QByteArray& bytes) {
    if (m_descriptor < 0 || m_closes || m_endsSending || bytes.isEmpty())
        return;
    const auto stays = shared_from_this();
    if (m_connects || Unsent() > 0) {
        m_waiting += bytes;
        return;
    }
    const IoResult result = Write(bytes.constData(), bytes.size());
    const int taken = static_cast<int>(result.count);
    if (taken == bytes.size())
        return;
    m_waiting = bytes.mid(taken); // a failure is met again, and told, when the rest is tried
    m_sent = 0;
    ListenToNotifiers();
}

IoResult StreamChannel::Write(const char* data, qint64 size) const {
    return (m_isTerminal ? &WriteSomeToTerminal : &WriteSome)(m_descriptor, data, static_cast<std::size_t>(size));
}

void StreamChannel::EndSending() {
    if (m_isTerminal)
        return;
    m_endsSending = true;
    AfterWriting();
}

void StreamChannel::Close() {
    m_news = {};
    if (m_descriptor < 0 || m_closes)
        return;
    m_closes = m_endsSending = true;
    if (m_isTerminal || (m_connects && Unsent() == 0))
        return LetGo(&CloseLine);
    m_self = shared_from_this();
    m_patience->start(kPatienceWithRest);
    ListenToNotifiers();
    AfterWriting();
}

void StreamChannel::Reset() {
    m_news = {};
    LetGo(&CloseWithReset);
}

void StreamChannel::SetReading(bool reads) {
    m_reads = reads;
    ListenToNotifiers();
}

/// One piece at a time, so that no connection keeps the others waiting.
void StreamChannel::ReadyToRead() {
    const auto stays = shared_from_this();
    std::array<char, kPiece> buffer;
    const IoResult result = ReadSome(m_descriptor, buffer.data(), buffer.size());
    switch (result.state) {
    case IoState::Later:
        return;
    case IoState::Done:
        if (m_news.came)
            ChannelNews(m_news).came(QByteArray(buffer.data(), static_cast<int>(result.count)));
        return;
    case IoState::End:
        if (m_isTerminal) // somebody has thrown away what was there to be read
            return;
        m_hearsNoMore = true;
        ListenToNotifiers();
        if (m_news.ended)
            ChannelNews(m_news).ended();
        if (m_saysNoMore && m_descriptor >= 0)
            Lose({}, false);
        return;
    case IoState::Reset:
    case IoState::Failed: // of a terminal: the program has closed it, which is an end in order
        Lose(m_isTerminal ? QString() : QString::fromStdString(result.problem), result.state == IoState::Reset);
    }
}

void StreamChannel::ReadyToWrite() {
    const auto stays = shared_from_this();
    if (m_connects)
        return FinishConnecting();
    WriteWaiting();
}

void StreamChannel::FinishConnecting() {
    const IoResult result = FinishConnect(m_descriptor);
    if (result.state != IoState::Done)
        return Lose(QString::fromStdString(result.problem), result.state == IoState::Reset);
    m_connects = false;
    ListenToNotifiers();
    if (m_news.connected)
        ChannelNews(m_news).connected();
    if (Unsent() > 0)
        WriteWaiting();
    else
        AfterWriting();
}

void StreamChannel::WriteWaiting() {
    const IoResult result = Write(m_waiting.constData() + m_sent, Unsent());
    if (result.state == IoState::Reset || result.state == IoState::Failed)
        return Lose(QString::fromStdString(result.problem), result.state == IoState::Reset);
    m_sent += static_cast<int>(result.count);
    if (Unsent() > 0 && m_sent < kCompactAbove)
        return;
    m_waiting.remove(0, m_sent);
    m_sent = 0;
    if (!m_waiting.isEmpty())
        return;
    ListenToNotifiers();
    AfterWriting();
    if (m_news.drained)
        ChannelNews(m_news).drained();
}

/// What was asked for behind the last byte.
void StreamChannel::AfterWriting() {
    if (m_descriptor < 0 || m_connects || Unsent() > 0 || !m_endsSending || m_saysNoMore)
        return;
    const auto stays = shared_from_this();
    m_saysNoMore = true;
    stagehost::EndSending(m_descriptor);
    if (m_hearsNoMore)
        Lose({}, false);
}

void StreamChannel::Lose(const QString& why, bool isReset) {
    LetGo(&CloseLine);
    const ChannelNews news = std::exchange(m_news, {});
    if (news.lost)
        news.lost(why, isReset);
}

/// Notifiers are often let go from inside their own signal.
void StreamChannel::LetGo(void (*close)(int)) {
    const auto stays = std::exchange(m_self, nullptr);
    for (auto* notifier : {&m_readable, &m_writable}) {
        if (!*notifier)
            continue;
        (*notifier)->setEnabled(false);
        notifier->release()->deleteLater();
    }
    m_patience->stop();
    m_waiting.clear();
    m_sent = 0;
    if (m_descriptor >= 0)
        close(std::exchange(m_descriptor, -1));
}

} // namespace stagehost
