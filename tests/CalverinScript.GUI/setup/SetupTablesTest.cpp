#include <QAction>
#include <QComboBox>
#include <QDesktopServices>
#include <QHeaderView>
#include <QLayout>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QTimer>

#include "Deadline.h"
#include "SetupDialogFixture.h"

namespace {

/// What the dialogs consist of, table by table.
class ThePartsOfTheDialogs : public TheSetupDialog {
protected:
    /// The dialogs that the setup dialog opens, each by what a user does.
    struct Opened {
        const char* title;
        bool isFixed;
        std::vector<std::pair<const char*, const char*>> texts; ///< object name and text, without the mnemonic's sign
        std::function<void(QWidget& dialog)> open;
    };
    static std::string PlainText(QWidget& window, const char* name) {
        auto& part = Find<QWidget>(window, name);
        const char* property = part.inherits("QGroupBox") ? "title" : "text";
        return part.property(property).toString().remove(QLatin1Char('&')).toStdString();
    }
};

TEST_F(ThePartsOfTheDialogs, HaveTheirNamesAndTexts) {
    struct Row {
        int tab;
        const char* name;
        const char* text; ///< null for what the script fills
        const char* toolTip = "";
        bool isReadOnly = false;
    };
    const Row rows[] = {
        {0, "pushButtonLoad", "Load", "Load Script..."},
        {0, "pushButtonSave", "Save", "Save Script..."},
        {0, "pushButtonSaveAs", "Save as", "Save Script as"},
        {0, "lineEditScriptFileName", "No script loaded", "", true},
        {0, "pushButtonHelp", "", "Display the Help file (F1)"},
        {0, "checkBoxProgrammingMode", "Programming Mode"},
        {0, "labelTitle", "Title:"},
        {0, "lineEditTitle", nullptr, "Lamp", true},
        {0, "labelVersion", "Version:"},
        {0, "lineEditVersion", nullptr, "1.2", true},
        {0, "labelAuthor", "Author:"},
        {0, "lineEditAuthor", nullptr, "Ada", true},
        {0, "labelDescription", "Description:"},
        {0, "plainTextEditDescription", nullptr, "", true},
        {1, "labelDebugInfo", "Script Info:"},
        {1, "pushButtonEvaluate", "Evaluate Script"},
        {2, "pushButtonEditVar", "Edit..."},
        {3, "groupBoxProgramming", "Programming"},
        {3, "checkBoxRemoveStaticCmdVar", "Remove Default Commands and Variables"},
        {3, "checkBoxRegisterUserGroup", "Automatically register all User Groups"},
        {3, "labelDebugger", "The Debugger is disabled."},
        {3, "checkBoxEnableAutoCompletion", "Enable Auto-Completion"},
        {3, "groupBoxControlPanel", "Control Panel"},
        {3, "checkBoxUserMode", "Display the Control Panel in 'User Mode'"},
        {3, "checkBoxRunProject", "Display the Control Panel in 'Run Mode'"},
        {0, "pushButtonOk", "Ok"},
        {0, "pushButtonCancel", "Cancel"},
    };
    GivenScript(kDriver);
    Show([&](QWidget& dialog) {
        for (const Row& row : rows) {
            ClickTab(dialog, row.tab);
            auto& part = Find<QWidget>(dialog, row.name);
            EXPECT_TRUE(part.isVisible()) << row.name;
            EXPECT_TRUE(row.text == nullptr || PlainText(dialog, row.name) == row.text)
                << row.name << ": " << PlainText(dialog, row.name);
            EXPECT_EQ(part.toolTip().toStdString(), row.toolTip) << row.name;
            EXPECT_EQ(part.property("readOnly").toBool(), row.isReadOnly) << row.name;
        }
        EXPECT_TRUE(Find<QWidget>(dialog, "lineEditDebugInfo").property("readOnly").toBool());
        const char* tabs[] = {"tab_Setup", "tab_Script", "tab_Variables", "tab_Options"};
        for (int tab = 0; tab < 4; ++tab)
            EXPECT_EQ(Tabs(dialog).widget(tab)->objectName().toStdString(), tabs[tab]);
        for (const char* hidden : {"pushButtonExtractVar", "pushButtonAddVar", "pushButtonRemoveVar"}) {
            EXPECT_FALSE(Find<QWidget>(dialog, hidden).isVisibleTo(&dialog)) << hidden;
            EXPECT_FALSE(Find<QWidget>(dialog, hidden).isEnabled()) << hidden;
        }
        Click(dialog, "pushButtonCancel");
    });
}

TEST_F(ThePartsOfTheDialogs, TheEditorHasItsFontItsTabStopAndItsInk) {
    GivenScript("");
    Show([&](QWidget& dialog) {
        ClickTab(dialog, 1);
        const QPlainTextEdit& editor = Editor(dialog);
        EXPECT_EQ(editor.tabStopDistance(), 28);
        EXPECT_EQ(editor.font().family(), QStringLiteral("Lucida Console"));
        EXPECT_EQ(editor.font().pointSize(), 9);
        EXPECT_EQ(editor.styleSheet(), QStringLiteral("QPlainTextEdit {\n\tcolor: black;\n}"));
        EXPECT_EQ(editor.contextMenuPolicy(), Qt::CustomContextMenu);
        Click(dialog, "pushButtonCancel");
    });
}

TEST_F(ThePartsOfTheDialogs, TheActionsHaveTheirTextsTipsAndKeysInTheirOrder) {
    struct Row {
        const char* text;
        const char* statusTip;
        const char* shortcut;
    };
    const Row rows[] = {
        {"Find...", "Find...", "Ctrl+F"},
        {"Insert Variable", "Insert a Variable", "Alt+V"},
        {"Insert UserGroup", "Insert an UserGroup", "Alt+G"},
        {"Insert Task", "Insert a Task", "Alt+T"},
        {"Insert Cue", "Insert a Cue", "Alt+C"},
        {"Insert UserScreen", "Insert an UserScreen", "Alt+U"},
        {"Insert Device", "Insert a Device", "Alt+D"},
        {"Insert QCalverin.Perform", "Insert QCalverin.Perform", "Alt+P"},
    };
    GivenScript("");
    Show([&](QWidget& dialog) {
        const QList<QAction*> actions = dialog.actions();
        EXPECT_EQ(actions.size(), 8);
        for (int at = 0; at < std::min(8, actions.size()); ++at) {
            EXPECT_EQ(actions[at]->text().toStdString(), rows[at].text);
            EXPECT_EQ(actions[at]->statusTip().toStdString(), rows[at].statusTip);
            EXPECT_EQ(actions[at]->shortcut().toString(QKeySequence::PortableText).toStdString(), rows[at].shortcut);
        }
        Click(dialog, "pushButtonCancel");
    });
}

TEST_F(ThePartsOfTheDialogs, TheEditorsMenuOffersTheUsualAndThenTheActions) {
    GivenScript("");
    Show([&](QWidget& dialog) {
        ClickTab(dialog, 1);
        QStringList tail;
        QTimer look;
        QObject::connect(&look, &QTimer::timeout, [&] {
            auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
            if (menu == nullptr)
                return;
            for (const QAction* action : menu->actions())
                tail += action->isSeparator() ? QStringLiteral("-") : action->text().section(QLatin1Char('\t'), 0, 0);
            QTest::keyClick(menu, Qt::Key_Escape);
        });
        look.start(1);
        QContextMenuEvent press(QContextMenuEvent::Mouse, QPoint(40, 40),
                                Editor(dialog).viewport()->mapToGlobal(QPoint(40, 40)));
        QApplication::sendEvent(Editor(dialog).viewport(), &press);
        look.stop();
        ASSERT_GT(tail.size(), 12);
        EXPECT_EQ(tail.mid(tail.indexOf(QStringLiteral("Find...")) - 1).join(QLatin1Char(',')).toStdString(),
                  "-,Find...,-,Insert Variable,Insert UserGroup,Insert Task,Insert Cue,Insert UserScreen,"
                  "Insert Device,-,Insert QCalverin.Perform");
        Click(dialog, "pushButtonCancel");
    });
}

TEST_F(ThePartsOfTheDialogs, BehindTheSetupHaveTheirTitlesTheirFlagsAndTheirTexts) {
    WriteLibrary("other.js", "({ Info: { Title: 'Other' } })");
    const Opened rows[] = {
        {"Load script",
         false,
         {{"pushButtonImport", "Import"},
          {"pushButtonExport", "Export"},
          {"labelFileName", "File name:"},
          {"labelTitle", "Title:"},
          {"labelVersion", "Version:"},
          {"labelAuthor", "Author:"},
          {"labelDescription", "Description:"},
          {"pushButtonOk", "Ok"},
          {"pushButtonCancel", "Cancel"}},
         [](QWidget& dialog) { Click(dialog, "pushButtonLoad"); }},
        {"Select Script",
         false,
         {{"labelFileName", "File name:"}, {"pushButtonOk", "Ok"}, {"pushButtonCancel", "Cancel"}},
         [](QWidget& dialog) { Click(dialog, "pushButtonSaveAs"); }},
        {"Find",
         true,
         {{"labelFind", "Find:"},
          {"pushButtonNext", "Find Next"},
          {"checkBoxMatchCase", "Match case"},
          {"labelDirection", "Direction:"},
          {"radioButtonDirUp", "Up"},
          {"radioButtonDirDown", "Down"},
          {"pushButtonClose", "Close"}},
         [](QWidget& dialog) { QTest::keyClick(&dialog, Qt::Key_F, Qt::ControlModifier); }},
        {"Edit Variable",
         true,
         {{"labelVarName", "Name:"},
          {"labelVarType", "Type:"},
          {"labelVarValue", "Value:"},
          {"pushButtonCancel", "Cancel"}},
         [](QWidget& dialog) {
             ClickTab(dialog, 2);
             DoubleClickCell(dialog, 0, 1);
         }},
        {"Warning",
         true,
         {{"labelMessage", "An error has been detected into the script.\nDo you want to continue anyway?"},
          {"checkBoxRememberChoice", "Remember my choice."},
          {"pushButtonOk", "Yes"},
          {"pushButtonCancel", "No"}},
         [](QWidget& dialog) {
             TypeScript(dialog, "({");
             Click(dialog, "pushButtonOk");
         }},
        {"Save options",
         true,
         {{"radioButtonInternal", "Save changes only for this device (Script name will be blank)"},
          {"radioButtonUpdateScript", "Update the device and the script file with the changes\n"
                                      "(Other devices with the same driver will not be updated)\n"
                                      "(Please reload the script in these devices for updating)"},
          {"radioButtonNewScript", "Save as new script"},
          {"pushButtonOk", "Ok"},
          {"pushButtonCancel", "Cancel"}},
         [](QWidget& dialog) {
             TypeScript(dialog, "({})");
             Click(dialog, "pushButtonOk");
         }},
    };
    for (const Opened& row : rows) {
        GivenScriptFile("lamp.js", kDriver);
        Show([&](QWidget& dialog) {
            dialogs.Expect([&row](QWidget& opened) {
                EXPECT_EQ(opened.windowTitle().toStdString(), row.title);
                EXPECT_FALSE(opened.windowFlags().testFlag(Qt::WindowContextHelpButtonHint)) << row.title;
                EXPECT_EQ(opened.minimumSize() == opened.maximumSize(), row.isFixed) << row.title;
                EXPECT_EQ(opened.windowFlags().testFlag(Qt::WindowMaximizeButtonHint), !row.isFixed) << row.title;
                for (const auto& [name, text] : row.texts)
                    EXPECT_EQ(PlainText(opened, name), text) << row.title;
                opened.close();
            });
            row.open(dialog);
            if (dialog.isVisible())
                Click(dialog, "pushButtonCancel");
        });
    }
}

TEST_F(ThePartsOfTheDialogs, TheTableOfVariablesIsSetUpAsItShould) {
    GivenScript(kDriver);
    Show([&](QWidget& dialog) {
        ClickTab(dialog, 2);
        const QTableWidget& table = Table(dialog);
        const char* headers[] = {"Variable", "Type", "Default Value", "Script Default Value"};
        ASSERT_EQ(table.columnCount(), 4);
        for (int column = 0; column < 4; ++column) {
            EXPECT_EQ(table.horizontalHeaderItem(column)->text().toStdString(), headers[column]);
            EXPECT_EQ(table.horizontalHeader()->sectionResizeMode(column), QHeaderView::Stretch);
            const int flags = static_cast<int>(table.item(0, column)->flags());
            EXPECT_EQ(flags, column < 3 ? 49 : static_cast<int>(QTableWidgetItem().flags()));
        }
        EXPECT_FALSE(table.verticalHeader()->isVisible());
        EXPECT_GE(table.verticalHeader()->defaultSectionSize(), 20);
        EXPECT_EQ(table.verticalHeader()->minimumSectionSize(), 19);
        EXPECT_EQ(table.horizontalHeader()->minimumSectionSize(), 27);
        EXPECT_EQ(table.selectionMode(), QAbstractItemView::SingleSelection);
        EXPECT_EQ(table.selectionBehavior(), QAbstractItemView::SelectRows);
        dialogs.Expect([](QWidget& edit) {
            const auto& types = Find<QComboBox>(edit, "comboBoxVarType");
            QStringList names;
            for (int at = 0; at < types.count(); ++at)
                names += types.itemText(at);
            EXPECT_EQ(names.join(QLatin1Char(' ')).toStdString(),
                      "EnumData TimeData DateData RealData StringData IntegerData");
            edit.close();
        });
        DoubleClickCell(dialog, 0, 1);
        Click(dialog, "pushButtonCancel");
    });
}

/// Takes what would be opened in a browser.
class Browser : public QObject {
    Q_OBJECT

public:
    Browser() { QDesktopServices::setUrlHandler(QStringLiteral("file"), this, "Open"); }
    ~Browser() override { QDesktopServices::unsetUrlHandler(QStringLiteral("file")); }
    QList<QUrl> opened;

public Q_SLOTS:
    void Open(const QUrl& url) { opened += url; }
};

TEST_F(ThePartsOfTheDialogs, TheHelpFileIsOpenedByItsButtonAndItsKey) {
    Browser browser;
    host.folders[KXP_FOLDER_4] = Library();
    const std::string file = WriteLibrary("kxpCalverinScript.htm", "<p>help</p>");
    GivenScript("");
    Show([&](QWidget& dialog) {
        Click(dialog, "pushButtonHelp");
        QTest::keyClick(&dialog, Qt::Key_F1);
        EXPECT_EQ(browser.opened.size(), 2);
        EXPECT_EQ(browser.opened.value(0).toLocalFile().toStdString(), file);
        Click(dialog, "pushButtonCancel");
    });
}

TEST_F(ThePartsOfTheDialogs, AChangedOptionAloneIsAChangeForTheHost) {
    GivenScript(kDriver);
    EXPECT_EQ(Show([&](QWidget& dialog) {
                  ClickTab(dialog, 3);
                  Click(dialog, "checkBoxRemoveStaticCmdVar");
                  Click(dialog, "pushButtonOk");
              }),
              771u);
    EXPECT_EQ(Show([&](QWidget& dialog) { Click(dialog, "pushButtonOk"); }), KXP_OK);
}

/// Where a file cannot be written a folder of its name lies: that holds for every user.
TEST_F(ThePartsOfTheDialogs, SaveOfAFileThatCannotBeWrittenBecomesSaveAs) {
    GivenScript("({})");
    Write(Project() + "/lamp.js", "({})");
    device->GetStoredSetup().SetScript(QString::fromStdString(Project() + "/lamp.js"), QStringLiteral("({})"));
    QDir().mkpath(QString::fromStdString(Library() + "/lamp.js"));
    Show([&](QWidget& dialog) {
        dialogs.Expect([](QWidget& choice) {
            Type(choice, "lineEditFileName", "lamp2");
            Click(choice, "pushButtonOk");
        });
        Click(dialog, "pushButtonSave");
        Click(dialog, "pushButtonCancel");
    });
    EXPECT_EQ(Read(Library(), "lamp2.js"), "({})");
    EXPECT_EQ(Read(Project(), "lamp2.js"), "({})");
}

TEST_F(ThePartsOfTheDialogs, AFileThatDoesNotReachTheProjectIsTold) {
    GivenScript("({})");
    QDir().mkpath(QString::fromStdString(Project() + "/lamp.js"));
    Show([&](QWidget& dialog) {
        dialogs.Expect([](QWidget& choice) {
            Type(choice, "lineEditFileName", "lamp.js");
            Click(choice, "pushButtonOk");
        });
        dialogs.Expect(Press("pushButtonOk", "An error happened during the copy from the Scripts Repository to the "
                                             "current project UserData folder."));
        Click(dialog, "pushButtonSaveAs");
        EXPECT_EQ(TextOf(dialog, "lineEditScriptFileName"), "No script loaded");
        Click(dialog, "pushButtonCancel");
    });
    EXPECT_EQ(Read(Library(), "lamp.js"), "({})") << "the library has it";
}

TEST_F(ThePartsOfTheDialogs, AFailedExportBringsTheFileDialogBack) {
    WriteLibrary("lamp.js", "({})");
    GivenScript("");
    Show([&](QWidget& dialog) {
        dialogs.Expect([&](QWidget& choice) {
            Find<QListWidget>(choice, "listWidgetScripts").setCurrentRow(0);
            QFile::remove(QString::fromStdString(Library() + "/lamp.js"));
            const auto type = [](const std::string& file, Qt::Key end) {
                return [file, end](QWidget& files) {
                    auto& field = Find<QLineEdit>(files, "fileNameEdit");
                    field.setText(QString::fromStdString(file));
                    QTest::keyClick(&field, end);
                };
            };
            dialogs.Expect(type(m_folder.path().toStdString() + "/copy.js", Qt::Key_Return));
            dialogs.Expect(Press("pushButtonOk", "An error happened during the exportation.\n\nPlease try again."));
            dialogs.Expect(type("", Qt::Key_Escape));
            Click(choice, "pushButtonExport");
            choice.close();
        });
        Click(dialog, "pushButtonLoad");
        Click(dialog, "pushButtonCancel");
    });
}

} // namespace

#include "SetupTablesTest.moc"
