#include "DropLog.h"

#include <utility>

#include "Clock.h"
#include "IScriptObjectOwner.h"

namespace {

constexpr std::uint32_t kBetweenLinesMs = 1000;

} // namespace

DropLog::DropLog(Tell tell)
    : DropLog(std::move(tell), &MillisecondClock) {}

DropLog::DropLog(Tell tell, std::uint32_t (*clock)())
    : m_tell(std::move(tell))
    , m_clock(clock) {}

void DropLog::Note(std::uint64_t count) {
    Write(Take(count, kBetweenLinesMs));
}

void DropLog::TellRest() {
    Write(Take(0, 0));
}

/// Outside the lock: a host may drop something more from inside its log.
void DropLog::Write(std::uint64_t count) const {
    if (count > 0)
        m_tell(count);
}

/// @return what is to be told now: nothing before so many milliseconds have passed since the last line.
std::uint64_t DropLog::Take(std::uint64_t count, std::uint32_t betweenLinesMs) {
    const std::lock_guard<std::mutex> guard(m_lock);
    m_untold += count;
    const std::uint32_t now = m_clock();
    if (m_untold == 0 || (m_hasTold && now - m_lastTold < betweenLinesMs))
        return 0;
    m_hasTold = true;
    m_lastTold = now;
    return std::exchange(m_untold, 0);
}

DropLog::Tell TellOfSlowScript(IScriptObjectOwner* owner, std::function<QString()> describe) {
    return [owner, describe = std::move(describe)](std::uint64_t count) {
        if (owner == nullptr)
            return;
        const QString line = QStringLiteral("%1 dropped, since the script does not keep up: %2");
        owner->TraceMessage(line.arg(describe()).arg(count), QStringLiteral("ALARM"));
    };
}
