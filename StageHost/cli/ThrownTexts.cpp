#include "ThrownTexts.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "BorderText.h"
#include "Colors.h"
#include "LogLines.h"
#include "Output.h"
#include "ShowClock.h"

namespace stagehost {

namespace {

constexpr std::chrono::milliseconds kMayBeAnswered(500); // of the computer
constexpr std::chrono::seconds kAgainCounts(1);
constexpr std::chrono::seconds kAnswersCount(15); // a device may run a command that it holds once more, after 5 s

} // namespace

void ThrownTexts::Take(const LogLine& line, Clock::time_point now) {
    if (line.kind == LogLine::Kind::Failure)
        TakeFailure(line, now);
    else if (line.kind == LogLine::Kind::Detail)
        TakeDetail(line, now);
}

void ThrownTexts::TakeFailure(const LogLine& line, Clock::time_point now) {
    const Entry entry{line.device, {line.text, {}}, now};
    if (line.text.startsWith(QLatin1String(KXP_LOG_STOPPED)))
        m_stopped.push_back(entry);
    else if (line.text.startsWith(QLatin1String(KXP_LOG_UNCAUGHT)))
        (line.device == m_awaited ? m_kept : m_waiting).push_back(entry);
}

/// More about what the device has told last.
void ThrownTexts::TakeDetail(const LogLine& line, Clock::time_point now) {
    Entry* last = nullptr;
    for (auto* entries : {&m_waiting, &m_kept, &m_stopped}) {
        for (auto& entry : *entries) {
            if (entry.device == line.device && (last == nullptr || entry.came >= last->came))
                last = &entry;
        }
    }
    if (last == nullptr)
        return;
    last->thrown.place += line.text.mid(static_cast<int>(std::strlen(KXP_LOG_DETAIL)));
    last->grown = now;
}

void ThrownTexts::Answered(const std::vector<std::string>& failures, Clock::time_point now) {
    for (const auto& failure : failures)
        m_answers.emplace_back(FromBorderText(failure), now);
}

void ThrownTexts::Tell(Clock::time_point now) {
    std::vector<Entry> young;
    for (const Entry& entry : m_waiting) {
        const auto answer = std::find_if(m_answers.begin(), m_answers.end(),
                                         [&](const auto& known) { return IsOf(entry.thrown.text, known.first); });
        if (answer != m_answers.end())
            m_answers.erase(answer);
        else if (entry.came > now - MachineTime(kMayBeAnswered))
            young.push_back(entry);
        else
            Print(entry);
    }
    if (m_again > 0 && now - kAgainCounts >= m_lastTold.came)
        TellAgain();
    m_waiting = std::move(young);
    m_answers.erase(std::remove_if(m_answers.begin(), m_answers.end(),
                                   [&](const auto& known) { return known.second < now - kAnswersCount; }),
                    m_answers.end());
}

void ThrownTexts::Begin(const QString& device) {
    m_awaited = device;
    m_kept.clear();
}

std::vector<ThrownText> ThrownTexts::End() {
    m_awaited.clear();
    std::vector<ThrownText> kept;
    for (auto& entry : std::exchange(m_kept, {}))
        kept.push_back(std::move(entry.thrown));
    return kept;
}

void ThrownTexts::TellBeside(const QString& device, const std::vector<ThrownText>& texts, Clock::time_point now) {
    for (const ThrownText& text : texts)
        m_waiting.push_back({device, text, now - MachineTime(kMayBeAnswered)});
    Tell(now);
}

void ThrownTexts::Print(const Entry& entry) {
    const bool isAgain = entry.device == m_lastTold.device && entry.thrown.text == m_lastTold.thrown.text &&
                         entry.thrown.place == m_lastTold.thrown.place && entry.came - m_lastTold.came < kAgainCounts;
    if (isAgain) {
        ++m_again;
        return;
    }
    TellAgain();
    m_lastTold = entry;
    const ThrownText told{entry.device + QStringLiteral(": ") + entry.thrown.text,
                          m_usersPlace ? m_usersPlace(entry.device, entry.thrown.place) : entry.thrown.place};
    PrintProblem(OnErrors(Ink::Bad, told.text));
    PrintPlace(told.place);
    if (m_firstTold.text.isEmpty())
        m_firstTold = told;
}

void ThrownTexts::TellAgain() {
    if (m_again > 0)
        PrintProblem(QStringLiteral("%1: ... %2 more")
                         .arg(m_lastTold.device,
                              m_again == 1 ? QStringLiteral("once") : QStringLiteral("%1 times").arg(m_again)));
    m_again = 0;
    m_lastTold = {};
}

QStringList ThrownTexts::TakeStopped(const QString& device) {
    return TakeStoppedAt(
        std::find_if(m_stopped.begin(), m_stopped.end(), [&](const Entry& entry) { return entry.device == device; }));
}

QStringList ThrownTexts::TakeStopped() {
    return TakeStoppedAt(m_stopped.begin());
}

std::ptrdiff_t ThrownTexts::Stopped(Clock::time_point then) const {
    return std::count_if(m_stopped.begin(), m_stopped.end(),
                         [&](const Entry& entry) { return !entry.thrown.place.isEmpty() && entry.grown <= then; });
}

/// "lights.js:3: lights stopped in spin, which did not come back"
QStringList ThrownTexts::TakeStoppedAt(std::vector<Entry>::iterator entry) {
    if (entry == m_stopped.end() || entry->thrown.place.isEmpty())
        return {};
    QStringList place = m_usersPlace ? m_usersPlace(entry->device, entry->thrown.place) : entry->thrown.place;
    place.first().replace(QStringLiteral(": stopped "),
                          QStringLiteral(": ") + entry->device + QStringLiteral(" stopped "));
    m_stopped.erase(entry);
    return place;
}

/// A line of the log has no line feeds and no blanks at its end.
bool ThrownTexts::IsOf(const QString& thrown, const QString& failure) {
    const QString mark = QStringLiteral(", message: ");
    const QString text = thrown.mid(thrown.indexOf(mark) + mark.size()).simplified();
    return thrown == failure || failure.simplified().endsWith(text);
}

} // namespace stagehost
