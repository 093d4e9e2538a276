#include "SetupWindow.h"

#include <QGuiApplication>
#include <QLabel>
#include <QVBoxLayout>

#include "Device.h"
#include "Interrupt.h"

namespace stagehost {

namespace {

constexpr int kWidth = 1000;
constexpr int kHeight = 800;
constexpr int kLookMs = 100;

KXPWindow currentWindow = 0;

} // namespace

SetupWindow::SetupWindow(const QString& title)
    : m_window(std::make_unique<QWidget>()) {
    m_window->setWindowTitle(QStringLiteral("stagehost: ") + title);
    m_window->resize(kWidth, kHeight);
    auto* layout = new QVBoxLayout(m_window.get());
    layout->addWidget(new QLabel(title), 0, Qt::AlignCenter);
    currentWindow = m_window->winId();
    QObject::connect(&m_watch, &QTimer::timeout, [this] {
        if (Interrupt::HasCome())
            m_window.reset(); // the dialog goes with its window
    });
}

SetupWindow::~SetupWindow() {
    currentWindow = 0;
}

bool SetupWindow::IsPossible() {
    return QGuiApplication::platformName() != QLatin1String("offscreen");
}

KXPWindow SetupWindow::Current() {
    return currentWindow;
}

KXPCode SetupWindow::Show(Device& device) {
    m_window->show();
    m_watch.start(kLookMs);
    const KXPCode code = device.ShowSetup();
    m_watch.stop();
    return code;
}

} // namespace stagehost
