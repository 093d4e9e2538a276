#include "CodeEditor.h"

#include <algorithm>
#include <functional>
#include <utility>
#include <vector>

#include <QAbstractItemView>
#include <QKeyEvent>
#include <QListView>
#include <QScrollBar>

#include "CompletionText.h"

namespace {

constexpr int kShortestPrefix = 3;

/// Round brackets, quotes, '_', '.' and '-' are missing on purpose: they don't close the pop-up.
bool EndsWord(const QString& typed) {
    static const QString endOfWord = QStringLiteral("~!@#$%^&*+{}|:<>?,/;[]\\=");
    return endOfWord.contains(typed.right(1));
}

/// The width of the list's widest row. A view measures slowly: of thousands of rows only those with the longest texts are measured.
int WidthOfRows(const QAbstractItemView& list) {
    constexpr int kMeasuredRows = 200;
    const QAbstractItemModel& model = *list.model();
    const int count = model.rowCount();
    if (count <= kMeasuredRows)
        return list.sizeHintForColumn(0);
    std::vector<std::pair<int, int>> lengths; // of the texts, with their rows
    lengths.reserve(static_cast<std::size_t>(count));
    for (int row = 0; row < count; ++row)
        lengths.emplace_back(model.index(row, 0).data().toString().size(), row);
    std::partial_sort(lengths.begin(), lengths.begin() + kMeasuredRows, lengths.end(), std::greater<>());
    int widest = 0;
    for (int place = 0; place < kMeasuredRows; ++place)
        widest = std::max(widest, list.sizeHintForIndex(model.index(lengths[place].second, 0)).width());
    return widest;
}

/// Rows are all of one height, so that a list of thousands is laid out at once.
void LayOutQuickly(QAbstractItemView& popup) {
    if (auto* list = qobject_cast<QListView*>(&popup))
        list->setUniformItemSizes(true);
}

} // namespace

void CodeEditor::setCompleter(QCompleter* completer) {
    if (m_completer != nullptr)
        m_completer->disconnect(this);
    m_completer = completer;
    if (completer == nullptr)
        return;
    completer->setWidget(this);
    completer->setCompletionMode(QCompleter::PopupCompletion);
    completer->setCaseSensitivity(Qt::CaseInsensitive);
    connect(completer, QOverload<const QModelIndex&>::of(&QCompleter::activated), this, &CodeEditor::insertCompletion);
}

QCompleter* CodeEditor::completer() const {
    return m_completer;
}

void CodeEditor::SlotInsertText(const QString& text) {
    if (m_completer == nullptr || m_completer->widget() != this)
        return;
    QTextCursor cursor = textCursor();
    cursor.insertText(text);
    setTextCursor(cursor);
}

void CodeEditor::focusInEvent(QFocusEvent* event) {
    if (m_completer != nullptr)
        m_completer->setWidget(this);
    QPlainTextEdit::focusInEvent(event);
}

bool CodeEditor::PopupTakes(int key) const {
    if (m_completer == nullptr || !m_completer->popup()->isVisible())
        return false;
    switch (key) {
    case Qt::Key_Escape:
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return true;
    default:
        return false;
    }
}

void CodeEditor::Complete(const QKeyEvent& event, bool isShortcut) {
    const bool ctrlOrShift = (event.modifiers() & (Qt::ControlModifier | Qt::ShiftModifier)) != 0;
    const QString typed = event.text();
    if (m_completer == nullptr || (ctrlOrShift && typed.isEmpty()))
        return;
    const bool hasModifier = event.modifiers() != Qt::NoModifier && !ctrlOrShift;
    const QString prefix = textUnderCursor();
    if (!isShortcut && (hasModifier || typed.isEmpty() || prefix.length() < kShortestPrefix || EndsWord(typed))) {
        m_completer->popup()->hide();
        return;
    }
    ShowCompletions(prefix);
}

void CodeEditor::ShowCompletions(const QString& prefix) {
    QAbstractItemView* popup = m_completer->popup();
    LayOutQuickly(*popup);
    if (prefix != m_completer->completionPrefix()) {
        m_completer->setCompletionPrefix(prefix);
        popup->setCurrentIndex(m_completer->completionModel()->index(0, 0));
    }
    QRect place = cursorRect();
    place.setWidth(WidthOfRows(*popup) + popup->verticalScrollBar()->sizeHint().width());
    m_completer->complete(place);
}

// The prefix is looked for at the end of the word that holds the character left of the caret: at the beginning of a
// line that is the end of the line above.
void CodeEditor::insertCompletion(QModelIndex completion) {
    if (m_completer == nullptr || m_completer->widget() != this)
        return;
    const QString text = CompletionText(completion);
    QTextCursor cursor = textCursor();
    cursor.movePosition(QTextCursor::Left);
    cursor.movePosition(QTextCursor::EndOfWord);
    cursor.beginEditBlock();
    for (int rest = m_completer->completionPrefix().length(); rest > 0; --rest)
        cursor.deletePreviousChar();
    const int start = cursor.selectionStart();
    cursor.insertText(text);
    cursor.endEditBlock();
    if (const int offset = CaretOffset(text); offset > 0)
        cursor.setPosition(start + offset);
    setTextCursor(cursor);
}

QString CodeEditor::textUnderCursor() const {
    QTextCursor cursor = textCursor();
    cursor.select(QTextCursor::WordUnderCursor);
    return cursor.selectedText();
}
