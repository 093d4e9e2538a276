#pragma once

#include <QColor>
#include <QHash>
#include <QStringList>
#include <QTextCharFormat>

#include "JavaScriptScanner.h"
#include "SpreadingHighlighter.h"

/// Colours the JavaScript of a document. Every character has a colour of the table, so none depends on the palette of a
/// widget; behind kMostColumns it is that of plain text, since a line of many colours is slow to lay out. Each line
/// keeps the state of its scan as its user state (see PackLineState) and the columns of its curly braces in a
/// JSBlockData. [thread: that of the document]
class Highlighter : public SpreadingHighlighter {
public:
    /// The columns of a line that have colours of their own. Nobody
    /// writes longer lines; a library that was made small does.
    static constexpr int kMostColumns = 10000;

    /// Belongs to the document and colours it from then on.
    explicit Highlighter(QTextDocument* document);

    /// Changes one colour, by its ScriptColor number, and highlights the document anew.
    void setColor(int key, const QColor& color);
    /// Marks each occurrence of a text, overlapping ones too, and
    /// highlights the document anew. An empty text marks nothing.
    void mark(const QString& text, Qt::CaseSensitivity caseSensitivity);

    /// The reserved words, in no order.
    QStringList keywords() const;
    /// Replaces the reserved words and highlights the document anew.
    void setKeywords(const QStringList& words);

protected:
    void highlightBlock(const QString& text) override;

private:
    void StoreColor(int key, const QColor& color);
    void MarkOccurrences(const QString& text);
    void StoreBrackets(const QList<int>& positions);

    ScriptWords m_words; ///< nothing fills the known identifiers so far
    QHash<int, QColor> m_colors;
    QString m_markText;
    Qt::CaseSensitivity m_markCaseSensitivity = Qt::CaseInsensitive;
    QHash<int, QTextCharFormat> m_formats; ///< made of the colours once, and not for each token
};
