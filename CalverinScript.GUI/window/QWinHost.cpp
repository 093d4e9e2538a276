#include "QWinHost.h"

#include <QEvent>
#include <QGuiApplication>
#include <QSocketNotifier>

#include "NativeChild.h"
#include "NativeWindow.h"

QWinHost::QWinHost(QWidget* parent, Qt::WindowFlags flags)
    : QWidget(parent, flags) {
    setAttribute(Qt::WA_NativeWindow);
    setAttribute(Qt::WA_DontCreateNativeAncestors);
}

QWinHost::~QWinHost() = default;

KXPWindow QWinHost::createWindow(KXPWindow /*parent*/) {
    return 0;
}

void QWinHost::setChildWindow(KXPWindow child) {
    m_news.reset();
    m_child.reset();
    m_childId = child;
    if (child != 0)
        Adopt();
}

bool QWinHost::event(QEvent* event) {
    if (event->type() == QEvent::Polish)
        Polish();
    else if (m_child && event->type() == QEvent::WindowBlocked)
        m_child->SetEnabled(false);
    else if (m_child && event->type() == QEvent::WindowUnblocked)
        m_child->SetEnabled(true);
    return QWidget::event(event);
}

/// Who makes the window may speak to the window system over a connection of its own, which has to know this one already.
void QWinHost::Polish() {
    if (m_childId != 0)
        return;
    const WId own = winId();
    QGuiApplication::sync();
    setChildWindow(createWindow(own));
}

/// Only what stands in this widget's own window is watched: any other is somebody else's business.
void QWinHost::Adopt() {
    m_child = std::make_unique<NativeChild>(m_childId);
    if (m_child->WantsKeyboard())
        setFocusPolicy(static_cast<Qt::FocusPolicy>(focusPolicy() | Qt::StrongFocus));
    const int descriptor = m_child->IsPartOf(winId()) ? m_child->Watch() : -1;
    if (descriptor >= 0) {
        m_news = std::make_unique<QSocketNotifier>(descriptor, QSocketNotifier::Read);
        connect(m_news.get(), &QSocketNotifier::activated, this, &QWinHost::TakeNews);
    }
    Fit(isVisible());
}

void QWinHost::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    Fit(true);
}

void QWinHost::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    Fit(false);
}

void QWinHost::Fit(bool isShown) {
    const QSize pixels = size() * devicePixelRatioF();
    if (m_child)
        m_child->Fit({0, 0, pixels.width(), pixels.height()}, isShown);
}

void QWinHost::focusInEvent(QFocusEvent* event) {
    QWidget::focusInEvent(event);
    if (m_child)
        FocusNativeWindow(m_childId);
}

void QWinHost::TakeNews() {
    using News = NativeChild::News;
    for (News news = m_child->TakeNews(); news != News::None; news = m_child->TakeNews()) {
        if (news == News::Tab || news == News::BackTab) {
            TakeTab(news == News::Tab);
        } else if (news == News::AltKey) {
            SendNativeKey(window()->winId(), m_child->LastKey());
        } else if (news == News::Focused && !hasFocus() && (focusPolicy() & Qt::ClickFocus) != 0) {
            setFocus(Qt::MouseFocusReason);
        } else if (news == News::Gone) {
            setChildWindow(0);
            return;
        }
    }
}

/// The keyboard comes back to this window before one of its widgets can have it.
void QWinHost::TakeTab(bool isForward) {
    FocusNativeWindow(window()->winId());
    focusNextPrevChild(isForward);
}
