#include "TCalverinScript_ControlPanel.h"

#include <algorithm>

#include <QHBoxLayout>
#include <QMessageBox>

#include "FaceAnswer.h"
#include "HostScreen.h"
#include "IManagerRuntimeInfo.h"
#include "IModuleServices.h"
#include "MCalverinScript_Device.h"
#include "PanelList.h"
#include "QWinWidget.h"
#include "ThemeStyleSheet.h"
#include "ThreadPromise.h"
#include "WidgetMScriptControlPanel.h"

namespace {

/// The user modes in which the device's setup decides.
struct GuardedMode {
    std::uint32_t userMode;
    bool (StoredSetup::*isVisible)() const;
};

constexpr GuardedMode kGuardedModes[] = {{KXP_USER_MODE, &StoredSetup::IsUserModeVisible},
                                         {KXP_RUN_MODE, &StoredSetup::IsRunModeVisible}};

IMInterface* HostOf(const MCalverinScript_Device* device) {
    IModuleServices* module = device != nullptr ? device->GetModule() : nullptr;
    return module != nullptr ? module->GetHost() : nullptr;
}

} // namespace

TCalverinScript_ControlPanel::TCalverinScript_ControlPanel(KXPWindow parentWindow, MCalverinScript_Device& device)
    : m_parentWindow(parentWindow)
    , m_device(&device)
    , m_use([this] { EndUnlessUsed(); }) {
    PanelList::Get().Add(*this, device);
    const PanelUse::Visit visit(m_use);
    MakeWindow();
}

TCalverinScript_ControlPanel::~TCalverinScript_ControlPanel() {
    PanelList::Get().Remove(*this);
}

void TCalverinScript_ControlPanel::MakeWindow() {
    m_window = std::make_unique<QWinWidget>(m_parentWindow);
    m_window->setWindowTitle(QStringLiteral("ControlPanel Window"));
    m_window->Join();
    if (m_window->winId() == 0) {
        m_window.reset();
        if (CanShowDialogs())
            QMessageBox::critical(nullptr, QStringLiteral("Error!"), QStringLiteral("ControlPanel Creation Failed!"));
        return;
    }
    connect(m_window.get(), &QWinWidget::SignalParentGone, this, &TCalverinScript_ControlPanel::CloseWindow);
    m_widget = new WidgetMScriptControlPanel(nullptr, m_use);
    auto* layout = new QHBoxLayout(m_window.get());
    layout->setContentsMargins(0, 0, 0, 0);
    const QSize size = m_widget->size();
    layout->addWidget(m_widget);
    WearTheme(*m_widget, HostOf(m_device));
    m_widget->LoadFromDevice(m_device);
    m_window->setFixedSize(size.expandedTo(m_window->minimumSizeHint()));
    m_window->CentreInParent();
}

KXPCode TCalverinScript_ControlPanel::QueryInterface(const char* name, void** out) {
    auto* self = static_cast<IKXPDevicePanel*>(this);
    return AnswerFace(name, out, {{"IMInterface", self}, {"IKXPDevicePanel", self}});
}

KXPCode TCalverinScript_ControlPanel::Release() {
    ExpectThread(ThreadWord::HostMain, "IKXPDevicePanel::Release");
    if (m_isReleased)
        return KXP_OK;
    m_isReleased = true;
    PanelList::Get().Remove(*this);
    ForgetDevice();
    CloseWindow();
    if (m_use.IsEmpty())
        delete this;
    return KXP_OK;
}

KXPWindow TCalverinScript_ControlPanel::GetWindow() {
    return m_window && !m_isWindowOver ? m_window->winId() : 0;
}

KXPCode TCalverinScript_ControlPanel::Reserved4(void* /*argument*/) {
    return KXP_OK;
}

const char* TCalverinScript_ControlPanel::GetName() {
    m_name = "Calverin Script Control Panel";
    return m_name.c_str();
}

KXPCode TCalverinScript_ControlPanel::Reserved6(void* /*argument*/) {
    return 1;
}

bool TCalverinScript_ControlPanel::GetBounds(IPanelRect* rect) {
    if (rect == nullptr || GetWindow() == 0)
        return false;
    const QSize pixels = m_window->geometry().size() * m_window->devicePixelRatioF();
    rect->SetLeft(0);
    rect->SetTop(0);
    rect->SetWidth(pixels.width());
    rect->SetHeight(pixels.height());
    return true;
}

std::uint32_t TCalverinScript_ControlPanel::GetState() {
    return m_state;
}

void TCalverinScript_ControlPanel::SetState(std::uint32_t what, std::uint32_t value) {
    ExpectThread(ThreadWord::HostMain, "IKXPDevicePanel::SetState");
    const PanelUse::Visit visit(m_use);
    if (what == KXP_PANEL_STATE)
        m_state = value;
    if (what != KXP_PANEL_VISIBLE)
        return;
    m_isWanted = value != 0;
    if (m_isWanted)
        Show();
    else
        Hide();
}

/// The host may close the window, or release the panel, from each question.
void TCalverinScript_ControlPanel::Show() {
    if (GetWindow() == 0)
        return;
    WearTheme(*m_widget, HostOf(m_device));
    const bool isAllowed = IsAllowed();
    if (GetWindow() == 0)
        return;
    if (isAllowed)
        m_window->show();
    else
        Hide();
}

void TCalverinScript_ControlPanel::Hide() {
    if (GetWindow() != 0)
        m_window->hide();
}

/// Whether the user's mode lets the panel be seen. A host that tells no mode hides nothing.
bool TCalverinScript_ControlPanel::IsAllowed() const {
    auto* info = QueryFace<IManagerRuntimeInfo>(HostOf(m_device), "IManagerRuntimeInfo");
    if (info == nullptr)
        return true;
    const std::uint32_t userMode = info->GetUserMode();
    return m_device == nullptr ||
           std::all_of(std::begin(kGuardedModes), std::end(kGuardedModes), [&](const GuardedMode& mode) {
               return mode.userMode != userMode || (m_device->GetStoredSetup().*mode.isVisible)();
           });
}

void TCalverinScript_ControlPanel::customEvent(QEvent* event) {
    const PanelUse::Visit visit(m_use);
    if (event->type() == RunStateEvent::kType && m_isWanted)
        Show();
}

void TCalverinScript_ControlPanel::ForgetDevice() {
    m_device = nullptr;
    if (m_window)
        m_widget->ForgetDevice();
}

void TCalverinScript_ControlPanel::CloseWindow() {
    if (!m_window)
        return;
    m_widget->CloseDialogs();
    m_window->hide();
    m_isWindowOver = true;
    if (m_use.IsEmpty())
        m_window.reset();
}

/// Frames of Qt may still stand below the last visit.
void TCalverinScript_ControlPanel::EndUnlessUsed() {
    if (m_isReleased)
        deleteLater();
    else if (m_isWindowOver && m_window)
        m_window.release()->deleteLater();
}
