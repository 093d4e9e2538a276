#pragma once

#include <QWidget>

#include "EditorExport.h"

class CodeEditor;

/// The gutter of a CodeEditor. It asks the editor for its size and has itself painted by it.
class CALVERIN_EDITOR_EXPORT LineNumberArea : public QWidget {
public:
    /// A child of the editor.
    explicit LineNumberArea(CodeEditor* editor);
    ~LineNumberArea() override;

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    CodeEditor* m_editor;
};
