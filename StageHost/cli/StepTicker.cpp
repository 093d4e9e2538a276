#include "StepTicker.h"

#include <cstdio>

#include "Terminal.h"

namespace stagehost {

namespace {

constexpr int kTickMs = 1000;

} // namespace

StepTicker::StepTicker() {
    if (!IsTerminal(StandardChannel::Output) || !IsTerminal(StandardChannel::Error))
        return;
    m_clock.start();
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { Show(); });
    m_timer.start(kTickMs);
}

/// Back to the line's beginning, and the rest of it cleared: ECMA-48, "erase in line".
StepTicker::~StepTicker() {
    if (!m_isShown)
        return;
    std::fputs("\r\033[K", stderr);
    std::fflush(stderr);
}

void StepTicker::Show() {
    m_isShown = true;
    std::fprintf(stderr, "\r   ... %lld s", static_cast<long long>((m_clock.elapsed() + kTickMs / 2) / kTickMs));
    std::fflush(stderr);
}

} // namespace stagehost
