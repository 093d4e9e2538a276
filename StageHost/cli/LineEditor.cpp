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

void LineEditor::Read() {
    m_isTyping = true;
    rl_callback_read_char();
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
