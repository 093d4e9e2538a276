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

    /// The number of the line that the edit under way doesn't leave, or -1. Set by what the document tells of an edit, just
    /// before the change comes here, widened by what a highlighter did in between.
    int m_editedLine = -1;
    int m_lineCount = 0; ///< as it was after the last edit
};
