#include "InputLines.h"

#include "BorderText.h"
#include "Terminal.h"

namespace stagehost {

namespace {

constexpr int kStandardInput = 0; // the descriptor of every process

} // namespace

InputLines::InputLines() {
    m_ended = !m_input.open(kStandardInput, QIODevice::ReadOnly | QIODevice::Unbuffered);
    if (m_ended)
        return;
    m_notifier = std::make_unique<QSocketNotifier>(m_input.handle(), QSocketNotifier::Read);
    if (IsTerminal(StandardChannel::Input) && IsTerminal(StandardChannel::Output))
        m_editor = std::make_unique<LineEditor>([this](const QString* line) { TakeTyped(line); });
    QObject::connect(m_notifier.get(), &QSocketNotifier::activated, m_notifier.get(),
                     [this] { m_editor ? m_editor->Read() : Read(); });
}

void InputLines::TakeTyped(const QString* line) {
    m_ended = line == nullptr;
    m_notifier->setEnabled(!m_ended);
    if (line != nullptr)
        m_lines.push_back(*line);
}

QString InputLines::TakeLine() {
    QString line = m_lines.front();
    m_lines.pop_front();
    return line;
}

/// One character at a time: that much is there for certain, and asking for more would wait for it.
void InputLines::Read() {
    char character = '\n';
    m_ended = m_input.read(&character, 1) <= 0;
    m_notifier->setEnabled(!m_ended);
    if (!m_ended && character != '\n') {
        m_rest.append(character);
        return;
    }
    if (!m_ended || !m_rest.isEmpty())
        m_lines.push_back(FromOutsideText(m_rest.toStdString()).trimmed());
    m_rest.clear();
}

bool SplitWords(const QString& line, QStringList& words) {
    QString word;
    bool inWord = false;
    bool quoted = false;
    for (int index = 0; index < line.size(); ++index) {
        const QChar character = line.at(index);
        if (character == QLatin1Char('"')) {
            quoted = !quoted;
            inWord = true;
        } else if (character.isSpace() && !quoted) {
            if (inWord)
                words += word;
            word.clear();
            inWord = false;
        } else {
            const bool escapes = quoted && character == QLatin1Char('\\') && index + 1 < line.size();
            word += escapes ? line.at(++index) : character;
            inWord = true;
        }
    }
    if (inWord)
        words += word;
    return !quoted;
}

} // namespace stagehost
