#include <algorithm>
#include <atomic>
#include <thread>

#include <QApplication>
#include <QMenu>

#include "PanelFixture.h"

namespace {

constexpr const char* kScript = "({ Who: function() { return 'first'; }, Hang: function() { while (true) {} } })";

class ThePanelsEnds : public PanelFixture {
protected:
    void TearDown() override {
        PanelFixture::TearDown();
        EXPECT_TRUE(Eventually([] { return MCalverinScript_Device::SweepAbandoned() == 0; }));
    }
    /// Does something once, when the host is asked the next time.
    void WhenAsked(const char* operation, const std::function<void()>& work) {
        host.isAsked = [this, operation, work](const std::string& asked) {
            if (asked != operation)
                return;
            host.isAsked = nullptr;
            work();
        };
    }
    void GivenColors() { host.colors = {{0, 0}, {1, 0x00FFFFFF}, {6, 0}, {7, 0x00FFFFFF}, {8, 0}}; }
    void GivenNewDevice() { device = new MCalverinScript_Device(&module, &setup, "Desk"); }
    /// Does something as soon as the event loop is free.
    static void Soon(const std::function<void()>& work) { QTimer::singleShot(0, qApp, work); }
    static bool HasNoPanelLeft() {
        return Comes([] {
            const QWidgetList all = QApplication::allWidgets();
            return std::none_of(all.begin(), all.end(),
                                [](QWidget* part) { return part->inherits("WidgetMScriptControlPanel"); });
        });
    }
};

TEST_F(ThePanelsEnds, ADeviceThatIsReleasedLeavesItsPanelWithWhatItHad) {
    GivenRunningScript(kScript);
    GivenPanel();
    TypeScript("({ mine: 1 })");
    ReleaseDevice();
    EXPECT_TRUE(IsShown());
    EXPECT_EQ(Text(), "({ mine: 1 })") << "it can still be copied";
    EXPECT_EQ(Status(), "Released");
    for (const char* button : {"pushButtonLoad", "pushButtonSave", "pushButtonSaveAs", "pushButtonRefreshFromDevice",
                               "pushButtonSync", "pushButtonEvaluate", "pushButtonDebugCurrentSript"})
        EXPECT_FALSE(Find<QPushButton>(Widget(), button).isEnabled()) << button;
    EXPECT_TRUE(Editor().isReadOnly());
    panel->SetState(KXP_PANEL_VISIBLE, 0);
    panel->SetState(KXP_PANEL_VISIBLE, 1);
    EXPECT_TRUE(IsShown());
}

TEST_F(ThePanelsEnds, ADeviceMayBeReleasedWhileAScriptToImportIsChosen) {
    GivenRunningScript(kScript);
    GivenPanel();
    dialogs.Expect([&](QWidget& load) {
        dialogs.Expect([&](QWidget&) { ReleaseDevice(); });
        Click(load, "pushButtonImport");
    });
    Press("pushButtonLoad");
    EXPECT_EQ(Status(), "Released");
}

TEST_F(ThePanelsEnds, ADeviceMayBeReleasedWhenTheHostIsAskedForAColorOfItsSetupDialog) {
    GivenColors();
    GivenScript(kScript);
    WhenAsked("GetColor", [this] { ReleaseDevice(); });
    MCalverinScript_Device* const asked = device;
    EXPECT_EQ(asked->ShowSetup(nullptr), KXPCode{KXP_CANCELLED});
    GivenNewDevice();
    WhenAsked("GetMainWindow", [this] { ReleaseDevice(); });
    MCalverinScript_Device* const askedAgain = device;
    EXPECT_EQ(askedAgain->ShowSetup(nullptr), KXPCode{KXP_CANCELLED});
}

TEST_F(ThePanelsEnds, APanelThatIsReleasedLeavesItsDevice) {
    GivenRunningScript(kScript);
    GivenPanel();
    ReleasePanel();
    EXPECT_TRUE(HasNoPanelLeft());
    EXPECT_EQ(Call("Who"), "first");
    device->Stop();
    device->Start();
}

TEST_F(ThePanelsEnds, ASlotOfAPanelWithoutADeviceDoesNothing) {
    GivenPanel();
    QWidget& widget = Widget();
    ReleaseDevice();
    for (const char* slot : {"SlotOpenFile", "SlotSynchronizeScript", "SlotRefreshFromDevice", "SlotOpenFinder",
                             "SlotEnableSaveButton", "SlotEnableSyncButton"})
        EXPECT_TRUE(QMetaObject::invokeMethod(&widget, slot)) << slot;
    for (const char* slot : {"SlotCallEvaluateScript", "SlotSaveFile", "SlotSaveAsFile"}) {
        bool result = true;
        EXPECT_TRUE(QMetaObject::invokeMethod(&widget, slot, Q_RETURN_ARG(bool, result))) << slot;
        EXPECT_FALSE(result) << slot;
    }
    for (const char* slot : {"SlotOnNotifyScriptChange", "SlotOnNotifyScriptFileNameChange"})
        EXPECT_TRUE(QMetaObject::invokeMethod(&widget, slot, Q_ARG(QString, QStringLiteral("late")))) << slot;
    EXPECT_EQ(Text(), "");
}

TEST_F(ThePanelsEnds, TheHostMayReleaseTheDeviceFromEachQuestionOfANewPanel) {
    GivenColors();
    for (const char* operation : {"GetMainWindow", "GetColor"}) {
        WhenAsked(operation, [this] { ReleaseDevice(); });
        MCalverinScript_Device* const asked = device;
        EXPECT_EQ(asked->CreatePanel(1, &panel), KXPCode{KXP_NOT_IMPLEMENTED}) << operation;
        EXPECT_EQ(panel, nullptr);
        EXPECT_TRUE(HasNoPanelLeft());
        GivenNewDevice();
    }
}

TEST_F(ThePanelsEnds, TheHostMayReleaseThePanelFromEachQuestion) {
    GivenColors();
    for (const char* operation : {"GetUserMode", "GetColor"}) {
        GivenPanel();
        WhenAsked(operation, [this] { ReleasePanel(); });
        panel->SetState(KXP_PANEL_VISIBLE, 1);
        EXPECT_EQ(panel, nullptr) << operation;
        EXPECT_TRUE(HasNoPanelLeft());
    }
}

TEST_F(ThePanelsEnds, TheHostMayReleaseThePanelWhenItsDeviceStarts) {
    GivenScript(kScript);
    GivenPanel();
    int asked = 0;
    host.isAsked = [&](const std::string& operation) {
        if (operation == "GetUserMode" && ++asked == 2) // the first one is the device's own
            ReleasePanel();
    };
    device->Start();
    EXPECT_TRUE(Comes([&] { return panel == nullptr; }));
    EXPECT_TRUE(HasNoPanelLeft());
}

TEST_F(ThePanelsEnds, TheHostMayReleaseTheDeviceOrDeleteItsWindowFromAQuestion) {
    GivenColors();
    GivenPanel();
    WhenAsked("GetUserMode", [this] { window.reset(); });
    panel->SetState(KXP_PANEL_VISIBLE, 1);
    EXPECT_EQ(panel->GetWindow(), 0u);
    ReleasePanel();
    host.mainWindow = 0;
    GivenPanel();
    WhenAsked("GetUserMode", [this] { ReleaseDevice(); });
    panel->SetState(KXP_PANEL_VISIBLE, 1);
    EXPECT_EQ(Status(), "Released");
}

TEST_F(ThePanelsEnds, WithTheHostsWindowItsOwnGoes) {
    GivenPanel();
    window.reset();
    EXPECT_EQ(panel->GetWindow(), 0u);
    panel->SetState(KXP_PANEL_VISIBLE, 1);
    panel->SetState(KXP_PANEL_VISIBLE, 0);
    EXPECT_STREQ(panel->GetName(), "Calverin Script Control Panel");
    EXPECT_TRUE(HasNoPanelLeft());
    device->Start();
    QApplication::processEvents();
}

TEST_F(ThePanelsEnds, WithTheHostsWindowGoesADialogOfThePanel) {
    GivenPanel();
    dialogs.Expect([&](QWidget& dialog) {
        window.reset();
        EXPECT_FALSE(dialog.isVisible());
    });
    Press("pushButtonLoad");
    EXPECT_EQ(panel->GetWindow(), 0u);
    EXPECT_TRUE(HasNoPanelLeft());
}

/// What opens a dialog of the panel.
struct Opener {
    const char* sentence;
    std::function<void(QWidget&)> open;
};

const Opener kOpeners[] = {{"Load", [](QWidget& panel) { Click(panel, "pushButtonLoad"); }},
                           {"Save as", [](QWidget& panel) { Click(panel, "pushButtonSaveAs"); }},
                           {"Find", [](QWidget& panel) {
                                QTest::keyClick(&Find<QWidget>(panel, "plainTextEditScript"), Qt::Key_F,
                                                Qt::ControlModifier);
                            }}};

TEST_F(ThePanelsEnds, APanelMayBeReleasedWhileADialogOfItIsOpen) {
    for (const Opener& opener : kOpeners) {
        GivenPanel();
        dialogs.Expect([&](QWidget& dialog) {
            ReleasePanel();
            EXPECT_FALSE(dialog.isVisible()) << opener.sentence;
        });
        opener.open(Widget());
        EXPECT_TRUE(Comes([&] { return dialogs.IsDone(); })) << opener.sentence;
        EXPECT_TRUE(HasNoPanelLeft()) << opener.sentence;
    }
}

TEST_F(ThePanelsEnds, ADeviceMayBeReleasedWhileADialogOfItsPanelIsOpen) {
    for (const Opener& opener : kOpeners) {
        GivenPanel();
        dialogs.Expect([&](QWidget& dialog) {
            ReleaseDevice();
            EXPECT_FALSE(dialog.isVisible()) << opener.sentence;
        });
        opener.open(Widget());
        EXPECT_TRUE(Comes([&] { return device == nullptr && Status() == "Released"; })) << opener.sentence;
        ReleasePanel();
        GivenNewDevice();
    }
}

TEST_F(ThePanelsEnds, APanelMayBeReleasedWhileItsMenuIsOpen) {
    GivenPanel();
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, qApp, [&] {
        if (qobject_cast<QMenu*>(QApplication::activePopupWidget()) == nullptr)
            return;
        look.stop();
        ReleasePanel();
    });
    look.start(1);
    Q_EMIT Editor().customContextMenuRequested(QPoint(5, 5));
    EXPECT_EQ(panel, nullptr);
    EXPECT_TRUE(HasNoPanelLeft());
}

TEST_F(ThePanelsEnds, APanelMayBeReleasedWhileItsDeviceLoadsAScriptThatHangs) {
    GivenRunningScript(kScript);
    GivenPanel();
    TypeScript("while (true) {}");
    Soon([this] {
        EXPECT_FALSE(Find<QPushButton>(Widget(), "pushButtonLoad").isEnabled()) << "nothing else is begun meanwhile";
        EXPECT_FALSE(CanUpdate());
        ReleasePanel();
        Soon([this] { ReleaseDevice(); });
    });
    Press("pushButtonSync");
    EXPECT_EQ(device, nullptr);
    EXPECT_TRUE(HasNoPanelLeft());
}

TEST_F(ThePanelsEnds, ADeviceMayBeReleasedWhileItLoadsAScriptThatHangs) {
    GivenRunningScript(kScript);
    GivenPanel();
    TypeScript("while (true) {}");
    Soon([this] { ReleaseDevice(); });
    Press("pushButtonSync");
    EXPECT_EQ(Status(), "Released");
    EXPECT_EQ(Text(), "while (true) {}");
}

TEST_F(ThePanelsEnds, AHungScriptHoldsUpNoPanel) {
    GivenRunningScript(kScript);
    auto hanging = plain::Params::ForFunction("Hang", {});
    plain::Context context;
    ASSERT_EQ(device->ExecuteCommand(3, hanging.get(), &context), KXP_OK);
    ASSERT_TRUE(variables.status.Plain().WaitFor("2"));
    GivenPanel();
    EXPECT_EQ(Text(), kScript);
    TypeScript("({ mine: 1 })");
    Press("pushButtonRefreshFromDevice");
    EXPECT_EQ(Text(), kScript);
    ReleasePanel();
    ReleaseDevice();
    EXPECT_TRUE(context.WaitForEnd());
}

TEST_F(ThePanelsEnds, TheModulesEndTakesItsWindowOnly) {
    GivenPanel();
    SetupInterface::ClosePanels();
    EXPECT_EQ(panel->GetWindow(), 0u);
    EXPECT_TRUE(HasNoPanelLeft());
    SetupInterface::ClosePanels();
}

TEST_F(ThePanelsEnds, StartsAndStopsOfOtherThreadsMeetPanelsThatComeAndGo) {
    GivenScript(kScript);
    std::atomic<bool> isOver{false};
    std::thread starts([&] {
        for (int round = 0; round < 50; ++round) {
            device->Start();
            device->Stop();
        }
        isOver = true;
    });
    while (!isOver) {
        GivenPanel();
        QApplication::processEvents();
        ReleasePanel();
    }
    starts.join();
    EXPECT_TRUE(HasNoPanelLeft());
}

} // namespace
