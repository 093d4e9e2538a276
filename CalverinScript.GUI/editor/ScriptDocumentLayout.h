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

    /// Whether the edit under way stays within one line. Known from what the document tells of an edit just before the change
    /// comes here, widened then by what a highlighter did in between.
    bool m_isWithinLine = false;
    int m_lineCount = 0; ///< as it was after the last edit
};
