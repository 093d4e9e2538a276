#include "WindowDialogs.h"

#include <functional>
#include <memory>

#include <gtest/gtest.h>

#include <QApplication>
#include <QCalendarWidget>
#include <QDialog>
#include <QDialogButtonBox>
#include <QListWidget>
#include <QPushButton>
#include <QTest>
#include <QTimer>

using namespace stagehost;

namespace {

class TheHostsDialogs : public testing::Test {
protected:
    /// Works on the next dialog once it is up.
    void Expect(std::function<void(QDialog&)> work) {
        m_look.disconnect();
        QObject::connect(&m_look, &QTimer::timeout, [this, work = std::move(work)] {
            auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            if (dialog == nullptr)
                return;
            m_look.stop();
            work(*dialog);
        });
        m_look.start(1);
    }
    static QPushButton& Button(QDialog& dialog, QDialogButtonBox::StandardButton which) {
        return *dialog.findChild<QDialogButtonBox*>()->button(which);
    }
    static void Click(QDialog& dialog, QDialogButtonBox::StandardButton which) {
        QTest::mouseClick(&Button(dialog, which), Qt::LeftButton);
    }

    WindowDialogs dialogs;
    QTimer m_look;
};

TEST_F(TheHostsDialogs, ANameIsChosenByMouseAndTakenByOk) {
    Expect([](QDialog& dialog) {
        auto& list = *dialog.findChild<QListWidget*>();
        EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Resource"));
        EXPECT_FALSE(Button(dialog, QDialogButtonBox::Ok).isEnabled());
        QTest::mouseClick(list.viewport(), Qt::LeftButton, Qt::NoModifier, list.visualItemRect(list.item(1)).center());
        Click(dialog, QDialogButtonBox::Ok);
    });
    EXPECT_EQ(dialogs.ChooseName("Resource", {"Port", "B\xFChne"}, -1, 0), std::optional<std::size_t>(1));
}

TEST_F(TheHostsDialogs, TheChosenNameStaysWithTheReturnKey) {
    Expect([](QDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Return); });
    EXPECT_EQ(dialogs.ChooseName("Resource", {"Port", "Line"}, 1, 0), std::optional<std::size_t>(1));
}

TEST_F(TheHostsDialogs, WithoutNamesNothingCanBeTaken) {
    Expect([](QDialog& dialog) {
        EXPECT_FALSE(Button(dialog, QDialogButtonBox::Ok).isEnabled());
        Click(dialog, QDialogButtonBox::Cancel);
    });
    EXPECT_EQ(dialogs.ChooseName("Resource", {}, -1, 0), std::nullopt);
}

TEST_F(TheHostsDialogs, ADayIsChosenOrCancelled) {
    Expect([](QDialog& dialog) {
        auto& calendar = *dialog.findChild<QCalendarWidget*>();
        EXPECT_EQ(calendar.selectedDate(), QDate(2026, 12, 24));
        calendar.setSelectedDate(QDate(2027, 1, 2));
        Click(dialog, QDialogButtonBox::Ok);
    });
    const auto day = dialogs.ChooseDay({2026, 12, 24}, 0);
    ASSERT_TRUE(day);
    EXPECT_EQ(QDate(day->year, day->month, day->day), QDate(2027, 1, 2));
    Expect([](QDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); });
    EXPECT_FALSE(dialogs.ChooseDay({2026, 12, 24}, 0));
}

TEST_F(TheHostsDialogs, AreCancelledWhenTheirWindowGoes) {
    auto window = std::make_unique<QWidget>();
    window->show();
    Expect([&](QDialog&) { window.reset(); });
    EXPECT_EQ(dialogs.ChooseName("Resource", {"Port"}, 0, window->winId()), std::nullopt);
}

} // namespace
