#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QDesktopServices>
#include <QDialog>
#include <QIcon>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QTabBar>
#include <QTableWidget>
#include <QTabWidget>

#include "Deadline.h"
#include "SetupFixture.h"

namespace {

constexpr const char* kDriver = R"(({
    Setup: { Address: "10.0.0.1", Channel: 3 },
    Device: { Level: 5, Gain: 0.5, Name: "x" },
    Play: function(a) {},
    Info: { Title: "Lamp", Version: "1.2", Author: "Ada", Description: "Two\nlines" }
}))";

class TheSetupDialog : public SetupFixture {
protected:
    static QTabWidget& Tabs(QWidget& dialog) { return Find<QTabWidget>(dialog, "tabWidget"); }
    static void ClickTab(QWidget& dialog, int index) {
        QTabBar* bar = Tabs(dialog).tabBar();
        QTest::mouseClick(bar, Qt::LeftButton, Qt::NoModifier, bar->tabRect(index).center());
    }
    static QPlainTextEdit& Editor(QWidget& dialog) { return Find<QPlainTextEdit>(dialog, "plainTextEditScript"); }
    static void TypeScript(QWidget& dialog, const char* text) {
        ClickTab(dialog, 1);
        QPlainTextEdit& editor = Editor(dialog);
        editor.setFocus();
        editor.selectAll();
        QApplication::clipboard()->setText(QString::fromUtf8(text));
        QTest::keyClick(&editor, Qt::Key_V, Qt::ControlModifier);
    }
    static QLineEdit& Field(QWidget& dialog, const char* setting) {
        for (QLineEdit* field : dialog.findChildren<QLineEdit*>())
            if (field->property("ScriptSetupVarName").toString() == QLatin1String(setting))
                return *field;
        throw std::runtime_error(std::string("no field ") + setting);
    }
    static QTableWidget& Table(QWidget& dialog) { return Find<QTableWidget>(dialog, "tableWidgetVar"); }
    static std::string Cell(QWidget& dialog, int row, int column) {
        const QTableWidgetItem* item = Table(dialog).item(row, column);
        return item != nullptr ? item->text().toStdString() : "(none)";
    }
    static QPoint CellPoint(QWidget& dialog, int row, int column) {
        return Table(dialog).visualItemRect(Table(dialog).item(row, column)).center();
    }
    static void DoubleClickCell(QWidget& dialog, int row, int column) {
        QWidget* view = Table(dialog).viewport();
        QTest::mouseClick(view, Qt::LeftButton, Qt::NoModifier, CellPoint(dialog, row, column));
        QTest::mouseDClick(view, Qt::LeftButton, Qt::NoModifier, CellPoint(dialog, row, column));
    }
    static void ClickCheckMark(QWidget& dialog, int row) {
        const QRect cell = Table(dialog).visualItemRect(Table(dialog).item(row, 3));
        QTest::mouseClick(Table(dialog).viewport(), Qt::LeftButton, Qt::NoModifier,
                          QPoint(cell.left() + 11, cell.center().y()));
    }
    static auto Cancel() {
        return [](QWidget& dialog) { Click(dialog, "pushButtonCancel"); };
    }
    static auto Ok() {
        return [](QWidget& dialog) { Click(dialog, "pushButtonOk"); };
    }
    std::string StoredValue(const char* setting) const {
        for (const MScriptSetting& stored : device->GetStoredSetup().GetSettings())
            if (stored.name == QLatin1String(setting))
                return stored.value.toStdString();
        return "(none)";
    }
};

TEST_F(TheSetupDialog, ShowsWhatTheScriptSaysOfItselfAndItsForm) {
    GivenScript(kDriver);
    EXPECT_EQ(Show([&](QWidget& dialog) {
                  EXPECT_EQ(dialog.windowTitle(), QStringLiteral("KXP Calverin Script Setup"));
                  EXPECT_FALSE(dialog.windowFlags().testFlag(Qt::WindowContextHelpButtonHint));
                  EXPECT_TRUE(dialog.windowFlags().testFlag(Qt::WindowMaximizeButtonHint));
                  EXPECT_EQ(dialog.size(), QSize(900, 700));
                  EXPECT_EQ(TextOf(dialog, "lineEditTitle"), "Lamp");
                  EXPECT_EQ(TextOf(dialog, "lineEditVersion"), "1.2");
                  EXPECT_EQ(TextOf(dialog, "lineEditAuthor"), "Ada");
                  EXPECT_EQ(TextOf(dialog, "plainTextEditDescription"), "Two\nlines");
                  EXPECT_EQ(TextOf(dialog, "lineEditScriptFileName"), "No script loaded");
                  EXPECT_EQ(Field(dialog, "Address").text(), QStringLiteral("10.0.0.1"));
                  Click(dialog, "pushButtonCancel");
              }),
              13u);
}

TEST_F(TheSetupDialog, WithoutProgrammingModeHasOneTabAndNoSaveButtons) {
    GivenScript(kDriver, false);
    device->GetStoredSetup().Memory().currentTab = 2;
    Show([&](QWidget& dialog) {
        EXPECT_EQ(Tabs(dialog).count(), 1);
        EXPECT_EQ(Tabs(dialog).currentIndex(), 0);
        EXPECT_FALSE(Find<QPushButton>(dialog, "pushButtonSave").isVisible());
        EXPECT_FALSE(Find<QPushButton>(dialog, "pushButtonSaveAs").isVisible());
        EXPECT_TRUE(Find<QPushButton>(dialog, "pushButtonLoad").isVisible());
        Click(dialog, "checkBoxProgrammingMode");
        EXPECT_EQ(Tabs(dialog).count(), 4);
        EXPECT_EQ(Tabs(dialog).tabText(3), QStringLiteral("Options"));
        EXPECT_TRUE(Find<QPushButton>(dialog, "pushButtonSaveAs").isVisible());
        ClickTab(dialog, 3);
        Click(dialog, "checkBoxProgrammingMode");
        EXPECT_EQ(Tabs(dialog).count(), 1);
        Click(dialog, "pushButtonCancel");
    });
}

TEST_F(TheSetupDialog, GivesTheDeviceWhatTheUserEntered) {
    GivenScript(kDriver);
    EXPECT_EQ(Show([&](QWidget& dialog) {
                  QLineEdit& field = Field(dialog, "Address");
                  field.setFocus();
                  field.selectAll();
                  QTest::keyClicks(&field, QStringLiteral("10.0.0.9"));
                  Click(dialog, "pushButtonOk");
              }),
              KXP_OK);
    EXPECT_EQ(StoredValue("Address"), "10.0.0.9");
    EXPECT_EQ(StoredValue("Channel"), "3");
    EXPECT_EQ(device->GetStoredSetup().GetScriptText().toStdString(), kDriver);
}

TEST_F(TheSetupDialog, LeavesTheDeviceAsItWasWhenCancelledOrClosed) {
    GivenScript(kDriver);
    const auto change = [&](QWidget& dialog) {
        QTest::keyClicks(&Field(dialog, "Address"), QStringLiteral("77"));
        TypeScript(dialog, "({})");
    };
    EXPECT_EQ(Show([&](QWidget& dialog) {
                  change(dialog);
                  Click(dialog, "pushButtonCancel");
              }),
              13u);
    EXPECT_EQ(Show([&](QWidget& dialog) {
                  change(dialog);
                  CloseBox(dialog);
              }),
              13u);
    EXPECT_EQ(Show([&](QWidget& dialog) {
                  change(dialog);
                  QTest::keyClick(&dialog, Qt::Key_Escape);
              }),
              13u);
    EXPECT_EQ(StoredValue("Address"), "(none)");
    EXPECT_EQ(device->GetStoredSetup().GetScriptText().toStdString(), kDriver);
    EXPECT_EQ(device->GetStopSet().settings.Count(), 2u) << "the analysis is that of the stored script again";
}

TEST_F(TheSetupDialog, TellsTheHostWhenTheCommandsHaveChanged) {
    GivenScript(kDriver);
    EXPECT_EQ(Show([&](QWidget& dialog) {
                  TypeScript(dialog, "({ Play: function(a) {}, Stop: function() {} })");
                  Click(dialog, "pushButtonOk");
              }),
              771u);
}

TEST_F(TheSetupDialog, AFirstSetupIsNoChange) {
    EXPECT_EQ(Show([&](QWidget& dialog) {
                  Click(dialog, "checkBoxProgrammingMode");
                  TypeScript(dialog, "({ Play: function(a) {} })");
                  Click(dialog, "pushButtonOk");
              }),
              KXP_OK);
    EXPECT_EQ(device->GetStoredSetup().GetScriptText(), QStringLiteral("({ Play: function(a) {} })"));
}

TEST_F(TheSetupDialog, IsRefusedWhereTheHostTakesNoDefinition) {
    GivenScript("({})");
    device->SetDeviceVariables(nullptr);
    EXPECT_EQ(Show([&](QWidget& dialog) {
                  TypeScript(dialog, "({ Play: function(a) {} })");
                  Click(dialog, "pushButtonOk");
              }),
              13u);
    EXPECT_EQ(device->GetStoredSetup().GetScriptText(), QStringLiteral("({})"));
    EXPECT_EQ(device->GetStoredSetup().Memory().width, 0);
}

TEST_F(TheSetupDialog, EvaluatesAndPutsTheCaretOnTheLineOfTheError) {
    GivenScript(kDriver);
    Show([&](QWidget& dialog) {
        TypeScript(dialog, "var a = 1;\n\nthrow new Error('boom');\n");
        Click(dialog, "pushButtonEvaluate");
        EXPECT_EQ(TextOf(dialog, "lineEditDebugInfo"), "Script: Uncaught exception at line 3, Error: boom");
        EXPECT_EQ(Editor(dialog).textCursor().blockNumber(), 2);
        TypeScript(dialog, "({})");
        Click(dialog, "pushButtonEvaluate");
        EXPECT_EQ(TextOf(dialog, "lineEditDebugInfo"), "Evaluation Ok");
        Click(dialog, "pushButtonCancel");
    });
}

TEST_F(TheSetupDialog, WithAScriptErrorTabsKeepTableAndForm) {
    GivenScript(kDriver);
    Show([&](QWidget& dialog) {
        QTest::keyClicks(&Field(dialog, "Address"), QStringLiteral("5"));
        ClickTab(dialog, 2);
        EXPECT_EQ(Table(dialog).rowCount(), 3);
        TypeScript(dialog, "({");
        ClickTab(dialog, 2);
        EXPECT_EQ(Table(dialog).rowCount(), 3);
        EXPECT_NE(TextOf(dialog, "lineEditDebugInfo").find("SyntaxError"), std::string::npos);
        ClickTab(dialog, 0);
        EXPECT_EQ(Field(dialog, "Address").text(), QStringLiteral("10.0.0.15"));
        Click(dialog, "pushButtonCancel");
    });
}

TEST_F(TheSetupDialog, AScriptInErrorIsAcceptedOnlyWithTheUsersConsentAndKeepsWhatWasTyped) {
    GivenScript(kDriver);
    const char* broken = "({";
    EXPECT_NE(Show([&](QWidget& dialog) {
                  QTest::keyClicks(&Field(dialog, "Address"), QStringLiteral("5"));
                  TypeScript(dialog, broken);
                  dialogs.Expect(Press("pushButtonCancel", "Do you want to continue anyway?"));
                  Click(dialog, "pushButtonOk");
                  EXPECT_TRUE(dialog.isVisible());
                  dialogs.Expect([](QWidget& question) { CloseBox(question); });
                  Click(dialog, "pushButtonOk");
                  EXPECT_TRUE(dialog.isVisible());
                  dialogs.Expect(Press("pushButtonOk", "An error has been detected into the script."));
                  Click(dialog, "pushButtonOk");
              }),
              13u);
    EXPECT_EQ(device->GetStoredSetup().GetScriptText(), QLatin1String(broken));
    EXPECT_EQ(StoredValue("Address"), "10.0.0.15");
}

TEST_F(TheSetupDialog, RemembersTabAndPlaceAsLongAsTheDevice) {
    GivenScript(kDriver);
    Show([&](QWidget& dialog) {
        ClickTab(dialog, 3);
        dialog.setGeometry(40, 50, 820, 610);
        Click(dialog, "pushButtonOk");
    });
    Show([&](QWidget& dialog) {
        EXPECT_EQ(Tabs(dialog).currentIndex(), 3);
        EXPECT_EQ(dialog.geometry(), QRect(40, 50, 820, 610));
        Click(dialog, "pushButtonCancel");
    });
}

TEST_F(TheSetupDialog, KeepsTheOptionsThatAreTicked) {
    GivenScript(kDriver);
    Show([&](QWidget& dialog) {
        ClickTab(dialog, 3);
        EXPECT_EQ(TextOf(dialog, "labelDebugger"), "The Debugger is disabled.");
        for (const char* box : {"checkBoxRegisterUserGroup", "checkBoxEnableAutoCompletion", "checkBoxUserMode",
                                "checkBoxRunProject", "checkBoxRemoveStaticCmdVar"})
            Click(dialog, box);
        Click(dialog, "pushButtonOk");
    });
    const DeviceSetup stored = device->GetCurrentSetup();
    EXPECT_TRUE(stored.script->registerAllUserGroups) << "a stored setup without the attribute had it off";
    EXPECT_FALSE(stored.script->autoCompletion);
    EXPECT_FALSE(*stored.userModeVisible);
    EXPECT_FALSE(*stored.runModeVisible);
    EXPECT_TRUE(device->GetStoredSetup().IsRemovalApplied());
}

TEST_F(TheSetupDialog, AScriptsOwnWordAboutTheDefaultsCannotBeChanged) {
    GivenScript("({ Info: { Options: { RemoveDefaultCommandsAndVariables: true } } })");
    Show([&](QWidget& dialog) {
        ClickTab(dialog, 3);
        auto& box = Find<QCheckBox>(dialog, "checkBoxRemoveStaticCmdVar");
        EXPECT_TRUE(box.isChecked());
        EXPECT_FALSE(box.isEnabled());
        TypeScript(dialog, "({})");
        ClickTab(dialog, 3);
        EXPECT_FALSE(box.isChecked());
        EXPECT_TRUE(box.isEnabled());
        Click(dialog, "pushButtonCancel");
    });
}

TEST_F(TheSetupDialog, ReturningToTheOptionsShowsTheDevicesOwnChoiceAgainAsMeant) {
    GivenScript("({})");
    Show([&](QWidget& dialog) {
        ClickTab(dialog, 3);
        Click(dialog, "checkBoxRemoveStaticCmdVar");
        ClickTab(dialog, 0);
        ClickTab(dialog, 3);
        EXPECT_FALSE(Find<QCheckBox>(dialog, "checkBoxRemoveStaticCmdVar").isChecked());
        Click(dialog, "pushButtonCancel");
    });
}

TEST_F(TheSetupDialog, AStatusOfTheScriptsOwnCountsOnceTheDefaultsAreTickedAway) {
    GivenScript("({ Device: { Status: 1 } })");
    Show([&](QWidget& dialog) {
        EXPECT_EQ(Table(dialog).rowCount(), 0);
        ClickTab(dialog, 3);
        Click(dialog, "checkBoxRemoveStaticCmdVar");
        ClickTab(dialog, 2);
        EXPECT_EQ(Table(dialog).rowCount(), 1);
        Click(dialog, "pushButtonCancel");
    });
}

TEST_F(TheSetupDialog, ShowsVariablesWithTheirTypesAndDefaults) {
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

TEST_F(TheSetupDialog, ADoubleClickOpensTheEditDialogWithNameAndTypeGrey) {
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

TEST_F(TheSetupDialog, AnEmptyValueIsZeroForNumbersAlone) {
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

TEST_F(TheSetupDialog, ACancelledEditChangesNothing) {
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

TEST_F(TheSetupDialog, TheMarkOfARowChangesOnlyThatVariable) {
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

TEST_F(TheSetupDialog, TheMarkOfARowCanBeSetByTheKeyboard) {
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

TEST_F(TheSetupDialog, FindsDownwardsFromTheCaretWithoutWrapping) {
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

TEST_F(TheSetupDialog, AsksForAWordWhenTheSearchFieldIsEmpty) {
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

TEST_F(TheSetupDialog, KeepsCharactersThatOnlyLookLikeBlanks) {
    const std::string text = "({ unit: '5\xc2\xa0V' })";
    GivenScript(text);
    Show([&](QWidget& dialog) { Click(dialog, "pushButtonOk"); });
    EXPECT_EQ(device->GetStoredSetup().GetScriptText().toStdString(), text);
}

TEST_F(TheSetupDialog, TellsWhenThereIsNoHelpFile) {
    GivenScript(kDriver);
    Show([&](QWidget& dialog) {
        QTest::keyClick(&dialog, Qt::Key_F1); // the host tells no folder for it
        EXPECT_EQ(QApplication::activeModalWidget(), &dialog);
        host.folders[KXP_FOLDER_4] = Library();
        dialogs.Expect(Press("pushButtonOk", "kxpCalverinScript.htm"));
        Click(dialog, "pushButtonHelp");
        Click(dialog, "pushButtonCancel");
    });
}

TEST_F(TheSetupDialog, EveryPictureIsDrawnAtSixteenPixels) {
    GivenScript(kDriver);
    Show([&](QWidget& dialog) {
        for (const char* name : {"about", "search", "varFolder", "userGroupIcon", "taskIcon", "cueIcon",
                                 "userscreenIcon", "devIcon", "perform", "wizard"}) {
            const QImage picture = QIcon(QStringLiteral(":/") + QLatin1String(name)).pixmap(16, 16).toImage();
            ASSERT_EQ(picture.size(), QSize(16, 16)) << name;
            int drawn = 0;
            for (int at = 0; at < 256; ++at)
                drawn += qAlpha(picture.pixel(at % 16, at / 16)) > 128;
            EXPECT_GT(drawn, 20) << name;
            EXPECT_LT(drawn, 200) << name;
        }
        Click(dialog, "pushButtonCancel");
    });
}

TEST_F(TheSetupDialog, EachControlHasANameForScreenReaders) {
    GivenScript(kDriver);
    Show([&](QWidget& dialog) {
        for (QWidget* part : dialog.findChildren<QWidget*>()) {
            const bool isControl = part->inherits("QLineEdit") || part->inherits("QPlainTextEdit") ||
                                   part->inherits("QAbstractButton") || part->inherits("QTableWidget");
            if (!isControl || part->objectName().startsWith(QLatin1String("qt_")) || !part->isEnabled() ||
                part->parentWidget()->inherits("QTabBar") || part->inherits("QTableCornerButton"))
                continue;
            if (part->parentWidget()->inherits("QTableView"))
                continue;
            EXPECT_FALSE(part->accessibleName().isEmpty() && part->property("text").toString().isEmpty())
                << part->objectName().toStdString() << " " << part->metaObject()->className();
        }
        Click(dialog, "pushButtonCancel");
    });
}

TEST_F(TheSetupDialog, AHungScriptOfTheDeviceDoesNotHoldItUp) {
    GivenScript("({ Hang: function() { while (true) {} } })");
    device->Start();
    auto hanging = plain::Params::ForFunction("Hang", {});
    plain::Context context;
    ASSERT_EQ(device->ExecuteCommand(3, hanging.get(), &context), KXP_OK);
    EXPECT_EQ(Show([&](QWidget& dialog) {
                  TypeScript(dialog, "({ Play: function() {} })");
                  Click(dialog, "pushButtonEvaluate");
                  EXPECT_EQ(TextOf(dialog, "lineEditDebugInfo"), "Evaluation Ok");
                  Click(dialog, "pushButtonCancel");
              }),
              13u);
    device->Release();
    device = nullptr;
    EXPECT_TRUE(Eventually([] { return MCalverinScript_Device::SweepAbandoned() == 0; }));
}

TEST_F(TheSetupDialog, DoesNotOpenWhereThereIsNoScreen) {
    GivenScript(kDriver);
    const QByteArray platform = qgetenv("QT_QPA_PLATFORM");
    if (platform != "offscreen")
        GTEST_SKIP() << "there is one";
    qunsetenv("QT_QPA_PLATFORM"); // the platform was chosen for want of another
    EXPECT_EQ(device->ShowSetupDialog(nullptr), 13u);
    qputenv("QT_QPA_PLATFORM", platform);
}

TEST_F(TheSetupDialog, OpensOnceForADeviceAtATime) {
    GivenScript(kDriver);
    Show([&](QWidget& dialog) {
        EXPECT_EQ(device->ShowSetupDialog(nullptr), 13u);
        Click(dialog, "pushButtonCancel");
    });
}

TEST_F(TheSetupDialog, IsRejectedWhenTheHostsWindowGoesAway) {
    GivenScript(kDriver);
    auto window = std::make_unique<QWidget>();
    window->resize(1000, 800);
    window->show();
    host.mainWindow = window->winId();
    EXPECT_EQ(Show([&](QWidget& dialog) {
                  TypeScript(dialog, "({})");
                  window.reset();
                  EXPECT_FALSE(dialog.isVisible());
              }),
              13u);
    EXPECT_EQ(device->GetStoredSetup().GetScriptText().toStdString(), kDriver);
}

TEST_F(TheSetupDialog, IsRejectedWhenTheDeviceGoesAway) {
    GivenScript(kDriver);
    EXPECT_EQ(Show([&](QWidget& dialog) {
                  device->Release();
                  device = nullptr;
                  EXPECT_FALSE(dialog.isVisible());
              }),
              13u);
}

TEST_F(TheSetupDialog, StandsInTheMiddleOfTheHostsWindowButNotAboveTheScreen) {
    GivenScript(kDriver);
    QWidget window;
    window.setGeometry(100, 20, 1000, 760);
    window.show();
    host.mainWindow = window.winId();
    Show([&](QWidget& dialog) {
        EXPECT_EQ(dialog.frameGeometry().center().x(), window.frameGeometry().center().x());
        EXPECT_EQ(dialog.windowHandle()->transientParent(), window.windowHandle());
        Click(dialog, "pushButtonCancel");
    });
    window.setGeometry(100, 0, 400, 100);
    Show([&](QWidget& dialog) {
        EXPECT_EQ(dialog.frameGeometry().top(), 0);
        Click(dialog, "pushButtonCancel");
    });
}

TEST_F(TheSetupDialog, WearsTheHostsThemeOnlyWhenThereIsOne) {
    GivenScript(kDriver);
    Show([&](QWidget& dialog) {
        EXPECT_EQ(dialog.styleSheet(), QString());
        Click(dialog, "pushButtonCancel");
    });
    host.colors = {{0, 0x00302010}, {1, 0x00F0E0D0}, {6, 0}, {7, 0x00FFFFFF}, {8, 0x00403020}};
    Show([&](QWidget& dialog) {
        EXPECT_TRUE(dialog.styleSheet().contains(
            QStringLiteral("QDialog{background-color: rgb(16,32,48); color: rgb(208,224,240);}")));
        Click(dialog, "pushButtonCancel");
    });
}

TEST_F(TheSetupDialog, WorksWithoutAMouse) {
    GivenScript(kDriver);
    EXPECT_EQ(Show([&](QWidget& dialog) {
                  Tabs(dialog).setFocus();
                  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab, Qt::ControlModifier);
                  EXPECT_EQ(Tabs(dialog).currentIndex(), 1);
                  QTest::keyClick(&dialog, Qt::Key_E, Qt::AltModifier);
                  EXPECT_EQ(TextOf(dialog, "lineEditDebugInfo"), "Evaluation Ok");
                  QTest::keyClick(&dialog, Qt::Key_N, Qt::AltModifier);
                  EXPECT_TRUE(QTest::qWaitFor([&] { return !dialog.isVisible(); }, kDeadlineMs));
              }),
              13u);
}

TEST_F(TheSetupDialog, TabVisitsTheFieldsOfTheFormInTheirOrder) {
    GivenScript("({ Setup: { A: 'a', B: 1, C: 'c' } })", false);
    Show([&](QWidget& dialog) {
        Field(dialog, "A").setFocus();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        EXPECT_NE(qobject_cast<QSpinBox*>(QApplication::focusWidget()), nullptr);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        EXPECT_EQ(QApplication::focusWidget(), &Field(dialog, "C"));
        Click(dialog, "pushButtonCancel");
    });
}

} // namespace
