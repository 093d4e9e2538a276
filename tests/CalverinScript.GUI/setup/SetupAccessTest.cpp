#include <QApplication>
#include <QIcon>
#include <QLineEdit>
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

} // namespace
