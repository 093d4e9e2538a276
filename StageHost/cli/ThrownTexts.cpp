#include "ThrownTexts.h"

#include <algorithm>
#include <utility>

#include "BorderText.h"
#include "Output.h"

namespace stagehost {

namespace {

constexpr std::chrono::milliseconds kMayBeAnswered(500);
constexpr std::chrono::seconds kAnswersCount(15); // a device may run a command that it holds once more, after 5 s

} // namespace

/// A failure stands in the log behind the name of the device; what scripts write there themselves begins otherwise.
void ThrownTexts::Take(const QString& line, Clock::time_point now) {
    for (const QString& device : m_devices) {
        const QString mark = QStringLiteral(": CalverinScript_ [%1] Uncaught Exception ").arg(device);
        const int place = line.indexOf(mark);
        if (place < 0)
            continue;
        const QString text = line.mid(line.indexOf(QLatin1String("Uncaught"), place));
        if (device == m_awaited)
            m_kept += text;
        else
            m_waiting.push_back({device, text, now});
        return;
    }
}

void ThrownTexts::Answered(const std::vector<std::string>& failures, Clock::time_point now) {
    for (const auto& failure : failures)
        m_answers.emplace_back(FromBorderText(failure), now);
}

void ThrownTexts::Tell(Clock::time_point now) {
    std::vector<Entry> young;
    for (const Entry& entry : m_waiting) {
        const auto answer = std::find_if(m_answers.begin(), m_answers.end(),
                                         [&](const auto& known) { return IsOf(entry.text, known.first); });
        if (answer != m_answers.end())
            m_answers.erase(answer);
        else if (entry.came > now - kMayBeAnswered)
            young.push_back(entry);
        else
            Print(entry);
    }
    m_waiting = std::move(young);
    m_answers.erase(std::remove_if(m_answers.begin(), m_answers.end(),
                                   [&](const auto& known) { return known.second < now - kAnswersCount; }),
                    m_answers.end());
}

void ThrownTexts::Begin(const QString& device) {
    m_awaited = device;
    m_kept.clear();
}

QStringList ThrownTexts::End() {
    m_awaited.clear();
    return std::exchange(m_kept, {});
}

void ThrownTexts::TellBeside(const QString& device, const QStringList& texts, Clock::time_point now) {
    for (const QString& text : texts)
        m_waiting.push_back({device, text, now - kMayBeAnswered});
    Tell(now);
}

void ThrownTexts::Print(const Entry& entry) {
    const QString line = entry.device + QStringLiteral(": ") + entry.text;
    PrintProblem(line);
    if (m_firstTold.isEmpty())
        m_firstTold = line;
}

bool ThrownTexts::IsOf(const QString& thrown, const QString& failure) {
    const QString mark = QStringLiteral(", message: ");
    return thrown == failure || failure.endsWith(thrown.mid(thrown.indexOf(mark) + mark.size()));
}

} // namespace stagehost
