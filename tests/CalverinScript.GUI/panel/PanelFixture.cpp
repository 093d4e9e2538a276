#include "PanelFixture.h"

#include <QApplication>
#include <QClipboard>

void PanelFixture::SetUp() {
    SetupFixture::SetUp();
    window = std::make_unique<QWidget>();
    window->setGeometry(50, 50, 1000, 800);
    window->show();
    host.mainWindow = window->winId();
    host.userMode = kFreeMode;
}

void PanelFixture::TearDown() {
    host.isAsked = nullptr;
    ReleasePanel();
    SetupFixture::TearDown();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void PanelFixture::GivenPanel() {
    ASSERT_EQ(device->CreatePanel(1, &panel), KXP_OK);
    ASSERT_NE(panel, nullptr);
    panel->SetState(KXP_PANEL_VISIBLE, 1);
    ASSERT_NE(WidgetOf(*panel), nullptr);
    if (window == nullptr)
        return;
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get(), kDeadlineMs));
}

void PanelFixture::ReleasePanel() {
    IKXPDevicePanel* released = panel;
    panel = nullptr;
    if (released != nullptr)
        released->Release();
}

void PanelFixture::ReleaseDevice() {
    MCalverinScript_Device* released = device;
    device = nullptr;
    released->Release();
}

void PanelFixture::GivenRunningScript(const std::string& text) {
    GivenScript(text);
    device->Start();
}

void PanelFixture::GivenRunningFile(const std::string& name, const std::string& text) {
    GivenScriptFile(name, text);
    device->Start();
}

QWidget* PanelFixture::WindowOf(IKXPDevicePanel& shown) {
    return QWidget::find(static_cast<WId>(shown.GetWindow()));
}

QWidget* PanelFixture::WidgetOf(IKXPDevicePanel& shown) {
    QWidget* found = WindowOf(shown);
    return found != nullptr ? found->findChild<QWidget*>(QStringLiteral("WidgetMScriptControlPanel")) : nullptr;
}

void PanelFixture::TypeScript(const char* text) {
    Editor().setFocus();
    Editor().selectAll();
    QApplication::clipboard()->setText(QString::fromUtf8(text));
    QTest::keyClick(&Editor(), Qt::Key_V, Qt::ControlModifier);
}

std::string PanelFixture::Call(const char* function) {
    auto params = plain::Params::ForFunction(function, {});
    plain::Context context;
    if (device->ExecuteCommand(3, params.get(), &context) != KXP_OK)
        return "(refused)";
    EXPECT_TRUE(Comes([&] { return context.Ended() > 0; }));
    return params->At(1).Text();
}
