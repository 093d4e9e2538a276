#include "QWinWidget.h"

#include <algorithm>

#include <QGuiApplication>
#include <QScreen>
#include <QSocketNotifier>
#include <QWindow>

#include "NativeWindow.h"

namespace {

/// The window of this program that has the number; null for one of another toolkit.
QWindow* FindOwnWindow(KXPWindow id) {
    const QWindowList windows = QGuiApplication::allWindows();
    const auto found = std::find_if(windows.begin(), windows.end(), [id](const QWindow* window) {
        return window->handle() != nullptr && window->winId() == id;
    });
    return found != windows.end() ? *found : nullptr;
}

/// Other toolkits' windows are known to the window system alone.
bool HasNativeWindows() {
    return QGuiApplication::platformName() == QLatin1String("xcb");
}

} // namespace

QWinWidget::QWinWidget(KXPWindow parent, QObject* object, Qt::WindowFlags flags)
    : QWidget(nullptr, flags)
    , m_parentId(parent) {
    if (object != nullptr)
        connect(object, &QObject::destroyed, this, &QObject::deleteLater);
    if (parent != 0)
        FindHostWindow();
}

QWinWidget::~QWinWidget() = default;

void QWinWidget::FindHostWindow() {
    m_hostWindow = FindOwnWindow(m_parentId);
    if (m_hostWindow)
        connect(m_hostWindow, &QObject::destroyed, this, &QWinWidget::Leave);
    else if (HasNativeWindows())
        WatchForeignWindow();
}

void QWinWidget::WatchForeignWindow() {
    m_watch = std::make_unique<NativeWindowWatch>(m_parentId);
    if (m_watch->Descriptor() < 0 || m_watch->IsGone())
        return;
    m_foreign.reset(QWindow::fromWinId(m_parentId));
    m_hostWindow = m_foreign.get();
    m_news = std::make_unique<QSocketNotifier>(m_watch->Descriptor(), QSocketNotifier::Read);
    connect(m_news.get(), &QSocketNotifier::activated, this, [this] {
        if (m_watch->IsGone())
            Leave();
    });
}

/// What belonged to the window is let go before anything is told, since it may end this object.
void QWinWidget::Leave() {
    if (m_news)
        m_news->setEnabled(false);
    m_hostWindow = nullptr;
    Q_EMIT SignalParentGone();
}

QRect QWinWidget::ParentFrame() const {
    if (m_hostWindow && !m_foreign)
        return m_hostWindow->frameGeometry();
    NativeRect frame;
    if (!m_foreign || !GetNativeFrame(m_parentId, frame))
        return {};
    const qreal scale = devicePixelRatioF();
    return QRectF(frame.x / scale, frame.y / scale, frame.width / scale, frame.height / scale).toRect();
}

void QWinWidget::Adopt(QWidget& dialog) {
    if (!m_hostWindow)
        return;
    dialog.winId();
    dialog.windowHandle()->setTransientParent(m_hostWindow);
    const QRect parent = ParentFrame();
    if (parent.isEmpty())
        return;
    QRect frame = dialog.frameGeometry();
    frame.moveCenter(parent.center());
    dialog.move(frame.x(), std::max(frame.y(), 0));
}
