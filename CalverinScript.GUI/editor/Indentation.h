#pragma once

#include <QTextCursor>

/// The editing behind Tab and Backtab and the indentation that Enter carries over. Columns are characters; a step is
/// kIndentStep of them. Each change is one step of the undo stack.

inline constexpr int kIndentStep = 4;

enum class IndentDirection { Indent, Outdent };

/// Moves the lines of a selection by one step and leaves them selected. It works with whole lines against a selection
/// that need not be made of whole lines: what is selected of a line that isn't moved goes away.
/// @return whether anything changed; if not, the cursor is as it was.
bool ShiftSelection(QTextCursor& cursor, IndentDirection direction);

/// Inserts spaces up to the next multiple of kIndentStep, or removes spaces in front of the caret: as many as inserting
/// would add, which isn't the distance to the multiple before.
void ShiftCaret(QTextCursor& cursor, IndentDirection direction);

/// The white space that a line begins with.
QString LeadingSpace(const QString& line);
