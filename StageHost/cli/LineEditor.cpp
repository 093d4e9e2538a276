#include "LineEditor.h"

#include <cstdio>
#include <cstdlib>
#include <memory>

#include <editline/readline.h>

#include <QDir>
#include <QFile>
#include <QStandardPaths>

#include "BorderText.h"
#include "Output.h"

namespace stagehost {

namespace {

constexpr int kLongestHistory = 1000;
constexpr int kLongestLine = 2000; // the library writes beyond its memory from about 3,000 characters on

LineEditor* editor = nullptr; // host main alone

QByteArray HistoryFile() {
    const QDir folder(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation));
    folder.mkpath(QStringLiteral("stagehost"));
    return QFile::encodeName(folder.filePath(QStringLiteral("stagehost/history")));
}

} // namespace

LineEditor::LineEditor(Taker take)
    : m_take(std::move(take)) {
    editor = this;
    m_input.open(0, QIODevice::ReadOnly | QIODevice::Unbuffered);
    stifle_history(kLongestHistory);
    read_history(HistoryFile().constData());
    rl_callback_handler_install("", &LineEditor::Took);
    SetAroundOutput(&LineEditor::Hide, &LineEditor::Show);
}

LineEditor::~LineEditor() {
    SetAroundOutput(nullptr, nullptr);
    rl_callback_handler_remove();
    write_history(HistoryFile().constData());
    editor = nullptr;
}

/// What is left of a line that was given up. The terminal hands it over with its end.
void LineEditor::Skip() {
    char character = 0;
    if (m_input.read(&character, 1) > 0 && character != '\n' && character != '\r')
        return;
    m_isTooLong = false;
    rl_callback_handler_install("", &LineEditor::Took);
}

void LineEditor::Read() {
    if (m_isTooLong)
        return Skip();
    m_isTyping = true;
    rl_callback_read_char();
    if (m_isTyping && rl_end >= kLongestLine) {
        m_isTyping = false;
        m_isTooLong = true;
        rl_callback_handler_remove();
        PrintProblem(QStringLiteral("\na line has %1 characters at most; this one is left out").arg(kLongestLine));
        return;
    }
    if (!m_isTyping && !m_isOver) // behind a line the library would wait for the next one as a whole
        rl_callback_handler_install("", &LineEditor::Took);
}

void LineEditor::Took(char* line) {
    const std::unique_ptr<char, decltype(&std::free)> owned(line, &std::free);
    editor->m_isTyping = false; // the library keeps the line until the next character, and would show it again
    editor->m_isOver = line == nullptr;
    if (line == nullptr)
        return editor->m_take(nullptr);
    const QString text = FromOutsideText(line).trimmed();
    if (!text.isEmpty())
        add_history(line);
    editor->m_take(&text);
}

void LineEditor::Hide() {
    if (!editor->m_isTyping)
        return;
    std::fputs("\r\033[K", stdout); // to the beginning of the line, and empty to its end
    std::fflush(stdout);
}

void LineEditor::Show() {
    if (editor->m_isTyping)
        rl_forced_update_display();
}

} // namespace stagehost
