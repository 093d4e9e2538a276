#include "DialogInsertHelper.h"

#include <cstdio>

#include <QApplication>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>

#include "CompletionTable.h"
#include "SetupCompletionFixture.h"

namespace {

/// The dialog over a table of a few objects.
class TheInsertionDialog : public testing::Test {
protected:
    void SetUp() override {
        FillCompletionTable(table, {{6, "<Objects><Object Name='Level' Type='Variable' Value='IntegerData'/>"
                                        "<Object Name='Name' Type='Variable' Value='StringData'/>"
                                        "<Object Name='Gain' Type='Variable' Value='RealData'/>"
                                        "<Object Name='Mode' Type='Variable' Value='EnumData'/>"
                                        "<Object Name='At' Type='Variable' Value='TimeData'/>"
                                        "<Object Name='On' Type='Variable' Value='DateData'/></Objects>"},
                                    {27, "<Objects><Object Name='Stage' Type='UserGroup'/></Objects>"},
                                    {3, "<Objects><Object Name='Opening' Type='Task' Value=''/></Objects>"},
                                    {28, "<Objects><Object Name='Blackout' Type='Cue' Value=''/></Objects>"},
                                    {8, "<Objects><Object Name='Main' Type='UserScreen' Value=''/></Objects>"},
                                    {1, "<Objects><Object Name='Projector' Type='Device' Value=''/></Objects>"}});
    }
    void Open(InsertKind kind = InsertKind::Variable) {
        dialog.Init(&table, kind);
        dialog.show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
    }
    QListWidget& List() { return Find<QListWidget>(dialog, "listObjectList"); }
    bool IsOkEnabled() { return Find<QPushButton>(dialog, "pushButtonOk").isEnabled(); }
    /// The names that are seen, the current one in brackets.
    std::string Seen() {
        std::string names;
        for (int row = 0; row < List().count(); ++row) {
            const QListWidgetItem* item = List().item(row);
            const std::string name = item->text().toStdString();
            if (!item->isHidden())
                names += (names.empty() ? "" : " ") + (item == List().currentItem() ? "[" + name + "]" : name);
        }
        return names;
    }
    void DoubleClick(int row) {
        const QPoint place = List().visualItemRect(List().item(row)).center();
        QTest::mouseClick(List().viewport(), Qt::LeftButton, Qt::NoModifier, place);
        QTest::mouseDClick(List().viewport(), Qt::LeftButton, Qt::NoModifier, place);
    }

    QStandardItemModel table;
    DialogInsertHelper dialog{nullptr};
};

TEST_F(TheInsertionDialog, IsCalledByItsKindAndShowsTheObjectsOfThatKindByTheirNames) {
    struct Row {
        InsertKind kind;
        const char* title;
        const char* seen;
    };
    const Row rows[] = {
        {InsertKind::Variable, "Select the Variable to insert", "At Gain Level Mode Name On"},
        {InsertKind::UserGroup, "Select the UserGroup to insert", "Stage"},
        {InsertKind::Task, "Select the Task to insert", "Opening"},
        {InsertKind::Cue, "Select the Cue to insert", "Blackout"},
        {InsertKind::UserScreen, "Select the UserScreen to insert", "Main"},
        {InsertKind::Device, "Select the Device to insert", "Projector"},
    };
    EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Select the ? to insert"));
    for (const Row& row : rows) {
        dialog.Init(&table, row.kind);
        EXPECT_EQ(dialog.windowTitle().toStdString(), row.title);
        EXPECT_EQ(Seen(), row.seen);
        EXPECT_FALSE(IsOkEnabled());
    }
    EXPECT_EQ(List().iconSize(), QSize(32, 32));
}

TEST_F(TheInsertionDialog, ShowsNothingWithoutATable) {
    dialog.Init(nullptr, InsertKind::Cue);
    EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Select the Cue to insert"));
    EXPECT_EQ(List().count(), 0);
    EXPECT_FALSE(IsOkEnabled());
    EXPECT_TRUE(dialog.GetText().isEmpty());
}

TEST_F(TheInsertionDialog, HasAFixedSizeAndNoHelpButtonAndBeginsInItsField) {
    Open();
    EXPECT_FALSE(dialog.windowFlags().testFlag(Qt::WindowContextHelpButtonHint));
    EXPECT_EQ(dialog.minimumSize(), dialog.maximumSize());
    EXPECT_EQ(QApplication::focusWidget(), &Find<QLineEdit>(dialog, "lineEditObject"));
    EXPECT_EQ(TextOf(dialog, "pushButtonCancel"), "Ca&ncel");
}

TEST_F(TheInsertionDialog, NarrowsTheListToNamesThatHoldTheTextInAnyCase) {
    Open();
    Type(dialog, "lineEditObject", "n");
    EXPECT_EQ(Seen(), "[Gain] Name On");
    EXPECT_TRUE(IsOkEnabled());
    QTest::keyClicks(&Find<QLineEdit>(dialog, "lineEditObject"), QStringLiteral("A"));
    EXPECT_EQ(Seen(), "[Name]");
    QTest::keyClick(&Find<QLineEdit>(dialog, "lineEditObject"), Qt::Key_Z);
    EXPECT_EQ(Seen(), "");
    EXPECT_FALSE(IsOkEnabled());
    EXPECT_TRUE(dialog.GetText().isEmpty());
    Type(dialog, "lineEditObject", "");
    EXPECT_EQ(Seen(), "[At] Gain Level Mode Name On");
}

TEST_F(TheInsertionDialog, NarrowsFiveThousandNamesBeforeTheUserNotices) {
    std::vector<std::string> names;
    for (int number = 0; number < 5000; ++number)
        names.push_back("Lamp " + std::to_string(number));
    FillCompletionTable(table, {{1, HostList("Device", names)}});
    Open(InsertKind::Device);
    auto& field = Find<QLineEdit>(dialog, "lineEditObject");
    const double keys = ShortestRun([&] {
        QTest::keyClick(&field, Qt::Key_7);
        QCoreApplication::processEvents();
        QTest::keyClick(&field, Qt::Key_Backspace);
        QCoreApplication::processEvents();
    });
    std::printf("        two keys over 5000 names: %.1f ms\n", keys);
    EXPECT_LT(keys, 200);
    EXPECT_EQ(List().count(), 5000);
}

TEST_F(TheInsertionDialog, ReturnTakesTheFirstNameThatIsLeft) {
    Open();
    Type(dialog, "lineEditObject", "od");
    QTest::keyClick(&Find<QLineEdit>(dialog, "lineEditObject"), Qt::Key_Return);
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_EQ(dialog.GetText(), QStringLiteral("Mode"));
}

TEST_F(TheInsertionDialog, TheKeysOfTheListWorkFromTheFilterToo) {
    Open();
    auto& filter = Find<QLineEdit>(dialog, "lineEditObject");
    QTest::keyClick(&filter, Qt::Key_M);
    ASSERT_EQ(Seen(), "[Mode] Name");
    QTest::keyClick(&filter, Qt::Key_Down);
    EXPECT_EQ(Seen(), "Mode [Name]");
    QTest::keyClick(&filter, Qt::Key_Up);
    EXPECT_EQ(Seen(), "[Mode] Name");
    QTest::keyClick(&filter, Qt::Key_PageDown);
    EXPECT_EQ(Seen(), "Mode [Name]");
    EXPECT_TRUE(filter.hasFocus());
    QTest::keyClick(&filter, Qt::Key_Return);
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    EXPECT_EQ(dialog.GetText(), QStringLiteral("Name"));
}

TEST_F(TheInsertionDialog, ReturnDoesNothingWhileNoNameIsChosen) {
    Open();
    QTest::keyClick(&Find<QLineEdit>(dialog, "lineEditObject"), Qt::Key_Return);
    EXPECT_TRUE(dialog.isVisible());
}

TEST_F(TheInsertionDialog, ADoubleClickTakesTheNameUnderThePointer) {
    Open();
    DoubleClick(2);
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    EXPECT_EQ(dialog.GetText(), QStringLiteral("Level"));
}

TEST_F(TheInsertionDialog, AClickChoosesAndOkTakes) {
    Open();
    QTest::mouseClick(List().viewport(), Qt::LeftButton, Qt::NoModifier,
                      List().visualItemRect(List().item(1)).center());
    EXPECT_EQ(Seen(), "At [Gain] Level Mode Name On");
    Click(dialog, "pushButtonOk");
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    EXPECT_EQ(dialog.GetText(), QStringLiteral("Gain"));
}

TEST_F(TheInsertionDialog, TheKeysChooseInTheListAndOkTakes) {
    Open();
    List().setFocus();
    QTest::keyClick(&List(), Qt::Key_Down);
    EXPECT_EQ(Seen(), "[At] Gain Level Mode Name On");
    EXPECT_TRUE(IsOkEnabled());
    QTest::keyClick(&List(), Qt::Key_End);
    QTest::keyClick(&List(), Qt::Key_Return);
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    EXPECT_EQ(dialog.GetText(), QStringLiteral("On"));
}

TEST_F(TheInsertionDialog, TheWindowsBoxLeavesIt) {
    Open();
    DoubleClick(0);
    ASSERT_EQ(dialog.result(), QDialog::Accepted);
    Open();
    CloseBox(dialog);
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_EQ(dialog.result(), QDialog::Rejected);
}

TEST_F(TheInsertionDialog, EscapeAndCancelLeaveIt) {
    Open();
    QTest::keyClick(&dialog, Qt::Key_Escape);
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_EQ(dialog.result(), QDialog::Rejected);
    Open();
    Click(dialog, "pushButtonCancel");
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_EQ(dialog.result(), QDialog::Rejected);
}

} // namespace
