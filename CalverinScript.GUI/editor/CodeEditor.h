#pragma once

#include <QColor>
#include <QCompleter>
#include <QPlainTextEdit>
#include <QPointer>

#include "EditorExport.h"

class LineNumberArea;
enum class IndentDirection;

/// The text widget in which a user reads and writes a script: a gutter with line numbers, a highlighted current line,
/// zoom, indentation by four columns and a completer that is driven from the keyboard. Its colours are made for dark
/// text on white, so it follows neither a dark palette nor a style sheet of its ancestors; its font is set by its
/// owner. [thread: host main]
class CALVERIN_EDITOR_EXPORT CodeEditor : public QPlainTextEdit {
    Q_OBJECT

public:
    explicit CodeEditor(QWidget* parent = nullptr);
    ~CodeEditor() override;

    /// The completer is not owned. The editor makes itself its widget, takes it for a pop-up that ignores case, and
    /// inserts what is activated in it. Null takes the present one away.
    void setCompleter(QCompleter* completer);
    QCompleter* completer() const;

    QString text() const;

    /// Adds points to the size of the font; a size below 1 leaves it alone.
    void zoomIn(int range);
    void zoomOut(int range);

    /// In pixels: as wide as the number of the last line.
    int lineNumberAreaWidth() const;
    /// Paints the gutter for its paint event.
    void lineNumberAreaPaintEvent(QPaintEvent* event);

public Q_SLOTS:
    void setText(const QString& text);
    /// Inserts at the caret, if the completer works for this editor; otherwise, and without a completer, does nothing.
    void SlotInsertText(const QString& text);

protected:
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private Q_SLOTS:
    void updateLineNumberAreaWidth(int newBlockCount);
    void highlightCurrentLine();
    void updateLineNumberArea(QRect rect, int dy);
    void insertCompletion(QModelIndex completion);

private:
    void CreateDocument();
    void FixColours();
    void ConnectSignals();
    void PaintLineNumber(QPainter& painter, int number, int top) const;
    bool HandleZoomKey(const QKeyEvent& event);
    bool PopupTakes(int key) const;
    void Shift(IndentDirection direction);
    void CarryOver(const QString& indentation);
    void Complete(const QKeyEvent& event, bool isShortcut);
    void ShowCompletions(const QString& prefix);
    QString textUnderCursor() const;

    LineNumberArea* m_lineNumberArea; ///< a child
    QColor m_currentLineColor;
    QColor m_gutterBackground;
    QColor m_gutterText;
    QPointer<QCompleter> m_completer; ///< not owned; null again when its owner goes first
};
