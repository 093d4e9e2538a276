#pragma once

#include <functional>

#include <QFile>
#include <QString>

namespace stagehost {

/// The line that somebody types at a terminal, with editing and the lines of earlier days. What the program prints
/// meanwhile stands above it. At most one exists, since there is one terminal.   [host main]
class LineEditor {
public:
    using Taker = std::function<void(const QString* line)>;

    /// @param take is called with each line, or null when the user has ended the input.
    explicit LineEditor(Taker take);
    ~LineEditor();
    LineEditor(const LineEditor&) = delete;
    LineEditor& operator=(const LineEditor&) = delete;

    /// Reads what has been typed; call it when there is something.
    void Read();

private:
    void Skip();
    static void Took(char* line);
    static void Hide();
    static void Show();

    Taker m_take;
    QFile m_input;
    bool m_isTyping = false;
    bool m_isTooLong = false; ///< the rest of the line is not read
    bool m_isOver = false;    ///< the user has ended the input
};

} // namespace stagehost
