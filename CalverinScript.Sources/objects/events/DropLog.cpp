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
    if (count == 0)
        return;
    m_hasTold = true;
    m_lastTold = m_clock();
    m_tell(count);
}

DropLog::Tell TellOfSlowScript(IScriptObjectOwner* owner, std::function<QString()> describe) {
    return [owner, describe = std::move(describe)](std::uint64_t count) {
        if (owner == nullptr)
            return;
        const QString line = QStringLiteral("%1 dropped, since the script does not keep up: %2");
        owner->TraceMessage(line.arg(describe()).arg(count), QStringLiteral("ALARM"));
    };
}
