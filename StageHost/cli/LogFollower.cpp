#include "LogFollower.h"

#include <utility>

#include "BorderText.h"

namespace stagehost {

namespace {

constexpr int kLookEvery = 50;            // ms; a log is read by people
constexpr qint64 kMostKept = 1024 * 1024; // bytes

} // namespace

LogFollower::LogFollower(const QString& path, Keep keep, Show show)
    : m_file(path)
    , m_keep(keep)
    , m_show(std::move(show))
    , m_shown(m_file.size()) {
    connect(&m_timer, &QTimer::timeout, this, [this] { Look(); });
    m_timer.start(kLookEvery);
}

LogFollower::~LogFollower() {
    Look();
}

/// Writers append, so they go on at the beginning of a file that has been emptied.
void LogFollower::Look() {
    if (!m_file.isOpen() && !m_file.open(QIODevice::ReadOnly))
        return;
    ReadNewLines();
    if (m_keep == Keep::Little && m_shown >= kMostKept && m_file.size() == m_shown &&
        QFile::resize(m_file.fileName(), 0))
        m_shown = 0;
}

void LogFollower::ReadNewLines() {
    m_file.seek(m_shown);
    for (;;) {
        const QByteArray line = m_file.readLine();
        if (!line.endsWith('\n'))
            return;
        m_shown += line.size();
        m_show(FromOutsideText(line.toStdString()).trimmed());
    }
}

} // namespace stagehost
