#include "Indentation.h"

#include <QApplication>
#include <QKeyEvent>

#include "EditorFixture.h"

namespace {

enum class Key { Tab, ShiftTab };

/// One press of Tab or Shift+Tab; '|' is the caret and '^' the other end of the selection.
struct IndentCase {
    const char* name;
    Key key;
    const char* before;
    const char* after;
};

const IndentCase kCaretCases[] = {
    {"TabAtAMultipleOfFourInsertsFourSpaces", Key::Tab, "|", "    |"},
    {"TabBehindFourCharactersInsertsFourSpaces", Key::Tab, "abcd|", "abcd    |"},
    {"TabAtColumnOneGoesToColumnFour", Key::Tab, "a|b", "a   |b"},
    {"TabAtColumnTwoGoesToColumnFour", Key::Tab, "ab|", "ab  |"},
    {"TabAtColumnThreeGoesToColumnFour", Key::Tab, "abc|", "abc |"},
    {"TabAtColumnSevenGoesToColumnEight", Key::Tab, "1\nabcdefg|h", "1\nabcdefg |h"},
    {"ShiftTabAtColumnSevenRemovesOneSpaceAsIsMeant", Key::ShiftTab, "       |", "      |"},
    {"ShiftTabAtColumnSixRemovesTwoSpaces", Key::ShiftTab, "      |", "    |"},
    {"ShiftTabAtColumnFiveRemovesOneSpace", Key::ShiftTab, "     |x", "    |x"},
    {"ShiftTabAtColumnFourRemovesFourSpaces", Key::ShiftTab, "    |x", "|x"},
    {"ShiftTabAtColumnThreeRemovesOneSpaceAsIsMeant", Key::ShiftTab, "   |", "  |"},
    {"ShiftTabAtColumnTwoRemovesTwoSpaces", Key::ShiftTab, "  |", "|"},
    {"ShiftTabAtColumnOneRemovesOneSpace", Key::ShiftTab, " |", "|"},
    {"ShiftTabAtColumnEightStopsAtColumnFour", Key::ShiftTab, "        |", "    |"},
    {"ShiftTabAtTheBeginningOfALineDoesNothing", Key::ShiftTab, "a\n|    b", "a\n|    b"},
    {"ShiftTabBehindAWordDoesNothing", Key::ShiftTab, "    ab|", "    ab|"},
    {"ShiftTabBehindATabDoesNothing", Key::ShiftTab, "\t|", "\t|"},
    {"ShiftTabTakesSpacesBehindAWordAndStopsAtIt", Key::ShiftTab, "a   |b", "a|b"},
    {"ShiftTabLeavesSpacesBeyondAWord", Key::ShiftTab, "  a |", "  a|"},
};

const IndentCase kSelectionCases[] = {
    {"TabMovesTheSelectedLinesAndKeepsThemSelected", Key::Tab, "^aa\nbb\n|cc", "^    aa\n    bb\n|cc"},
    {"TabMovesTheLinesOfABackwardSelectionJustSo", Key::Tab, "|aa\nbb\n^cc", "^    aa\n    bb\n|cc"},
    {"TabMovesLinesInTheMidstOfAScript", Key::Tab, "0\n^aa\nbb\n|cc", "0\n^    aa\n    bb\n|cc"},
    {"ShiftTabTakesFourSpacesFromEachLineThatHasThem", Key::ShiftTab, "^    aa\n     bb\n|cc", "^aa\n bb\n|cc"},
    {"ShiftTabLeavesALineThatStartsWithThreeSpaces", Key::ShiftTab, "^   aa\n|cc", "^   aa\n|cc"},
    {"ShiftTabLeavesALineThatStartsWithATab", Key::ShiftTab, "^\taa\n    bb|", "^\taa\nbb|"},
    {"ASelectionInsideOneLineHasNoEffect", Key::Tab, "a^b|c", "a^b|c"},
    {"ASelectionInsideOneLineHasNoEffectBackward", Key::ShiftTab, "    |b^cd", "    |b^cd"},
    {"ASelectionUpToTheEndOfALineMovesIt", Key::Tab, "^aa|\nbb", "^    aa|\nbb"},
    {"ASelectionOfTheLastLineMovesIt", Key::Tab, "aa\n^bb|", "aa\n^    bb|"},
    {"ASelectionOfTheWholeScriptMovesIt", Key::Tab, "^aa\nbb|", "^    aa\n    bb|"},
    {"ASelectionUpToAnEmptyLastLineMovesTheLinesBefore", Key::Tab, "^aa\n|", "^    aa\n|"},
    {"ASelectionUpToAnEmptyLineMovesTheLinesBefore", Key::Tab, "^aa\n|\nbb", "^    aa\n|\nbb"},
    {"ASelectionThatEndsInsideALineJoinsTheRestToTheLastMovedLineAsIsMeant", Key::Tab, "^aa\nbb\nc|d",
     "^    aa\n    bb|d"},
    {"ASelectionThatHoldsAnEmptyLineLosesTheLinesFromItOnAsIsMeant", Key::Tab, "^aa\n\nbb\n|cc", "^    aa\n|cc"},
    {"ASelectionThatHoldsAnEmptyLineAndEndsInALineLosesAllOfThatAsIsMeant", Key::Tab, "^aa\n\nbb|", "^    aa|"},
    {"ASelectionThatStartsWithAnEmptyLineHasNoEffect", Key::Tab, "^\naa\n|bb", "^\naa\n|bb"},
    {"ASelectionOfAnEmptyLineAloneHasNoEffect", Key::Tab, "^\n|aa", "^\n|aa"},
    {"ASelectionThatStartsInsideALinePutsTheWholeLineBehindTheRestAsIsMeant", Key::Tab, "a^b\ncd\n|ef",
     "a^    ab\n    cd\n|ef"},
    {"ASelectionOfTheRestOfALinePutsTheWholeLineBehindItAsIsMeant", Key::Tab, "a^bc|\nd", "a^    abc|\nd"},
    {"ASelectionOfBlankLinesMovesThem", Key::Tab, "^  \n  \n|a", "^      \n      \n|a"},
    {"ASelectionWithCharactersOfTwoUnitsStaysOnTheMovedLines", Key::Tab, "^\xF0\x9F\x98\x80 a\n|b",
     "^    \xF0\x9F\x98\x80 a\n|b"},
};

class IndentKeys : public EditorTest, public ::testing::WithParamInterface<IndentCase> {};

} // namespace

TEST_P(IndentKeys, Work) {
    Given(GetParam().before);
    if (GetParam().key == Key::Tab)
        Press(Qt::Key_Tab);
    else
        Press(Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(Text(), GetParam().after);
}

TEST_P(IndentKeys, AreOneStepOfUndo) {
    Given(GetParam().before);
    const QString before = m_editor.text();
    if (GetParam().key == Key::Tab)
        Press(Qt::Key_Tab);
    else
        Press(Qt::Key_Backtab, Qt::ShiftModifier);
    if (m_editor.document()->isUndoAvailable())
        Press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(m_editor.text(), before);
}

INSTANTIATE_TEST_SUITE_P(Caret, IndentKeys, ::testing::ValuesIn(kCaretCases),
                         [](const auto& row) { return std::string(row.param.name); });
INSTANTIATE_TEST_SUITE_P(Selection, IndentKeys, ::testing::ValuesIn(kSelectionCases),
                         [](const auto& row) { return std::string(row.param.name); });

using IndentDirectionTest = EditorTest;

TEST_F(IndentDirectionTest, ComesFromTheShiftKeyAndNotFromBacktab) {
    Given("|");
    PressWithText(Qt::Key_Backtab, Qt::NoModifier, "");
    EXPECT_EQ(Text(), "    |");
}

TEST_F(IndentDirectionTest, IsBackwardForTabWithShift) {
    Given("    |");
    Press(Qt::Key_Tab, Qt::ShiftModifier);
    EXPECT_EQ(Text(), "|");
}

TEST_F(IndentDirectionTest, IsAskedOfTheApplicationAndNotOfTheEvent) {
    Press(Qt::Key_Left);
    Given("    |");
    ASSERT_EQ(QApplication::keyboardModifiers(), Qt::NoModifier);
    QKeyEvent event(QEvent::KeyPress, Qt::Key_Tab, Qt::ShiftModifier);
    m_editor.keyPressEvent(&event);
    EXPECT_EQ(Text(), "        |");
}

TEST_F(IndentDirectionTest, NeverLetsTabLeaveTheEditor) {
    Given("|");
    Press(Qt::Key_Tab);
    Press(Qt::Key_Tab, Qt::ControlModifier);
    EXPECT_TRUE(m_editor.hasFocus());
    EXPECT_EQ(Text(), "        |");
}

TEST(LeadingSpace, IsTheWhiteSpaceThatALineBeginsWith) {
    EXPECT_EQ(LeadingSpace(QStringLiteral("    \tab c")), QStringLiteral("    \t"));
    EXPECT_EQ(LeadingSpace(QStringLiteral("ab c")), QString());
    EXPECT_EQ(LeadingSpace(QStringLiteral("   ")), QStringLiteral("   "));
    EXPECT_EQ(LeadingSpace(QStringLiteral("\u00a0a")), QStringLiteral("\u00a0"));
    EXPECT_EQ(LeadingSpace(QString()), QString());
}
