#include <memory>

#include <QApplication>
#include <QDialog>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QProcess>
#include <QTest>

#include <gtest/gtest.h>

#include "Deadline.h"
#include "NativeWindow.h"
#include "QMfcApp.h"
#include "QWinHost.h"
#include "QWinWidget.h"
#include "X11Host.h"

namespace {

/// Presses keys on the keyboard of the display.
void Press(const char* keys) {
    EXPECT_EQ(QProcess::execute(QStringLiteral("xdotool"), {QStringLiteral("key"), QLatin1String(keys)}), 0);
}

template <typename Condition>
bool Comes(const Condition& condition) {
    return QTest::qWaitFor(condition, kDeadlineMs);
}

/// Two fields in a window of a host without Qt.
class InAHostsWindow : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(Comes([&] { return host.FocusedWindow() == host.Id() && FindTopWindow(host.Id()) == host.Id(); }))
            << "the window manager has it";
        widget = std::make_unique<QWinWidget>(host.Id());
        auto* row = new QHBoxLayout(widget.get());
        row->addWidget(first);
        row->addWidget(second);
        widget->setGeometry(10, 10, 200, 100);
        widget->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(widget.get(), kDeadlineMs));
    }
    void GiveKeyboard() {
        host.Focus(widget->winId());
        ASSERT_TRUE(Comes(
            [&] { return host.FocusedWindow() == widget->winId() && (first->hasFocus() || second->hasFocus()); }));
    }
    bool HostHasKeyboard() const {
        return Comes([&] { return host.FocusedWindow() == host.Id() && !widget->isActiveWindow(); });
    }

    X11Host host;
    std::unique_ptr<QWinWidget> widget;
    QLineEdit* first = new QLineEdit; ///< the widget's
    QLineEdit* second = new QLineEdit;
};

TEST_F(InAHostsWindow, AWidgetStandsWhereItIsPut) {
    EXPECT_EQ(widget->parentWindow(), host.Id());
    EXPECT_TRUE(Comes([&] { return host.ParentOf(widget->winId()) == host.Id(); }));
}

TEST_F(InAHostsWindow, TheFirstFieldHasTheKeyboardWhenTheHostGivesIt) {
    GiveKeyboard();
    EXPECT_TRUE(first->hasFocus());
    Press("a");
    EXPECT_TRUE(Comes([&] { return first->text() == QLatin1String("a"); }));
}

TEST_F(InAHostsWindow, TabBehindTheLastFieldGivesTheKeyboardToTheHost) {
    GiveKeyboard();
    Press("Tab");
    EXPECT_TRUE(Comes([&] { return second->hasFocus(); }));
    Press("Tab");
    EXPECT_TRUE(HostHasKeyboard());
    GiveKeyboard();
    EXPECT_TRUE(first->hasFocus()) << "the fields begin anew";
}

TEST_F(InAHostsWindow, BacktabBeforeTheFirstFieldGivesTheKeyboardToTheHost) {
    GiveKeyboard();
    Press("shift+Tab");
    EXPECT_TRUE(HostHasKeyboard());
}

TEST_F(InAHostsWindow, AClickBringsTheKeyboardBack) {
    EXPECT_EQ(QProcess::execute(QStringLiteral("xdotool"),
                                {QStringLiteral("mousemove"), QStringLiteral("--window"),
                                 QString::number(widget->winId()), QString::number(second->geometry().center().x()),
                                 QString::number(second->geometry().center().y()), QStringLiteral("click"),
                                 QStringLiteral("1")}),
              0);
    EXPECT_TRUE(Comes([&] { return second->hasFocus(); }));
}

TEST_F(InAHostsWindow, WhatIsHiddenGivesTheKeyboardBack) {
    GiveKeyboard();
    widget->hide();
    EXPECT_TRUE(HostHasKeyboard());
}

TEST_F(InAHostsWindow, KeysWithAltThatNobodyWantsAreTheHosts) {
    GiveKeyboard();
    const int before = host.CountKeys();
    Press("alt+F8");
    EXPECT_TRUE(Comes([&] { return host.CountKeys() >= before + 2; })) << "Alt, and the key";
    EXPECT_TRUE(first->hasFocus());
    Press("a");
    EXPECT_TRUE(Comes([&] { return first->text() == QLatin1String("a"); }));
    EXPECT_EQ(host.CountKeys(), before + 2);
}

TEST_F(InAHostsWindow, ADialogGivesTheKeyboardBackWhenItEnds) {
    QDialog dialog(widget.get());
    widget->Adopt(dialog);
    dialog.open();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog, kDeadlineMs));
    Press("Escape");
    EXPECT_TRUE(Comes([&] { return !dialog.isVisible(); }));
    EXPECT_TRUE(HostHasKeyboard());
}

TEST_F(InAHostsWindow, AHostsWindowThatGoesIsTold) {
    bool isTold = false;
    QObject::connect(widget.get(), &QWinWidget::SignalParentGone, [&] { isTold = true; });
    GiveKeyboard();
    host.Destroy();
    EXPECT_TRUE(Comes([&] { return isTold; }));
    widget.reset();
}

/// Shows a dialog on a host's window and waits until it stands in the middle of it, give or take a pixel of rounding.
void ExpectInTheMiddleOf(KXPWindow host) {
    QWinWidget parent(host);
    QDialog dialog(&parent);
    dialog.resize(150, 60);
    parent.Adopt(dialog);
    dialog.open();
    const auto middleOf = [](KXPWindow window) {
        NativeRect inside;
        NativeRect frame;
        EXPECT_TRUE(GetNativeFrame(window, inside, frame));
        return QPoint(2 * frame.x + frame.width, 2 * frame.y + frame.height);
    };
    ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog, kDeadlineMs));
    EXPECT_TRUE(Comes([&] { return (middleOf(dialog.winId()) - middleOf(host)).manhattanLength() <= 4; }))
        << (middleOf(dialog.winId()) - middleOf(host)).manhattanLength();
}

TEST(ADialogOfAHost, StandsInTheMiddleOfAWindowThatWasShownThisMoment) {
    const X11Host host;
    ExpectInTheMiddleOf(host.Id());
}

TEST(ADialogOfAHost, StandsInTheMiddleOfAQtWindowThatWasShownThisMoment) {
    QWidget window;
    window.resize(700, 500);
    window.show();
    ExpectInTheMiddleOf(window.winId());
}

TEST(ADialogOfAHost, KeepsThePlaceThatItWasGiven) {
    QWidget window;
    window.setGeometry(300, 300, 700, 500);
    window.show();
    QWinWidget parent(window.winId());
    QDialog dialog(&parent);
    parent.Adopt(dialog);
    dialog.setGeometry(40, 50, 320, 210);
    dialog.open();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog, kDeadlineMs));
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&dialog, kDeadlineMs)) << "what would move it has happened";
    // While the window manager puts its frame around it, Qt may take the place inside the frame for that on the screen.
    EXPECT_TRUE(Comes([&] { return dialog.geometry() == QRect(40, 50, 320, 210); }))
        << dialog.x() << ' ' << dialog.y() << ' ' << dialog.width() << ' ' << dialog.height();
}

/// A window of another toolkit between two fields of a Qt window.
class AWindowOfAnotherToolkit : public testing::Test {
protected:
    class Place : public QWinHost {
    public:
        using QWinHost::QWinHost;
        std::unique_ptr<X11Host> child;

    protected:
        KXPWindow createWindow(KXPWindow parent) override {
            child = std::make_unique<X11Host>(parent, true);
            return child->Id();
        }
    };

    void SetUp() override {
        auto* row = new QHBoxLayout(&window);
        row->addWidget(before);
        row->addWidget(place, 1);
        row->addWidget(after);
        window.setGeometry(100, 100, 600, 200);
        window.show();
        window.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window, kDeadlineMs));
        ASSERT_TRUE(place->child != nullptr);
    }

    QWidget window;
    QLineEdit* before = new QLineEdit;
    Place* place = new Place;
    QLineEdit* after = new QLineEdit;
};

TEST_F(AWindowOfAnotherToolkit, IsMadeAndFittedWhenItsPlaceIsShown) {
    EXPECT_EQ(place->childWindow(), place->child->Id());
    EXPECT_TRUE(Comes([&] { return place->child->IsShown(); }));
    EXPECT_TRUE(Comes([&] { return place->child->Width() == place->width(); }));
    window.resize(800, 200);
    EXPECT_TRUE(Comes([&] { return place->width() > 400 && place->child->Width() == place->width(); }));
}

TEST_F(AWindowOfAnotherToolkit, GetsTheKeyboardByTabAndGivesItOn) {
    EXPECT_TRUE((place->focusPolicy() & Qt::StrongFocus) == Qt::StrongFocus);
    before->setFocus();
    Press("Tab");
    EXPECT_TRUE(Comes([&] { return place->child->FocusedWindow() == place->child->Id(); }));
    Press("x");
    EXPECT_TRUE(Comes([&] { return place->child->CountKeys() == 1; }));
    Press("Tab");
    EXPECT_TRUE(Comes([&] { return after->hasFocus() && window.isActiveWindow(); }));
    Press("y");
    EXPECT_TRUE(Comes([&] { return after->text() == QLatin1String("y"); }));
}

TEST_F(AWindowOfAnotherToolkit, TakesTheFocusOfItsPlaceAlong) {
    before->setFocus();
    ASSERT_TRUE(Comes([&] { return place->child->IsShown(); }));
    place->child->Focus(place->child->Id()); // as it does itself when it is clicked on
    EXPECT_TRUE(Comes([&] { return window.focusWidget() == place; }));
}

TEST_F(AWindowOfAnotherToolkit, TakesNoMouseWhileADialogIsOpen) {
    QDialog dialog(&window);
    dialog.setModal(true);
    dialog.show();
    EXPECT_TRUE(Comes([&] { return place->child->CountChildren(place->winId()) == 2; })) << "it is covered";
    dialog.close();
    EXPECT_TRUE(Comes([&] { return place->child->CountChildren(place->winId()) == 1; }));
}

TEST_F(AWindowOfAnotherToolkit, MayGoBeforeItsPlace) {
    place->child->Destroy();
    EXPECT_TRUE(Comes([&] { return place->childWindow() == 0; }));
    window.resize(700, 200);
    window.close();
}

TEST(TheApplicationObject, OfAHostThatHasOneIsLeftAlone) {
    QCoreApplication* there = QCoreApplication::instance();
    EXPECT_FALSE(QMfcApp::pluginInstance());
    QMfcApp::EndPluginInstance();
    EXPECT_EQ(QCoreApplication::instance(), there);
}

TEST(TheApplicationObject, CountsDialogsThatHoldUpTheHost) {
    EXPECT_EQ(QMfcApp::ModalLoopCount(), 0);
    {
        const ModalLoop outer;
        const ModalLoop inner;
        EXPECT_EQ(QMfcApp::ModalLoopCount(), 2);
    }
    EXPECT_EQ(QMfcApp::ModalLoopCount(), 0);
}

} // namespace
