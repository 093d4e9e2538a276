#pragma once

#include <QPlainTextDocumentLayout>

/// The layout of a script's text. It differs from its base only in what a keystroke makes to be laid out and painted:
/// the base takes a line whose colours change along with its text for more than one line and repaints all that is
/// visible, here it is the one line. [thread: host main]
class ScriptDocumentLayout : public QPlainTextDocumentLayout {
public:
    explicit ScriptDocumentLayout(QTextDocument* document);

protected:
    void documentChanged(int from, int removed, int added) override;

private:
    void NoteEdit(int from, int removed, int added);
    void LayOutLine(const QTextBlock& line, qreal heightBefore);

    /// Whether the edit under way stays within one line, and how high that was before it. Known from what the document
    /// tells of an edit just before the change comes here, widened then by what a highlighter did in between: its
    /// colours take away the rows in which the line stood on the screen.
    bool m_isWithinLine = false;
    qreal m_heightBefore = 0;
    int m_lineCount = 0; ///< as it was after the last edit
};
