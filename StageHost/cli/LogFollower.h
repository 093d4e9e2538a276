#pragma once

#include <functional>

#include <QFile>
#include <QObject>
#include <QTimer>

namespace stagehost {

/// Hands on the lines of a log file as they come: what others append to it from now on.   [host main]
class LogFollower : public QObject {
    Q_OBJECT

public:
    using Show = std::function<void(const QString& line)>;
    using Skip = std::function<bool(const QByteArray& line)>;
    enum class Keep {
        All,
        Little ///< the file is for this follower alone: what has been handed on takes no room for long
    };

    /// @param skip says of a line that it is not to be handed on; may be empty.
    LogFollower(const QString& path, Keep keep, Show show, Skip skip = {});

    /// Hands on what has not been handed on yet.
    ~LogFollower() override;
    LogFollower(const LogFollower&) = delete;
    LogFollower& operator=(const LogFollower&) = delete;

    /// Hands on what has come up to now, without waiting for the next look.
    void Look();

private:
    void ReadNewLines();
    void FreeSpace();

    QFile m_file;
    const Keep m_keep;
    const Show m_show;
    const Skip m_skip;
    qint64 m_shown = 0; ///< bytes, as is the next
    qint64 m_freed = 0;
    QTimer m_timer;
};

} // namespace stagehost
