#pragma once

#include <QElapsedTimer>
#include <QTimer>

namespace stagehost {

/// Shows on a terminal how long a step has taken, from its second second on, in a line that is gone when the step is
/// over. Does nothing where the output is no terminal.   [host main]
class StepTicker {
public:
    StepTicker();
    ~StepTicker();
    StepTicker(const StepTicker&) = delete;
    StepTicker& operator=(const StepTicker&) = delete;

private:
    void Show();

    QTimer m_timer;
    QElapsedTimer m_clock;
    bool m_isShown = false;
};

} // namespace stagehost
