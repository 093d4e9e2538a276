#include "PanelWindow.h"

#include <algorithm>

#include <QApplication>
#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "Interrupt.h"
#include "MainWait.h"
#include "Output.h"
#include "StoredCommandForm.h"

namespace stagehost {

namespace {

constexpr int kPanelWidth = 1000;
constexpr int kPanelHeight = 760;
constexpr int kPanelLookMs = 100;
constexpr int kLooksForDevice = 20; ///< looks until a device that is held up is released
constexpr std::chrono::milliseconds kPanelRelease(3000);
constexpr std::chrono::milliseconds kPanelWait(1000);

struct ModeRow {
    const char* name;
    std::uint32_t mode;
};

constexpr ModeRow kModes[] = {{"Editing", 0}, {"Run mode", KXP_RUN_MODE}, {"User mode", KXP_USER_MODE}};

QLabel* LabelFor(QWidget& control, const char* text) {
    auto* label = new QLabel(QLatin1String(text));
    label->setBuddy(&control);
    return label;
}

} // namespace

PanelWindow::PanelWindow(const QString& title)
    : m_modes(new QComboBox)
    , m_themes(new QComboBox)
    , m_shown(new QCheckBox(QStringLiteral("&Panel shown")))
    , m_startStop(new QPushButton(QStringLiteral("Stop de&vice")))
    , m_commands(new QPushButton(QStringLiteral("Stored &commands..."))) {
    QGuiApplication::setQuitOnLastWindowClosed(false); // the module's waits are not to end with it
    setWindowTitle(QStringLiteral("stagehost: ") + title);
    resize(kPanelWidth, kPanelHeight);
    MakeControls();
    winId();
}

PanelWindow::~PanelWindow() = default;

void PanelWindow::MakeControls() {
    m_modes->setObjectName(QStringLiteral("comboBoxMode"));
    m_themes->setObjectName(QStringLiteral("comboBoxTheme"));
    m_shown->setObjectName(QStringLiteral("checkBoxShown"));
    m_startStop->setObjectName(QStringLiteral("pushButtonStartStop"));
    m_commands->setObjectName(QStringLiteral("pushButtonCommands"));
    auto* row = new QHBoxLayout;
    row->addWidget(LabelFor(*m_modes, "User &mode:"));
    row->addWidget(m_modes);
    row->addWidget(LabelFor(*m_themes, "&Theme:"));
    row->addWidget(m_themes);
    row->addWidget(m_shown);
    row->addStretch(1);
    row->addWidget(m_startStop);
    row->addWidget(m_commands);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(row);
    layout->addStretch(1);
    m_shown->setChecked(true);
}

void PanelWindow::FillControls(const HostSettings& settings) {
    for (const ModeRow& row : kModes)
        m_modes->addItem(QStringLiteral("%1 (%2)").arg(QLatin1String(row.name)).arg(row.mode), row.mode);
    if (m_modes->findData(settings.userMode) < 0)
        m_modes->addItem(QStringLiteral("Mode %1").arg(settings.userMode), settings.userMode);
    m_modes->setCurrentIndex(m_modes->findData(settings.userMode));
    for (const ThemeName& row : kThemeNames)
        m_themes->addItem(QLatin1String(row.name), static_cast<int>(row.theme));
    m_themes->setCurrentIndex(m_themes->findData(static_cast<int>(settings.theme)));
    m_commands->setEnabled(!m_session->StoredOnes().empty());
    const auto changed = QOverload<int>::of(&QComboBox::currentIndexChanged);
    connect(m_modes, changed, this, &PanelWindow::ShowPanel);
    connect(m_themes, changed, this, &PanelWindow::ShowPanel);
    connect(m_shown, &QCheckBox::toggled, this, &PanelWindow::ShowPanel);
    connect(m_startStop, &QPushButton::clicked, this, &PanelWindow::StartOrStop);
    connect(m_commands, &QPushButton::clicked, this, &PanelWindow::EditStoredCommands);
    connect(&m_watch, &QTimer::timeout, this, &PanelWindow::Look);
}

bool PanelWindow::Run(Session& session, Device& device, const Options& options) {
    m_session = &session;
    m_device = &device;
    m_timeout = options.timeout;
    FillControls(session.TheHost().Settings());
    show();
    m_panel = device.CreatePanel();
    if (m_panel == nullptr)
        return false;
    ShowPanel();
    m_watch.start(kPanelLookMs);
    while (!m_isOver)
        MainWait::Until([this] { return m_isOver; }, kPanelWait);
    m_watch.stop();
    return true;
}

void PanelWindow::ShowPanel() {
    m_session->TheHost().SetUserMode(m_modes->currentData().toUInt());
    m_session->TheHost().SetTheme(static_cast<Theme>(m_themes->currentData().toInt()));
    if (m_panel != nullptr)
        m_panel->SetState(KXP_PANEL_VISIBLE, m_shown->isChecked() ? 1 : 0);
}

void PanelWindow::StartOrStop() {
    m_startStop->setEnabled(false);
    m_isStarted = !m_isStarted;
    const bool isBack = m_isStarted ? m_device->Start(m_timeout) : m_device->Stop(m_timeout);
    if (!isBack)
        PrintProblem(QStringLiteral("the device does not come back from its %1")
                         .arg(m_isStarted ? QStringLiteral("start") : QStringLiteral("stop")));
    m_startStop->setText(m_isStarted ? QStringLiteral("Stop de&vice") : QStringLiteral("Start de&vice"));
    m_startStop->setEnabled(true);
}

void PanelWindow::EditStoredCommands() {
    StoredCommandForm form(*m_session, this);
    form.exec();
    for (const auto& [name, xml] : form.Stored())
        m_stored[name] = xml;
}

void PanelWindow::closeEvent(QCloseEvent* event) {
    QWidget::closeEvent(event);
    End();
}

/// Run sees it when the module has come back.
void PanelWindow::End() {
    m_isOver = true;
    if (m_panel != nullptr)
        m_panel->Release();
    m_panel = nullptr;
}

/// The timer goes on while the module waits in an event loop of its own, for a script that does not come back.
void PanelWindow::Look() {
    if (Interrupt::HasCome() && !m_isOver) {
        for (QDialog* opened : findChildren<QDialog*>())
            opened->done(QDialog::Rejected); // nobody is there to answer
        close();
    }
    if (m_isOver && ++m_looksInVain == kLooksForDevice && !m_device->IsOver()) {
        PrintProblem(QStringLiteral("the device is released, since its script does not come back"));
        m_device->Shutdown(kPanelRelease);
    }
}

} // namespace stagehost
