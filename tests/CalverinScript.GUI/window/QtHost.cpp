#include <memory>

#include <QApplication>
#include <QWidget>

#include "HostRun.h"

/// A host that is a Qt program itself.
///   qt_host MODULE LIBRARY PROJECT

namespace {

class QtWindow : public HostWindow {
public:
    QtWindow()
        : m_window(std::make_unique<QWidget>())
        , m_id(m_window->winId()) {
        m_window->setWindowTitle(QStringLiteral("small host"));
        m_window->setGeometry(20, 40, 1000, 800);
        m_window->show();
    }

    KXPWindow Id() const override { return m_id; }
    void Idle() override {
        constexpr int kMomentMs = 20;
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, kMomentMs);
    }
    void Destroy() override {
        QMetaObject::invokeMethod(
            qApp, [this] { m_window.reset(); }, Qt::QueuedConnection);
    }

private:
    std::unique_ptr<QWidget> m_window;
    const KXPWindow m_id;
};

} // namespace

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    QtWindow window;
    return argc == 4 ? RunHost(window, argv[1], argv[2], argv[3]) : 1;
}
