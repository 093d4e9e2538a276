#pragma once

#include <memory>

#include <QPointer>
#include <QRect>
#include <QWidget>

#include "KXPTypes.h"

class NativeWindowWatch;
class QSocketNotifier;
class QWindow;

/// Stands for a window of the host, which may be one of this program's own Qt or of another toolkit, and is the parent of the
/// dialogs that belong to it.   [host main]
class Q_DECL_EXPORT QWinWidget : public QWidget {
    Q_OBJECT

public:
    /// @param parent the host's window; 0 for none.
    explicit QWinWidget(KXPWindow parent, QObject* object = nullptr, Qt::WindowFlags flags = {});
    ~QWinWidget() override;

    /// The host's window, as it was given.
    KXPWindow parentWindow() const { return m_parentId; }

    /// Makes a dialog one of the host's window: the window manager keeps it above, and it stands in the middle, frame on frame. Its
    /// top edge is never above the screen's.
    void Adopt(QWidget& dialog);

Q_SIGNALS:
    /// The host's window is gone.
    void SignalParentGone();

private:
    void FindHostWindow();
    void WatchForeignWindow();
    void Leave();
    QRect ParentFrame() const;

    const KXPWindow m_parentId;
    QPointer<QWindow> m_hostWindow;     ///< the host's own, or ours for a foreign one
    std::unique_ptr<QWindow> m_foreign; ///< stands for a window of another toolkit
    std::unique_ptr<NativeWindowWatch> m_watch;
    std::unique_ptr<QSocketNotifier> m_news;
};
