#include "TrafficWriter.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include <QTimer>

#include "FileLock.h"
#include "TextFile.h"

namespace stagehost {

namespace {

constexpr std::size_t kMostUnwritten = 8 * 1024 * 1024; // bytes
constexpr std::size_t kRoomAgain = kMostUnwritten / 2;
constexpr std::size_t kCostOfAnEntry = 64;
constexpr std::size_t kWrittenAtOnce = 64 * 1024;
constexpr int kPiece = 64 * 1024;
constexpr std::chrono::milliseconds kGather(50);
constexpr std::chrono::milliseconds kPatienceWithDisk(2000);

std::size_t SizeOf(const TrafficEntry& entry) {
    return static_cast<std::size_t>(entry.bytes.size()) + kCostOfAnEntry;
}

} // namespace

TrafficWriter::TrafficWriter(News news)
    : m_news(std::move(news)) {}

TrafficWriter::~TrafficWriter() {
    Close();
}

QString TrafficWriter::Open(const QString& file, const TrafficHead& head) {
    const QString standing = WhyNotReplaceable(file, kTrafficMark, "recording");
    if (!standing.isEmpty())
        return QStringLiteral("%1: %2").arg(file, standing);
    m_file.setFileName(file);
    const QByteArray line = LineOf(head);
    const bool isOpen = m_file.open(QIODevice::ReadWrite | QIODevice::Unbuffered); // as it is, until it is ours alone
    if (isOpen && !KeepForOneWriter(m_file.handle()))
        return QStringLiteral("%1: another recording is being written into it").arg(file);
    if (!isOpen || !m_file.resize(0) || m_file.write(line) != line.size())
        return QStringLiteral("%1: %2").arg(file, m_file.errorString());
    m_thread = std::thread([this] { Work(); });
    return {};
}

void TrafficWriter::Add(const TrafficEntry& entry) {
    bool wakes = false;
    {
        const std::lock_guard<std::mutex> hold(m_lock);
        if (m_hasEnded || m_closes)
            return;
        const std::size_t before = m_size;
        m_size += SizeOf(entry);
        wakes = m_waiting.empty() || (before <= kWrittenAtOnce && m_size > kWrittenAtOnce);
        m_waiting.push_back(entry);
        if (m_size > kMostUnwritten && !std::exchange(m_wasFull, true))
            WatchDiskLocked();
    }
    if (wakes)
        m_changed.notify_one();
}

/// A disk that has taken nothing for a while when the queue is full has stopped.
void TrafficWriter::WatchDiskLocked() {
    QTimer::singleShot(kPatienceWithDisk, &m_here, [this, written = m_written] {
        bool hangs = false;
        {
            const std::lock_guard<std::mutex> hold(m_lock);
            hangs = m_wasFull && m_written == written;
        }
        if (hangs)
            GiveUp(QStringLiteral("the disk does not take what comes"));
    });
}

bool TrafficWriter::IsFull() const {
    const std::lock_guard<std::mutex> hold(m_lock);
    return m_wasFull && !m_hasEnded;
}

QString TrafficWriter::Close() {
    {
        const std::lock_guard<std::mutex> hold(m_lock);
        m_closes = true;
    }
    m_changed.notify_one();
    if (m_thread.joinable())
        m_thread.join();
    m_file.close();
    return m_problem;
}

/// What comes within some time is written together: a thread that is woken for each piece would cost the
/// traffic more than the writing.
void TrafficWriter::Work() {
    std::unique_lock<std::mutex> hold(m_lock);
    for (;;) {
        m_changed.wait(hold, [this] { return !m_waiting.empty() || m_closes || m_hasEnded; });
        m_changed.wait_for(hold, kGather, [this] { return m_size > kWrittenAtOnce || m_closes || m_hasEnded; });
        if (m_waiting.empty() || m_hasEnded)
            return;
        const std::deque<TrafficEntry> entries = std::exchange(m_waiting, {});
        hold.unlock();
        for (auto entry = entries.begin(); entry != entries.end();)
            WriteSome(entry, entries.end());
        hold.lock();
        if (m_size < kRoomAgain && std::exchange(m_wasFull, false) && m_news.room)
            QMetaObject::invokeMethod(&m_here, m_news.room, Qt::QueuedConnection);
    }
}

/// Writes some entries in one piece; a piece that did not fit is cut behind its last whole line.
void TrafficWriter::WriteSome(std::deque<TrafficEntry>::const_iterator& entry,
                              const std::deque<TrafficEntry>::const_iterator& end) {
    QByteArray lines;
    std::size_t size = 0;
    for (; entry != end && lines.size() < kPiece; ++entry) {
        lines += LineOf(*entry);
        size += SizeOf(*entry);
    }
    const qint64 before = m_file.size();
    int taken = 0;
    qint64 more = 1;
    while (taken < lines.size() && more > 0) { // a disk takes what it has room for, and tells of it the next time
        more = m_file.write(lines.constData() + taken, lines.size() - taken);
        taken += static_cast<int>(std::max<qint64>(more, 0));
    }
    if (taken < lines.size()) {
        const QString why = m_file.errorString();
        m_file.resize(before + lines.left(taken).lastIndexOf('\n') + 1);
        GiveUp(why);
    }
    const std::lock_guard<std::mutex> hold(m_lock);
    m_size -= std::min(m_size, size);
    ++m_written;
}

void TrafficWriter::GiveUp(const QString& why) {
    {
        const std::lock_guard<std::mutex> hold(m_lock);
        if (std::exchange(m_hasEnded, true))
            return;
        m_problem = QStringLiteral("%1: %2").arg(m_file.fileName(), why);
        m_waiting.clear();
        m_size = 0;
        m_wasFull = false;
    }
    m_changed.notify_one();
    QMetaObject::invokeMethod(
        &m_here,
        [this] {
            if (m_news.ended)
                m_news.ended(m_problem);
            if (m_news.room)
                m_news.room();
        },
        Qt::QueuedConnection);
}

} // namespace stagehost
