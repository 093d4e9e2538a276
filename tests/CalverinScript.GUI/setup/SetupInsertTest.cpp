#include <atomic>
#include <utility>

#include <QListWidget>
#include <QPushButton>

#include "Deadline.h"
#include "DialogInsertPerformHelper.h"
#include "ModuleShared.h"
#include "SetupCompletionFixture.h"
#include "SlowRemote2.h"

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

/// The composer, opened by its key.
class TheComposerInAShow : public TheDialogInAShow {
protected:
    static constexpr const char* kProjector =
        "<Device><Commands><Command Name='Lamp'><ObjectParams><ObjectParam><IntegerData Name='On' Value='1'/>"
        "</ObjectParam></ObjectParams></Command></Commands></Device>";

    void SetUp() override {
        host.offerRemoteManager2 = true;
        host.remote2 = &newer;
        TheDialogInAShow::SetUp();
        GivenCompletion(true);
    }
    static void Choose(QWidget& composer, const char* listName, const char* name) {
        auto& list = Find<QListWidget>(composer, listName);
        const auto found = list.findItems(QLatin1String(name), Qt::MatchExactly);
        ASSERT_EQ(found.size(), 1) << name;
        QTest::mouseClick(list.viewport(), Qt::LeftButton, Qt::NoModifier, list.visualItemRect(found.front()).center());
    }
    static bool Offers(QWidget& composer, const char* command) {
        return QTest::qWaitFor(
            [&] {
                auto& list = Find<QListWidget>(composer, "listCommandList");
                return !list.findItems(QLatin1String(command), Qt::MatchExactly).isEmpty();
            },
            kDeadlineMs);
    }
    static void Compose(QWidget& dialog) {
        Editor(dialog).setFocus();
        QTest::keyClick(&Editor(dialog), Qt::Key_P, Qt::AltModifier);
    }

    SlowRemote2 newer;
};

TEST_F(TheComposerInAShow, InsertsTheCallAtTheCaret) {
    Show([&](QWidget& dialog) {
        ClickTab(dialog, 1);
        TypeIntoEditor(dialog, "ab");
        QTest::keyClick(&Editor(dialog), Qt::Key_Left);
        dialogs.Expect([&](QWidget& opened) {
            Choose(opened, "listDeviceList", "Projector");
            newer.Answer(kProjector);
            ASSERT_TRUE(Offers(opened, "Lamp"));
            Choose(opened, "listCommandList", "Lamp");
            Click(opened, "pushButtonOk");
        });
        Compose(dialog);
        EXPECT_EQ(Editor(dialog).toPlainText().toStdString(),
                  "aQCalverin.Perform( \"Projector\", \"Lamp\", \"XML\", "
                  "\"<parameters> <parameter name='On' value='1'/> </parameters>\" );b");
        Click(dialog, "pushButtonCancel");
    });
}

TEST_F(TheComposerInAShow, LeavesTheScriptAsItIsWhenItIsCancelled) {
    Show([&](QWidget& dialog) {
        ClickTab(dialog, 1);
        TypeIntoEditor(dialog, "x");
        dialogs.Expect([&](QWidget& opened) {
            Choose(opened, "listDeviceList", "Desk");
            QTest::keyClick(&opened, Qt::Key_Escape);
        });
        Compose(dialog);
        newer.Answer(kProjector); // late: the dialog has gone
        EXPECT_EQ(Editor(dialog).toPlainText(), QStringLiteral("x"));
        Click(dialog, "pushButtonCancel");
    });
}

TEST_F(TheComposerInAShow, DoesNotOpenWhileTheScriptIsNotShown) {
    Show([&](QWidget& dialog) {
        for (const int tab : {0, 2, 3}) {
            ClickTab(dialog, tab);
            QTest::keyClick(&dialog, Qt::Key_P, Qt::AltModifier);
        }
        Click(dialog, "pushButtonCancel");
    });
}

TEST_F(TheComposerInAShow, HasNoDevicesWithoutARemoteManager) {
    host.remote = nullptr;
    Show([&](QWidget& dialog) {
        ClickTab(dialog, 1);
        dialogs.Expect([&](QWidget& opened) {
            EXPECT_EQ(Find<QListWidget>(opened, "listDeviceList").count(), 0);
            EXPECT_FALSE(Find<QPushButton>(opened, "pushButtonOk").isEnabled());
            Click(opened, "pushButtonCancel");
        });
        Compose(dialog);
        Click(dialog, "pushButtonCancel");
    });
}

TEST_F(TheComposerInAShow, IsLeftWithTheSetupWhenTheDeviceGoesWhileTheHostIsAsked) {
    EXPECT_EQ(Show([&](QWidget& dialog) {
                  ClickTab(dialog, 1);
                  dialogs.Expect([&](QWidget& opened) {
                      newer.onQuestion = [&](IExecContext2* context) {
                          newer.Hold(context);
                          std::exchange(device, nullptr)->Release();
                      };
                      Choose(opened, "listDeviceList", "Desk");
                      EXPECT_FALSE(opened.isVisible());
                  });
                  Compose(dialog);
                  newer.Answer(kProjector);
                  EXPECT_FALSE(dialog.isVisible());
              }),
              13u);
}

TEST_F(TheComposerInAShow, HearsTheHostAlsoWhenTheDeviceIsStartedAndStoppedMeanwhile) {
    Show([&](QWidget& dialog) {
        ClickTab(dialog, 1);
        dialogs.Expect([&](QWidget& opened) {
            Choose(opened, "listDeviceList", "Projector");
            device->Start();
            device->Stop();
            newer.Answer(kProjector);
            EXPECT_TRUE(Offers(opened, "Lamp"));
            Click(opened, "pushButtonCancel");
        });
        Compose(dialog);
        Click(dialog, "pushButtonCancel");
    });
}

TEST_F(TheComposerInAShow, IsNotHeldUpByAScriptThatWaitsForTheHostAndLeavesItsWaitAlone) {
    std::atomic<int> asked{0};
    newer.onQuestion = [&](IExecContext2* context) {
        newer.Hold(context);
        ++asked;
    };
    GivenScript(
        "({}); QCalverin.SetTimeout(function () { QCalverin.GetObject('first'); QCalverin.GetObject('next'); }, 0)");
    device->Start();
    ASSERT_TRUE(QTest::qWaitFor([&] { return asked == 1; }, kDeadlineMs));
    IExecContext2* const scripts = std::exchange(newer.held, nullptr);
    device->RebuildCompletionTable(true);
    DialogInsertPerformHelper composer(nullptr);
    composer.SetRemote(device->GetRemote());
    composer.SetModel(ModuleShared::Get()->completionModel.get());
    composer.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&composer, kDeadlineMs));
    Choose(composer, "listDeviceList", "Projector");
    EXPECT_EQ(asked, 2);
    newer.Answer(kProjector);
    EXPECT_TRUE(Offers(composer, "Lamp"));
    EXPECT_EQ(asked, 2) << "the script still waits";
    newer.Drop();
    scripts->End();
    EXPECT_TRUE(QTest::qWaitFor([&] { return asked == 3; }, kDeadlineMs)) << "it goes on by its own answer";
    scripts->Release();
    device->Stop();
}

} // namespace
