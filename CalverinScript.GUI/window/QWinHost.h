#pragma once

#include <memory>

#include <QWidget>

#include "KXPTypes.h"

class NativeChild;
class QSocketNotifier;

/// A place in a Qt window for a window of another toolkit. It stands where this widget stands, gets the keyboard when this widget
/// gets it, gives it on with Tab, and takes no mouse while a modal dialog is open.   [host main]
class QWinHost : public QWidget {
    Q_OBJECT

public:
    explicit QWinHost(QWidget* parent = nullptr, Qt::WindowFlags flags = {});
    ~QWinHost() override;

    /// The window that stands here; 0 for none.
    KXPWindow childWindow() const { return m_childId; }
    /// Takes a window that stands in this widget's own already, instead of the one that createWindow would make. It stays its owner's.
    void setChildWindow(KXPWindow child);

protected:
    /// Makes the window that is to stand here, when this widget is shown for the first time and has none.
    /// @param parent this widget's own. @return 0 for none, which is what is done here.
    virtual KXPWindow createWindow(KXPWindow parent);

    bool event(QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;

private:
    void Polish();
    void Adopt();
    void Fit(bool isShown);
    void TakeNews();
    void TakeTab(bool isForward);

    KXPWindow m_childId = 0;
    std::unique_ptr<NativeChild> m_child;    ///< null without a window
    std::unique_ptr<QSocketNotifier> m_news; ///< of what happens in it, while it stands in this widget's own
};
