#include <QAbstractButton>
#include <QApplication>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QStyle>

#include "Looks.h"
#include "MSelectorWizard.h"
#include "PanelFixture.h"
#include "Readable.h"

namespace {

constexpr const char* kLongNames =
    "({\n// Steuerung der Projektoren auf der Hinterb\xC3\xBChne\nInfo: { Title: 'Projektorsteuerung f\xC3\xBCr die "
    "Hinterb\xC3\xBChne rechts und links' },\nNetzwerkverbindungAutomatischWiederherstellenUndMelden: function() {},\n"
    "Einschalten: function (kanal) {\n    var text = \"an\"; // Kommentar\n    return 42;\n}\n})";

class ThePanelsLooks : public PanelFixture {
protected:
    void SetUp() override {
        PanelFixture::SetUp();
        module.devices.Add(device);
        MSelectorWizard::SetPlace(host.Root(), &module);
        GivenRunningFile("hinterbuehne_projektoren_rechts.js", kLongNames);
    }
    void TearDown() override {
        MSelectorWizard::SetPlace(nullptr, nullptr);
        QApplication::setPalette(QApplication::style()->standardPalette());
        PanelFixture::TearDown();
    }
    void Wear(const Look& look) {
        QPalette palette = QApplication::style()->standardPalette();
        if (look.hasDarkPalette) {
            palette = QPalette(QColor(0x35, 0x35, 0x35), QColor(0x2b, 0x2b, 0x2b));
            palette.setColor(QPalette::Disabled, QPalette::Text, QColor(0x90, 0x90, 0x90));
        }
        QApplication::setPalette(palette);
        host.colors = look.theme;
    }
    /// Shows the panel, unchanged and changed, and the dialogs of two selectors.
    void ForEachWindow(const std::function<void(QWidget&, const char* name)>& look) {
        GivenPanel();
        look(Widget(), "panel");
        QTest::keyClicks(&Editor(), QStringLiteral("x"));
        Press("pushButtonEvaluate");
        look(Widget(), "panel_modified");
        ReleaseDevice();
        look(Widget(), "panel_released");
        ReleasePanel();
        device = new MCalverinScript_Device(&module, &setup, "Desk");
        device->SetDeviceVariables(&variables);
        module.devices.Add(device);
        GivenRunningFile("hinterbuehne_projektoren_rechts.js", kLongNames);
        LookAtSelectors(look);
    }

private:
    void LookAtSelectors(const std::function<void(QWidget&, const char* name)>& look) {
        plain::Params params({QString::fromUtf8(kLongNames).toLatin1().toStdString()});
        const auto lookAt = [&look](const char* name) {
            return [&look, name](QWidget& dialog) {
                if (auto* list = dialog.findChild<QListWidget*>(QStringLiteral("listWidgetFunctionList")))
                    list->setCurrentRow(1);
                look(dialog, name);
                dialog.close();
            };
        };
        MFunctionSelectorWizard functions;
        dialogs.Expect(lookAt("function_selector"));
        EXPECT_EQ(functions.Select(nullptr, &params, params.At(0).GetName(), nullptr), 1u);
        MScriptTextSelectorWizard texts;
        dialogs.Expect(lookAt("text_selector"));
        EXPECT_EQ(texts.Select(nullptr, &params, params.At(0).GetName(), nullptr), 1u);
    }
};

bool IsControl(const QWidget& part) {
    const bool isControl = part.inherits("QLineEdit") || part.inherits("QPlainTextEdit") ||
                           part.inherits("QAbstractButton") || part.inherits("QListWidget");
    return isControl && part.isVisible() && !part.objectName().startsWith(QLatin1String("qt_")) &&
           !part.parentWidget()->inherits("QTabBar");
}

TEST_F(ThePanelsLooks, GiveEachControlANameForScreenReaders) {
    ForEachWindow([](QWidget& shown, const char* name) {
        for (QWidget* part : shown.findChildren<QWidget*>())
            EXPECT_FALSE(IsControl(*part) && part->accessibleName().isEmpty() &&
                         part->property("text").toString().isEmpty())
                << name << ": " << part->objectName().toStdString();
    });
}

TEST_F(ThePanelsLooks, TabVisitsEachControlOnce) {
    GivenPanel();
    QTest::keyClicks(&Editor(), QStringLiteral("x")); // so that the device can be updated
    Find<QWidget>(Widget(), "pushButtonLoad").setFocus();
    QStringList visited;
    while (!visited.contains(QApplication::focusWidget()->objectName()) && visited.size() < 30) {
        QWidget* part = QApplication::focusWidget();
        visited.append(part->objectName());
        const bool isEditor = part == &Editor(); // it takes Tab itself
        QTest::keyClick(part, Qt::Key_Tab, isEditor ? Qt::ControlModifier : Qt::NoModifier);
        if (isEditor && QApplication::focusWidget() == part)
            Find<QWidget>(Widget(), "lineEditDebugInfo").setFocus();
    }
    for (QWidget* part : Widget().findChildren<QWidget*>()) {
        const bool isMeant = IsControl(*part) && part->isEnabled() && (part->focusPolicy() & Qt::TabFocus) != 0;
        EXPECT_TRUE(!isMeant || visited.contains(part->objectName())) << part->objectName().toStdString();
    }
    const QStringList row = {QStringLiteral("pushButtonLoad"), QStringLiteral("pushButtonSave"),
                             QStringLiteral("pushButtonSaveAs"), QStringLiteral("lineEditScriptFileName")};
    EXPECT_EQ(visited.mid(0, 4), row);
}

TEST_F(ThePanelsLooks, CanBeReadInAllColours) {
    for (const Look& look : kLooks) {
        Wear(look);
        ForEachWindow([&look](QWidget& shown, const char*) { ExpectReadable(shown, look.name); });
    }
}

TEST_F(ThePanelsLooks, CutNoTextOff) {
    ForEachWindow([](QWidget& shown, const char* name) {
        for (auto* part : shown.findChildren<QAbstractButton*>())
            EXPECT_TRUE(!IsControl(*part) || part->width() >= part->minimumSizeHint().width())
                << name << ": " << part->objectName().toStdString();
    });
}

/// Draws panel and selectors into the folder CALVERIN_PICTURES, for people to look at. QT_SCALE_FACTOR scales them.
TEST_F(ThePanelsLooks, Pictures) {
    const QString place = QString::fromLocal8Bit(qgetenv("CALVERIN_PICTURES"));
    if (place.isEmpty())
        GTEST_SKIP() << "CALVERIN_PICTURES names no folder";
    for (const Look& look : kLooks) {
        Wear(look);
        ForEachWindow([&](QWidget& shown, const char* name) {
            QApplication::processEvents();
            const QString file =
                QStringLiteral("%1/%2_%3.png").arg(place, QLatin1String(look.name), QLatin1String(name));
            EXPECT_TRUE(shown.grab().save(file));
        });
    }
}

} // namespace
