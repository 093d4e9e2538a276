#include <QRadioButton>

#include "SetupDialogFixture.h"

namespace {

class TheFinder : public TheSetupDialog {};

TEST_F(TheFinder, FindsDownwardsFromTheCaretWithoutWrapping) {
    GivenScript("one two\nTwo three\n");
    Show([&](QWidget& dialog) {
        ClickTab(dialog, 1);
        Editor(dialog).moveCursor(QTextCursor::Start);
        dialogs.Expect([&](QWidget& finder) {
            EXPECT_EQ(finder.windowTitle(), QStringLiteral("Find"));
            EXPECT_TRUE(Find<QRadioButton>(finder, "radioButtonDirDown").isChecked());
            Type(finder, "lineEditFind", "two");
            Click(finder, "pushButtonNext");
            EXPECT_EQ(Editor(dialog).textCursor().selectedText(), QStringLiteral("two"));
            Click(finder, "pushButtonNext");
            EXPECT_EQ(Editor(dialog).textCursor().selectedText(), QStringLiteral("Two"));
            dialogs.Expect([](QWidget& message) {
                EXPECT_EQ(message.windowTitle(), QStringLiteral("Word Not Found"));
                EXPECT_EQ(message.property("text").toString(),
                          QStringLiteral("Sorry, the word \"two\" cannot be found."));
                message.close();
            });
            Click(finder, "pushButtonNext");
            EXPECT_EQ(Editor(dialog).textCursor().selectedText(), QStringLiteral("Two")) << "the selection stays";
            Click(finder, "radioButtonDirUp");
            Click(finder, "pushButtonNext");
            EXPECT_EQ(Editor(dialog).textCursor().selectionStart(), 4);
            Click(finder, "checkBoxMatchCase");
            Click(finder, "pushButtonClose");
        });
        QTest::keyClick(&Editor(dialog), Qt::Key_F, Qt::ControlModifier);
        EXPECT_FALSE(device->GetStoredSetup().Memory().findsDown);
        EXPECT_TRUE(device->GetStoredSetup().Memory().findMatchesCase);
        Click(dialog, "pushButtonCancel");
    });
}

TEST_F(TheFinder, AsksForAWordWhenTheSearchFieldIsEmpty) {
    GivenScript("one");
    Show([&](QWidget& dialog) {
        ClickTab(dialog, 1);
        dialogs.Expect([&](QWidget& finder) {
            dialogs.Expect([](QWidget& message) {
                EXPECT_EQ(message.windowTitle(), QStringLiteral("Empty Search Field"));
                QTest::keyClick(&message, Qt::Key_Return);
            });
            Click(finder, "pushButtonNext");
            QTest::keyClick(&finder, Qt::Key_Escape);
        });
        QTest::keyClick(&Editor(dialog), Qt::Key_F, Qt::ControlModifier);
        Click(dialog, "pushButtonCancel");
    });
}

} // namespace
