#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

#include <QFile>
#include <QObject>

#include "TrafficEntry.h"

namespace stagehost {

/// Writes a traffic file on a thread of its own, so that no byte waits for the disk.
///
/// - lines are written within some fifty milliseconds, and what a full disk has cut is taken back: the file always has
///   whole lines;
/// - what waits is bounded: from IsFull on until `room` nothing more should be added;
/// - when the file cannot be written, or nothing of a full queue has left within two seconds, the recording ends: that
///   is told once, and all that follows is dropped.
class TrafficWriter {
public:
    /// Calls come on the host's main thread, from its events.
    struct News {
        std::function<void()> room;
        std::function<void(const QString& why)> ended;
    };

    explicit TrafficWriter(News news);
    /// As Close.
    ~TrafficWriter();
    TrafficWriter(const TrafficWriter&) = delete;
    TrafficWriter& operator=(const TrafficWriter&) = delete;

    /// Begins a file; an older traffic file is replaced, unless another process is writing it just now. @return empty,
    /// or what is wrong.   [host main]
    QString Open(const QString& file, const TrafficHead& head);

    void Add(const TrafficEntry& entry); ///< [host main]
    bool IsFull() const;                 ///< [host main]

    /// Writes what still waits and ends the file. @return empty, or why the recording has ended before.   [host main]
    QString Close();

private:
    void Work();
    void WriteSome(std::deque<TrafficEntry>::const_iterator& entry,
                   const std::deque<TrafficEntry>::const_iterator& end);
    void WatchDiskLocked();
    void GiveUp(const QString& why);

    const News m_news;
    QObject m_here; ///< takes the calls to the main thread
    QFile m_file;   ///< the writer's thread alone, once it runs
    std::thread m_thread;
    mutable std::mutex m_lock; ///< guards the fields below
    std::condition_variable m_changed;
    std::deque<TrafficEntry> m_waiting;
    std::size_t m_size = 0;      ///< bytes in m_waiting
    std::uint64_t m_written = 0; ///< pieces, by which a disk that hangs is known
    bool m_wasFull = false;
    bool m_closes = false;
    bool m_hasEnded = false;
    QString m_problem;
};

} // namespace stagehost
