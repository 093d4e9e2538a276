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
    const int first = document()->findBlock(from).blockNumber();
    const int last = document()->findBlock(from + added).blockNumber();
    const int lineCount = document()->blockCount();
    m_editedLine = first == last && lineCount == m_lineCount ? first : -1;
    m_lineCount = lineCount;
}

void ScriptDocumentLayout::documentChanged(int from, int removed, int added) {
    const int line = std::exchange(m_editedLine, -1);
    const QTextBlock block = document()->findBlock(from);
    const int room = block.position() + block.length() - from;
    if (line >= 0 && block.blockNumber() == line && added <= room)
        QPlainTextDocumentLayout::documentChanged(from, 0, std::max(added, 1));
    else
        QPlainTextDocumentLayout::documentChanged(from, removed, added);
}
