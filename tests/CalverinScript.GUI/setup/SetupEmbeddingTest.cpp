#include <QDialog>
#include <QWindow>

#include "Deadline.h"
#include "SetupDialogFixture.h"

namespace {

class TheSetupDialogOnAHost : public TheSetupDialog {};

TEST_F(TheSetupDialogOnAHost, AHungScriptOfTheDeviceDoesNotHoldItUp) {
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

TEST_F(TheSetupDialogOnAHost, DoesNotOpenWhereThereIsNoScreen) {
    GivenScript(kDriver);
    const QByteArray platform = qgetenv("QT_QPA_PLATFORM");
    if (platform != "offscreen")
        GTEST_SKIP() << "there is one";
    qunsetenv("QT_QPA_PLATFORM"); // the platform was chosen for want of another
    EXPECT_EQ(device->ShowSetupDialog(nullptr), 13u);
    qputenv("QT_QPA_PLATFORM", platform);
}

TEST_F(TheSetupDialogOnAHost, OpensOnceForADeviceAtATime) {
    GivenScript(kDriver);
    Show([&](QWidget& dialog) {
        EXPECT_EQ(device->ShowSetupDialog(nullptr), 13u);
        Click(dialog, "pushButtonCancel");
    });
}

TEST_F(TheSetupDialogOnAHost, IsRejectedWhenTheHostsWindowGoesAway) {
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

TEST_F(TheSetupDialogOnAHost, IsRejectedWhenTheDeviceGoesAway) {
    GivenScript(kDriver);
    EXPECT_EQ(Show([&](QWidget& dialog) {
                  device->Release();
                  device = nullptr;
                  EXPECT_FALSE(dialog.isVisible());
              }),
              13u);
}

TEST_F(TheSetupDialogOnAHost, IsRejectedWithTheQuestionThatItAsksWhenTheHostsWindowGoesAway) {
    GivenScriptFile("lamp.js", kDriver);
    for (const char* script : {"({", "({})"}) { // asks whether to continue, and where the changes go
        auto window = std::make_unique<QWidget>();
        window->show();
        host.mainWindow = window->winId();
        EXPECT_EQ(Show([&](QWidget& dialog) {
                      TypeScript(dialog, script);
                      dialogs.Expect([&](QWidget& question) {
                          window.reset();
                          EXPECT_FALSE(question.isVisible());
                      });
                      Click(dialog, "pushButtonOk");
                      EXPECT_FALSE(dialog.isVisible());
                  }),
                  13u)
            << script;
        EXPECT_EQ(device->GetStoredSetup().GetScriptText().toStdString(), kDriver);
    }
}

TEST_F(TheSetupDialogOnAHost, IsRejectedWithTheQuestionThatItAsksWhenTheDeviceGoesAway) {
    GivenScriptFile("lamp.js", kDriver);
    EXPECT_EQ(Show([&](QWidget& dialog) {
                  TypeScript(dialog, "({})");
                  dialogs.Expect([&](QWidget& question) {
                      device->Release();
                      device = nullptr;
                      EXPECT_FALSE(question.isVisible());
                  });
                  Click(dialog, "pushButtonOk");
              }),
              13u);
}

TEST_F(TheSetupDialogOnAHost, StandsInTheMiddleOfTheHostsWindowButNotAboveTheScreen) {
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

TEST_F(TheSetupDialogOnAHost, WearsTheHostsThemeOnlyWhenThereIsOne) {
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

} // namespace
