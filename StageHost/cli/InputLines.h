#pragma once

#include <deque>
#include <memory>

#include <QByteArray>
#include <QFile>
#include <QSocketNotifier>
#include <QString>

#include "LineEditor.h"

namespace stagehost {

/// The lines that the user types, or a program sends, on standard input, as they come.   [host main]
class InputLines {
public:
    InputLines();
    InputLines(const InputLines&) = delete;
    InputLines& operator=(const InputLines&) = delete;

    bool HasLine() const { return !m_lines.empty(); }
    QString TakeLine();

    /// Whether standard input has ended and every line has been taken.
    bool IsOver() const { return m_ended && m_lines.empty(); }

private:
    void Read();
    void TakeTyped(const QString* line);

    QFile m_input;
    std::unique_ptr<LineEditor> m_editor;        ///< null unless somebody types at a terminal
    std::unique_ptr<QSocketNotifier> m_notifier; ///< null when standard input has ended
    QByteArray m_rest;                           ///< the begin of a line
    std::deque<QString> m_lines;
    bool m_ended = false;
};

/// The words of a line, parted by blanks; a word may stand in
/// double quotes, in which \" and \\ stand for the characters.
/// @return false when a quote is not closed.
bool SplitWords(const QString& line, QStringList& words);

} // namespace stagehost
