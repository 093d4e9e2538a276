#pragma once

#include <memory>

#include <QPointer>
#include <QRect>
#include <QWidget>

#include "KXPTypes.h"

class NativeWindowWatch;
class QSocketNotifier;
class QWindow;

/// Stands for a window of the host, which may be one of this program's own Qt or of another toolkit. It is the parent of the dialogs
/// that belong to that window, and when it is shown, it stands inside of it with the widgets that it holds.
///
/// The keyboard goes both ways. Behind the last widget and before the first one Tab gives it to the host's window. When the host gives
/// it to this one's (winId), the widget that had it last takes it, or the first one. A dialog that ends, and a window that is hidden,
/// give back to the host what they have. Keys with Alt that no widget wants are told to the host's window: they may be of its menu.
/// [host main]
class Q_DECL_EXPORT QWinWidget : public QWidget {
    Q_OBJECT

public:
    /// @param parent the host's window; 0 for none.
    explicit QWinWidget(KXPWindow parent, QObject* object = nullptr, Qt::WindowFlags flags = {});
    ~QWinWidget() override;

    /// The host's window, as it was given.
    KXPWindow parentWindow() const { return m_parentId; }

    /// Puts this widget into the host's window, hidden as it is. From then on its window (winId) is the same. A widget of this Qt
    /// becomes its parent, until it goes. Nothing without a host's window.
    void Join();
    /// Shows this widget in the host's window, where its geometry says. Without a host's window it stands by itself.
    void show();

    /// Makes a dialog one of the host's window: the window manager keeps it above, and it stands in the middle, frame on frame. Its
    /// top edge is never above the screen's.
    void Adopt(QWidget& dialog);

    /// Puts this widget into the middle of the host's window, frame on frame, but never beyond its left and top edges. Nothing without
    /// a host's window.
    void CentreInParent();

    /// Gives the keyboard to the host's window.
    void FocusParent();

Q_SIGNALS:
    /// The host's window is gone.
    void SignalParentGone();

protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    bool focusNextPrevChild(bool next) override;

private:
    class DialogKeeper;

    QWidgetList FocusChain();
    void PassKey(const QKeyEvent& event, bool isPressed);
    void FindHostWindow();
    void WatchForeignWindow();
    void JoinWidget(QWidget& host);
    void Leave();
    QRect ParentFrame(QMargins& margins) const;
    void Centre(QWidget& dialog) const;
    void KeepInTheMiddle(const QObject* watched, const QEvent& event);

    const KXPWindow m_parentId;
    QPointer<QWindow> m_hostWindow;     ///< the host's own, or ours for a foreign one
    std::unique_ptr<QWindow> m_foreign; ///< stands for a window of another toolkit
    std::unique_ptr<NativeWindowWatch> m_watch;
    std::unique_ptr<QSocketNotifier> m_news;
    QPointer<QWidget> m_centred; ///< the adopted dialog until it is up, unless it got another place
    QRect m_centredPlace;        ///< where it was put
    bool m_hasLeft = false;      ///< whether the host's window has gone
    bool m_beginsAnew = false;   ///< whether Tab has left the last widget, so that the first is the next
};
