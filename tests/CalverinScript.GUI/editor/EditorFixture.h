#pragma once

#include <QAbstractItemView>
#include <QCompleter>
#include <QStandardItemModel>

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "CodeEditor.h"

/// The editor with its protected operations open and its gutter in reach.
class OpenEditor : public CodeEditor {
public:
    using CodeEditor::CodeEditor;
    using CodeEditor::keyPressEvent;
    using CodeEditor::wheelEvent;

    QWidget* Gutter() const;
};

/// A text with its cursor: '|' stands for the caret, '^' for the other end of a selection.
void PutText(QPlainTextEdit& editor, const char* marked);
std::string TextOf(const QPlainTextEdit& editor);

/// Runs the event loop until the condition holds, for at most five seconds.
/// @return whether it holds.
bool WaitUntil(const std::function<bool()>& condition);

/// An editor on the screen with the focus, and the words to work on it.
class EditorTest : public ::testing::Test {
protected:
    void SetUp() override;

    void Given(const char* marked) { PutText(m_editor, marked); }
    /// A key goes where the window system would send it: to an open pop-up, else to the editor.
    void Press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    void PressWithText(int key, Qt::KeyboardModifiers modifiers, const char* text);
    void Type(const char* text);
    void Wheel(QPoint turn, Qt::KeyboardModifiers modifiers);
    std::string Text() const { return TextOf(m_editor); }

    OpenEditor m_editor;
};

/// The same with a completer on a small table.
class CompletionTest : public EditorTest {
protected:
    void SetUp() override;

    bool IsPopupOpen() const { return m_completer.popup()->isVisible(); }
    int Offered() const { return m_completer.completionCount(); }
    void AddEntry(const char* shown, const char* inserted = nullptr);

    QStandardItemModel m_table;
    QCompleter m_completer;
};
