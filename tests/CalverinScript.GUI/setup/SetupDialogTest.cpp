#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>

#include "ScriptAnalysis.h"
#include "SetupDesk.h"
#include "SetupDialogFixture.h"

namespace {

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

TEST_F(TheSetupDialog, ShowsThreeRowsOfItsFormAtTheSmallestSize) {
    GivenScript("({ Setup: { A: 'a', B: 1, C: 'c', D: 'd', E: 'e', F: 'f' } })");
    Show([&](QWidget& dialog) {
        dialog.resize(500, 400);
        EXPECT_EQ(dialog.size(), QSize(500, 400));
        dialog.grab(); // lays it out
        const QWidget& view = *Find<QScrollArea>(dialog, "scrollAreaSetup").viewport();
        const QRect third(Field(dialog, "C").mapTo(&view, QPoint()), Field(dialog, "C").size());
        EXPECT_TRUE(view.rect().contains(third)) << third.bottom() << " of " << view.height();
        dialog.resize(1, 1);
        dialog.grab();
        EXPECT_GE(view.height(), third.bottom());
        Click(dialog, "pushButtonCancel");
    });
}

TEST_F(TheSetupDialog, TheFormCallsASettingByItsMemberWhateverInfoNamesItAsMeant) {
    GivenScript("({ Setup: { Address: 'a' }, Info: { Setup: { Address: { Name: 'IP', Hint: 'of the lamp' } } } })");
    Show([&](QWidget& dialog) {
        QStringList labels;
        for (const QLabel* label : Find<QWidget>(dialog, "widgetSetup").findChildren<QLabel*>())
            labels += label->text();
        EXPECT_EQ(labels, QStringList(QStringLiteral("Address")));
        EXPECT_EQ(Field(dialog, "Address").toolTip(), QStringLiteral("of the lamp"));
        Click(dialog, "pushButtonOk");
    });
    EXPECT_EQ(StoredValue("Address"), "a");
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

TEST_F(TheSetupDialog, EscapeLeavesWithoutAQuestionWhatNobodyChanged) {
    GivenScript(kDriver);
    EXPECT_EQ(Show([&](QWidget& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); }), 13u);
}

TEST_F(TheSetupDialog, EscapeInTheEditorKeepsTheTypedTextWhenTheQuestionIsDenied) {
    GivenScript(kDriver);
    EXPECT_NE(Show([&](QWidget& dialog) {
                  TypeScript(dialog, "({ Mine: function() {} })");
                  dialogs.Expect(Press("pushButtonCancel", "has been changed"));
                  QTest::keyClick(&Editor(dialog), Qt::Key_Escape);
                  EXPECT_TRUE(dialog.isVisible());
                  EXPECT_EQ(Editor(dialog).toPlainText(), QStringLiteral("({ Mine: function() {} })"));
                  Click(dialog, "pushButtonOk");
              }),
              13u);
    EXPECT_EQ(device->GetStoredSetup().GetScriptText().toStdString(), "({ Mine: function() {} })");
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
                  dialogs.Expect(Press("pushButtonOk", "has been changed"));
                  QTest::keyClick(&dialog, Qt::Key_Escape);
              }),
              13u);
    EXPECT_TRUE(dialogs.IsDone());
    EXPECT_EQ(StoredValue("Address"), "(none)");
    EXPECT_EQ(device->GetStoredSetup().GetScriptText().toStdString(), kDriver);
    EXPECT_EQ(device->GetAnalysis().GetSet().settings.Count(), 2u) << "the analysis is that of the stored script again";
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

TEST_F(TheSetupDialog, SaysOfAGoodTextAloneThatItIsGoodAndOfABadOneWhatIsWrongWhileItIsMended) {
    GivenScript(kDriver);
    Show([&](QWidget& dialog) {
        ClickTab(dialog, 1);
        EXPECT_EQ(TextOf(dialog, "lineEditDebugInfo"), "Evaluation Ok");
        QTest::keyClick(&Editor(dialog), Qt::Key_Space);
        EXPECT_EQ(TextOf(dialog, "lineEditDebugInfo"), "");
        TypeScript(dialog, "throw 'boom'");
        Click(dialog, "pushButtonEvaluate");
        const std::string problem = TextOf(dialog, "lineEditDebugInfo");
        EXPECT_NE(problem.find("boom"), std::string::npos);
        QTest::keyClick(&Editor(dialog), Qt::Key_Space);
        EXPECT_EQ(TextOf(dialog, "lineEditDebugInfo"), problem);
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
        EXPECT_EQ(TextOf(dialog, "lineEditTitle"), "") << "a script in error says nothing of itself";
        EXPECT_EQ(TextOf(dialog, "plainTextEditDescription"), "");
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
    const DeviceSetup stored = device->GetSetupDesk().Describe();
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

} // namespace
