#include "Indentation.h"

#include <QStringList>
#include <QTextBlock>
#include <QTextDocument>

#include <algorithm>

namespace {

QString ShiftedLine(const QString& line, IndentDirection direction) {
    const QString step(kIndentStep, QLatin1Char(' '));
    if (direction == IndentDirection::Indent)
        return step + line;
    return line.startsWith(step) ? line.mid(kIndentStep) : line;
}

/// The lines from the cursor's on, shifted. They end before the one that the selection reaches into, and
/// before an empty one.
QStringList ShiftedLines(const QTextCursor& cursor, IndentDirection direction) {
    QStringList lines;
    const int behind = cursor.selectionEnd() + 1;
    QTextBlock block = cursor.document()->findBlock(cursor.selectionStart());
    while (block.isValid() && !block.contains(behind) && !block.text().isEmpty()) {
        lines.append(ShiftedLine(block.text(), direction));
        block = block.next();
    }
    return lines;
}

void InsertSpaces(QTextCursor& cursor, int column) {
    for (; column < kIndentStep; ++column)
        cursor.insertText(QStringLiteral(" "));
}

void RemoveSpaces(QTextCursor& cursor, int column) {
    for (; column < kIndentStep; ++column) {
        cursor.movePosition(QTextCursor::Left, QTextCursor::KeepAnchor);
        if (cursor.selectedText() != QLatin1String(" ")) {
            cursor.movePosition(QTextCursor::Right, QTextCursor::MoveAnchor);
            continue;
        }
        cursor.removeSelectedText();
        if (cursor.columnNumber() % kIndentStep == 0)
            return;
    }
}

} // namespace

bool ShiftSelection(QTextCursor& cursor, IndentDirection direction) {
    const QStringList lines = ShiftedLines(cursor, direction);
    if (lines.isEmpty())
        return false;
    const int start = cursor.selectionStart();
    const bool endsWithBreak = cursor.selectedText().endsWith(QChar::ParagraphSeparator);
    const QString replacement = lines.join(QLatin1Char('\n')) + QString(endsWithBreak ? 1 : 0, QLatin1Char('\n'));

    cursor.beginEditBlock();
    cursor.removeSelectedText();
    cursor.insertText(replacement);
    cursor.endEditBlock();
    cursor.setPosition(start);
    cursor.setPosition(start + replacement.length(), QTextCursor::KeepAnchor);
    return true;
}

void ShiftCaret(QTextCursor& cursor, IndentDirection direction) {
    const int column = cursor.columnNumber();
    cursor.beginEditBlock();
    if (direction == IndentDirection::Indent)
        InsertSpaces(cursor, column % kIndentStep);
    else if (column > 0)
        RemoveSpaces(cursor, column % kIndentStep);
    cursor.endEditBlock();
}

QString LeadingSpace(const QString& line) {
    const auto end = std::find_if_not(line.begin(), line.end(), [](QChar ch) { return ch.isSpace(); });
    return line.left(static_cast<int>(end - line.begin()));
}
