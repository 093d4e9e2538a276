#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QListWidget>
#include <QMenu>
#include <QTabWidget>
#include <QTextBlock>

#include "CodeEditor.h"
#include "PanelFixture.h"

namespace {

constexpr const char* kFirst = "({ Who: function() { return 'first'; } })";
constexpr const char* kThird = "({ Who: function() { return 'third'; } })";
constexpr const char* kSecond = "({ Who: function() { return 'second'; } })";

class ThePanelsScript : public PanelFixture {
protected:
    void LoadByCommand(int command, const std::string& what) {
        plain::Params params({what});
        ASSERT_EQ(device->ExecuteCommand(command, &params, nullptr), KXP_OK);
    }
};

struct PartRow {
    const char* name;
    const char* text;
    const char* toolTip;
};

TEST_F(ThePanelsScript, StandsAmongTheButtonsThatUsersKnow) {
    const PartRow rows[] = {{"pushButtonLoad", "Load", "Load Script..."},
                            {"pushButtonSave", "Save", "Save Script..."},
                            {"pushButtonSaveAs", "Save as", "Save Script as"},
                            {"lineEditScriptFileName", "No script loaded", ""},
                            {"labelDebugInfo", "Script Info:", ""},
                            {"pushButtonEvaluate", "Evaluate Script", ""},
                            {"pushButtonDebugCurrentSript", "", "Open the Script Debugger"},
                            {"labelStatus", "Script Status:", ""},
                            {"lineEditStatus", "Loaded", ""},
                            {"pushButtonRefreshFromDevice", "Refresh from Device", ""},
                            {"pushButtonSync", "Update Device", ""},
                            {"checkBoxSetAsDefaultScript", "Set as Default Script", ""}};
    GivenPanel();
    for (const PartRow& row : rows) {
        auto& part = Find<QWidget>(Widget(), row.name);
        EXPECT_EQ(part.property("text").toString().remove(QLatin1Char('&')), QLatin1String(row.text)) << row.name;
        EXPECT_EQ(part.toolTip(), QLatin1String(row.toolTip)) << row.name;
        EXPECT_TRUE(part.isVisible()) << row.name;
    }
    EXPECT_EQ(Widget().windowTitle(), QStringLiteral("KXP Calverin Script Setup"));
    auto& tabs = Find<QTabWidget>(Widget(), "tabWidget");
    EXPECT_EQ(tabs.count(), 1);
    EXPECT_EQ(tabs.tabText(0), QStringLiteral("Script"));
    EXPECT_EQ(tabs.widget(0)->objectName(), QStringLiteral("tab_Script"));
    EXPECT_EQ(Editor().font().family(), QStringLiteral("Lucida Console"));
    EXPECT_FALSE(Find<QPushButton>(Widget(), "pushButtonDebugCurrentSript").icon().isNull());
    EXPECT_FALSE(Find<QPushButton>(Widget(), "pushButtonDebugCurrentSript").isEnabled()) << "without a debugger";
    for (const char* field : {"lineEditScriptFileName", "lineEditDebugInfo", "lineEditStatus"})
        EXPECT_TRUE(Find<QLineEdit>(Widget(), field).isReadOnly()) << field;
    EXPECT_EQ(dynamic_cast<CodeEditor&>(Editor()).completer(), nullptr);
}

TEST_F(ThePanelsScript, IsThatOfTheDevice) {
    GivenRunningFile("lamp.js", "({ Info: { Title: 'Lamp' } })");
    GivenPanel();
    EXPECT_EQ(Text(), "({ Info: { Title: 'Lamp' } })");
    EXPECT_EQ(FileName(), "Lamp (lamp.js)");
    EXPECT_EQ(Status(), "Loaded");
    EXPECT_FALSE(CanUpdate());
}

TEST_F(ThePanelsScript, OfADeviceThatHasNotRunYetIsTheOneThatItWillRun) {
    GivenScript(kFirst);
    GivenPanel();
    EXPECT_EQ(Text(), kFirst);
    EXPECT_EQ(FileName(), "No script loaded");
}

TEST_F(ThePanelsScript, IsModifiedByAnEditAndLoadedWhenThatIsUndone) {
    GivenRunningScript(kFirst);
    GivenPanel();
    Editor().setFocus();
    QTest::keyClicks(&Editor(), QStringLiteral("x"));
    EXPECT_EQ(Status(), "Modified");
    EXPECT_TRUE(CanUpdate());
    QTest::keyClick(&Editor(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(Text(), kFirst);
    EXPECT_EQ(Status(), "Loaded");
    EXPECT_FALSE(CanUpdate());
}

TEST_F(ThePanelsScript, WithoutAFileIsEvaluatedInTheDeviceAndLeavesNoFile) {
    GivenRunningScript(kFirst);
    GivenPanel();
    TypeScript(kSecond);
    Press("pushButtonSync");
    EXPECT_EQ(Status(), "Loaded");
    EXPECT_FALSE(CanUpdate());
    EXPECT_EQ(Info(), "");
    EXPECT_EQ(Call("Who"), "second");
    EXPECT_TRUE(QDir(QString::fromStdString(Library())).isEmpty());
    EXPECT_TRUE(QDir(QString::fromStdString(Project())).isEmpty());
    EXPECT_EQ(device->GetStoredSetup().GetScriptText().toStdString(), kFirst) << "the next start runs what was stored";
}

TEST_F(ThePanelsScript, WithAFileIsSavedThereAndLoadedFromThere) {
    GivenRunningFile("lamp.js", kFirst);
    GivenPanel();
    TypeScript(kSecond);
    Press("pushButtonSync");
    EXPECT_EQ(Read(Library(), "lamp.js"), kSecond);
    EXPECT_EQ(Read(Project(), "lamp.js"), kSecond);
    EXPECT_EQ(device->GetShownScript().fileName.toStdString(), Project() + "/lamp.js");
    EXPECT_EQ(FileName(), "lamp (lamp.js)");
    EXPECT_EQ(Status(), "Loaded");
    EXPECT_EQ(Call("Who"), "second");
}

TEST_F(ThePanelsScript, OverwritesAFileThatAnotherProgramHasChangedOnlyWhenTheUserSaysSo) {
    for (const std::string& changed : {Project(), Library()}) {
        GivenRunningFile("lamp.js", kFirst);
        GivenPanel();
        TypeScript(kSecond);
        Write(changed + "/lamp.js", kThird);
        const std::string question = "The file '" + changed + "/lamp.js' was changed by another program.";
        dialogs.Expect(::Press("pushButtonCancel", question.c_str()));
        Press("pushButtonSave");
        EXPECT_EQ(Read(changed, "lamp.js"), kThird);
        dialogs.Expect(::Press("pushButtonOk", question.c_str()));
        Press("pushButtonSave");
        EXPECT_EQ(Read(changed, "lamp.js"), kSecond);
        Press("pushButtonSave"); // it is the panel's own now
        Write(changed + "/lamp.js", kThird);
        dialogs.Expect(::Press("pushButtonCancel", question.c_str()));
        Press("pushButtonSync");
        EXPECT_EQ(Call("Who"), "second") << "the device takes the text without its file";
        EXPECT_EQ(Read(changed, "lamp.js"), kThird);
        ReleasePanel();
    }
}

TEST_F(ThePanelsScript, KeepsTheLineEndsOfItsFile) {
    GivenRunningFile("lamp.js", "({\r\n\tA: 1\r\n})\r\n");
    GivenPanel();
    EXPECT_EQ(Status(), "Loaded");
    QTest::keyClicks(&Editor(), QStringLiteral(" "));
    Press("pushButtonSync");
    EXPECT_EQ(Read(Project(), "lamp.js"), " ({\r\n\tA: 1\r\n})\r\n");
    EXPECT_EQ(Status(), "Loaded");
}

TEST_F(ThePanelsScript, IsEvaluatedDirectlyWhenItsFileDoesNotTakeIt) {
    GivenRunningFile("lamp.js", kFirst);
    QFile::remove(QString::fromStdString(Library() + "/lamp.js"));
    QDir().mkdir(QString::fromStdString(Library() + "/lamp.js")); // nobody can write there
    GivenPanel();
    TypeScript(kSecond);
    dialogs.Expect([](QWidget& dialog) {
        EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Select Script"));
        Click(dialog, "pushButtonCancel");
    });
    Press("pushButtonSync");
    EXPECT_EQ(Call("Who"), "second");
    EXPECT_EQ(Read(Project(), "lamp.js"), kFirst);
    EXPECT_EQ(Status(), "Loaded");
}

TEST_F(ThePanelsScript, ThatFailsTellsWhyAndIsWhatTheDeviceHas) {
    GivenRunningScript(kFirst);
    GivenPanel();
    TypeScript("({});\nthrow new Error('no lamp');");
    Press("pushButtonSync");
    EXPECT_NE(Info().find("no lamp"), std::string::npos) << Info();
    EXPECT_EQ(Status(), "Loaded");
    EXPECT_NE(variables.error.Text().find("no lamp"), std::string::npos);
    TypeScript(kSecond);
    Press("pushButtonSync");
    EXPECT_EQ(Info(), "");
    EXPECT_EQ(Call("Who"), "second");
}

TEST_F(ThePanelsScript, IsStoredAsTheDefaultWhenTheBoxSaysSo) {
    GivenRunningFile("lamp.js", kFirst);
    GivenPanel();
    Press("checkBoxSetAsDefaultScript");
    TypeScript(kSecond);
    Press("pushButtonSync");
    EXPECT_EQ(device->GetStoredSetup().GetScriptText().toStdString(), kSecond);
    EXPECT_EQ(device->GetStoredSetup().GetScriptFileName().toStdString(), Project() + "/lamp.js");
    device->Stop();
    device->Start();
    EXPECT_EQ(Call("Who"), "second");
}

TEST_F(ThePanelsScript, OfADeviceThatIsStoppedCanBeUpdatedToo) {
    GivenRunningScript(kFirst);
    GivenPanel();
    device->Stop();
    TypeScript(kSecond);
    Press("pushButtonSync");
    EXPECT_EQ(Status(), "Loaded");
    EXPECT_EQ(device->GetShownScript().text.toStdString(), kSecond);
}

TEST_F(ThePanelsScript, IsTheDevicesAgainAfterARefreshWhichCanBeUndone) {
    GivenRunningFile("lamp.js", kFirst);
    GivenPanel();
    TypeScript("mine");
    Press("pushButtonRefreshFromDevice");
    EXPECT_EQ(Text(), kFirst);
    EXPECT_EQ(Status(), "Loaded");
    EXPECT_EQ(FileName(), "lamp (lamp.js)");
    QTest::keyClick(&Editor(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(Text(), "mine");
    EXPECT_EQ(Status(), "Modified");
}

TEST_F(ThePanelsScript, FollowsWhatTheDeviceLoads) {
    GivenRunningScript(kFirst);
    GivenPanel();
    const std::string path = WriteLibrary("other.js", kSecond);
    LoadByCommand(0, path);
    EXPECT_TRUE(Comes([&] { return Text() == kSecond; }));
    EXPECT_EQ(FileName(), path);
    EXPECT_EQ(Status(), "Loaded");
    LoadByCommand(1, kFirst);
    EXPECT_TRUE(Comes([&] { return Text() == kFirst && FileName() == "No script loaded"; }));
}

TEST_F(ThePanelsScript, ThatWasChangedHereIsNotOverwrittenByNews) {
    GivenRunningFile("lamp.js", kFirst);
    GivenPanel();
    TypeScript("({ mine: 1 })");
    LoadByCommand(1, kSecond);
    ASSERT_TRUE(Comes([&] { return device->GetShownScript().text.toStdString() == kSecond; }));
    QApplication::processEvents();
    EXPECT_EQ(Text(), "({ mine: 1 })");
    EXPECT_EQ(Status(), "Modified");
    EXPECT_EQ(FileName(), "lamp (lamp.js)") << "the text is still that file's";
    TypeScript(kSecond);
    EXPECT_TRUE(Comes([&] { return Status() == "Loaded"; })) << "it is what the device runs now";
}

TEST_F(ThePanelsScript, ShowsTheFailuresOfTheDevice) {
    GivenRunningScript("({ Fail: function() { throw new Error('no lamp'); } })");
    GivenPanel();
    auto params = plain::Params::ForFunction("Fail", {});
    plain::Context context;
    ASSERT_EQ(device->ExecuteCommand(3, params.get(), &context), KXP_OK);
    EXPECT_TRUE(Comes([&] { return Info().find("no lamp") != std::string::npos; })) << Info();
    EXPECT_EQ(Status(), "Loaded");
    ReleasePanel();
    device->Release();
    device = nullptr;
    EXPECT_TRUE(context.WaitForEnd());
}

TEST_F(ThePanelsScript, OfAnAnalysisInTheSetupDialogIsNoNews) {
    GivenRunningScript(kFirst);
    GivenPanel();
    const std::string path = WriteLibrary("other.js", kSecond);
    EXPECT_TRUE(device->LoadScriptCommand(path.c_str(), true));
    QApplication::processEvents();
    EXPECT_EQ(Text(), kFirst);
    EXPECT_EQ(FileName(), "No script loaded");
}

TEST_F(ThePanelsScript, OfANewSetupIsNews) {
    GivenScript(kFirst);
    GivenPanel();
    GivenScript(kSecond);
    EXPECT_TRUE(Comes([&] { return Text() == kSecond; }));
}

TEST_F(ThePanelsScript, IsEvaluatedForTheUserWithoutReachingTheDevice) {
    GivenRunningScript(kFirst);
    GivenPanel();
    TypeScript(kSecond);
    Press("pushButtonEvaluate");
    EXPECT_EQ(Info(), "Evaluation Ok");
    EXPECT_EQ(Status(), "Modified");
    EXPECT_EQ(Call("Who"), "first");
    TypeScript("({})\n\nthrow 1;");
    Press("pushButtonEvaluate");
    EXPECT_NE(Info().find("line 3"), std::string::npos) << Info();
    EXPECT_EQ(Editor().textCursor().blockNumber(), 2);
}

TEST_F(ThePanelsScript, OfTheLibraryIsLoadedIntoTheEditorAndRunsAfterAnUpdate) {
    GivenRunningScript(kFirst);
    WriteLibrary("other.js", kSecond);
    GivenPanel();
    dialogs.Expect([](QWidget& dialog) {
        EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Load script"));
        Find<QListWidget>(dialog, "listWidgetScripts").setCurrentRow(0);
        Click(dialog, "pushButtonOk");
    });
    Press("pushButtonLoad");
    EXPECT_EQ(Text(), kSecond);
    EXPECT_EQ(FileName(), "other (other.js)");
    EXPECT_EQ(Read(Project(), "other.js"), kSecond);
    EXPECT_EQ(Status(), "Modified");
    EXPECT_EQ(Call("Who"), "first");
    Press("pushButtonSync");
    EXPECT_EQ(Call("Who"), "second");
    EXPECT_EQ(Status(), "Loaded");
}

TEST_F(ThePanelsScript, IsSavedUnderANameOfItsOwn) {
    const auto typeName = [](QWidget& dialog) {
        Type(dialog, "lineEditFileName", "mine");
        Click(dialog, "pushButtonOk");
    };
    GivenRunningScript(kFirst);
    GivenPanel();
    TypeScript(kSecond);
    dialogs.Expect(typeName);
    Press("pushButtonSave");
    EXPECT_EQ(Read(Library(), "mine.js"), kSecond);
    EXPECT_EQ(Read(Project(), "mine.js"), kSecond);
    EXPECT_EQ(FileName(), "mine (mine.js)");
    EXPECT_EQ(Status(), "Modified") << "the device runs another one";
    TypeScript(kFirst);
    Press("pushButtonSave");
    EXPECT_EQ(Read(Project(), "mine.js"), kFirst) << "it has a name by now";
    TypeScript(kSecond);
    dialogs.Expect(typeName);
    dialogs.Expect(::Press("pushButtonOk", "'mine.js' already exits"));
    Press("pushButtonSaveAs");
    EXPECT_EQ(Read(Library(), "mine.js"), kSecond);
}

TEST_F(ThePanelsScript, IsSearchedFromTheKeyboard) {
    GivenRunningScript("var lamp = 1;\nvar door = 2;\n({})");
    GivenPanel();
    Editor().setFocus();
    dialogs.Expect([](QWidget& dialog) {
        EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Find"));
        Type(dialog, "lineEditFind", "door");
        Click(dialog, "pushButtonNext");
        Click(dialog, "pushButtonClose");
    });
    QTest::keyClick(&Editor(), Qt::Key_F, Qt::ControlModifier);
    EXPECT_EQ(Editor().textCursor().selectedText(), QStringLiteral("door"));
}

TEST_F(ThePanelsScript, HasTheSearchInItsMenuAndNoInsertions) {
    GivenPanel();
    QStringList seen;
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, qApp, [&] {
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        if (menu == nullptr)
            return;
        for (const QAction* action : menu->actions())
            if (action->isVisible() && !action->isSeparator())
                seen.append(action->text().section(QLatin1Char('\t'), 0, 0).remove(QLatin1Char('&')));
        menu->close();
        look.stop();
    });
    look.start(1);
    Q_EMIT Editor().customContextMenuRequested(QPoint(5, 5));
    EXPECT_EQ(seen, (QStringList{QStringLiteral("Undo"), QStringLiteral("Redo"), QStringLiteral("Cut"),
                                 QStringLiteral("Copy"), QStringLiteral("Paste"), QStringLiteral("Delete"),
                                 QStringLiteral("Select All"), QStringLiteral("Find...")}));
}

TEST_F(ThePanelsScript, StaysWhenEscapeIsPressed) {
    GivenPanel();
    QTest::keyClick(&Editor(), Qt::Key_Escape);
    QTest::keyClick(&Find<QWidget>(Widget(), "lineEditStatus"), Qt::Key_Escape);
    EXPECT_TRUE(Widget().isVisible());
    EXPECT_TRUE(IsShown());
}

TEST_F(ThePanelsScript, IsWorkedOnWithoutAMouse) {
    GivenRunningScript(kFirst);
    GivenPanel();
    TypeScript(kSecond);
    QTest::keyClick(&Editor(), Qt::Key_E, Qt::AltModifier);
    EXPECT_TRUE(Comes([&] { return Info() == "Evaluation Ok"; }));
    QTest::keyClick(&Editor(), Qt::Key_U, Qt::AltModifier);
    EXPECT_TRUE(Comes([&] { return Status() == "Loaded"; }));
    TypeScript("mine");
    QTest::keyClick(&Editor(), Qt::Key_R, Qt::AltModifier);
    EXPECT_TRUE(Comes([&] { return Text() == kSecond; }));
    QTest::keyClick(&Editor(), Qt::Key_D, Qt::AltModifier);
    EXPECT_TRUE(Comes([&] { return Find<QCheckBox>(Widget(), "checkBoxSetAsDefaultScript").isChecked(); }));
}

} // namespace
