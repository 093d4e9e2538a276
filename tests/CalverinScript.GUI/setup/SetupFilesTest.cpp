#include <QApplication>
#include <QClipboard>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QRadioButton>
#include <QTabBar>
#include <QTableWidget>
#include <QTabWidget>

#include "DeviceTexts.h"
#include "SetupFixture.h"

namespace {

constexpr const char* kLamp = "({ Info: { Title: 'Lamp' }, Setup: { Address: 'lamp' }, Device: { Level: 1 } })";
constexpr const char* kFan = "({ Info: { Title: 'Fan' }, Setup: { Speed: 7 }, Device: { Level: 9 } })";
constexpr const char* kEdited = "({ Info: { Title: 'Edited' } })";

class ScriptFilesOfTheSetup : public SetupFixture {
protected:
    static void Edit(QWidget& dialog, const char* text) {
        Find<QTabWidget>(dialog, "tabWidget").setCurrentIndex(1);
        auto& editor = Find<QPlainTextEdit>(dialog, "plainTextEditScript");
        editor.selectAll();
        QApplication::clipboard()->setText(QString::fromUtf8(text));
        QTest::keyClick(&editor, Qt::Key_V, Qt::ControlModifier);
    }
    static void ChooseScript(QWidget& dialog, const char* shown) {
        auto& list = Find<QListWidget>(dialog, "listWidgetScripts");
        const auto found = list.findItems(QLatin1String(shown), Qt::MatchExactly);
        ASSERT_EQ(found.size(), 1) << shown;
        QTest::mouseClick(list.viewport(), Qt::LeftButton, Qt::NoModifier, list.visualItemRect(found[0]).center());
    }
    /// Loads a script by its line in the list.
    void Load(QWidget& dialog, const char* shown) {
        dialogs.Expect([shown](QWidget& choice) {
            EXPECT_EQ(choice.windowTitle(), QStringLiteral("Load script"));
            ChooseScript(choice, shown);
            Click(choice, "pushButtonOk");
        });
        Click(dialog, "pushButtonLoad");
    }
    /// Answers the dialog that asks for a name.
    void ExpectName(const char* name) {
        dialogs.Expect([name](QWidget& choice) {
            EXPECT_EQ(choice.windowTitle(), QStringLiteral("Select Script"));
            Type(choice, "lineEditFileName", name);
            Click(choice, "pushButtonOk");
        });
    }
    std::string ScriptFile() const { return device->GetStoredSetup().GetScriptFileName().toStdString(); }
};

TEST_F(ScriptFilesOfTheSetup, LoadCopiesTheScriptIntoTheProjectAndShowsIt) {
    GivenScript("({})");
    WriteLibrary("lamp.js", kLamp);
    Show([&](QWidget& dialog) {
        Load(dialog, "Lamp (lamp.js)");
        EXPECT_EQ(TextOf(dialog, "lineEditScriptFileName"), "Lamp (lamp.js)");
        EXPECT_EQ(TextOf(dialog, "plainTextEditScript"), kLamp);
        EXPECT_EQ(TextOf(dialog, "lineEditTitle"), "Lamp");
        Click(dialog, "pushButtonOk");
    });
    EXPECT_EQ(Read(Project(), "lamp.js"), kLamp);
    EXPECT_EQ(ScriptFile(), Project() + "/lamp.js");
}

TEST_F(ScriptFilesOfTheSetup, ALoadedScriptDoesNotInheritTheVariablesOfTheLastOne) {
    GivenScriptFile("lamp.js", kLamp);
    WriteLibrary("fan.js", kFan);
    Show([&](QWidget& dialog) {
        Load(dialog, "Fan (fan.js)");
        EXPECT_EQ(Find<QTableWidget>(dialog, "tableWidgetVar").item(0, 2)->text(), QStringLiteral("9"));
        Click(dialog, "pushButtonCancel");
    });
}

TEST_F(ScriptFilesOfTheSetup, WhatALoadReplacedComesBackWithUndo) {
    GivenScript("({ mine: 1 })");
    WriteLibrary("lamp.js", kLamp);
    Show([&](QWidget& dialog) {
        Load(dialog, "Lamp (lamp.js)");
        Find<QPlainTextEdit>(dialog, "plainTextEditScript").undo();
        EXPECT_EQ(TextOf(dialog, "plainTextEditScript"), "({ mine: 1 })");
        Click(dialog, "pushButtonCancel");
    });
}

TEST_F(ScriptFilesOfTheSetup, ACancelledLoadChangesNothing) {
    GivenScript("({})");
    WriteLibrary("lamp.js", kLamp);
    Show([&](QWidget& dialog) {
        for (const auto& close : {std::function<void(QWidget&)>([](QWidget& d) { Click(d, "pushButtonCancel"); }),
                                  std::function<void(QWidget&)>(&CloseBox)}) {
            dialogs.Expect([&close](QWidget& choice) {
                EXPECT_FALSE(Find<QWidget>(choice, "pushButtonOk").isEnabled());
                close(choice);
            });
            Click(dialog, "pushButtonLoad");
        }
        EXPECT_EQ(TextOf(dialog, "plainTextEditScript"), "({})");
        Click(dialog, "pushButtonCancel");
    });
    EXPECT_EQ(Read(Project(), "lamp.js"), "(none)");
}

TEST_F(ScriptFilesOfTheSetup, AScriptThatCannotBeCopiedStaysOut) {
    GivenScript("({})");
    WriteLibrary("lamp.js", kLamp);
    Write(Project(), "");
    host.folders[KXP_FOLDER_PROJECT_USER_DATA] = Library() + "/lamp.js"; // a file, where a folder should be
    Show([&](QWidget& dialog) {
        dialogs.Expect([](QWidget& choice) {
            ChooseScript(choice, "Lamp (lamp.js)");
            Click(choice, "pushButtonOk");
        });
        dialogs.Expect(Press("pushButtonOk", "An error happened during the copy from the Scripts Repository"));
        Click(dialog, "pushButtonLoad");
        EXPECT_EQ(TextOf(dialog, "plainTextEditScript"), "({})");
        EXPECT_EQ(TextOf(dialog, "lineEditScriptFileName"), "No script loaded");
        Click(dialog, "pushButtonCancel");
    });
}

TEST_F(ScriptFilesOfTheSetup, TheDriverThatTheHostNamesIsLoadedAtOnce) {
    GivenScript("({})");
    WriteLibrary("lamp.js", kLamp);
    Show(
        [&](QWidget& dialog) {
            EXPECT_EQ(TextOf(dialog, "lineEditScriptFileName"), "Lamp (lamp.js)");
            Click(dialog, "pushButtonOk");
        },
        "lamp.js");
    EXPECT_EQ(ScriptFile(), Project() + "/lamp.js");
}

TEST_F(ScriptFilesOfTheSetup, ADriverThatIsNotThereLeavesTheDialogAsItIs) {
    GivenScript("({ mine: 1 })");
    Show(
        [&](QWidget& dialog) {
            EXPECT_EQ(TextOf(dialog, "plainTextEditScript"), "({ mine: 1 })");
            Click(dialog, "pushButtonCancel");
        },
        "nosuch.js");
}

TEST_F(ScriptFilesOfTheSetup, SaveWritesTheLibraryAndThenTheProject) {
    GivenScriptFile("lamp.js", kLamp);
    Show([&](QWidget& dialog) {
        Edit(dialog, "({ Info: { Title: '\xc3\x9c' } })");
        Click(dialog, "pushButtonSave");
        EXPECT_EQ(TextOf(dialog, "lineEditScriptFileName"), "\xc3\x9c (lamp.js)");
        Click(dialog, "pushButtonCancel");
    });
    EXPECT_EQ(Read(Library(), "lamp.js"), "({ Info: { Title: '\xc3\x9c' } })");
    EXPECT_EQ(Read(Project(), "lamp.js"), "({ Info: { Title: '\xc3\x9c' } })");
}

TEST_F(ScriptFilesOfTheSetup, SaveWithoutAFileAsksForAName) {
    GivenScript(kLamp);
    Show([&](QWidget& dialog) {
        ExpectName("desk");
        Click(dialog, "pushButtonSave");
        EXPECT_EQ(TextOf(dialog, "lineEditScriptFileName"), "Lamp (desk.js)");
        Click(dialog, "pushButtonOk");
    });
    EXPECT_EQ(Read(Library(), "desk.js"), kLamp);
    EXPECT_EQ(ScriptFile(), Project() + "/desk.js");
}

TEST_F(ScriptFilesOfTheSetup, SaveMakesFoldersThatAreMissing) {
    GivenScript(kLamp);
    module.library = Library() + "/deep/er";
    host.folders[KXP_FOLDER_PROJECT_USER_DATA] = Project() + "/data";
    Show([&](QWidget& dialog) {
        ExpectName("desk.js");
        Click(dialog, "pushButtonSave");
        Click(dialog, "pushButtonOk");
    });
    EXPECT_EQ(Read(Library() + "/deep/er", "desk.js"), kLamp);
    EXPECT_EQ(Read(Project() + "/data", "desk.js"), kLamp);
}

TEST_F(ScriptFilesOfTheSetup, ANameWithoutItsEndGetsOneAndOthersStayAsTheyAre) {
    GivenScript(kLamp);
    Show([&](QWidget& dialog) {
        ExpectName("one");
        Click(dialog, "pushButtonSaveAs");
        ExpectName("A.JS");
        Click(dialog, "pushButtonSaveAs");
        Click(dialog, "pushButtonCancel");
    });
    EXPECT_EQ(Read(Library(), "one.js"), kLamp);
    EXPECT_EQ(Read(Library(), "A.JS"), kLamp);
}

TEST_F(ScriptFilesOfTheSetup, AnExistingFileIsOverwrittenOnlyWhenTheUserSaysSo) {
    WriteLibrary("fan.js", kFan);
    GivenScript(kLamp);
    Show([&](QWidget& dialog) {
        ExpectName("fan");
        dialogs.Expect(Press("pushButtonCancel", "The file 'fan.js' already exits. \n\nDo you want to overwrite it?"));
        Click(dialog, "pushButtonSaveAs");
        EXPECT_EQ(Read(Library(), "fan.js"), kFan);
        ExpectName("fan");
        dialogs.Expect([](QWidget& question) { CloseBox(question); });
        Click(dialog, "pushButtonSaveAs");
        EXPECT_EQ(Read(Library(), "fan.js"), kFan);
        ExpectName("fan");
        dialogs.Expect(Press("pushButtonOk", "already exits"));
        Click(dialog, "pushButtonSaveAs");
        Click(dialog, "pushButtonCancel");
    });
    EXPECT_EQ(Read(Library(), "fan.js"), kLamp);
}

TEST_F(ScriptFilesOfTheSetup, ACancelledSaveAsWritesNothing) {
    GivenScript(kLamp);
    Show([&](QWidget& dialog) {
        dialogs.Expect([](QWidget& choice) {
            EXPECT_FALSE(Find<QWidget>(choice, "pushButtonOk").isEnabled()) << "there is no name yet";
            Type(choice, "lineEditFileName", "../escape");
            EXPECT_FALSE(Find<QWidget>(choice, "pushButtonOk").isEnabled());
            Type(choice, "lineEditFileName", "fine");
            Click(choice, "pushButtonCancel");
        });
        Click(dialog, "pushButtonSaveAs");
        Click(dialog, "pushButtonCancel");
    });
    EXPECT_EQ(Read(Library(), "fine.js"), "(none)");
}

TEST_F(ScriptFilesOfTheSetup, AnUnchangedScriptIsAcceptedWithoutAQuestion) {
    GivenScriptFile("lamp.js", kLamp);
    EXPECT_EQ(Show([&](QWidget& dialog) { Click(dialog, "pushButtonOk"); }), KXP_OK);
    EXPECT_EQ(ScriptFile(), Project() + "/lamp.js");
}

TEST_F(ScriptFilesOfTheSetup, LineEndsOfOtherSystemsAreNoChangeAndStay) {
    const std::string text = "({\r\n  Info: {}\r\n})\r\n";
    GivenScriptFile("lamp.js", text);
    Show([&](QWidget& dialog) { Click(dialog, "pushButtonOk"); });
    EXPECT_EQ(device->GetStoredSetup().GetScriptText().toStdString(), text) << "else the device would lose its file";
    Show([&](QWidget& dialog) {
        Edit(dialog, "({\n})\n");
        Click(dialog, "pushButtonSave");
        Click(dialog, "pushButtonCancel");
    });
    EXPECT_EQ(Read(Library(), "lamp.js"), "({\r\n})\r\n");
}

TEST_F(ScriptFilesOfTheSetup, ChangesOfAScriptWithAFileGoWhereTheUserSays) {
    struct Choice {
        const char* button;
        const char* inLibrary;
        const char* file;
    };
    for (const Choice& choice :
         {Choice{"radioButtonInternal", kLamp, ""}, Choice{"radioButtonUpdateScript", kEdited, "/lamp.js"}}) {
        GivenScriptFile("lamp.js", kLamp);
        Show([&](QWidget& dialog) {
            Edit(dialog, kEdited);
            dialogs.Expect([&](QWidget& question) {
                EXPECT_EQ(question.windowTitle(), QStringLiteral("Save options"));
                Click(question, choice.button);
                Click(question, "pushButtonOk");
            });
            Click(dialog, "pushButtonOk");
        });
        EXPECT_EQ(Read(Library(), "lamp.js"), choice.inLibrary);
        EXPECT_EQ(ScriptFile(), *choice.file != '\0' ? Project() + choice.file : "");
        EXPECT_EQ(device->GetStoredSetup().GetScriptText(), QLatin1String(kEdited));
    }
    EXPECT_EQ(device->GetStoredSetup().Memory().saveOption, 1);
}

TEST_F(ScriptFilesOfTheSetup, ChangesMayGoIntoANewScript) {
    GivenScriptFile("lamp.js", kLamp);
    Show([&](QWidget& dialog) {
        Edit(dialog, kEdited);
        dialogs.Expect([&](QWidget& question) {
            EXPECT_TRUE(Find<QRadioButton>(question, "radioButtonInternal").isChecked());
            Click(question, "radioButtonNewScript");
            ExpectName("other");
            Click(question, "pushButtonOk");
        });
        Click(dialog, "pushButtonOk");
    });
    EXPECT_EQ(Read(Library(), "lamp.js"), kLamp);
    EXPECT_EQ(Read(Library(), "other.js"), kEdited);
    EXPECT_EQ(ScriptFile(), Project() + "/other.js");
}

TEST_F(ScriptFilesOfTheSetup, CancelOfTheQuestionStillAcceptsTheSetupAsMeant) {
    GivenScriptFile("lamp.js", kLamp);
    EXPECT_NE(Show([&](QWidget& dialog) {
                  Edit(dialog, kEdited);
                  dialogs.Expect([](QWidget& question) { Click(question, "pushButtonCancel"); });
                  Click(dialog, "pushButtonOk");
              }),
              13u);
    EXPECT_EQ(Read(Library(), "lamp.js"), kLamp);
    EXPECT_EQ(Read(Project(), "lamp.js"), kLamp);
    EXPECT_EQ(device->GetStoredSetup().GetScriptText(), QLatin1String(kEdited));
}

TEST_F(ScriptFilesOfTheSetup, SaveAsChosenAndCancelledStillAcceptsAsMeant) {
    GivenScriptFile("lamp.js", kLamp);
    Show([&](QWidget& dialog) {
        Edit(dialog, kEdited);
        dialogs.Expect([&](QWidget& question) {
            Click(question, "radioButtonNewScript");
            dialogs.Expect([](QWidget& choice) { Click(choice, "pushButtonCancel"); });
            Click(question, "pushButtonOk");
        });
        Click(dialog, "pushButtonOk");
    });
    EXPECT_EQ(Read(Library(), "lamp.js"), kLamp);
    EXPECT_EQ(device->GetStoredSetup().GetScriptText(), QLatin1String(kEdited));
}

TEST_F(ScriptFilesOfTheSetup, AFileThatVanishedOrWasReplacedOpensTheQuestion) {
    for (const bool vanishes : {true, false}) {
        GivenScriptFile("lamp.js", kLamp);
        Show([&](QWidget& dialog) {
            if (vanishes)
                QFile::remove(QString::fromStdString(Project() + "/lamp.js"));
            else
                Write(Project() + "/lamp.js", kFan);
            dialogs.Expect([&](QWidget& question) {
                Click(question, "radioButtonUpdateScript");
                if (!vanishes)
                    dialogs.Expect(Press("pushButtonOk", "was changed by another program."));
                Click(question, "pushButtonOk");
            });
            Click(dialog, "pushButtonOk");
        });
        EXPECT_EQ(Read(Project(), "lamp.js"), kLamp) << "the editor's text is written";
    }
}

TEST_F(ScriptFilesOfTheSetup, AFileThatAnotherProgramHasChangedIsOverwrittenOnlyWhenTheUserSaysSo) {
    for (const std::string& changed : {Project(), Library()}) {
        GivenScriptFile("lamp.js", kLamp);
        Show([&](QWidget& dialog) {
            Edit(dialog, kEdited);
            Write(changed + "/lamp.js", kFan);
            const std::string question = "The file '" + changed + "/lamp.js' was changed by another program.";
            dialogs.Expect(Press("pushButtonCancel", question.c_str()));
            Click(dialog, "pushButtonSave");
            EXPECT_EQ(Read(changed, "lamp.js"), kFan);
            dialogs.Expect([&](QWidget& options) {
                Click(options, "radioButtonUpdateScript");
                dialogs.Expect(Press("pushButtonCancel", question.c_str()));
                Click(options, "pushButtonOk");
            });
            Click(dialog, "pushButtonOk");
            EXPECT_TRUE(dialog.isVisible()) << "the user may find another place";
            EXPECT_EQ(Read(changed, "lamp.js"), kFan);
            dialogs.Expect(Press("pushButtonOk", question.c_str()));
            Click(dialog, "pushButtonSave");
            EXPECT_EQ(Read(changed, "lamp.js"), kEdited);
            Click(dialog, "pushButtonSave"); // it is the dialog's own now
            Click(dialog, "pushButtonOk");
        });
        EXPECT_EQ(Read(Library(), "lamp.js"), kEdited);
        EXPECT_EQ(Read(Project(), "lamp.js"), kEdited);
    }
}

/// A path goes to the device in the host's 8-bit text, in which some names of files cannot be said.
TEST_F(ScriptFilesOfTheSetup, ACopyThatCannotBeReadTellsSoAndUndoBringsTheTextBack) {
    GivenScript(kFan);
    const std::string name = "\xd0\xbb\xd0\xb0.js";
    WriteLibrary(name, kLamp);
    Show([&](QWidget& dialog) {
        dialogs.Expect([](QWidget& choice) {
            Find<QListWidget>(choice, "listWidgetScripts").setCurrentRow(0);
            Click(choice, "pushButtonOk");
        });
        Click(dialog, "pushButtonLoad");
        EXPECT_EQ(Read(Project(), name), kLamp) << "it was copied";
        EXPECT_EQ(TextOf(dialog, "plainTextEditScript"), "");
        EXPECT_EQ(TextOf(dialog, "lineEditDebugInfo"), DeviceText::kUnreadableFile);
        Find<QTabWidget>(dialog, "tabWidget").setCurrentIndex(1);
        QTest::keyClick(&Find<QPlainTextEdit>(dialog, "plainTextEditScript"), Qt::Key_Z, Qt::ControlModifier);
        EXPECT_EQ(TextOf(dialog, "plainTextEditScript"), kFan);
        Click(dialog, "pushButtonCancel");
    });
    EXPECT_EQ(device->GetStoredSetup().GetScriptText(), QLatin1String(kFan));
}

TEST_F(ScriptFilesOfTheSetup, WithoutALibraryTheTextStaysInTheEditor) {
    GivenScriptFile("lamp.js", kLamp);
    module.library.clear();
    Show([&](QWidget& dialog) {
        Edit(dialog, kEdited);
        ExpectName("desk");
        Click(dialog, "pushButtonSave");
        EXPECT_EQ(TextOf(dialog, "plainTextEditScript"), kEdited);
        Click(dialog, "pushButtonCancel");
    });
}

} // namespace
