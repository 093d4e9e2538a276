#include <QApplication>
#include <QListWidget>
#include <QStyleFactory>
#include <QTableWidget>
#include <QTabWidget>

#include "SetupFixture.h"

namespace {

/// Draws every dialog and tab into the folder CALVERIN_PICTURES, for people to look at. QT_SCALE_FACTOR scales them.
class Pictures : public SetupFixture {
protected:
    void SetUp() override {
        SetupFixture::SetUp();
        m_place = QString::fromLocal8Bit(qgetenv("CALVERIN_PICTURES"));
        if (m_place.isEmpty())
            GTEST_SKIP() << "CALVERIN_PICTURES names no folder";
    }
    void TearDown() override {
        QApplication::setPalette(QApplication::style()->standardPalette());
        SetupFixture::TearDown();
    }
    static void GivenDarkPalette() {
        QPalette dark(QColor(0x35, 0x35, 0x35), QColor(0x2b, 0x2b, 0x2b));
        dark.setColor(QPalette::Disabled, QPalette::Text, QColor(0x90, 0x90, 0x90));
        QApplication::setPalette(dark);
    }
    void GivenTheme() {
        host.colors = {{0, 0x00303030}, {1, 0x00F0F0F0}, {6, 0x00A06020}, {7, 0x00FFFFFF}, {8, 0x00484848}};
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
    for (const char* look : {"light", "dark", "theme", "theme_dark"}) {
        m_prefix = QLatin1String(look) + QLatin1Char('_');
        const bool isDark = QString::fromLatin1(look).endsWith(QLatin1String("dark"));
        QApplication::setPalette(QApplication::style()->standardPalette());
        if (isDark)
            GivenDarkPalette();
        host.colors.clear();
        if (m_prefix.startsWith(QLatin1String("theme")))
            GivenTheme();
        GivenScript(FortySettings());
        Show([&](QWidget& dialog) {
            auto& tabs = Find<QTabWidget>(dialog, "tabWidget");
            for (int tab = 0; tab < 4; ++tab) {
                tabs.setCurrentIndex(tab);
                Draw(dialog, qPrintable(QStringLiteral("tab%1").arg(tab)));
            }
            tabs.setCurrentIndex(2);
            Find<QTableWidget>(dialog, "tableWidgetVar").setCurrentCell(0, 0);
            dialogs.Expect([&](QWidget& edit) {
                Draw(edit, "edit");
                edit.close();
            });
            Click(dialog, "pushButtonEditVar");
            tabs.setCurrentIndex(1);
            dialogs.Expect([&](QWidget& finder) {
                Draw(finder, "find");
                finder.close();
            });
            QTest::keyClick(&dialog, Qt::Key_F, Qt::ControlModifier);
            dialogs.Expect([&](QWidget& load) {
                Find<QListWidget>(load, "listWidgetScripts").setCurrentRow(0);
                Draw(load, "load");
                load.close();
            });
            Click(dialog, "pushButtonLoad");
            dialogs.Expect([&](QWidget& save) {
                Type(save, "lineEditFileName", "kurz.js");
                Draw(save, "save");
                dialogs.Expect([&](QWidget& question) {
                    Draw(question, "message");
                    question.close();
                });
                Click(save, "pushButtonOk");
            });
            Click(dialog, "pushButtonSaveAs");
            Click(dialog, "pushButtonCancel");
        });
        GivenScriptFile("kurz.js", "({})");
        Show([&](QWidget& dialog) {
            Write(Project() + "/kurz.js", "({ other: 1 })");
            dialogs.Expect([&](QWidget& options) {
                Draw(options, "options");
                options.close();
            });
            Click(dialog, "pushButtonOk");
        });
    }
}

} // namespace
