#include <algorithm>
#include <functional>
#include <map>

#include <QApplication>
#include <QComboBox>
#include <QIcon>
#include <QKeySequence>
#include <QLineEdit>
#include <QListWidget>
#include <QPalette>
#include <QPlainTextEdit>
#include <QSpinBox>
#include <QStyle>
#include <QTabBar>
#include <QTableWidget>

#include "Deadline.h"
#include "Readable.h"
#include "SetupDialogFixture.h"

namespace {

class TheControls : public TheSetupDialog {
protected:
    /// What opens each small dialog. The last one asks about a file that differs, and its setup is taken whatever is answered.
    inline static const std::function<void(QWidget&)> kWaysToSmallDialogs[] = {
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
        },
        [](QWidget& dialog) {
            TypeScript(dialog, "({})");
            Click(dialog, "pushButtonOk");
        }};
};

TEST_F(TheControls, EveryPictureIsDrawnAtSixteenPixels) {
    GivenScript(kDriver);
    Show([&](QWidget& dialog) {
        for (const char* name :
             {"about",    "search",   "varFolder", "userGroupIcon", "taskIcon",   "cueIcon",     "userscreenIcon",
              "devIcon",  "perform",  "wizard",    "deviceIcon",    "stringIcon", "integerIcon", "realIcon",
              "enumIcon", "timeIcon", "dateIcon",  "dirIn",         "dirOut",     "dirInOut"}) {
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

/// Every way to colour the dialogs that a host or a desktop may have.
class TheColours : public TheControls {
protected:
    void TearDown() override {
        QApplication::setPalette(QApplication::style()->standardPalette());
        TheSetupDialog::TearDown();
    }
    void InEach(const std::function<void(const std::string& theme)>& work) {
        for (const auto& [name, theme] : m_themes) {
            host.colors = theme;
            work(name);
        }
        host.colors.clear();
        QApplication::setPalette(QPalette(QColor(0x35, 0x35, 0x35), QColor(0x2b, 0x2b, 0x2b)));
        work("a dark desktop");
    }

private:
    const std::map<std::string, std::map<std::uint32_t, std::uint32_t>> m_themes = {
        {"no theme", {}},
        {"a dark theme", {{0, 0x00303030}, {1, 0x00F0F0F0}, {6, 0x00804010}, {7, 0x00FFFFFF}, {8, 0x00484848}}},
        {"a light theme", {{0, 0x00F4F4F4}, {1, 0x00202020}, {6, 0x00804010}, {7, 0x00FFFFFF}, {8, 0x00FFFFFF}}}};
};

TEST_F(TheColours, OfEachTabCanBeRead) {
    GivenScript("({ Setup: { A: 'a', B: 1, C: 0.5, D: 1, E: 0, F: 1 }, Info: { Title: 'T', Version: '1', Author: 'A', "
                "Description: 'D', Setup: { D: { Widget: 'CheckBox' }, E: { Type: 'Enum', Items: ['x', 'y'] }, "
                "F: { Widget: 'ComboBox' } } } })");
    InEach([&](const std::string& theme) {
        Show([&](QWidget& dialog) {
            for (int tab = 0; tab < 4; ++tab) {
                ClickTab(dialog, tab);
                ExpectReadable(dialog, theme);
            }
            Click(dialog, "pushButtonCancel");
        });
    });
}

TEST_F(TheColours, OfEachSmallDialogCanBeRead) {
    WriteLibrary("other.js", kDriver);
    GivenScriptFile("lamp.js", kDriver);
    InEach([&](const std::string& theme) {
        for (const auto& opens : kWaysToSmallDialogs) {
            Show([&](QWidget& dialog) {
                dialogs.Expect([&](QWidget& small) {
                    if (auto* list = small.findChild<QListWidget*>())
                        list->setCurrentRow(0);
                    ExpectReadable(small, theme);
                    small.close();
                });
                opens(dialog);
                if (dialog.isVisible())
                    Click(dialog, "pushButtonCancel");
            });
        }
        GivenScriptFile("lamp.js", kDriver);
    });
}

TEST_F(TheColours, AFieldThatTakesNothingLooksSo) {
    GivenScript(kDriver);
    InEach([&](const std::string& theme) {
        Show([&](QWidget& dialog) {
            ClickTab(dialog, 2);
            dialogs.Expect([&](QWidget& edit) {
                EXPECT_LT(DrawnContrast(Find<QWidget>(edit, "lineEditVarName")),
                          DrawnContrast(Find<QWidget>(edit, "lineEditVarValue")))
                    << theme;
                edit.close();
            });
            DoubleClickCell(dialog, 0, 1);
            Click(dialog, "pushButtonCancel");
        });
    });
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
    WriteLibrary("other.js", kDriver);
    GivenScriptFile("lamp.js", kDriver);
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
    for (const auto& opens : kWaysToSmallDialogs) {
        Show([&](QWidget& dialog) {
            dialogs.Expect(check);
            opens(dialog);
            if (dialog.isVisible())
                Click(dialog, "pushButtonCancel");
        });
    }
}

} // namespace
