#include <QApplication>
#include <QScrollBar>
#include <QTest>

#include "EditorFixture.h"

namespace {

class ReturnKey : public EditorTest, public ::testing::WithParamInterface<Qt::Key> {};

class ZoomTest : public EditorTest {
protected:
    void SetUp() override {
        EditorTest::SetUp();
        SetSize(10);
    }
    void SetSize(int points) {
        QFont font = m_editor.font();
        font.setPointSize(points);
        m_editor.setFont(font);
    }
    int Size() const { return m_editor.font().pointSize(); }
};

using EditorKeys = EditorTest;

} // namespace

TEST_P(ReturnKey, CarriesTheIndentationOfTheLineOver) {
    Given("    \tab|cd");
    Press(GetParam());
    EXPECT_EQ(Text(), "    \tab\n    \t|cd");
}

TEST_P(ReturnKey, AddsNothingToAnUnindentedLine) {
    Given("ab |");
    Press(GetParam());
    EXPECT_EQ(Text(), "ab \n|");
}

TEST_P(ReturnKey, CarriesTheWholeIndentationOverAlsoFromWithinIt) {
    Given("  |  ab");
    Press(GetParam());
    EXPECT_EQ(Text(), "  \n    |  ab");
}

TEST_P(ReturnKey, CarriesALineOfBlanksOver) {
    Given("    |");
    Press(GetParam());
    EXPECT_EQ(Text(), "    \n    |");
}

TEST_P(ReturnKey, ReplacesASelectionAndTakesTheIndentationOfTheCaretsLine) {
    Given("  a^b\n    c|d");
    Press(GetParam());
    EXPECT_EQ(Text(), "  a\n    |d");
}

TEST_P(ReturnKey, IsOneStepOfUndo) {
    Given("    ab|");
    Press(GetParam());
    ASSERT_EQ(Text(), "    ab\n    |");
    Press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(Text(), "    ab|");
}

TEST_P(ReturnKey, CarriesTheIndentationOverABreakWithinTheLineToo) {
    Given("  a|b");
    Press(GetParam(), Qt::ShiftModifier);
    EXPECT_EQ(Text(), "  a\n  |b");
    EXPECT_EQ(m_editor.blockCount(), 1);
}

TEST_P(ReturnKey, InsertsTheIndentationAlsoWithControlThatBreaksNoLineAsIsMeant) {
    Given("  a|b");
    Press(GetParam(), Qt::ControlModifier);
    EXPECT_EQ(Text(), "  a  |b");
}

INSTANTIATE_TEST_SUITE_P(Both, ReturnKey, ::testing::Values(Qt::Key_Return, Qt::Key_Enter));

TEST_F(EditorKeys, TypePlainBracesBracketsAndQuotes) {
    Given("|");
    Type("{}()[]\"'");
    EXPECT_EQ(Text(), "{}()[]\"'|");
    Given("|");
    Type("(\"");
    EXPECT_EQ(Text(), "(\"|") << "nothing is closed on its own";
}

TEST_F(EditorKeys, LeaveAReadOnlyScriptAlone) {
    Given("    ab|");
    m_editor.setReadOnly(true);
    Press(Qt::Key_Return);
    PressWithText(Qt::Key_Tab, Qt::NoModifier, "\t");
    Press(Qt::Key_Tab, Qt::ControlModifier);
    Type("x");
    EXPECT_EQ(m_editor.text(), QStringLiteral("    ab"));
}

TEST_F(EditorKeys, MoveTheCaretAsInAnyTextField) {
    Given("ab|\ncd");
    Press(Qt::Key_Down);
    Press(Qt::Key_Left);
    EXPECT_EQ(Text(), "ab\nc|d");
    Press(Qt::Key_Backspace);
    EXPECT_EQ(Text(), "ab\n|d");
}

TEST_F(EditorKeys, PutTheCaretWhereTheMouseClicks) {
    Given("|ab\ncd");
    QTextCursor target = m_editor.textCursor();
    target.setPosition(4);
    QTest::mouseClick(m_editor.viewport(), Qt::LeftButton, {}, m_editor.cursorRect(target).center());
    EXPECT_EQ(Text(), "ab\nc|d");
}

TEST_F(ZoomTest, GrowsByControlWithPlusAndWithEquals) {
    Press(Qt::Key_Plus, Qt::ControlModifier);
    EXPECT_EQ(Size(), 11);
    Press(Qt::Key_Equal, Qt::ControlModifier);
    EXPECT_EQ(Size(), 12);
    Press(Qt::Key_Plus, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(Size(), 13);
    EXPECT_EQ(m_editor.text(), QString());
}

TEST_F(ZoomTest, ShrinksByControlWithMinusAndWithUnderscore) {
    Press(Qt::Key_Minus, Qt::ControlModifier);
    EXPECT_EQ(Size(), 9);
    Press(Qt::Key_Underscore, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(Size(), 8);
    EXPECT_EQ(m_editor.text(), QString());
}

TEST_F(ZoomTest, IsNoBusinessOfThoseKeysAlone) {
    Type("+=-_");
    EXPECT_EQ(Size(), 10);
    EXPECT_EQ(m_editor.text(), QStringLiteral("+=-_"));
}

TEST_F(ZoomTest, EndsAtOnePoint) {
    SetSize(1);
    Press(Qt::Key_Minus, Qt::ControlModifier);
    EXPECT_EQ(Size(), 1);
    m_editor.zoomOut(5);
    EXPECT_EQ(Size(), 1);
    m_editor.zoomIn(1);
    EXPECT_EQ(Size(), 2);
}

TEST_F(ZoomTest, GoesBySeveralPoints) {
    m_editor.zoomIn(5);
    EXPECT_EQ(Size(), 15);
    m_editor.zoomOut(14);
    EXPECT_EQ(Size(), 1);
    m_editor.zoomIn(-1);
    EXPECT_EQ(Size(), 1);
}

TEST_F(ZoomTest, LeavesAFontWithASizeInPixelsAloneStepByStep) {
    QFont font = m_editor.font();
    font.setPixelSize(13);
    m_editor.setFont(font);
    m_editor.zoomIn(1);
    m_editor.zoomOut(1);
    EXPECT_EQ(m_editor.font().pixelSize(), 13);
}

TEST_F(ZoomTest, WorksInAReadOnlyScript) {
    m_editor.setReadOnly(true);
    Press(Qt::Key_Plus, Qt::ControlModifier);
    EXPECT_EQ(Size(), 11);
}

TEST_F(ZoomTest, GoesOnePointForEachTurnOfTheWheelWithControl) {
    Wheel({0, 120}, Qt::ControlModifier);
    EXPECT_EQ(Size(), 11);
    Wheel({0, 1}, Qt::ControlModifier);
    EXPECT_EQ(Size(), 12);
    Wheel({0, 960}, Qt::ControlModifier);
    EXPECT_EQ(Size(), 13);
    Wheel({0, -120}, Qt::ControlModifier);
    EXPECT_EQ(Size(), 12);
    Wheel({0, -1}, Qt::ControlModifier);
    EXPECT_EQ(Size(), 11);
}

TEST_F(ZoomTest, TakesATurnOfNothingForATurnBack) {
    Wheel({0, 0}, Qt::ControlModifier);
    EXPECT_EQ(Size(), 9);
}

TEST_F(ZoomTest, GoesByTheAxisThatTurnedFurther) {
    Wheel({120, 0}, Qt::ControlModifier);
    EXPECT_EQ(Size(), 11);
    Wheel({-120, 15}, Qt::ControlModifier);
    EXPECT_EQ(Size(), 10);
}

TEST_F(ZoomTest, DoesNotScroll) {
    m_editor.setPlainText(QStringLiteral("a\n").repeated(200));
    Wheel({0, -120}, Qt::ControlModifier);
    EXPECT_EQ(m_editor.verticalScrollBar()->value(), 0);
}

TEST_F(ZoomTest, LeavesTheWheelToScrollWithOtherModifiers) {
    m_editor.setPlainText(QStringLiteral("a\n").repeated(200));
    Wheel({0, -120}, Qt::NoModifier);
    EXPECT_GT(m_editor.verticalScrollBar()->value(), 0);
    Wheel({0, -120}, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(Size(), 10);
}

TEST_F(ZoomTest, IgnoresAWheelEventThatIsNone) {
    m_editor.wheelEvent(nullptr);
    EXPECT_EQ(Size(), 10);
}
