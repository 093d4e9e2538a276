#include <utility>

#include <QListWidget>

#include "Deadline.h"
#include "SetupCompletionFixture.h"

namespace {

/// One insertion: its key, and the first of the objects that it offers.
struct Insertion {
    Qt::Key key;
    const char* title;
    const char* name;
};

constexpr Insertion kInsertions[] = {
    {Qt::Key_V, "Select the Variable to insert", "Dimmer"}, {Qt::Key_G, "Select the UserGroup to insert", "Hall"},
    {Qt::Key_T, "Select the Task to insert", "Curtain"},    {Qt::Key_C, "Select the Cue to insert", "Blackout"},
    {Qt::Key_U, "Select the UserScreen to insert", "Main"}, {Qt::Key_D, "Select the Device to insert", "Desk"},
};

/// Clicks the first name and Ok.
void TakeFirst(QWidget& opened) {
    auto& list = Find<QListWidget>(opened, "listObjectList");
    QTest::mouseClick(list.viewport(), Qt::LeftButton, Qt::NoModifier, list.visualItemRect(list.item(0)).center());
    Click(opened, "pushButtonOk");
}

TEST_F(TheDialogInAShow, InsertsTheBareNameOfTheChosenObjectAtTheCaret) {
    GivenCompletion(true);
    Show([&](QWidget& dialog) {
        ClickTab(dialog, 1);
        for (const Insertion& insertion : kInsertions) {
            dialog.activateWindow(); // what a window manager does when a dialog before it is gone
            ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog, kDeadlineMs));
            TypeIntoEditor(dialog, "()");
            QTest::keyClick(&Editor(dialog), Qt::Key_Left);
            dialogs.Expect([&](QWidget& opened) {
                EXPECT_EQ(opened.windowTitle().toStdString(), insertion.title);
                TakeFirst(opened);
            });
            QTest::keyClick(&Editor(dialog), insertion.key, Qt::AltModifier);
            EXPECT_EQ(Editor(dialog).toPlainText().toStdString(), std::string("(") + insertion.name + ")");
        }
        Click(dialog, "pushButtonCancel");
    });
}

TEST_F(TheDialogInAShow, LeavesTheScriptAsItIsWhenAnInsertionIsCancelled) {
    GivenCompletion(true);
    Show([&](QWidget& dialog) {
        ClickTab(dialog, 1);
        TypeIntoEditor(dialog, "x");
        dialogs.Expect([](QWidget& opened) {
            Type(opened, "lineEditObject", "l");
            QTest::keyClick(&opened, Qt::Key_Escape);
        });
        QTest::keyClick(&Editor(dialog), Qt::Key_V, Qt::AltModifier);
        EXPECT_EQ(Editor(dialog).toPlainText(), QStringLiteral("x"));
        Click(dialog, "pushButtonCancel");
    });
}

TEST_F(TheDialogInAShow, InsertsNothingWhileTheScriptIsNotShown) {
    GivenCompletion(true);
    Show([&](QWidget& dialog) {
        const QString text = Editor(dialog).toPlainText();
        for (const int tab : {0, 2, 3}) {
            ClickTab(dialog, tab);
            for (const Insertion& insertion : kInsertions)
                QTest::keyClick(&dialog, insertion.key, Qt::AltModifier);
        }
        EXPECT_EQ(Editor(dialog).toPlainText(), text);
        Click(dialog, "pushButtonCancel");
    });
}

TEST_F(TheDialogInAShow, TheInsertionDialogIsLeftWithTheSetupWhenTheDeviceGoes) {
    GivenCompletion(true);
    EXPECT_EQ(Show([&](QWidget& dialog) {
                  ClickTab(dialog, 1);
                  dialogs.Expect([&](QWidget& opened) {
                      std::exchange(device, nullptr)->Release();
                      EXPECT_FALSE(opened.isVisible());
                  });
                  QTest::keyClick(&Editor(dialog), Qt::Key_T, Qt::AltModifier);
                  EXPECT_FALSE(dialog.isVisible());
              }),
              13u);
}

} // namespace
