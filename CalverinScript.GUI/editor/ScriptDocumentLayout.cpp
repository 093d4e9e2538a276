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

// As many lines as before, and one around all that is new: so none was removed either.
void ScriptDocumentLayout::NoteEdit(int from, int /*removed*/, int added) {
    const int lineCount = document()->blockCount();
    m_isWithinLine = lineCount == m_lineCount && document()->findBlock(from) == document()->findBlock(from + added);
    m_lineCount = lineCount;
}

// The base adds up what went and what came to find the last line that changed; what came is enough if all of it is one.
void ScriptDocumentLayout::documentChanged(int from, int removed, int added) {
    if (std::exchange(m_isWithinLine, false))
        QPlainTextDocumentLayout::documentChanged(from, 0, std::max(added, 1));
    else
        QPlainTextDocumentLayout::documentChanged(from, removed, added);
}
