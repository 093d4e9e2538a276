#include "DropLog.h"

#include <utility>

#include "Clock.h"
#include "IScriptObjectOwner.h"

namespace {

constexpr std::uint32_t kBetweenLinesMs = 1000;

} // namespace

DropLog::DropLog(IScriptObjectOwner* owner, Describe describe)
    : DropLog(owner, std::move(describe), &MillisecondClock) {}

DropLog::DropLog(IScriptObjectOwner* owner, Describe describe, std::uint32_t (*clock)())
    : m_owner(owner)
    , m_describe(std::move(describe))
    , m_clock(clock) {}

void DropLog::Note(std::uint64_t count) {
    const std::lock_guard<std::mutex> guard(m_lock);
    m_untold += count;
    if (!m_hasTold || m_clock() - m_lastTold >= kBetweenLinesMs)
        TellLocked();
}

void DropLog::TellRest() {
    const std::lock_guard<std::mutex> guard(m_lock);
    TellLocked();
}

void DropLog::TellLocked() {
    const std::uint64_t count = std::exchange(m_untold, 0);
    if (count == 0 || m_owner == nullptr)
        return;
    m_hasTold = true;
    m_lastTold = m_clock();
    const QString line = QStringLiteral("%1 dropped, since the script does not keep up: %2");
    m_owner->TraceMessage(line.arg(m_describe()).arg(count), QStringLiteral("ALARM"));
}
