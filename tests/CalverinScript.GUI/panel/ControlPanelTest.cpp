#include <thread>

#include <QApplication>
#include <QWindow>

#include "PanelFixture.h"

namespace {

class Rect : public IPanelRect {
public:
    virtual ~Rect() = default;
    void SetLeft(std::int32_t value) override { left = value; }
    void SetTop(std::int32_t value) override { top = value; }
    void SetWidth(std::int32_t value) override { width = value; }
    void SetHeight(std::int32_t value) override { height = value; }

    std::int32_t left = -1;
    std::int32_t top = -1;
    std::int32_t width = -1;
    std::int32_t height = -1;
};

class TheControlPanel : public PanelFixture {
protected:
    void GivenVisibility(bool inUserMode, bool inRunMode) {
        DeviceSetup stored;
        stored.name = QStringLiteral("Desk");
        stored.script = SetupScript();
        stored.userModeVisible = inUserMode;
        stored.runModeVisible = inRunMode;
        ASSERT_EQ(device->SetSetup(PrintSetup(stored).c_str()), KXP_OK);
    }
};

TEST_F(TheControlPanel, IsMadeForItsKindAlone) {
    IKXPDevicePanel* out = nullptr;
    for (const std::uint32_t kind : {0u, 2u, 3u, 17u, 0xFFFFFFFFu}) {
        EXPECT_EQ(device->CreatePanel(kind, &out), KXPCode{KXP_NOT_IMPLEMENTED}) << kind;
        EXPECT_EQ(out, nullptr);
        EXPECT_EQ(device->CreatePanel(kind, nullptr), KXPCode{KXP_NULL_ARGUMENT}) << kind;
    }
    EXPECT_EQ(device->CreatePanel(1, nullptr), KXPCode{KXP_NULL_ARGUMENT});
    EXPECT_EQ(device->CreatePanel(1, &panel), KXP_OK);
    EXPECT_NE(panel, nullptr);
}

TEST_F(TheControlPanel, IsNotMadeOnAnotherThread) {
    IKXPDevicePanel* made = nullptr;
    std::thread([&] { made = setup.CreateControlPanel(*device); }).join();
    EXPECT_EQ(made, nullptr);
}

TEST_F(TheControlPanel, AnswersItsNames) {
    GivenPanel();
    EXPECT_EQ(QueryFace<IMInterface>(panel, "IMInterface"), static_cast<IMInterface*>(panel));
    EXPECT_EQ(QueryFace<IKXPDevicePanel>(panel, "IKXPDevicePanel"), panel);
    void* out = panel;
    EXPECT_EQ(panel->QueryInterface("IKXPDevice", &out), KXPCode{KXP_NO_INTERFACE});
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(panel->QueryInterface(nullptr, &out), KXPCode{KXP_BAD_INTERFACE_ARG});
    EXPECT_EQ(panel->QueryInterface("IMInterface", nullptr), KXPCode{KXP_BAD_INTERFACE_ARG});
    EXPECT_EQ(panel->Reserved4(panel), 0u);
    EXPECT_EQ(panel->Reserved6(panel), 1u);
    EXPECT_STREQ(panel->GetName(), "Calverin Script Control Panel");
}

TEST_F(TheControlPanel, TellsItsBounds) {
    GivenPanel();
    EXPECT_FALSE(panel->GetBounds(nullptr));
    Rect rect;
    EXPECT_TRUE(panel->GetBounds(&rect));
    EXPECT_EQ(rect.left, 0);
    EXPECT_EQ(rect.top, 0);
    const QSize pixels = WindowOf(*panel)->size() * WindowOf(*panel)->devicePixelRatioF();
    EXPECT_EQ(rect.width, pixels.width());
    EXPECT_EQ(rect.height, pixels.height());
}

TEST_F(TheControlPanel, KeepsTheHostsWord) {
    GivenPanel();
    EXPECT_EQ(panel->GetState(), 1u);
    panel->SetState(KXP_PANEL_STATE, 0x12345678);
    EXPECT_EQ(panel->GetState(), 0x12345678u);
    panel->SetState(2, 7);
    EXPECT_EQ(panel->GetState(), 0x12345678u);
    EXPECT_TRUE(IsShown());
}

TEST_F(TheControlPanel, IsHiddenUntilTheHostShowsIt) {
    ASSERT_EQ(device->CreatePanel(1, &panel), KXP_OK);
    ASSERT_NE(panel->GetWindow(), 0u);
    EXPECT_FALSE(IsShown());
    panel->SetState(KXP_PANEL_VISIBLE, 7);
    EXPECT_TRUE(IsShown());
    panel->SetState(KXP_PANEL_VISIBLE, 0);
    EXPECT_FALSE(IsShown());
}

TEST_F(TheControlPanel, StandsInTheMiddleOfTheHostsWindow) {
    GivenPanel();
    QWidget& own = *WindowOf(*panel);
    EXPECT_EQ(own.windowTitle(), QStringLiteral("ControlPanel Window"));
    EXPECT_EQ(own.windowHandle()->parent(), window->windowHandle()) << "natively too";
    EXPECT_LE((own.geometry().center() - window->rect().center()).manhattanLength(), 4);
    EXPECT_EQ(own.minimumSize(), own.size());
    EXPECT_EQ(own.maximumSize(), own.size());
}

TEST_F(TheControlPanel, InAWindowThatIsTooSmallBeginsAtItsEdge) {
    window->resize(200, 100);
    GivenPanel();
    EXPECT_EQ(WindowOf(*panel)->pos(), QPoint(0, 0));
}

TEST_F(TheControlPanel, OfAHostWithoutAWindowStandsByItself) {
    host.mainWindow = 0;
    GivenPanel();
    EXPECT_TRUE(IsShown());
    EXPECT_TRUE(WindowOf(*panel)->isWindow());
}

struct ModeRow {
    const char* sentence;
    std::uint32_t mode;
    bool inUserMode;
    bool inRunMode;
    bool isShown;
};

TEST_F(TheControlPanel, IsShownAsTheSetupSaysInUserModeAndInRunMode) {
    const ModeRow rows[] = {
        {"user mode, allowed there", 17, true, false, true}, {"user mode, not allowed there", 17, false, true, false},
        {"run mode, allowed there", 2, false, true, true},   {"run mode, not allowed there", 2, true, false, false},
        {"any other mode", 0, false, false, true},           {"another one", 16, false, false, true}};
    for (const ModeRow& row : rows) {
        GivenVisibility(row.inUserMode, row.inRunMode);
        host.userMode = row.mode;
        GivenPanel();
        EXPECT_EQ(IsShown(), row.isShown) << row.sentence;
        ReleasePanel();
    }
}

TEST_F(TheControlPanel, OfAHostThatTellsNoModeIsShown) {
    GivenVisibility(false, false);
    host.offerRuntimeInfo = false;
    GivenPanel();
    EXPECT_TRUE(IsShown());
}

TEST_F(TheControlPanel, HidesWhenAModeThatDoesNotAllowItHasCome) {
    GivenVisibility(false, true);
    GivenPanel();
    EXPECT_TRUE(IsShown());
    host.userMode = KXP_USER_MODE;
    panel->SetState(KXP_PANEL_VISIBLE, 1);
    EXPECT_FALSE(IsShown());
}

TEST_F(TheControlPanel, LooksAtTheModeAgainWhenItsDeviceStartsAndStops) {
    GivenVisibility(true, false);
    GivenPanel();
    host.userMode = KXP_RUN_MODE;
    device->Start();
    EXPECT_TRUE(Comes([&] { return !IsShown(); }));
    host.userMode = kFreeMode;
    device->Stop();
    EXPECT_TRUE(Comes([&] { return IsShown(); }));
}

TEST_F(TheControlPanel, ThatTheHostHasHiddenStaysSoWhenItsDeviceStarts) {
    GivenPanel();
    panel->SetState(KXP_PANEL_VISIBLE, 0);
    device->Start();
    QApplication::processEvents();
    EXPECT_FALSE(IsShown());
}

TEST_F(TheControlPanel, TheHostIsNotAskedForAModeWhereNoPanelIs) {
    int asked = 0;
    host.isAsked = [&](const std::string& operation) { asked += operation == "GetUserMode" ? 1 : 0; };
    device->Start();
    EXPECT_EQ(asked, 0);
}

TEST_F(TheControlPanel, MayBeOneOfTwoOfADevice) {
    GivenVisibility(true, false);
    GivenPanel();
    IKXPDevicePanel* other = nullptr;
    ASSERT_EQ(device->CreatePanel(1, &other), KXP_OK);
    other->SetState(KXP_PANEL_VISIBLE, 1);
    EXPECT_NE(other->GetWindow(), panel->GetWindow());
    host.userMode = KXP_RUN_MODE;
    device->Start();
    EXPECT_TRUE(Comes([&] { return !IsShown() && !WindowOf(*other)->isVisible(); })) << "both hear of it";
    other->Release();
    host.userMode = kFreeMode;
    device->Stop();
    EXPECT_TRUE(Comes([&] { return IsShown(); }));
}

TEST_F(TheControlPanel, WearsTheHostsColoursAndNewOnesWhenItIsShownAgain) {
    GivenPanel();
    EXPECT_EQ(Widget().styleSheet(), QString());
    ReleasePanel();
    host.colors = {{0, 0x00302010}, {1, 0x00F0E0D0}, {6, 0}, {7, 0x00FFFFFF}, {8, 0x00403020}};
    GivenPanel();
    EXPECT_TRUE(Widget().styleSheet().contains(
        QStringLiteral("QDialog{background-color: rgb(16,32,48); color: rgb(208,224,240);}")));
    host.colors[0] = 0x00FFFFFF;
    host.colors[1] = 0x00101010;
    panel->SetState(KXP_PANEL_VISIBLE, 1);
    EXPECT_TRUE(Widget().styleSheet().contains(
        QStringLiteral("QDialog{background-color: rgb(255,255,255); color: rgb(16,16,16);}")));
    EXPECT_EQ(Find<QLineEdit>(Widget(), "lineEditStatus").palette().color(QPalette::WindowText), QColor(16, 16, 16));
    host.colors.clear();
    panel->SetState(KXP_PANEL_VISIBLE, 1);
    EXPECT_EQ(Widget().styleSheet(), QString()) << "the host has none any more";
    EXPECT_EQ(Find<QLineEdit>(Widget(), "lineEditStatus").palette().color(QPalette::WindowText),
              QApplication::palette().color(QPalette::WindowText));
}

} // namespace
