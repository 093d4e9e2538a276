#pragma once

#include <QFile>
#include <QObject>
#include <QTimer>

namespace stagehost {

/// Shows the lines of a log file on standard error as they come: what others append to it from now on.   [host main]
class LogFollower : public QObject {
    Q_OBJECT

public:
    explicit LogFollower(const QString& path);

    /// Shows what has not been shown yet.
    ~LogFollower() override;
    LogFollower(const LogFollower&) = delete;
    LogFollower& operator=(const LogFollower&) = delete;

private:
    void ShowNewLines();

    QFile file_;
    qint64 shown_ = 0; ///< bytes
    QTimer look_;
};

} // namespace stagehost
