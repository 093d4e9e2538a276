#include "Highlighter.h"

#include "JSBlockData.h"

namespace {

QSet<QString> SetOf(const QStringList& words) {
    return QSet<QString>(words.begin(), words.end());
}

QTextCharFormat FormatOf(ScriptColor role, const QColor& color) {
    QTextCharFormat format;
    format.setForeground(color);
    if (role == ScriptColor::Keyword) {
        format.setFontItalic(true);
        format.setFontWeight(QFont::Bold);
    }
    return format;
}

} // namespace

Highlighter::Highlighter(QTextDocument* document)
    : SpreadingHighlighter(document) {
    m_words.keywords = SetOf(DefaultKeywords());
    for (const ScriptColorEntry& entry : kScriptColors)
        StoreColor(static_cast<int>(entry.role), QColor(entry.color));
}

void Highlighter::setColor(int key, const QColor& color) {
    StoreColor(key, color);
    rehighlight();
}

void Highlighter::mark(const QString& text, Qt::CaseSensitivity caseSensitivity) {
    m_markText = text;
    m_markCaseSensitivity = caseSensitivity;
    rehighlight();
}

QStringList Highlighter::keywords() const {
    return QStringList(m_words.keywords.begin(), m_words.keywords.end());
}

void Highlighter::setKeywords(const QStringList& words) {
    m_words.keywords = SetOf(words);
    rehighlight();
}

void Highlighter::highlightBlock(const QString& text) {
    const ScannedLine line = ScanLine(text, previousBlockState(), m_words);
    setFormat(0, text.length(), m_formats.value(static_cast<int>(ScriptColor::Normal)));
    for (const ScriptToken& token : line.tokens) {
        if (token.start >= kMostColumns)
            break;
        setFormat(token.start, token.length, m_formats.value(static_cast<int>(token.role)));
    }
    MarkOccurrences(text);
    StoreBrackets(line.brackets);
    FinishBlock(line.state);
}

void Highlighter::StoreColor(int key, const QColor& color) {
    m_colors.insert(key, color);
    m_formats.insert(key, FormatOf(static_cast<ScriptColor>(key), color));
}

void Highlighter::MarkOccurrences(const QString& text) {
    if (m_markText.isEmpty())
        return;
    QTextCharFormat format;
    format.setBackground(QBrush(m_colors.value(static_cast<int>(ScriptColor::Marker)), Qt::SolidPattern));
    format.setForeground(QBrush(m_colors.value(static_cast<int>(ScriptColor::Normal)), Qt::SolidPattern));
    for (int at = 0; (at = text.indexOf(m_markText, at, m_markCaseSensitivity)) >= 0; ++at)
        setFormat(at, m_markText.length(), format);
}

// A line that has lost its braces keeps its old list.
void Highlighter::StoreBrackets(const QList<int>& positions) {
    if (positions.isEmpty())
        return;
    auto* data = static_cast<JSBlockData*>(currentBlockUserData());
    if (data == nullptr) {
        data = new JSBlockData;
        setCurrentBlockUserData(data);
    }
    data->bracketPositions = positions;
}
