#include <QCheckBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QListWidget>
#include <QRadioButton>
#include <QScriptEngine>

#include "DialogMessage.h"
#include "DialogSaveScript.h"
#include "DialogSaveScriptOptions.h"
#include "DialogSelectScript.h"
#include "SetupFixture.h"

namespace {

constexpr const char* kTitled = "({ Info: { Title: 'Lamp', Version: 2, Author: 'Ada', Description: 'light' } })";

class TheScriptLibrary : public SetupFixture {
protected:
    /// Opens the list of scripts. @return whether it was accepted.
    bool ShowList(const std::function<void(QWidget&)>& work, const char* select = "") {
        DialogSelectScript dialog(nullptr);
        dialog.SetDevice(device);
        dialog.Load(QLatin1String(select), &engine);
        dialogs.Expect(work);
        const bool accepted = dialog.exec() == QDialog::Accepted;
        path = dialog.GetPath().toStdString();
        return accepted;
    }
    static QListWidget& List(QWidget& dialog) { return Find<QListWidget>(dialog, "listWidgetScripts"); }
    static std::string Items(QWidget& dialog) {
        QStringList texts;
        for (int row = 0; row < List(dialog).count(); ++row)
            texts += List(dialog).item(row)->text();
        texts.sort();
        return texts.join(QLatin1Char(',')).toStdString();
    }
    static void Choose(QWidget& dialog, const char* text) {
        const auto found = List(dialog).findItems(QLatin1String(text), Qt::MatchExactly);
        ASSERT_EQ(found.size(), 1) << text;
        QTest::mouseClick(List(dialog).viewport(), Qt::LeftButton, Qt::NoModifier,
                          List(dialog).visualItemRect(found[0]).center());
    }
    /// Answers a file dialog; an empty path cancels it.
    void ExpectFile(const std::string& file, const char* title) {
        dialogs.Expect([file, title](QWidget& dialog) {
            EXPECT_EQ(dialog.windowTitle(), QLatin1String(title));
            auto& field = Find<QLineEdit>(dialog, "fileNameEdit");
            field.setText(QString::fromStdString(file));
            QTest::keyClick(&field, file.empty() ? Qt::Key_Escape : Qt::Key_Return);
        });
    }
    std::string Outside(const char* name) const { return m_folder.path().toStdString() + "/" + name; }

    QScriptEngine engine;
    std::string path;
};

TEST_F(TheScriptLibrary, ThatIsEmptyOrMissingGivesAnEmptyListAndNoOk) {
    for (const std::string& library : {Library(), Library() + "/none", std::string()}) {
        module.library = library;
        EXPECT_FALSE(ShowList([](QWidget& dialog) {
            EXPECT_EQ(List(dialog).count(), 0);
            EXPECT_FALSE(Find<QWidget>(dialog, "pushButtonOk").isEnabled());
            EXPECT_FALSE(Find<QWidget>(dialog, "pushButtonExport").isEnabled());
            Click(dialog, "pushButtonCancel");
        }));
    }
}

TEST_F(TheScriptLibrary, ListsScriptsUnderTheirTitlesOrTheirBaseNames) {
    WriteLibrary("lamp.js", kTitled);
    WriteLibrary("broken.js", "({");
    WriteLibrary("plain.js", "1 + 1");
    WriteLibrary("number.js", "({ Info: { Title: 7 } })");
    WriteLibrary("notes.txt", "no script");
    ShowList([](QWidget& dialog) {
        EXPECT_EQ(Items(dialog), "7 (number.js),Lamp (lamp.js),broken (broken.js),plain (plain.js)");
        Click(dialog, "pushButtonCancel");
    });
}

TEST_F(TheScriptLibrary, ShowsTheChosenScript) {
    WriteLibrary("lamp.js", kTitled);
    EXPECT_TRUE(ShowList([](QWidget& dialog) {
        EXPECT_FALSE(Find<QWidget>(dialog, "lineEditTitle").isEnabled());
        Choose(dialog, "Lamp (lamp.js)");
        EXPECT_EQ(TextOf(dialog, "lineEditFileName"), "lamp.js");
        EXPECT_EQ(TextOf(dialog, "lineEditTitle"), "Lamp");
        EXPECT_EQ(Find<QWidget>(dialog, "lineEditTitle").toolTip(), QStringLiteral("Lamp")) << "where it is cut";
        EXPECT_EQ(TextOf(dialog, "lineEditVersion"), "2");
        EXPECT_EQ(TextOf(dialog, "lineEditAuthor"), "Ada");
        EXPECT_EQ(TextOf(dialog, "plainTextEditDescription"), "light");
        Click(dialog, "pushButtonOk");
    }));
    EXPECT_EQ(path, Library() + "/lamp.js");
}

TEST_F(TheScriptLibrary, BeginsWithTheScriptOfTheDevice) {
    WriteLibrary("lamp.js", kTitled);
    WriteLibrary("fan.js", "({})");
    ShowList(
        [](QWidget& dialog) {
            EXPECT_EQ(List(dialog).currentItem()->text(), QStringLiteral("fan (fan.js)"));
            Click(dialog, "pushButtonCancel");
        },
        "/elsewhere/fan.js");
}

TEST_F(TheScriptLibrary, ADoubleClickChooses) {
    WriteLibrary("lamp.js", kTitled);
    EXPECT_TRUE(ShowList([](QWidget& dialog) {
        Choose(dialog, "Lamp (lamp.js)");
        QTest::mouseDClick(List(dialog).viewport(), Qt::LeftButton, Qt::NoModifier,
                           List(dialog).visualItemRect(List(dialog).currentItem()).center());
    }));
    EXPECT_EQ(path, Library() + "/lamp.js");
}

TEST_F(TheScriptLibrary, ImportBringsAFileIn) {
    Write(Outside("lamp.js"), kTitled);
    ShowList([&](QWidget& dialog) {
        ExpectFile(Outside("lamp.js"), "Import Calverin Script");
        Click(dialog, "pushButtonImport");
        EXPECT_EQ(Items(dialog), "Lamp (lamp.js)");
        Click(dialog, "pushButtonCancel");
    });
    EXPECT_EQ(Read(Library(), "lamp.js"), kTitled);
}

TEST_F(TheScriptLibrary, ImportFromTheLibraryItselfIsRefusedAndTheFileDialogComesBack) {
    WriteLibrary("lamp.js", kTitled);
    ShowList([&](QWidget& dialog) {
        ExpectFile(Library() + "/lamp.js", "Import Calverin Script");
        dialogs.Expect(Press("pushButtonOk", "It is not possible to import script from the Scripts Library."));
        ExpectFile("", "Import Calverin Script");
        Click(dialog, "pushButtonImport");
        Click(dialog, "pushButtonCancel");
    });
    EXPECT_EQ(Read(Library(), "lamp.js"), kTitled);
}

TEST_F(TheScriptLibrary, ImportOverAScriptAsksAndReplacesItsEntryInPlace) {
    WriteLibrary("lamp.js", "({})");
    Write(Outside("lamp.js"), kTitled);
    ShowList([&](QWidget& dialog) {
        Choose(dialog, "lamp (lamp.js)");
        ExpectFile(Outside("lamp.js"), "Import Calverin Script");
        dialogs.Expect(Press("pushButtonCancel", "A script file with the same name,lamp.js, already exists"));
        ExpectFile("", "Import Calverin Script");
        Click(dialog, "pushButtonImport");
        EXPECT_EQ(Items(dialog), "lamp (lamp.js)");
        ExpectFile(Outside("lamp.js"), "Import Calverin Script");
        dialogs.Expect(Press("pushButtonOk", "Do you want to overwrite it?"));
        Click(dialog, "pushButtonImport");
        EXPECT_EQ(Items(dialog), "Lamp (lamp.js)");
        EXPECT_EQ(TextOf(dialog, "lineEditTitle"), "Lamp") << "the fields follow";
        Click(dialog, "pushButtonCancel");
    });
    EXPECT_EQ(Read(Library(), "lamp.js"), kTitled);
}

TEST_F(TheScriptLibrary, AFailedImportLeadsToTheExportDialogAsMeant) {
    WriteLibrary("fan.js", "({})");
    QDir().mkpath(QString::fromStdString(Library() + "/lamp.js")); // a folder of that name
    Write(Outside("lamp.js"), kTitled);
    ShowList([&](QWidget& dialog) {
        Choose(dialog, "fan (fan.js)");
        ExpectFile(Outside("lamp.js"), "Import Calverin Script");
        dialogs.Expect(Press("pushButtonOk", "already exists into Scripts Library"));
        dialogs.Expect(Press("pushButtonOk", "An error happened during the importation."));
        ExpectFile("", "Export Calverin Script");
        Click(dialog, "pushButtonImport");
        Click(dialog, "pushButtonCancel");
    });
}

TEST_F(TheScriptLibrary, ExportBringsAFileOut) {
    WriteLibrary("lamp.js", kTitled);
    ShowList([&](QWidget& dialog) {
        Choose(dialog, "Lamp (lamp.js)");
        ExpectFile(Library() + "/copy.js", "Export Calverin Script");
        dialogs.Expect(Press("pushButtonOk", "It is not possible to export script into the Scripts Library."));
        ExpectFile(Outside("copy.js"), "Export Calverin Script");
        Click(dialog, "pushButtonExport");
        Click(dialog, "pushButtonCancel");
    });
    EXPECT_EQ(Read(m_folder.path().toStdString(), "copy.js"), kTitled);
    EXPECT_EQ(Read(Library(), "copy.js"), "(none)");
}

TEST_F(TheScriptLibrary, TheSaveDialogTakesTheNameOfTheChosenScript) {
    WriteLibrary("lamp.js", kTitled);
    DialogSaveScript dialog(nullptr);
    dialog.SetDevice(device);
    dialog.Load(QString(), &engine);
    dialogs.Expect([](QWidget& shown) {
        EXPECT_EQ(TextOf(shown, "lineEditFileName"), "");
        Choose(shown, "Lamp (lamp.js)");
        EXPECT_EQ(TextOf(shown, "lineEditFileName"), "lamp.js");
        QTest::mouseDClick(List(shown).viewport(), Qt::LeftButton, Qt::NoModifier,
                           List(shown).visualItemRect(List(shown).currentItem()).center());
    });
    EXPECT_EQ(dialog.exec(), QDialog::Accepted);
    EXPECT_EQ(dialog.GetFileName(), QStringLiteral("lamp.js"));
}

class Messages : public SetupFixture {};

TEST_F(Messages, BothAnswersAcceptAndOnlyTheBoxRejects) {
    const auto ask = [&](std::function<void(QWidget&)> answer) {
        DialogMessage message(nullptr, QStringLiteral("T"), QStringLiteral("Text"), true, true);
        dialogs.Expect(std::move(answer));
        const int result = message.exec();
        return std::make_pair(result, message.GetAnswer());
    };
    EXPECT_EQ(ask([](QWidget& m) {
                  EXPECT_EQ(TextOf(m, "pushButtonOk"), "&Yes");
                  EXPECT_EQ(TextOf(m, "pushButtonCancel"), "&No");
                  Click(m, "pushButtonOk");
              }),
              std::make_pair(int(QDialog::Accepted), true));
    EXPECT_EQ(ask([](QWidget& m) { Click(m, "pushButtonCancel"); }), std::make_pair(int(QDialog::Accepted), false));
    EXPECT_EQ(ask([](QWidget& m) { CloseBox(m); }), std::make_pair(int(QDialog::Rejected), false));
    EXPECT_EQ(ask([](QWidget& m) { QTest::keyClick(&m, Qt::Key_Escape); }),
              std::make_pair(int(QDialog::Rejected), false));
}

TEST_F(Messages, TellWhetherTheChoiceIsToBeRemembered) {
    for (const bool ticks : {false, true}) {
        DialogMessage message(nullptr, QStringLiteral("T"), QStringLiteral("Text"), true, true);
        message.ShowRememberChoice(true);
        dialogs.Expect([ticks](QWidget& m) {
            EXPECT_EQ(TextOf(m, "checkBoxRememberChoice"), "&Remember my choice.");
            if (ticks)
                Click(m, "checkBoxRememberChoice");
            Click(m, "pushButtonOk");
        });
        message.exec();
        EXPECT_EQ(message.GetRememberChoice(), ticks);
    }
}

TEST_F(Messages, AWarningHasOneButtonAndNoBoxToRemember) {
    dialogs.Expect([](QWidget& message) {
        EXPECT_EQ(message.windowTitle(), QStringLiteral("Warning"));
        EXPECT_FALSE(Find<QWidget>(message, "pushButtonCancel").isVisible());
        EXPECT_FALSE(Find<QWidget>(message, "checkBoxRememberChoice").isVisible());
        QTest::keyClick(&message, Qt::Key_Return);
    });
    DialogMessage::Warn(nullptr, QStringLiteral("Careful"));
}

TEST_F(Messages, TheSaveOptionsBeginWithTheStoredOne) {
    for (int option = 0; option < 3; ++option) {
        DialogSaveScriptOptions options(nullptr, option);
        EXPECT_EQ(options.GetOption(), option);
    }
}

} // namespace
