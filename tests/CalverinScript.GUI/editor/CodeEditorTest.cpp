#include "CodeEditor.h"

#include <QApplication>
#include <QScreen>
#include <QScrollBar>
#include <QTest>
#include <QTextBlock>
#include <QWindow>

#include "EditorFixture.h"
#include "Highlighter.h"
#include "LineNumberArea.h"

namespace {

class GutterTest : public EditorTest {
protected:
    void GivenLines(int count) {
        QStringList lines;
        for (int line = 0; line < count; ++line)
            lines.append(QStringLiteral("x"));
        m_editor.setText(lines.join(QLatin1Char('\n')));
    }
    int WidthFor(int digits) const { return 3 + digits * m_editor.fontMetrics().horizontalAdvance(QLatin1Char('9')); }
    int LeftMargin() const { return m_editor.viewport()->geometry().left() - m_editor.contentsRect().left(); }

    void ExpectGutter(int digits) const {
        EXPECT_EQ(m_editor.lineNumberAreaWidth(), WidthFor(digits));
        EXPECT_EQ(LeftMargin(), WidthFor(digits));
        const QRect inside = m_editor.contentsRect();
        EXPECT_EQ(m_editor.Gutter()->geometry(), QRect(inside.topLeft(), QSize(WidthFor(digits), inside.height())));
    }
    QImage PaintedGutter() const { return m_editor.Gutter()->grab().toImage(); }

    /// Whether anything but the background is painted in these rows.
    static bool HasInk(const QImage& image, int top, int bottom) {
        for (int y = std::max(0, top); y < std::min(bottom, image.height()); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                if (image.pixelColor(x, y) != QColor(QStringLiteral("#E1E1E1")))
                    return true;
            }
        }
        return false;
    }
};

class CurrentLineTest : public EditorTest {
protected:
    QTextEdit::ExtraSelection Only() const {
        const auto selections = m_editor.extraSelections();
        EXPECT_EQ(selections.size(), 1);
        return selections.value(0);
    }
};

using CodeEditorText = EditorTest;

} // namespace

TEST_F(GutterTest, IsAsWideAsTheNumberOfTheLastLine) {
    GivenLines(1);
    ExpectGutter(1);
    GivenLines(9);
    ExpectGutter(1);
    GivenLines(10);
    ExpectGutter(2);
    GivenLines(99);
    ExpectGutter(2);
    GivenLines(100);
    ExpectGutter(3);
    GivenLines(1000);
    ExpectGutter(4);
    GivenLines(12345);
    ExpectGutter(5);
    GivenLines(2);
    ExpectGutter(1);
}

TEST_F(GutterTest, WidensWithTheTenthLineThatIsTyped) {
    GivenLines(9);
    m_editor.moveCursor(QTextCursor::End);
    Press(Qt::Key_Return);
    ExpectGutter(2);
    Press(Qt::Key_Backspace);
    ExpectGutter(1);
}

TEST_F(GutterTest, WidensWithTheFont) {
    GivenLines(100);
    const int before = m_editor.lineNumberAreaWidth();
    m_editor.zoomIn(10);
    ASSERT_TRUE(WaitUntil([this] { return LeftMargin() == WidthFor(3); }));
    EXPECT_GT(m_editor.lineNumberAreaWidth(), before);
    ExpectGutter(3);
}

TEST_F(GutterTest, FollowsTheSizeOfTheEditor) {
    m_editor.resize(320, 480);
    ExpectGutter(1);
    m_editor.setFrameShape(QFrame::NoFrame);
    ExpectGutter(1);
}

TEST_F(GutterTest, HintsItsWidthAndNoHeight) {
    GivenLines(10);
    EXPECT_EQ(m_editor.Gutter()->sizeHint(), QSize(WidthFor(2), 0));
}

TEST_F(GutterTest, IsAChildOfTheEditor) {
    EXPECT_EQ(m_editor.Gutter()->parentWidget(), &m_editor);
}

TEST_F(GutterTest, HasItsOwnColours) {
    m_editor.zoomIn(40 - m_editor.font().pointSize());
    GivenLines(1);
    ASSERT_TRUE(WaitUntil([this] { return LeftMargin() == WidthFor(1); }));
    const QImage image = PaintedGutter();
    EXPECT_EQ(image.pixelColor(0, image.height() - 1), QColor(QStringLiteral("#E1E1E1")));
    int ink = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            ink += image.pixelColor(x, y) == QColor(QStringLiteral("#002446"));
    }
    EXPECT_GT(ink, 20);
}

TEST_F(GutterTest, IsWrittenInTheFontOfTheEditor) {
    GivenLines(3);
    m_editor.zoomIn(2);
    ASSERT_TRUE(WaitUntil([this] { return LeftMargin() == WidthFor(1); }));
    const QImage before = PaintedGutter();
    QFont small = m_editor.font();
    small.setPointSize(4);
    m_editor.Gutter()->setFont(small);
    EXPECT_EQ(PaintedGutter(), before);
}

TEST_F(GutterTest, PaintsANumberBesideEachLineAndNoneBelowTheLast) {
    GivenLines(3);
    const QImage image = PaintedGutter();
    QTextCursor cursor(m_editor.document());
    int bottom = 0;
    for (int line = 0; line < 3; ++line, cursor.movePosition(QTextCursor::NextBlock)) {
        const QRect row = m_editor.cursorRect(cursor);
        EXPECT_TRUE(HasInk(image, row.top(), row.bottom())) << line + 1;
        bottom = row.bottom();
    }
    EXPECT_FALSE(HasInk(image, bottom + 2, image.height()));
}

TEST_F(GutterTest, PaintsOneNumberForALineThatIsWrapped) {
    m_editor.setText(QStringLiteral("word ").repeated(60));
    const QTextBlock block = m_editor.document()->firstBlock();
    ASSERT_GT(block.layout()->lineCount(), 1);
    const int lineHeight = m_editor.fontMetrics().height();
    EXPECT_TRUE(HasInk(PaintedGutter(), 0, lineHeight + 4));
    EXPECT_FALSE(HasInk(PaintedGutter(), lineHeight + 5, m_editor.Gutter()->height()));
}

TEST_F(GutterTest, SkipsLinesThatAreHiddenAndCountsThem) {
    GivenLines(3);
    QTextCursor third(m_editor.document()->lastBlock());
    const QRect before = m_editor.cursorRect(third);
    const QImage all = PaintedGutter();
    m_editor.document()->findBlockByNumber(1).setVisible(false);
    m_editor.document()->markContentsDirty(0, m_editor.document()->characterCount() - 1);
    QApplication::processEvents();
    const QRect after = m_editor.cursorRect(third);
    ASSERT_LT(after.top(), before.top());
    const QSize row(all.width(), before.height());
    EXPECT_EQ(all.copy({{0, before.top()}, row}), PaintedGutter().copy({{0, after.top()}, row}))
        << "the third number stands beside the third line";
}

TEST_F(GutterTest, PaintsTheWantedStripAlone) {
    GivenLines(5);
    QImage image(m_editor.Gutter()->size(), QImage::Format_RGB32);
    image.fill(Qt::magenta);
    m_editor.Gutter()->render(&image, QPoint(0, 20), QRegion(0, 20, image.width(), 10));
    EXPECT_EQ(image.pixelColor(0, 5), QColor(Qt::magenta));
    EXPECT_EQ(image.pixelColor(0, 25), QColor(QStringLiteral("#E1E1E1")));
    EXPECT_EQ(image.pixelColor(0, 35), QColor(Qt::magenta));
}

// What stands on the screen after steps of scrolling is what one full painting gives.
TEST_F(GutterTest, ScrollsWithTheText) {
    GivenLines(300);
    const auto onScreen = [this] { return m_editor.screen()->grabWindow(m_editor.winId()).toImage(); };
    const QRect gutter = m_editor.Gutter()->geometry();
    for (const int turn : {-120, -120, -240, 120}) {
        Wheel({0, turn}, Qt::NoModifier);
        QApplication::processEvents();
    }
    ASSERT_GT(m_editor.verticalScrollBar()->value(), 0);
    EXPECT_EQ(onScreen().copy(gutter).convertToFormat(QImage::Format_RGB32),
              PaintedGutter().convertToFormat(QImage::Format_RGB32));
}

TEST_F(CurrentLineTest, IsTintedOverItsFullWidth) {
    Given("ab\nc|d");
    const auto line = Only();
    EXPECT_EQ(line.format.background(), QBrush(QColor(Qt::blue).lighter(180), Qt::SolidPattern));
    EXPECT_TRUE(line.format.boolProperty(QTextFormat::FullWidthSelection));
    EXPECT_EQ(line.cursor.position(), 4);
    EXPECT_FALSE(line.cursor.hasSelection());
}

TEST_F(CurrentLineTest, IsThereFromTheStart) {
    const CodeEditor fresh;
    EXPECT_EQ(fresh.extraSelections().size(), 1);
}

TEST_F(CurrentLineTest, FollowsTheCaret) {
    Given("ab\n|cd");
    Press(Qt::Key_Up);
    EXPECT_EQ(Only().cursor.blockNumber(), 0);
}

TEST_F(CurrentLineTest, IsOneLineBesideASelection) {
    Given("^ab\ncd|");
    EXPECT_FALSE(Only().cursor.hasSelection());
    EXPECT_EQ(Only().cursor.position(), 5);
}

TEST_F(CurrentLineTest, IsNotShownInAReadOnlyScriptOnceTheCaretMoves) {
    Given("|ab\ncd");
    m_editor.setReadOnly(true);
    m_editor.moveCursor(QTextCursor::Down);
    EXPECT_TRUE(m_editor.extraSelections().isEmpty());
}

TEST_F(CodeEditorText, IsThePlainText) {
    m_editor.setText(QStringLiteral("a\nb"));
    EXPECT_EQ(m_editor.text(), QStringLiteral("a\nb"));
    EXPECT_EQ(m_editor.toPlainText(), QStringLiteral("a\nb"));
}

TEST_F(CodeEditorText, IsReachedByTheNamesOfItsSlots) {
    EXPECT_TRUE(QMetaObject::invokeMethod(&m_editor, "setText", Q_ARG(QString, QStringLiteral("a"))));
    EXPECT_EQ(m_editor.text(), QStringLiteral("a"));
    const QMetaObject* meta = m_editor.metaObject();
    for (const char* slot :
         {"setText(QString)", "SlotInsertText(QString)", "updateLineNumberAreaWidth(int)", "highlightCurrentLine()",
          "updateLineNumberArea(QRect,int)", "insertCompletion(QModelIndex)"})
        EXPECT_GE(meta->indexOfSlot(slot), 0) << slot;
}

TEST_F(CodeEditorText, StaysDarkOnWhiteUnderADarkPalette) {
    const QPalette before = QApplication::palette();
    QPalette dark = before;
    dark.setColor(QPalette::Base, Qt::black);
    dark.setColor(QPalette::Text, Qt::white);
    QApplication::setPalette(dark);
    const CodeEditor fresh;
    EXPECT_EQ(fresh.palette().color(QPalette::Base), QColor(Qt::white));
    EXPECT_EQ(fresh.palette().color(QPalette::Text), QColor(Qt::black));
    EXPECT_EQ(m_editor.palette().color(QPalette::Base), QColor(Qt::white));
    QApplication::setPalette(before);
}

namespace {

/// What an editor with colours shows under a style sheet of its parent's and one of its own.
QImage Screenshot(const char* name, const char* parentSheet, const char* ownSheet = nullptr) {
    QWidget parent;
    parent.setStyleSheet(QString::fromLatin1(parentSheet));
    CodeEditor editor(&parent);
    editor.setFocusPolicy(Qt::NoFocus); // a caret that blinks would be there in one picture only
    if (ownSheet)
        editor.setStyleSheet(QString::fromLatin1(ownSheet));
    new Highlighter(editor.document());
    editor.setText(QStringLiteral("// a comment\nvar name = other.member('text', 12) + [1];\n{ function() {} }"));
    editor.resize(420, 140);
    parent.resize(430, 150);
    parent.show();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(&parent));
    QApplication::processEvents();
    const QImage shot = editor.viewport()->grab().toImage().convertToFormat(QImage::Format_RGB32);
    const QString folder = qEnvironmentVariable("CALVERIN_SCREENSHOTS"); // to look at them
    if (!folder.isEmpty())
        editor.grab().save(folder + QLatin1Char('/') + QString::fromLatin1(name) + QStringLiteral(".png"));
    return shot;
}

} // namespace

TEST(CodeEditorColours, AreTheSameUnderAnyPaletteAndStyleSheet) {
    const QImage plain = Screenshot("plain", "");
    const QPalette before = QApplication::palette();
    QPalette dark = before;
    for (const QPalette::ColorRole role : {QPalette::Base, QPalette::Window, QPalette::Button})
        dark.setColor(role, QColor(30, 30, 30));
    for (const QPalette::ColorRole role : {QPalette::Text, QPalette::WindowText, QPalette::ButtonText})
        dark.setColor(role, Qt::white);
    const char* const theme = "QDialog { background-color: rgb(30,30,30); color: white }"
                              "QListView { background-color: rgb(45,45,45); color: white }"
                              "QTextEdit { background-color: rgb(45,45,45); color: white }"
                              "QPlainTextEdit { background-color: rgb(45,45,45); color: white }"
                              "QFrame { color: white }";
    const char* const inkAlone = "QPlainTextEdit { color: white }";
    EXPECT_EQ(Screenshot("theme", theme), plain);
    EXPECT_EQ(Screenshot("ink_of_the_parent", inkAlone), plain);
    EXPECT_EQ(Screenshot("ink_of_its_own", "", inkAlone), plain);
    QApplication::setPalette(dark);
    EXPECT_EQ(Screenshot("dark_palette", ""), plain);
    EXPECT_EQ(Screenshot("dark_palette_and_theme", theme), plain);
    EXPECT_EQ(Screenshot("dark_palette_and_ink_of_its_own", "", inkAlone), plain);
    QApplication::setPalette(before);
}
