#pragma once

#include <functional>

#include <QEventLoop>
#include <QTimer>

#include "HttpDeadline.h"

/// Runs the event loop until the condition holds. @return false past the deadline.
inline bool Until(const std::function<bool()>& condition, std::chrono::seconds limit = kHttpDeadline) {
    QEventLoop loop;
    QTimer deadline;
    QTimer look;
    QObject::connect(&deadline, &QTimer::timeout, &loop, [&] { loop.exit(1); });
    QObject::connect(&look, &QTimer::timeout, &loop, [&] {
        if (condition())
            loop.exit(0);
    });
    deadline.start(limit);
    look.start(1);
    return loop.exec() == 0;
}
