#include "CodeEditor.h"

#include <QPainter>
#include <QTextBlock>

#include "EditorColors.h"
#include "LineNumberArea.h"
#include "ScriptDocumentLayout.h"

namespace {

constexpr int kGutterPadding = 3; ///< pixels

int DigitsOf(int number) {
    int digits = 1;
    for (; number > 9; number /= 10)
        ++digits;
    return digits;
}

} // namespace

CodeEditor::CodeEditor(QWidget* parent)
    : QPlainTextEdit(parent)
    , m_lineNumberArea(new LineNumberArea(this))
    , m_currentLineColor(QColor(kCurrentLineBase).lighter(kCurrentLineLighter))
    , m_gutterBackground(kGutterBackground)
    , m_gutterText(kGutterText) {
    CreateDocument();
    FixColours();
    ConnectSignals();
    updateLineNumberAreaWidth(0);
    highlightCurrentLine();
}

CodeEditor::~CodeEditor() = default;

void CodeEditor::CreateDocument() {
    auto* script = new QTextDocument(this);
    script->setDefaultFont(font());
    script->setDocumentLayout(new ScriptDocumentLayout(script));
    setDocument(script);
}

// The palette for editors whose owners give them a style sheet of
// their own, the style sheet for those whose ancestors have one.
void CodeEditor::FixColours() {
    QPalette fixed = palette();
    fixed.setColor(QPalette::Base, QColor(kPaper));
    fixed.setColor(QPalette::Text, QColor(kInk));
    fixed.setColor(QPalette::Disabled, QPalette::Text, QColor(kInkWhenDisabled));
    setPalette(fixed);
    setStyleSheet(QStringLiteral("CodeEditor { background-color: %1; color: %2; } CodeEditor:disabled { color: %3; }")
                      .arg(QColor(kPaper).name(), QColor(kInk).name(), QColor(kInkWhenDisabled).name()));
}

void CodeEditor::ConnectSignals() {
    connect(this, &QPlainTextEdit::blockCountChanged, this, &CodeEditor::updateLineNumberAreaWidth);
    connect(this, &QPlainTextEdit::updateRequest, this, &CodeEditor::updateLineNumberArea);
    connect(this, &QPlainTextEdit::cursorPositionChanged, this, &CodeEditor::highlightCurrentLine);
}

QString CodeEditor::text() const {
    return toPlainText();
}

void CodeEditor::setText(const QString& text) {
    setPlainText(text);
}

void CodeEditor::zoomIn(int range) {
    QFont zoomed = font();
    const int size = zoomed.pointSize() + range;
    if (size < 1)
        return;
    zoomed.setPointSize(size);
    setFont(zoomed);
}

void CodeEditor::zoomOut(int range) {
    zoomIn(-range);
}

int CodeEditor::lineNumberAreaWidth() const {
    return kGutterPadding + DigitsOf(blockCount()) * fontMetrics().horizontalAdvance(QLatin1Char('9'));
}

void CodeEditor::lineNumberAreaPaintEvent(QPaintEvent* event) {
    QPainter painter(m_lineNumberArea);
    painter.fillRect(event->rect(), m_gutterBackground);
    painter.setPen(m_gutterText);
    painter.setFont(font());

    QTextBlock block = firstVisibleBlock();
    int top = static_cast<int>(blockBoundingGeometry(block).translated(contentOffset()).top());
    while (block.isValid() && top <= event->rect().bottom()) {
        const int bottom = top + static_cast<int>(blockBoundingRect(block).height());
        if (block.isVisible() && bottom >= event->rect().top())
            PaintLineNumber(painter, block.blockNumber() + 1, top);
        block = block.next();
        top = bottom;
    }
}

void CodeEditor::PaintLineNumber(QPainter& painter, int number, int top) const {
    painter.drawText(0, top, m_lineNumberArea->width(), fontMetrics().height(), Qt::AlignRight,
                     QString::number(number));
}

// Setting the margins lays the whole area out, so it is left alone while they stay the same.
void CodeEditor::updateLineNumberAreaWidth(int /*newBlockCount*/) {
    const QMargins margins(lineNumberAreaWidth(), 0, 0, 0);
    if (margins != viewportMargins())
        setViewportMargins(margins);
}

void CodeEditor::updateLineNumberArea(QRect rect, int dy) {
    if (dy != 0)
        m_lineNumberArea->scroll(0, dy);
    else
        m_lineNumberArea->update(0, rect.y(), m_lineNumberArea->width(), rect.height());
    if (rect.contains(viewport()->rect()))
        updateLineNumberAreaWidth(0);
}

void CodeEditor::highlightCurrentLine() {
    QList<QTextEdit::ExtraSelection> selections;
    if (!isReadOnly()) {
        QTextEdit::ExtraSelection line;
        line.format.setBackground(QBrush(m_currentLineColor, Qt::SolidPattern));
        line.format.setProperty(QTextFormat::FullWidthSelection, true);
        line.cursor = textCursor();
        line.cursor.clearSelection();
        selections.append(line);
    }
    setExtraSelections(selections);
}

void CodeEditor::resizeEvent(QResizeEvent* event) {
    QPlainTextEdit::resizeEvent(event);
    const QRect inside = contentsRect();
    m_lineNumberArea->setGeometry(inside.left(), inside.top(), lineNumberAreaWidth(), inside.height());
}
