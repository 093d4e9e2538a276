#include <QApplication>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QStyle>
#include <QTableWidget>
#include <QTabWidget>

#include "Looks.h"
#include "SetupCompletionFixture.h"

namespace {

constexpr const char* kCommands =
    R"(<Device><Commands><Command Name="Ausschalten"/><Command Name="Eingang wählen"><ObjectParams>
<ObjectParam><StringData Name="Bezeichnung" String="Hinterbühne"/></ObjectParam>
<ObjectParam><EnumData Name="Eingang" Current="1"><EnumStrings><EnumString Name="HDMI" Value="0"/>
<EnumString Name="SDI über Glasfaser" Value="1"/></EnumStrings></EnumData></ObjectParam>
<ObjectParam><IntegerData Name="Kanal" Value="12"/></ObjectParam>
<ObjectParam><RealData Name="Verzögerungszeit in Sekunden" Value="2.5"><Properties>
<Property Name="DataDescriptor::VarDirection" Value="mddInOut"/></Properties></RealData></ObjectParam>
<ObjectParam><TimeData Name="Einschaltzeitpunkt"/></ObjectParam>
<ObjectParam><DateData Name="Wartungsdatum"/></ObjectParam>
<ObjectParam><StringData Name="Ergebnis" String=""><Properties>
<Property Name="DataDescriptor::VarDirection" Value="mddOut"/></Properties></StringData></ObjectParam>
</ObjectParams></Command></Commands></Device>)";

/// Draws every dialog and tab into the folder CALVERIN_PICTURES, for people to look at. QT_SCALE_FACTOR scales them.
class Pictures : public TheDialogInAShow {
protected:
    void SetUp() override {
        TheDialogInAShow::SetUp();
        m_place = QString::fromLocal8Bit(qgetenv("CALVERIN_PICTURES"));
        if (m_place.isEmpty())
            GTEST_SKIP() << "CALVERIN_PICTURES names no folder";
    }
    void TearDown() override {
        QApplication::setPalette(QApplication::style()->standardPalette());
        TheDialogInAShow::TearDown();
    }
    static void GivenDarkPalette() {
        QPalette dark(QColor(0x35, 0x35, 0x35), QColor(0x2b, 0x2b, 0x2b));
        dark.setColor(QPalette::Disabled, QPalette::Text, QColor(0x90, 0x90, 0x90));
        QApplication::setPalette(dark);
    }
    void Wear(const Look& look) {
        m_prefix = QLatin1String(look.name) + QLatin1Char('_');
        QApplication::setPalette(QApplication::style()->standardPalette());
        if (look.hasDarkPalette)
            GivenDarkPalette();
        host.colors = look.theme;
    }
    void DrawTabs() {
        GivenScript(FortySettings());
        Show([&](QWidget& dialog) {
            for (int tab = 0; tab < 4; ++tab) {
                Find<QTabWidget>(dialog, "tabWidget").setCurrentIndex(tab);
                Draw(dialog, qPrintable(QStringLiteral("tab%1").arg(tab)));
            }
            dialog.close();
        });
    }
    /// Draws the dialog that a step in the setup dialog opens.
    void DrawOpenedBy(const char* name, const std::function<void(QWidget&)>& step) {
        GivenScriptFile("kurz.js", FortySettings());
        Show([&](QWidget& dialog) {
            dialogs.Expect([&](QWidget& opened) {
                if (auto* list = opened.findChild<QListWidget*>())
                    list->setCurrentRow(0);
                Draw(opened, name);
                opened.close();
            });
            step(dialog);
            dialog.close();
        });
    }
    void DrawComposer() {
        link.code = KXP_OK;
        GivenCompletion(true);
        Show([&](QWidget& dialog) {
            Find<QTabWidget>(dialog, "tabWidget").setCurrentIndex(1);
            dialogs.Expect([&](QWidget& opened) {
                link.code = KXP_OK;
                link.text = kCommands;
                Find<QListWidget>(opened, "listDeviceList").setCurrentRow(0);
                Find<QListWidget>(opened, "listCommandList").setCurrentRow(1);
                Find<QTableWidget>(opened, "tableWidgetParams").setCurrentCell(2, 3);
                Draw(opened, "perform");
                opened.close();
            });
            QTest::keyClick(&dialog, Qt::Key_P, Qt::AltModifier);
            dialog.close();
        });
    }
    void Draw(QWidget& dialog, const char* name) const {
        QApplication::processEvents();
        ASSERT_TRUE(
            dialog.grab().save(m_place + QLatin1Char('/') + m_prefix + QLatin1String(name) + QStringLiteral(".png")));
    }
    static std::string FortySettings() {
        static const char* const kGroup[] = {"Gerätebezeichnung: 'Projektor Hinterbühne rechts'",
                                             "Anschlussnummer: 4352",
                                             "Verzögerungszeit: 2.5",
                                             "Betriebsart: 1",
                                             "Wartungsdatum: '24/12/2026'",
                                             "Einschaltzeitpunkt: '19:30:00/00'",
                                             "Netzwerkverbindung_automatisch_wiederherstellen: 1",
                                             "Hinweis: 'Netzwerkeinstellungen des Projektors'",
                                             "Trennlinie: ''",
                                             "Schnittstelle: ''"};
        static const char* const kInfo[] = {
            "",
            "Suffix: ' (Anschluss)'",
            "Precision: 2, Suffix: ' s'",
            "Type: 'Enum', Items: ['Ausgeschaltet', 'Bereitschaftsbetrieb', 'Eingeschaltet']",
            "Type: 'Date'",
            "Type: 'Time'",
            "Widget: 'CheckBox'",
            "Widget: 'Label'",
            "Widget: 'Divider'",
            "Widget: 'Serial'"};
        std::string setup;
        std::string info;
        for (int row = 0; row < 40; ++row) {
            std::string member = kGroup[row % 10];
            const std::string name = member.substr(0, member.find(':')) + std::to_string(row / 10);
            setup += name + member.substr(member.find(':')) + ",\n";
            info += name + ": { " + kInfo[row % 10] + " },\n";
        }
        return "({\n// Steuerung der Projektoren auf der Hinterbühne\nSetup: {\n" + setup +
               "},\nDevice: { Lampenbetriebsstunden: 5, Gehäuseinnentemperatur: 41.5, Fehlerbeschreibung: 'keine' },\n"
               "Info: { Title: 'Projektorsteuerung für die Hinterbühne', Version: '1.2.3-beta', "
               "Author: 'Veranstaltungstechnik', Description: 'Schaltet alle Projektoren.\\nZweite Zeile.',\n"
               "Setup: {\n" +
               info +
               "} },\n\nEinschalten: function (kanal) {\n    var text = \"an\"; // Kommentar\n    return 42;\n}\n})";
    }

    QString m_place;
    QString m_prefix;
};

TEST_F(Pictures, OfEveryDialogAndTab) {
    WriteLibrary("hinterbuehne.js", FortySettings());
    WriteLibrary("kurz.js", "({})");
    for (const Look& look : kLooks) {
        Wear(look);
        DrawTabs();
        DrawOpenedBy("edit", [](QWidget& dialog) {
            Find<QTabWidget>(dialog, "tabWidget").setCurrentIndex(2);
            Find<QTableWidget>(dialog, "tableWidgetVar").setCurrentCell(0, 0);
            Click(dialog, "pushButtonEditVar");
        });
        DrawOpenedBy("find", [](QWidget& dialog) {
            Find<QTabWidget>(dialog, "tabWidget").setCurrentIndex(1);
            QTest::keyClick(&dialog, Qt::Key_F, Qt::ControlModifier);
        });
        DrawOpenedBy("insert", [](QWidget& dialog) {
            Find<QTabWidget>(dialog, "tabWidget").setCurrentIndex(1);
            QTest::keyClick(&dialog, Qt::Key_D, Qt::AltModifier);
        });
        DrawComposer();
        DrawOpenedBy("load", [](QWidget& dialog) { Click(dialog, "pushButtonLoad"); });
        DrawOpenedBy("save", [](QWidget& dialog) { Click(dialog, "pushButtonSaveAs"); });
        DrawOpenedBy("message", [](QWidget& dialog) {
            Find<QPlainTextEdit>(dialog, "plainTextEditScript").setPlainText(QStringLiteral("({"));
            Click(dialog, "pushButtonOk");
        });
        DrawOpenedBy("options", [this](QWidget& dialog) {
            Write(Project() + "/kurz.js", "({ other: 1 })");
            Click(dialog, "pushButtonOk");
        });
    }
}

} // namespace
