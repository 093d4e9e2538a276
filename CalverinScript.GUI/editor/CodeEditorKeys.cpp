#include "CodeEditor.h"

#include <QApplication>
#include <QTextBlock>

#include "Indentation.h"

namespace {

bool IsReturn(int key) {
    return key == Qt::Key_Return || key == Qt::Key_Enter;
}

bool IsTab(int key) {
    return key == Qt::Key_Tab || key == Qt::Key_Backtab;
}

bool IsCompletionShortcut(const QKeyEvent& event) {
    return event.modifiers().testFlag(Qt::ControlModifier) && event.key() == Qt::Key_E;
}

/// The direction is not in the key: it is Shift that turns it round.
IndentDirection DirectionOfModifiers() {
    const bool outdent = QApplication::keyboardModifiers().testFlag(Qt::ShiftModifier);
    return outdent ? IndentDirection::Outdent : IndentDirection::Indent;
}

} // namespace

// Nothing typed may change a read-only script: there the keys beside zoom are the base class's business.
void CodeEditor::keyPressEvent(QKeyEvent* event) {
    const int key = event->key();
    if (!isReadOnly() && IsTab(key))
        return Shift(DirectionOfModifiers());
    if (PopupTakes(key))
        return event->ignore();
    if (HandleZoomKey(*event))
        return;
    if (isReadOnly())
        return QPlainTextEdit::keyPressEvent(event);

    const QString indentation = IsReturn(key) ? LeadingSpace(textCursor().block().text()) : QString();
    const bool isShortcut = m_completer != nullptr && IsCompletionShortcut(*event);
    if (!isShortcut)
        QPlainTextEdit::keyPressEvent(event);
    CarryOver(indentation);
    Complete(*event, isShortcut);
}

bool CodeEditor::HandleZoomKey(const QKeyEvent& event) {
    if (!event.modifiers().testFlag(Qt::ControlModifier))
        return false;
    switch (event.key()) {
    case Qt::Key_Equal:
    case Qt::Key_Plus:
        zoomIn(1);
        return true;
    case Qt::Key_Minus:
    case Qt::Key_Underscore:
        zoomOut(1);
        return true;
    default:
        return false;
    }
}

// Exactly Control: with one modifier more the base class scrolls. The axis that turned further counts.
void CodeEditor::wheelEvent(QWheelEvent* event) {
    if (event == nullptr)
        return;
    if (event->modifiers() != Qt::ControlModifier)
        return QPlainTextEdit::wheelEvent(event);
    const QPoint turn = event->angleDelta();
    const int delta = qAbs(turn.x()) > qAbs(turn.y()) ? turn.x() : turn.y();
    if (delta >= 1)
        zoomIn(1);
    else
        zoomOut(1);
}

void CodeEditor::Shift(IndentDirection direction) {
    QTextCursor cursor = textCursor();
    if (cursor.selectedText().isEmpty())
        ShiftCaret(cursor, direction);
    else if (!ShiftSelection(cursor, direction))
        return;
    setTextCursor(cursor);
}

// The break and its indentation are one step of the undo stack.
void CodeEditor::CarryOver(const QString& indentation) {
    if (indentation.isEmpty())
        return;
    QTextCursor cursor = textCursor();
    cursor.joinPreviousEditBlock();
    cursor.insertText(indentation);
    cursor.endEditBlock();
}
