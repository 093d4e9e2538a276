#include "LineNumberArea.h"

#include "CodeEditor.h"

LineNumberArea::LineNumberArea(CodeEditor* editor)
    : QWidget(editor)
    , m_editor(editor) {}

LineNumberArea::~LineNumberArea() = default;

QSize LineNumberArea::sizeHint() const {
    return {m_editor->lineNumberAreaWidth(), 0};
}

void LineNumberArea::paintEvent(QPaintEvent* event) {
    m_editor->lineNumberAreaPaintEvent(event);
}
