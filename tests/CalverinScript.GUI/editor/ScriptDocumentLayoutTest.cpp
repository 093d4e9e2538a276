#include "ScriptDocumentLayout.h"

#include <QApplication>
#include <QDeadlineTimer>
#include <QScreen>
#include <QScrollBar>
#include <QTextBlock>

#include <random>

#include "EditorFixture.h"
#include "Highlighter.h"

namespace {

class ScriptLayoutTest : public EditorTest {
protected:
    void SetUp() override {
        QApplication::setCursorFlashTime(0); // a caret that blinks would be there in one picture only
        EditorTest::SetUp();
        new Highlighter(m_editor.document());
        m_editor.setText(QStringLiteral("var a = 'b';\n").repeated(12));
        QApplication::processEvents();
        QObject::connect(&m_editor, &QPlainTextEdit::updateRequest,
                         [this](const QRect& rect, int) { m_tallest = std::max(m_tallest, rect.height()); });
    }
    void TearDown() override { QApplication::setCursorFlashTime(-1); }

    void Replace(int from, int length, const char* text) {
        QTextCursor cursor(m_editor.document());
        cursor.setPosition(from);
        cursor.setPosition(from + length, QTextCursor::KeepAnchor);
        cursor.insertText(QString::fromLatin1(text));
        QApplication::processEvents();
    }
    /// What changes have painted on the screen is what painting all of it gives.
    void ExpectScreenIsUpToDate(int edit = 0) {
        const QDeadlineTimer deadline(5000); // what nobody asks to be painted stays wrong; what waits its turn does not
        while (!IsScreenUpToDate() && !deadline.hasExpired())
            QApplication::processEvents(QEventLoop::AllEvents, 10);
        ASSERT_TRUE(IsScreenUpToDate()) << "edit " << edit;
    }
    bool IsScreenUpToDate() {
        const QImage screen = m_editor.screen()->grabWindow(m_editor.winId()).toImage();
        const QImage anew = m_editor.grab().toImage();
        const auto format = QImage::Format_RGB32;
        return screen.convertToFormat(format) == anew.convertToFormat(format);
    }
    int LineHeight() const { return m_editor.fontMetrics().lineSpacing(); }

    int m_tallest = 0; ///< of the rectangles that were to be painted, in pixels
};

} // namespace

TEST_F(ScriptLayoutTest, PaintsOnlyTheLineThatAKeystrokeChanges) {
    Replace(4, 0, "b");
    m_tallest = 0;
    Replace(4, 0, "c");
    EXPECT_GT(m_tallest, 0);
    EXPECT_LT(m_tallest, 2 * LineHeight());
    ExpectScreenIsUpToDate();
}

TEST_F(ScriptLayoutTest, PaintsTheLinesBelowWhenTheirColoursChange) {
    Replace(0, 0, "/*");
    EXPECT_GT(m_tallest, 5 * LineHeight());
    ExpectScreenIsUpToDate();
}

TEST_F(ScriptLayoutTest, PaintsTheLinesBelowWhenALineGrowsInHeight) {
    Replace(0, 0, std::string(300, 'x').insert(150, " ").c_str());
    EXPECT_GT(m_editor.document()->firstBlock().layout()->lineCount(), 1);
    ExpectScreenIsUpToDate();
}

TEST_F(ScriptLayoutTest, LaysBothLinesOutWhenTheBreakBetweenThemIsReplaced) {
    m_editor.setText(QStringLiteral("ab\ncd\nef"));
    QApplication::processEvents();
    Replace(1, 3, "x\n");
    EXPECT_EQ(m_editor.text(), QStringLiteral("ax\nd\nef"));
    ExpectScreenIsUpToDate();
}

TEST_F(ScriptLayoutTest, KeepsTheScreenUpToDateThroughAnyEdits) {
    const char* const pieces[] = {"x", "'", "/*", "*/", "{", "\n", "1 ", "", "", "a b\nc"};
    std::mt19937 random(7);
    for (int edit = 0; edit < 250; ++edit) {
        const int characters = m_editor.document()->characterCount() - 1;
        const int from = static_cast<int>(random() % static_cast<unsigned>(characters + 1));
        const int length = std::min(characters - from, static_cast<int>(random() % 6));
        Replace(from, length, pieces[random() % std::size(pieces)]);
        if (edit % 9 == 0)
            m_editor.undo();
        if (edit % 13 == 0)
            m_editor.verticalScrollBar()->setValue(static_cast<int>(random() % 5));
        QApplication::processEvents();
        ExpectScreenIsUpToDate(edit);
        ASSERT_FALSE(HasFatalFailure());
    }
}

TEST_F(ScriptLayoutTest, MovesTheLinesBelowWhenTypingFillsTheRow) {
    PutText(m_editor, "var first = 1;|\nvar second = 2;\nvar third = 3;");
    QApplication::processEvents();
    for (int key = 0; key < 120; ++key) {
        Press(key % 7 == 6 ? Qt::Key_Space : Qt::Key_X);
        QApplication::processEvents();
        ExpectScreenIsUpToDate(key);
        ASSERT_FALSE(HasFatalFailure());
    }
    EXPECT_GT(m_editor.document()->firstBlock().layout()->lineCount(), 1);
}

/// Runs of keys in lines that wrap, in windows of several heights.
class ScriptLayoutKeysTest : public ScriptLayoutTest, public ::testing::WithParamInterface<int> {
protected:
    void PressAny(std::mt19937& random) {
        static constexpr int kKeys[] = {
            Qt::Key_X,      Qt::Key_X,  Qt::Key_X,    Qt::Key_Space,  Qt::Key_Space, Qt::Key_1,    Qt::Key_Backspace,
            Qt::Key_Return, Qt::Key_Up, Qt::Key_Down, Qt::Key_Delete, Qt::Key_End,   Qt::Key_Home, Qt::Key_Apostrophe};
        const int key = kKeys[random() % std::size(kKeys)];
        const unsigned times = random() % 25 == 0 ? 60 : 1; // past the window's edge now and then
        for (unsigned time = 0; time < times; ++time)
            Press(key);
    }
};

TEST_P(ScriptLayoutKeysTest, LeaveTheScreenAsARepaintGivesIt) {
    for (const int height : {90, 160, 300, 470}) {
        std::mt19937 random(static_cast<unsigned>(1000 * GetParam() + height));
        m_editor.resize(340, height);
        m_editor.setText(
            (QStringLiteral("if (a) { b('c', 12); }").repeated(3) + QStringLiteral("\nvar d;\n")).repeated(5));
        QApplication::processEvents();
        for (int key = 0; key < 60; ++key) {
            PressAny(random);
            QApplication::processEvents();
            ExpectScreenIsUpToDate(key);
            ASSERT_FALSE(HasFatalFailure()) << "height " << height;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, ScriptLayoutKeysTest, ::testing::Range(0, 6));

TEST_F(ScriptLayoutTest, UsesTheFontOfTheEditorFromTheStart) {
    QWidget window;
    QFont large = window.font();
    large.setPointSize(30);
    window.setFont(large);
    const CodeEditor editor(&window);
    EXPECT_EQ(editor.document()->defaultFont().pointSize(), 30);
    m_editor.zoomIn(3);
    EXPECT_EQ(m_editor.document()->defaultFont(), m_editor.font());
}
