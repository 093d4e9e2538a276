#include "LogFollower.h"

#include <utility>

#include "BorderText.h"
#include "FileSpace.h"
#include "ShowClock.h"

namespace stagehost {

namespace {

constexpr std::chrono::milliseconds kLookEvery(50); // of the computer; a log is read by people
constexpr qint64 kMostKept = 1024 * 1024;           // bytes

} // namespace

LogFollower::LogFollower(const QString& path, Keep keep, Show show, Skip skip)
    : m_file(path)
    , m_keep(keep)
    , m_show(std::move(show))
    , m_skip(std::move(skip))
    , m_shown(m_file.size()) {
    connect(&m_timer, &QTimer::timeout, this, [this] {
        Look();
        KeepPace(m_timer, kLookEvery);
    });
    m_timer.start(kLookEvery);
}

LogFollower::~LogFollower() {
    Look();
}

void LogFollower::Look() {
    const auto mode = m_keep == Keep::Little ? QIODevice::ReadWrite : QIODevice::ReadOnly;
    if (!m_file.isOpen() && !m_file.open(mode | QIODevice::ExistingOnly))
        return;
    ReadNewLines();
    if (m_keep == Keep::Little && m_shown - m_freed >= kMostKept)
        FreeSpace();
}

/// Writers append, so they go on at the beginning of a file that has been emptied.
void LogFollower::FreeSpace() {
    if (FreeFileBefore(m_file.handle(), m_shown)) {
        m_freed = m_shown;
    } else if (m_file.size() == m_shown && QFile::resize(m_file.fileName(), 0)) {
        m_shown = 0;
    }
}

/// Whoever writes faster than this reads does not keep it from coming back.
void LogFollower::ReadNewLines() {
    const qint64 end = m_file.size();
    m_file.seek(m_shown);
    while (m_shown < end) {
        const QByteArray line = m_file.readLine();
        if (!line.endsWith('\n'))
            return;
        m_shown += line.size();
        if (!m_skip || !m_skip(line))
            m_show(FromOutsideText(line.toStdString()).trimmed());
    }
}

} // namespace stagehost
