#include <QAbstractItemView>
#include <QApplication>
#include <QKeyEvent>
#include <QScrollBar>
#include <QTest>

#include "EditorFixture.h"

namespace {

/// Sends a key straight to the editor, past the pop-up. @return whether the editor took it.
bool TakesKey(OpenEditor& editor, int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier, const char* text = "") {
    QKeyEvent event(QEvent::KeyPress, key, modifiers, QString::fromLatin1(text));
    editor.keyPressEvent(&event);
    return event.isAccepted();
}

constexpr char kControlE[] = "\x05";

} // namespace

TEST_F(CompletionTest, NeverOpensForAWordOfTwoCharacters) {
    Type("Fo");
    EXPECT_FALSE(IsPopupOpen());
}

TEST_F(CompletionTest, OpensWithTheThirdCharacterOfAWord) {
    Type("Foo");
    EXPECT_TRUE(IsPopupOpen());
    EXPECT_EQ(Offered(), 1);
    EXPECT_EQ(m_completer.popup()->currentIndex().row(), 0);
}

TEST_F(CompletionTest, IgnoresCase) {
    Type("qcal");
    EXPECT_TRUE(IsPopupOpen());
    EXPECT_EQ(Offered(), 2);
}

TEST_F(CompletionTest, ClosesWhenNothingFits) {
    Type("Foo");
    Type("x");
    EXPECT_FALSE(IsPopupOpen());
    EXPECT_EQ(Text(), "Foox|");
}

TEST_F(CompletionTest, IsAsWideAsItsWidestRowAmongThousands) {
    for (int row = 0; row < 3000; ++row)
        AddEntry(qPrintable(QStringLiteral("Lamp%1").arg(row)));
    AddEntry("LampWithANameThatIsLongerThanAllOfTheOthersInTheWholeList");
    Type("Lam");
    ASSERT_EQ(Offered(), 3001);
    const QAbstractItemView& list = *m_completer.popup();
    EXPECT_EQ(list.width(), list.sizeHintForColumn(0) + list.verticalScrollBar()->sizeHint().width());
}

TEST_F(CompletionTest, FollowsTheWordThatIsTyped) {
    Type("QCa");
    EXPECT_EQ(m_completer.completionPrefix(), QStringLiteral("QCa"));
    Type("l");
    EXPECT_EQ(m_completer.completionPrefix(), QStringLiteral("QCal"));
    EXPECT_TRUE(IsPopupOpen());
    Press(Qt::Key_Backspace);
    EXPECT_EQ(m_completer.completionPrefix(), QStringLiteral("QCa"));
    Press(Qt::Key_Backspace);
    EXPECT_FALSE(IsPopupOpen());
}

TEST_F(CompletionTest, GoesOnAfterAPointBecauseItEndsNoWord) {
    Given("Math|Foo");
    Type(".");
    EXPECT_EQ(Text(), "Math.|Foo");
    EXPECT_TRUE(IsPopupOpen());
    EXPECT_EQ(m_completer.completionPrefix(), QStringLiteral("Foo"));
}

TEST_F(CompletionTest, EndsWithASemicolon) {
    Type("Foo");
    ASSERT_TRUE(IsPopupOpen());
    Type(";");
    EXPECT_FALSE(IsPopupOpen());
    EXPECT_EQ(Text(), "Foo;|");
}

TEST_F(CompletionTest, EndsWithEachCharacterThatEndsAWord) {
    for (const char* sign = "~!@#$%^&*+{}|:<>?,/;[]\\="; *sign; ++sign) {
        m_editor.setText(QStringLiteral("Foo"));
        const char text[] = {*sign, '\0'};
        Type(text);
        EXPECT_EQ(m_editor.text(), QString(QLatin1Char(*sign)) + QStringLiteral("Foo"));
        EXPECT_FALSE(IsPopupOpen()) << *sign;
    }
}

TEST_F(CompletionTest, GoesOnAfterTheCharactersThatAreNoEndOfAWord) {
    AddEntry("_Foobar");
    for (const char* sign = "()_\"'.-"; *sign; ++sign) {
        m_editor.setText(QStringLiteral("Foo"));
        const char text[] = {*sign, '\0'};
        Type(text);
        EXPECT_TRUE(IsPopupOpen()) << *sign;
        m_completer.popup()->hide();
    }
}

TEST_F(CompletionTest, OpensWithTheWholeListByControlEWithoutAWord) {
    Press(Qt::Key_E, Qt::ControlModifier);
    EXPECT_TRUE(IsPopupOpen());
    EXPECT_EQ(Offered(), 3);
    EXPECT_EQ(Text(), "|");
}

TEST_F(CompletionTest, OpensByControlEForAWordOfOneCharacter) {
    Given("F|");
    Press(Qt::Key_E, Qt::ControlModifier);
    EXPECT_TRUE(IsPopupOpen());
    EXPECT_EQ(Offered(), 1);
}

TEST_F(CompletionTest, OpensByControlEAsTheKeyboardSendsIt) {
    PressWithText(Qt::Key_E, Qt::ControlModifier, kControlE);
    EXPECT_TRUE(IsPopupOpen());
    EXPECT_EQ(Text(), "|");
}

TEST_F(CompletionTest, OpensByControlShiftE) {
    PressWithText(Qt::Key_E, Qt::ControlModifier | Qt::ShiftModifier, kControlE);
    EXPECT_TRUE(IsPopupOpen());
}

TEST_F(CompletionTest, StaysAsItIsForControlEWithoutAText) {
    PressWithText(Qt::Key_E, Qt::ControlModifier, "");
    EXPECT_FALSE(IsPopupOpen());
}

TEST_F(CompletionTest, KeepsControlEFromTheBaseClassOnlyWithACompleter) {
    EXPECT_TRUE(TakesKey(m_editor, Qt::Key_E, Qt::ControlModifier, kControlE));
    m_editor.setCompleter(nullptr);
    EXPECT_FALSE(TakesKey(m_editor, Qt::Key_E, Qt::ControlModifier, kControlE)) << "the base class has no use for it";
}

TEST_F(CompletionTest, ClosesForAKeyWithAnotherModifier) {
    for (const Qt::KeyboardModifier modifier : {Qt::AltModifier, Qt::MetaModifier, Qt::KeypadModifier}) {
        Given("Foo|");
        Press(Qt::Key_E, Qt::ControlModifier);
        ASSERT_TRUE(IsPopupOpen());
        TakesKey(m_editor, Qt::Key_F4, modifier, "b");
        EXPECT_FALSE(IsPopupOpen()) << modifier;
    }
}

TEST_F(CompletionTest, ClosesForAKeyWithoutAText) {
    Type("Foo");
    TakesKey(m_editor, Qt::Key_Left);
    EXPECT_FALSE(IsPopupOpen());
}

TEST_F(CompletionTest, StaysOpenWhileShiftOrControlGoesDown) {
    Type("Foo");
    TakesKey(m_editor, Qt::Key_Shift); // the event counts its own key as a modifier
    EXPECT_TRUE(IsPopupOpen());
    TakesKey(m_editor, Qt::Key_Control);
    EXPECT_TRUE(IsPopupOpen());
}

TEST_F(CompletionTest, GoesOnWithCapitals) {
    Type("Fo");
    PressWithText(Qt::Key_O, Qt::ShiftModifier, "O");
    EXPECT_TRUE(IsPopupOpen());
    EXPECT_EQ(Text(), "FoO|");
}

TEST_F(CompletionTest, LeavesTheKeysOfAnOpenPopUpToIt) {
    for (const Qt::Key key : {Qt::Key_Escape, Qt::Key_Return, Qt::Key_Enter}) {
        Given("    Foo|");
        Press(Qt::Key_E, Qt::ControlModifier);
        ASSERT_TRUE(IsPopupOpen());
        EXPECT_FALSE(TakesKey(m_editor, key)) << key;
        EXPECT_EQ(Text(), "    Foo|");
        EXPECT_TRUE(IsPopupOpen());
        m_completer.popup()->hide();
    }
}

TEST_F(CompletionTest, IndentsWithTabAndDoesNotAcceptTheEntry) {
    Type("Foo");
    ASSERT_TRUE(IsPopupOpen());
    Press(Qt::Key_Tab);
    EXPECT_EQ(Text(), "Foo |");
    EXPECT_TRUE(IsPopupOpen());
}

TEST_F(CompletionTest, ClosesWithEscapeAndChangesNothing) {
    Type("Foo");
    Press(Qt::Key_Escape);
    EXPECT_FALSE(IsPopupOpen());
    EXPECT_EQ(Text(), "Foo|");
}

TEST_F(CompletionTest, ZoomsWhileItIsOpen) {
    Type("Foo");
    const int before = m_editor.font().pointSize();
    Press(Qt::Key_Plus, Qt::ControlModifier);
    EXPECT_EQ(m_editor.font().pointSize(), before + 1);
    EXPECT_EQ(Text(), "Foo|");
}

TEST_F(CompletionTest, KeepsTheChosenEntryWhileTheWordStaysTheSame) {
    Type("QCa");
    Press(Qt::Key_Down);
    ASSERT_EQ(m_completer.popup()->currentIndex().row(), 1);
    TakesKey(m_editor, Qt::Key_E, Qt::ControlModifier, kControlE);
    EXPECT_EQ(m_completer.popup()->currentIndex().row(), 1);
    Type("l");
    EXPECT_EQ(m_completer.popup()->currentIndex().row(), 0);
}

TEST_F(CompletionTest, IsAsWideAsItsEntriesAndItsScrollBar) {
    Type("QCa");
    const QAbstractItemView* popup = m_completer.popup();
    EXPECT_EQ(popup->width(), popup->sizeHintForColumn(0) + popup->verticalScrollBar()->sizeHint().width());
}

TEST_F(CompletionTest, InsertsWhatAnEntryShows) {
    Given("a = Foo|\n;");
    Press(Qt::Key_E, Qt::ControlModifier);
    Press(Qt::Key_Return);
    EXPECT_EQ(Text(), "a = Foobar|\n;");
    EXPECT_FALSE(IsPopupOpen());
}

TEST_F(CompletionTest, InsertsTheTextOfAnEntryWithTheCaretBetweenItsQuotes) {
    Type("QCa");
    Press(Qt::Key_Return);
    EXPECT_EQ(Text(), "QCalverin.GetValueAsString( \"|\" );");
}

TEST_F(CompletionTest, InsertsTheEntryThatWasChosen) {
    Type("QCa");
    Press(Qt::Key_Down);
    Press(Qt::Key_Enter);
    EXPECT_EQ(Text(), "QCalverin.SetValue( \"|\", \"\" );");
}

TEST_F(CompletionTest, InsertsTheEntryThatIsClicked) {
    Type("QCa");
    QAbstractItemView* popup = m_completer.popup();
    const QRect row = popup->visualRect(m_completer.completionModel()->index(1, 0));
    QTest::mouseClick(popup->viewport(), Qt::LeftButton, {}, row.center());
    EXPECT_EQ(Text(), "QCalverin.SetValue( \"|\", \"\" );");
}

TEST_F(CompletionTest, IsOneStepOfUndo) {
    Given("Foo|");
    Press(Qt::Key_E, Qt::ControlModifier);
    Press(Qt::Key_Return);
    ASSERT_EQ(Text(), "Foobar|");
    m_editor.undo();
    EXPECT_EQ(m_editor.text(), QStringLiteral("Foo"));
}

TEST_F(CompletionTest, ReplacesAWordFromItsMidst) {
    Given("Foo|");
    Press(Qt::Key_E, Qt::ControlModifier);
    QTextCursor cursor = m_editor.textCursor();
    cursor.setPosition(1);
    m_editor.setTextCursor(cursor);
    Press(Qt::Key_Return);
    EXPECT_EQ(Text(), "Foobar|");
}

TEST_F(CompletionTest, InsertsNothingUntilAnEntryOfTheWholeListIsChosen) {
    Press(Qt::Key_E, Qt::ControlModifier);
    Press(Qt::Key_Return);
    EXPECT_FALSE(IsPopupOpen());
    EXPECT_EQ(Text(), "|");
}

TEST_F(CompletionTest, InsertsAtTheBeginningOfAScript) {
    Press(Qt::Key_E, Qt::ControlModifier);
    Press(Qt::Key_Down);
    Press(Qt::Key_Return);
    EXPECT_EQ(Text(), "Foobar|");
}

TEST_F(CompletionTest, InsertsBehindTheLineAboveAtTheBeginningOfALineAsIsMeant) {
    Given("ab\n|");
    Press(Qt::Key_E, Qt::ControlModifier);
    Press(Qt::Key_Down);
    Press(Qt::Key_Return);
    EXPECT_EQ(Text(), "abFoobar|\n");
}

TEST_F(CompletionTest, InsertsNothingForAnotherEditor) {
    CodeEditor other;
    Given("Foo|");
    m_completer.setWidget(&other);
    Q_EMIT m_completer.activated(m_table.index(0, 0));
    EXPECT_EQ(Text(), "Foo|");
}

TEST_F(CompletionTest, BelongsToTheEditorThatHasTheFocus) {
    QWidget window;
    auto* first = new CodeEditor(&window);
    auto* second = new CodeEditor(&window);
    second->move(0, 200);
    window.show();
    first->setCompleter(&m_completer);
    second->setCompleter(&m_completer);
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    first->setFocus();
    EXPECT_EQ(m_completer.widget(), first);
    second->setFocus();
    EXPECT_EQ(m_completer.widget(), second);
}

TEST_F(CompletionTest, SetsTheCompleterUp) {
    QCompleter completer;
    completer.setCompletionMode(QCompleter::InlineCompletion);
    completer.setCaseSensitivity(Qt::CaseSensitive);
    m_editor.setCompleter(&completer);
    EXPECT_EQ(m_editor.completer(), &completer);
    EXPECT_EQ(completer.widget(), &m_editor);
    EXPECT_EQ(completer.completionMode(), QCompleter::PopupCompletion);
    EXPECT_EQ(completer.caseSensitivity(), Qt::CaseInsensitive);
}

TEST_F(CompletionTest, LetsAnOldCompleterGo) {
    QCompleter other(&m_table);
    m_editor.setCompleter(&other);
    m_completer.setWidget(&m_editor);
    Q_EMIT m_completer.activated(m_table.index(0, 0));
    EXPECT_EQ(Text(), "|");
    m_editor.setCompleter(nullptr);
    EXPECT_EQ(m_editor.completer(), nullptr);
    Type("Foo");
    EXPECT_EQ(Text(), "Foo|");
}

TEST_F(CompletionTest, InsertsOnceWithACompleterThatWasSetTwice) {
    m_editor.setCompleter(&m_completer);
    Q_EMIT m_completer.activated(m_table.index(0, 0));
    EXPECT_EQ(Text(), "Foobar|");
}

TEST_F(CompletionTest, OutlivesItsCompleter) {
    auto* completer = new QCompleter(&m_table);
    m_editor.setCompleter(completer);
    delete completer;
    EXPECT_EQ(m_editor.completer(), nullptr);
    Type("Foo");
    m_editor.SlotInsertText(QStringLiteral("x"));
    m_editor.clearFocus();
    m_editor.setFocus();
    EXPECT_EQ(Text(), "Foo|");
}

TEST_F(CompletionTest, OffersNothingFromAnEmptyTable) {
    m_table.clear();
    Press(Qt::Key_E, Qt::ControlModifier);
    Type("Foo");
    EXPECT_FALSE(IsPopupOpen());
    EXPECT_EQ(Text(), "Foo|");
}

TEST_F(CompletionTest, OffersNothingInAReadOnlyScript) {
    Given("Foo|");
    m_editor.setReadOnly(true);
    Press(Qt::Key_E, Qt::ControlModifier);
    EXPECT_FALSE(IsPopupOpen());
}

TEST_F(CompletionTest, LetsATextBeInsertedAtTheCaret) {
    Given("a^b|c");
    m_editor.SlotInsertText(QStringLiteral("xy"));
    EXPECT_EQ(Text(), "axy|c");
}

TEST_F(CompletionTest, LetsNoTextBeInsertedForAnotherEditorOrWithoutACompleter) {
    CodeEditor other;
    m_completer.setWidget(&other);
    m_editor.SlotInsertText(QStringLiteral("xy"));
    EXPECT_EQ(Text(), "|");
    m_editor.setCompleter(nullptr);
    m_editor.SlotInsertText(QStringLiteral("xy"));
    EXPECT_EQ(Text(), "|");
}
