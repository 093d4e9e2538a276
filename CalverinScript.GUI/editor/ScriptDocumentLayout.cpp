#include "ScriptDocumentLayout.h"

#include <QTextBlock>
#include <QTextDocument>

#include <algorithm>
#include <utility>

ScriptDocumentLayout::ScriptDocumentLayout(QTextDocument* document)
    : QPlainTextDocumentLayout(document)
    , m_lineCount(document->blockCount()) {
    connect(document, &QTextDocument::contentsChange, this, &ScriptDocumentLayout::NoteEdit);
}

// As many lines as before, and one around all that is new: so none was removed either. Of a line that was not laid out since it
// changed last nobody knows how high it is on the screen.
void ScriptDocumentLayout::NoteEdit(int from, int /*removed*/, int added) {
    const int lineCount = document()->blockCount();
    const QTextBlock line = document()->findBlock(from);
    const bool isLaidOut = line.isValid() && line.layout()->lineCount() > 0;
    m_isWithinLine = isLaidOut && lineCount == m_lineCount && line == document()->findBlock(from + added);
    m_heightBefore = isLaidOut ? blockBoundingRect(line).height() : 0;
    m_lineCount = lineCount;
}

// The base adds up what went and what came to find the last line that changed; what came is enough if all of it is one.
void ScriptDocumentLayout::documentChanged(int from, int removed, int added) {
    if (!std::exchange(m_isWithinLine, false))
        return QPlainTextDocumentLayout::documentChanged(from, removed, added);
    const int length = std::max(added, 1);
    const QTextBlock line = document()->findBlock(from);
    if (line == document()->findBlock(from + length - 1) && line.layout()->lineCount() == 0)
        LayOutLine(line, m_heightBefore);
    else
        QPlainTextDocumentLayout::documentChanged(from, 0, length);
}

// What the base does for one line, but for the height: it would lay out what has no rows to learn how high they were.
void ScriptDocumentLayout::LayOutLine(const QTextBlock& line, qreal heightBefore) {
    if (qFuzzyCompare(blockBoundingRect(line).height(), heightBefore))
        Q_EMIT updateBlock(line);
    else
        requestUpdate();
}
