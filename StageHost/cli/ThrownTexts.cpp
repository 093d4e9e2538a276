#include "ThrownTexts.h"

#include <algorithm>
#include <utility>

#include "BorderText.h"
#include "Output.h"

namespace stagehost {

namespace {

constexpr std::chrono::milliseconds kMayBeAnswered(500);
constexpr std::chrono::milliseconds kAnswersCount(5000);

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
    for (auto entry = m_waiting.begin(); entry != m_waiting.end();) {
        const auto answer = std::find_if(m_answers.begin(), m_answers.end(),
                                         [&](const auto& known) { return IsOf(entry->text, known.first); });
        if (answer != m_answers.end())
            m_answers.erase(answer);
        else if (now - kMayBeAnswered < entry->came)
            break;
        else
            TellAll(entry->device, {entry->text});
        entry = m_waiting.erase(entry);
    }
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

void ThrownTexts::TellAll(const QString& device, const QStringList& texts) {
    for (const QString& text : texts) {
        const QString line = device + QStringLiteral(": ") + text;
        PrintProblem(line);
        if (m_firstTold.isEmpty())
            m_firstTold = line;
    }
}

bool ThrownTexts::IsOf(const QString& thrown, const QString& failure) {
    const QString mark = QStringLiteral(", message: ");
    return thrown == failure || failure.endsWith(thrown.mid(thrown.indexOf(mark) + mark.size()));
}

} // namespace stagehost
