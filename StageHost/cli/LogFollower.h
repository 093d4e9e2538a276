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
    enum class Keep {
        All,
        Little ///< the file is for this follower alone: it is emptied before it grows large
    };

    LogFollower(const QString& path, Keep keep, Show show);

    /// Hands on what has not been handed on yet.
    ~LogFollower() override;
    LogFollower(const LogFollower&) = delete;
    LogFollower& operator=(const LogFollower&) = delete;

    /// Hands on what has come, without waiting for the next look.
    void Look();

private:
    void ReadNewLines();

    QFile m_file;
    const Keep m_keep;
    const Show m_show;
    qint64 m_shown = 0; ///< bytes
    QTimer m_timer;
};

} // namespace stagehost
