#include <QComboBox>
#include <QPushButton>

#include "SetupDesk.h"
#include "SetupDialogFixture.h"

namespace {

class TheVariablesTab : public TheSetupDialog {};

TEST_F(TheVariablesTab, ShowsVariablesWithTheirTypesAndDefaults) {
    GivenScript(kDriver);
    Show([&](QWidget& dialog) {
        ClickTab(dialog, 2);
        ASSERT_EQ(Table(dialog).rowCount(), 3);
        EXPECT_EQ(Cell(dialog, 0, 0), "Level");
        EXPECT_EQ(Cell(dialog, 0, 1), "IntegerData");
        EXPECT_EQ(Cell(dialog, 0, 2), "5");
        EXPECT_EQ(Cell(dialog, 1, 3), "0.5");
        EXPECT_EQ(static_cast<int>(Table(dialog).item(0, 0)->flags()), 49);
        EXPECT_EQ(Table(dialog).horizontalHeaderItem(3)->text(), QStringLiteral("Script Default Value"));
        EXPECT_FALSE(Find<QPushButton>(dialog, "pushButtonAddVar").isVisible());
        EXPECT_FALSE(Find<QPushButton>(dialog, "pushButtonEditVar").isEnabled());
        Click(dialog, "pushButtonCancel");
    });
}

TEST_F(TheVariablesTab, ADoubleClickOpensTheEditDialogWithNameAndTypeGrey) {
    GivenScript(kDriver);
    Show([&](QWidget& dialog) {
        ClickTab(dialog, 2);
        dialogs.Expect([](QWidget& edit) {
            EXPECT_EQ(edit.windowTitle(), QStringLiteral("Edit Variable"));
            EXPECT_FALSE(Find<QWidget>(edit, "lineEditVarName").isEnabled());
            EXPECT_FALSE(Find<QWidget>(edit, "comboBoxVarType").isEnabled());
            EXPECT_EQ(TextOf(edit, "lineEditVarName"), "Level");
            Type(edit, "lineEditVarValue", "42");
            Click(edit, "pushButtonOk");
        });
        DoubleClickCell(dialog, 0, 1);
        EXPECT_EQ(Cell(dialog, 0, 2), "42");
        EXPECT_EQ(Table(dialog).item(0, 3)->checkState(), Qt::Unchecked);
        EXPECT_FALSE(Find<QPushButton>(dialog, "pushButtonEditVar").isEnabled()) << "no row is current any more";
        ClickTab(dialog, 0);
        Click(dialog, "pushButtonOk");
    });
    const auto stored = device->GetStoredSetup().GetVariables();
    ASSERT_EQ(stored.size(), 3u);
    EXPECT_EQ(stored[0].value, QStringLiteral("42"));
    EXPECT_FALSE(stored[0].useDefaultScriptValue);
}

TEST_F(TheVariablesTab, AnEmptyValueIsZeroForNumbersAlone) {
    GivenScript(kDriver);
    Show([&](QWidget& dialog) {
        ClickTab(dialog, 2);
        for (int row = 0; row < 3; ++row) {
            dialogs.Expect([](QWidget& edit) {
                Type(edit, "lineEditVarValue", "");
                Click(edit, "pushButtonOk");
            });
            DoubleClickCell(dialog, row, 0);
        }
        EXPECT_EQ(Cell(dialog, 0, 2), "0");
        EXPECT_EQ(Cell(dialog, 1, 2), "0.00000");
        EXPECT_EQ(Cell(dialog, 2, 2), "");
        Click(dialog, "pushButtonCancel");
    });
}

TEST_F(TheVariablesTab, AValueThatDoesNotFitIsRefusedWithTheReasonAndCanBeMended) {
    GivenScript(kDriver);
    Show([&](QWidget& dialog) {
        ClickTab(dialog, 2);
        dialogs.Expect([&](QWidget& edit) {
            Type(edit, "lineEditVarValue", "abc");
            dialogs.Expect(Press("pushButtonOk", "\"abc\" is not a whole number of 32 bits."));
            Click(edit, "pushButtonOk");
            EXPECT_TRUE(edit.isVisible());
            EXPECT_EQ(edit.focusWidget(), &Find<QWidget>(edit, "lineEditVarValue"));
            EXPECT_EQ(TextOf(edit, "lineEditVarValue"), "abc");
            Type(edit, "lineEditVarValue", "7");
            Click(edit, "pushButtonOk");
        });
        DoubleClickCell(dialog, 0, 0);
        EXPECT_EQ(Cell(dialog, 0, 2), "7");
        Click(dialog, "pushButtonCancel");
    });
}

TEST_F(TheVariablesTab, AValueThatIsNotTouchedStaysWhateverItIs) {
    GivenScript(kDriver);
    MScriptVariable odd;
    odd.name = QStringLiteral("Level");
    odd.type = QStringLiteral("IntegerData");
    odd.value = QStringLiteral("odd");
    DeviceSetup panel = device->GetSetupDesk().Describe();
    panel.monitors = {odd};
    device->GetStoredSetup().TakePanelAndLists(panel);
    Show([&](QWidget& dialog) {
        ClickTab(dialog, 2);
        dialogs.Expect([](QWidget& edit) { Click(edit, "pushButtonOk"); });
        DoubleClickCell(dialog, 0, 0);
        EXPECT_EQ(Cell(dialog, 0, 2), "odd");
        EXPECT_EQ(Table(dialog).item(0, 3)->checkState(), Qt::Unchecked);
        Click(dialog, "pushButtonCancel");
    });
}

/// No button leads there in this version.
TEST_F(TheVariablesTab, AVariableCanBeAddedAndRemovedWhereTheButtonsAreShown) {
    GivenScript(kDriver);
    Show([&](QWidget& dialog) {
        ClickTab(dialog, 2);
        auto& tab = Find<QWidget>(dialog, "tab_Variables");
        for (const char* button : {"pushButtonAddVar", "pushButtonRemoveVar", "pushButtonExtractVar"})
            EXPECT_FALSE(Find<QPushButton>(dialog, button).isVisible() ||
                         Find<QPushButton>(dialog, button).isEnabled());
        dialogs.Expect([&](QWidget& add) {
            EXPECT_EQ(add.windowTitle(), QStringLiteral("Add Variable"));
            EXPECT_FALSE(Find<QWidget>(add, "pushButtonOk").isEnabled());
            Type(add, "lineEditVarName", "Extra");
            Find<QComboBox>(add, "comboBoxVarType").setCurrentText(QStringLiteral("RealData"));
            Click(add, "pushButtonOk");
        });
        QMetaObject::invokeMethod(&tab, "SlotCreateVariable");
        ASSERT_EQ(Table(dialog).rowCount(), 4);
        EXPECT_EQ(Cell(dialog, 3, 0) + " " + Cell(dialog, 3, 1) + " " + Cell(dialog, 3, 2), "Extra RealData 0.00000");
        QMetaObject::invokeMethod(&tab, "SlotRemoveVariable"); // no row is current
        EXPECT_EQ(Table(dialog).rowCount(), 4);
        Table(dialog).setCurrentCell(0, 0);
        QMetaObject::invokeMethod(&tab, "SlotRemoveVariable");
        ASSERT_EQ(Table(dialog).rowCount(), 3);
        EXPECT_EQ(Cell(dialog, 0, 0), "Gain");
        Click(dialog, "pushButtonCancel");
    });
}

TEST_F(TheVariablesTab, ACancelledEditChangesNothing) {
    GivenScript(kDriver);
    Show([&](QWidget& dialog) {
        ClickTab(dialog, 2);
        const auto closings = {std::function<void(QWidget&)>(Cancel()), std::function<void(QWidget&)>(&CloseBox)};
        for (const auto& close : closings) {
            dialogs.Expect([&close](QWidget& edit) {
                Type(edit, "lineEditVarValue", "42");
                close(edit);
            });
            DoubleClickCell(dialog, 0, 0);
            EXPECT_EQ(Cell(dialog, 0, 2), "5");
            EXPECT_EQ(Table(dialog).item(0, 3)->checkState(), Qt::Checked);
        }
        Click(dialog, "pushButtonCancel");
    });
}

TEST_F(TheVariablesTab, TheMarkOfARowChangesOnlyThatVariable) {
    GivenScript(kDriver);
    Show([&](QWidget& dialog) {
        ClickTab(dialog, 2);
        ClickCheckMark(dialog, 1);
        EXPECT_EQ(Table(dialog).item(1, 3)->checkState(), Qt::Unchecked);
        EXPECT_EQ(Cell(dialog, 1, 2), "0.5");
        Click(dialog, "pushButtonOk");
    });
    const auto stored = device->GetStoredSetup().GetVariables();
    EXPECT_TRUE(stored[0].useDefaultScriptValue);
    EXPECT_FALSE(stored[1].useDefaultScriptValue);
}

TEST_F(TheVariablesTab, TheMarkOfARowCanBeSetByTheKeyboard) {
    GivenScript(kDriver);
    Show([&](QWidget& dialog) {
        ClickTab(dialog, 2);
        Table(dialog).setFocus();
        Table(dialog).setCurrentCell(0, 3);
        QTest::keyClick(&Table(dialog), Qt::Key_Space);
        Click(dialog, "pushButtonOk");
    });
    EXPECT_FALSE(device->GetStoredSetup().GetVariables().at(0).useDefaultScriptValue);
}

} // namespace
