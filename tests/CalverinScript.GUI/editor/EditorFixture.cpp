#include "EditorFixture.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QElapsedTimer>
#include <QTest>
#include <QWheelEvent>

#include "LineNumberArea.h"

QWidget* OpenEditor::Gutter() const {
    for (QObject* child : children()) {
        if (auto* gutter = dynamic_cast<LineNumberArea*>(child))
            return gutter;
    }
    return nullptr;
}

void PutText(QPlainTextEdit& editor, const char* marked) {
    QString text = QString::fromUtf8(marked);
    int caret = text.indexOf(QLatin1Char('|'));
    ASSERT_GE(caret, 0) << "a text needs its caret";
    int anchor = text.indexOf(QLatin1Char('^'));
    anchor = anchor < 0 ? caret : anchor;
    if (anchor > caret)
        --anchor;
    else if (anchor < caret)
        --caret;
    editor.setPlainText(text.remove(QLatin1Char('|')).remove(QLatin1Char('^')));
    QTextCursor cursor = editor.textCursor();
    cursor.setPosition(anchor);
    cursor.setPosition(caret, QTextCursor::KeepAnchor);
    editor.setTextCursor(cursor);
}

std::string TextOf(const QPlainTextEdit& editor) {
    const QTextCursor cursor = editor.textCursor();
    QString text = editor.toPlainText();
    const int caret = cursor.position();
    const int anchor = cursor.anchor();
    text.insert(caret, QLatin1Char('|'));
    if (anchor != caret)
        text.insert(anchor > caret ? anchor + 1 : anchor, QLatin1Char('^'));
    return text.toStdString();
}

bool WaitUntil(const std::function<bool()>& condition) {
    constexpr int kDeadlineMs = 5000;
    return QTest::qWaitFor(condition, kDeadlineMs);
}

void EditorTest::SetUp() {
    m_editor.resize(500, 300);
    m_editor.show();
    m_editor.activateWindow();
    m_editor.setFocus();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&m_editor));
    ASSERT_TRUE(m_editor.hasFocus());
}

void EditorTest::Press(int key, Qt::KeyboardModifiers modifiers) {
    QWidget* popup = QApplication::activePopupWidget();
    QTest::keyClick(popup ? popup : &m_editor, static_cast<Qt::Key>(key), modifiers);
}

void EditorTest::PressWithText(int key, Qt::KeyboardModifiers modifiers, const char* text) {
    QKeyEvent event(QEvent::KeyPress, key, modifiers, QString::fromLatin1(text));
    QApplication::sendEvent(&m_editor, &event);
}

void EditorTest::Type(const char* text) {
    for (const char* sign = text; *sign; ++sign) {
        QWidget* popup = QApplication::activePopupWidget();
        QTest::keyClick(popup ? popup : &m_editor, *sign);
    }
}

void EditorTest::Wheel(QPoint turn, Qt::KeyboardModifiers modifiers) {
    const QPointF at = m_editor.viewport()->rect().center();
    QWheelEvent event(at, m_editor.viewport()->mapToGlobal(at.toPoint()), QPoint(), turn, Qt::NoButton, modifiers,
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(m_editor.viewport(), &event);
}

void CompletionTest::SetUp() {
    EditorTest::SetUp();
    AddEntry("Foobar");
    AddEntry("QCalverin.GetValueAsString", "QCalverin.GetValueAsString( \"\" );");
    AddEntry("QCalverin.SetValue", "QCalverin.SetValue( \"\", \"\" );");
    m_completer.setModel(&m_table);
    m_editor.setCompleter(&m_completer);
}

void CompletionTest::AddEntry(const char* shown, const char* inserted) {
    auto* item = new QStandardItem(QString::fromLatin1(shown));
    if (inserted)
        item->setData(QString::fromLatin1(inserted), Qt::UserRole);
    m_table.appendRow(item);
}
