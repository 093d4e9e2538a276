#include "LogFollower.h"

#include <utility>

#include "BorderText.h"

namespace stagehost {

namespace {

constexpr int kLookEvery = 50;            // ms; a log is read by people
constexpr qint64 kMostKept = 1024 * 1024; // bytes

} // namespace

LogFollower::LogFollower(const QString& path, Keep keep, Show show)
    : file_(path)
    , keep_(keep)
    , show_(std::move(show))
    , shown_(file_.size()) {
    connect(&timer_, &QTimer::timeout, this, [this] { Look(); });
    timer_.start(kLookEvery);
}

LogFollower::~LogFollower() {
    Look();
}

/// Writers append, so they go on at the beginning of a file that has been emptied.
void LogFollower::Look() {
    if (!file_.isOpen() && !file_.open(QIODevice::ReadOnly))
        return;
    ReadNewLines();
    if (keep_ == Keep::Little && shown_ >= kMostKept && file_.size() == shown_ && QFile::resize(file_.fileName(), 0))
        shown_ = 0;
}

void LogFollower::ReadNewLines() {
    file_.seek(shown_);
    for (;;) {
        const QByteArray line = file_.readLine();
        if (!line.endsWith('\n'))
            return;
        shown_ += line.size();
        show_(FromOutsideText(line.toStdString()).trimmed());
    }
}

} // namespace stagehost
