#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

#include <QApplication>
#include <QIcon>
#include <QKeySequence>
#include <QLineEdit>
#include <QPalette>
#include <QPlainTextEdit>
#include <QSpinBox>
#include <QTabBar>
#include <QTableWidget>

#include "Deadline.h"
#include "SetupDialogFixture.h"

namespace {

class TheControls : public TheSetupDialog {};

TEST_F(TheControls, EveryPictureIsDrawnAtSixteenPixels) {
    GivenScript(kDriver);
    Show([&](QWidget& dialog) {
        for (const char* name : {"about", "search", "varFolder", "userGroupIcon", "taskIcon", "cueIcon",
                                 "userscreenIcon", "devIcon", "perform", "wizard"}) {
            const QImage picture = QIcon(QStringLiteral(":/") + QLatin1String(name)).pixmap(16, 16).toImage();
            ASSERT_EQ(picture.size(), QSize(16, 16)) << name;
            int drawn = 0;
            for (int at = 0; at < 256; ++at)
                drawn += qAlpha(picture.pixel(at % 16, at / 16)) > 128;
            EXPECT_GT(drawn, 20) << name;
            EXPECT_LT(drawn, 200) << name;
        }
        Click(dialog, "pushButtonCancel");
    });
}

TEST_F(TheControls, EachControlHasANameForScreenReaders) {
    GivenScript(kDriver);
    Show([&](QWidget& dialog) {
        for (QWidget* part : dialog.findChildren<QWidget*>()) {
            const bool isControl = part->inherits("QLineEdit") || part->inherits("QPlainTextEdit") ||
                                   part->inherits("QAbstractButton") || part->inherits("QTableWidget");
            if (!isControl || part->objectName().startsWith(QLatin1String("qt_")) || !part->isEnabled() ||
                part->parentWidget()->inherits("QTabBar") || part->inherits("QTableCornerButton"))
                continue;
            if (part->parentWidget()->inherits("QTableView"))
                continue;
            EXPECT_FALSE(part->accessibleName().isEmpty() && part->property("text").toString().isEmpty())
                << part->objectName().toStdString() << " " << part->metaObject()->className();
        }
        Click(dialog, "pushButtonCancel");
    });
}

TEST_F(TheControls, WorksWithoutAMouse) {
    GivenScript(kDriver);
    EXPECT_EQ(Show([&](QWidget& dialog) {
                  Tabs(dialog).setFocus();
                  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab, Qt::ControlModifier);
                  EXPECT_EQ(Tabs(dialog).currentIndex(), 1);
                  QTest::keyClick(&dialog, Qt::Key_E, Qt::AltModifier);
                  EXPECT_EQ(TextOf(dialog, "lineEditDebugInfo"), "Evaluation Ok");
                  QTest::keyClick(&dialog, Qt::Key_N, Qt::AltModifier);
                  EXPECT_TRUE(QTest::qWaitFor([&] { return !dialog.isVisible(); }, kDeadlineMs));
              }),
              13u);
}

TEST_F(TheControls, TabVisitsTheFieldsOfTheFormInTheirOrder) {
    GivenScript("({ Setup: { A: 'a', B: 1, C: 'c' } })", false);
    Show([&](QWidget& dialog) {
        Field(dialog, "A").setFocus();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        EXPECT_NE(qobject_cast<QSpinBox*>(QApplication::focusWidget()), nullptr);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        EXPECT_EQ(QApplication::focusWidget(), &Field(dialog, "C"));
        Click(dialog, "pushButtonCancel");
    });
}

/// The contrast of WCAG 2.1, from 1 to 21.
double Contrast(const QColor& left, const QColor& right) {
    const auto luminance = [](const QColor& color) {
        const auto part = [](double value) {
            return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * part(color.redF()) + 0.7152 * part(color.greenF()) + 0.0722 * part(color.blueF());
    };
    const double light = std::max(luminance(left), luminance(right));
    const double dark = std::min(luminance(left), luminance(right));
    return (light + 0.05) / (dark + 0.05);
}

/// The roles of a control's text and of what it stands on.
std::pair<QPalette::ColorRole, QPalette::ColorRole> RolesOf(const QWidget& part) {
    if (part.inherits("QPushButton") || part.inherits("QComboBox"))
        return {QPalette::ButtonText, QPalette::Button};
    if (part.inherits("QLabel"))
        return {QPalette::WindowText, QPalette::Window};
    return {QPalette::Text, QPalette::Base}; // what is typed in, and the marks of boxes
}

TEST_F(TheControls, StandOutFromTheirGroundInEveryTheme) {
    const std::map<std::uint32_t, std::uint32_t> themes[] = {
        {},
        {{0, 0x00303030}, {1, 0x00F0F0F0}, {6, 0x00804010}, {7, 0x00FFFFFF}, {8, 0x00484848}},
        {{0, 0x00F4F4F4}, {1, 0x00202020}, {6, 0x00804010}, {7, 0x00FFFFFF}, {8, 0x00FFFFFF}}};
    GivenScript("({ Setup: { A: 'a', B: 1, C: 0.5, D: 1, E: 0 }, Info: { Setup: { D: { Widget: 'CheckBox' }, "
                "E: { Type: 'Enum', Items: ['x', 'y'] } } } })");
    for (const auto& theme : themes) {
        host.colors = theme;
        Show([&](QWidget& dialog) {
            for (int tab = 0; tab < 4; ++tab) {
                ClickTab(dialog, tab);
                QApplication::processEvents();
                for (const QWidget* part : dialog.findChildren<QWidget*>()) {
                    const bool hasText = part->inherits("QAbstractButton") || part->inherits("QLabel") ||
                                         part->inherits("QLineEdit") || part->inherits("QAbstractSpinBox") ||
                                         part->inherits("QComboBox") || part->inherits("QPlainTextEdit");
                    if (!hasText || !part->isVisible() || !part->isEnabled())
                        continue;
                    const auto [text, ground] = RolesOf(*part);
                    EXPECT_GE(Contrast(part->palette().color(text), part->palette().color(ground)), 4.5)
                        << part->metaObject()->className() << " " << part->objectName().toStdString() << " of theme "
                        << (&theme - themes);
                }
            }
            Click(dialog, "pushButtonCancel");
        });
    }
}

TEST_F(TheControls, EachMnemonicIsUsedOnceOnATab) {
    GivenScript(kDriver);
    Show([&](QWidget& dialog) {
        for (int tab = 0; tab < 4; ++tab) {
            ClickTab(dialog, tab);
            std::map<QString, int> uses;
            for (const QWidget* part : dialog.findChildren<QWidget*>()) {
                const bool hasMnemonic = part->inherits("QAbstractButton") || part->inherits("QLabel");
                const QKeySequence key =
                    hasMnemonic ? QKeySequence::mnemonic(part->property("text").toString()) : QKeySequence();
                if (part->isVisible() && !key.isEmpty())
                    ++uses[key.toString()];
            }
            EXPECT_GE(uses.size(), 5u);
            for (const auto& [key, count] : uses)
                EXPECT_EQ(count, 1) << key.toStdString() << " on tab " << tab;
        }
        Click(dialog, "pushButtonCancel");
    });
}

TEST_F(TheControls, TabVisitsEachControlOnceAndComesBack) {
    GivenScript(kDriver);
    Show([&](QWidget& dialog) {
        for (const int tab : {0, 2, 3}) { // in the script Tab is a character
            ClickTab(dialog, tab);
            Find<QWidget>(dialog, "pushButtonLoad").setFocus();
            QWidgetList visited;
            while (!visited.contains(QApplication::focusWidget())) {
                visited.append(QApplication::focusWidget());
                QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
            }
            EXPECT_EQ(QApplication::focusWidget(), visited.first()) << "on tab " << tab;
            for (QWidget* part : dialog.findChildren<QWidget*>()) {
                const bool isControl = part->inherits("QLineEdit") || part->inherits("QAbstractButton") ||
                                       part->inherits("QTableWidget") || part->inherits("QAbstractSpinBox");
                const bool takesTab = (part->focusPolicy() & Qt::TabFocus) != 0 && part->focusProxy() == nullptr;
                const bool isMeant = isControl && takesTab && part->isVisible() && part->isEnabled();
                EXPECT_TRUE(!isMeant || visited.contains(part))
                    << part->objectName().toStdString() << " on tab " << tab;
            }
        }
        Click(dialog, "pushButtonCancel");
    });
}

TEST_F(TheControls, OfTheDialogsBehindHaveNamesToo) {
    GivenScript(kDriver);
    WriteLibrary("lamp.js", kDriver);
    const auto check = [](QWidget& opened) {
        for (QWidget* part : opened.findChildren<QWidget*>()) {
            const bool isControl = part->inherits("QLineEdit") || part->inherits("QPlainTextEdit") ||
                                   part->inherits("QAbstractButton") || part->inherits("QListWidget") ||
                                   part->inherits("QComboBox");
            const bool hasName = !part->accessibleName().isEmpty() || !part->property("text").toString().isEmpty();
            EXPECT_TRUE(!isControl || !part->isVisible() || hasName)
                << opened.objectName().toStdString() << " " << part->objectName().toStdString();
        }
        opened.close();
    };
    const std::function<void(QWidget&)> steps[] = {
        [](QWidget& dialog) { Click(dialog, "pushButtonLoad"); },
        [](QWidget& dialog) { Click(dialog, "pushButtonSaveAs"); },
        [](QWidget& dialog) { QTest::keyClick(&dialog, Qt::Key_F, Qt::ControlModifier); },
        [](QWidget& dialog) {
            ClickTab(dialog, 2);
            DoubleClickCell(dialog, 0, 1);
        },
        [](QWidget& dialog) {
            TypeScript(dialog, "({");
            Click(dialog, "pushButtonOk");
        }};
    for (const auto& step : steps) {
        Show([&](QWidget& dialog) {
            dialogs.Expect(check);
            step(dialog);
            Click(dialog, "pushButtonCancel");
        });
    }
}

} // namespace
