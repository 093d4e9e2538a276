#include "LogFollower.h"

#include "BorderText.h"
#include "Output.h"

namespace stagehost {

namespace {

constexpr int kLookEvery = 50; // ms; a log is read by people

} // namespace

LogFollower::LogFollower(const QString& path)
    : file_(path)
    , shown_(file_.size()) {
    connect(&look_, &QTimer::timeout, this, [this] { ShowNewLines(); });
    look_.start(kLookEvery);
}

LogFollower::~LogFollower() {
    ShowNewLines();
}

void LogFollower::ShowNewLines() {
    if (!file_.isOpen() && !file_.open(QIODevice::ReadOnly))
        return;
    file_.seek(shown_);
    for (;;) {
        const QByteArray line = file_.readLine();
        if (!line.endsWith('\n'))
            return;
        shown_ += line.size();
        PrintProblem(FromOutsideText(line.toStdString()).trimmed());
    }
}

} // namespace stagehost
