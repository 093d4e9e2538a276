#include "QWinWidget.h"

#include <algorithm>
#include <utility>

#include <QApplication>
#include <QDialog>
#include <QEvent>
#include <QGuiApplication>
#include <QKeyEvent>
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

/// From device pixels to those of the dialogs.
QRect ToRect(const NativeRect& rect, qreal scale) {
    return QRectF(rect.x / scale, rect.y / scale, rect.width / scale, rect.height / scale).toRect();
}

} // namespace

/// Makes the dialogs of what stands in another toolkit's window those of that window. To Qt they would be nobody's.
class QWinWidget::DialogKeeper : public QObject {
public:
    explicit DialogKeeper(QWinWidget& parent)
        : QObject(&parent)
        , m_parent(parent) {
        qApp->installEventFilter(this);
    }
    bool eventFilter(QObject* watched, QEvent* event) override {
        const auto* dialog = event->type() == QEvent::Show ? qobject_cast<QDialog*>(watched) : nullptr;
        if (dialog != nullptr && dialog->isWindow() && dialog->parentWidget() != nullptr &&
            dialog->parentWidget()->window() == &m_parent)
            dialog->windowHandle()->setTransientParent(m_parent.m_hostWindow);
        return false;
    }

private:
    QWinWidget& m_parent;
};

QWinWidget::QWinWidget(KXPWindow parent, QObject* object, Qt::WindowFlags flags)
    : QWidget(nullptr, flags)
    , m_parentId(parent) {
    if (object != nullptr)
        connect(object, &QObject::destroyed, this, &QObject::deleteLater);
    if (parent != 0)
        FindHostWindow();
}

/// A window ends those that stand in it: ours has to leave the host's first.
QWinWidget::~QWinWidget() {
    hide();
    if (isWindow() && windowHandle() != nullptr)
        windowHandle()->setParent(nullptr);
}

void QWinWidget::FindHostWindow() {
    m_hostWindow = FindOwnWindow(m_parentId);
    if (m_hostWindow != nullptr)
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

/// What belonged to the window is let go before anything is told, since it may end this object. A window takes those that stand in it
/// along.
void QWinWidget::Leave() {
    if (std::exchange(m_hasLeft, true))
        return;
    if (m_news)
        m_news->setEnabled(false);
    m_hostWindow = nullptr;
    hide();
    if (parentWidget() != nullptr)
        setParent(nullptr);
    else if (windowHandle() != nullptr)
        windowHandle()->setParent(nullptr);
    Q_EMIT SignalParentGone();
}

/// @param margins receives how wide the frame is: that of a dialog will be the same.
QRect QWinWidget::ParentFrame(QMargins& margins) const {
    if (m_hostWindow != nullptr && !m_foreign) {
        margins = m_hostWindow->frameMargins();
        return m_hostWindow->frameGeometry();
    }
    NativeRect native;
    NativeRect nativeFrame;
    if (!m_foreign || !GetNativeFrame(m_parentId, native, nativeFrame))
        return {};
    const QRect inside = ToRect(native, devicePixelRatioF());
    const QRect frame = ToRect(nativeFrame, devicePixelRatioF());
    margins = QMargins(inside.left() - frame.left(), inside.top() - frame.top(), frame.right() - inside.right(),
                       frame.bottom() - inside.bottom());
    return frame;
}

void QWinWidget::Join() {
    QWidget* host = m_hostWindow != nullptr && !m_foreign ? QWidget::find(m_parentId) : nullptr;
    if (host != nullptr) {
        JoinWidget(*host);
    } else if (m_hostWindow != nullptr) {
        winId();
        windowHandle()->setParent(m_hostWindow);
        if (m_foreign && findChild<DialogKeeper*>() == nullptr)
            new DialogKeeper(*this);
    }
}

void QWinWidget::JoinWidget(QWidget& host) {
    if (parentWidget() == &host)
        return;
    const QRect place = geometry();
    setParent(&host);
    setGeometry(place);
    connect(&host, &QObject::destroyed, this, &QWinWidget::Leave);
    winId();
    windowHandle()->setTitle(windowTitle()); // for those who look for it; Qt gives titles to windows of their own alone
}

void QWinWidget::show() {
    Join();
    QWidget::show();
    raise();
}

void QWinWidget::CentreInParent() {
    QMargins margins;
    const QRect frame = ParentFrame(margins);
    if (frame.isEmpty())
        return;
    const QPoint inside = frame.marginsRemoved(margins).topLeft();
    const QPoint place = frame.center() - inside - QPoint(width() / 2, height() / 2);
    move(std::max(place.x(), 0), std::max(place.y(), 0));
}

void QWinWidget::FocusParent() {
    if (m_foreign)
        FocusNativeWindow(m_parentId);
    else if (m_hostWindow != nullptr)
        m_hostWindow->requestActivate();
}

bool QWinWidget::eventFilter(QObject* watched, QEvent* event) {
    KeepInTheMiddle(watched, *event);
    const auto* dialog = qobject_cast<QWidget*>(watched);
    if (event->type() == QEvent::Hide && dialog != nullptr && dialog->windowHandle() == QGuiApplication::focusWindow())
        FocusParent();
    return QWidget::eventFilter(watched, event);
}

void QWinWidget::hideEvent(QHideEvent* event) {
    if (windowHandle() != nullptr && windowHandle() == QGuiApplication::focusWindow())
        FocusParent();
    QWidget::hideEvent(event);
}

/// The widgets that Tab visits, in their order.
QWidgetList QWinWidget::FocusChain() {
    QWidgetList chain;
    for (QWidget* widget = nextInFocusChain(); widget != this; widget = widget->nextInFocusChain())
        if (isAncestorOf(widget) && (widget->focusPolicy() & Qt::TabFocus) != 0 && widget->isVisibleTo(this) &&
            widget->isEnabled() && widget->focusProxy() == nullptr)
            chain.append(widget);
    return chain;
}

bool QWinWidget::focusNextPrevChild(bool next) {
    if (!isWindow())
        return QWidget::focusNextPrevChild(next);
    const QWidgetList chain = FocusChain();
    QWidget* end = chain.isEmpty() ? nullptr : next ? chain.last() : chain.first();
    if (m_hostWindow == nullptr || (end != nullptr && focusWidget() != end))
        return QWidget::focusNextPrevChild(next);
    m_beginsAnew = true;
    FocusParent();
    return true;
}

bool QWinWidget::event(QEvent* event) {
    if (event->type() == QEvent::WindowActivate && m_beginsAnew) {
        m_beginsAnew = false;
        const QWidgetList chain = FocusChain();
        if (!chain.isEmpty())
            chain.first()->setFocus(Qt::TabFocusReason);
    }
    return QWidget::event(event);
}

void QWinWidget::keyPressEvent(QKeyEvent* event) {
    PassKey(*event, true);
    QWidget::keyPressEvent(event);
}

void QWinWidget::keyReleaseEvent(QKeyEvent* event) {
    PassKey(*event, false);
    QWidget::keyReleaseEvent(event);
}

void QWinWidget::PassKey(const QKeyEvent& event, bool isPressed) {
    const bool isMenus = event.key() == Qt::Key_Alt || event.modifiers().testFlag(Qt::AltModifier);
    if (m_foreign && isMenus)
        SendNativeKey(FindTopWindow(m_parentId), {event.nativeScanCode(), event.nativeModifiers(), isPressed});
}

void QWinWidget::Adopt(QWidget& dialog) {
    if (m_hostWindow == nullptr)
        return;
    dialog.winId();
    dialog.windowHandle()->setTransientParent(m_hostWindow);
    dialog.installEventFilter(this);
    dialog.windowHandle()->installEventFilter(this);
    Centre(dialog);
    m_centred = &dialog;
    m_centredPlace = dialog.geometry();
}

void QWinWidget::Centre(QWidget& dialog) const {
    QMargins margins;
    const QRect parent = ParentFrame(margins);
    if (parent.isEmpty())
        return;
    QRect frame = dialog.geometry().marginsAdded(margins);
    frame.moveCenter(parent.center());
    frame.moveTop(std::max(frame.top(), 0));
    dialog.setGeometry(frame.marginsRemoved(margins)); // a window that is not shown yet does not know its frame
}

/// A host's window that was shown just now gets its place and its frame before the dialog comes up, but not before it was adopted.
/// Who gave the dialog a place of its own meanwhile keeps it.
void QWinWidget::KeepInTheMiddle(const QObject* watched, const QEvent& event) {
    if (m_centred == nullptr)
        return;
    if (event.type() == QEvent::Show && watched == m_centred && m_centred->geometry() != m_centredPlace)
        m_centred = nullptr;
    else if (event.type() == QEvent::Expose && watched == m_centred->windowHandle())
        Centre(*std::exchange(m_centred, nullptr));
}
