#include "ThemeStyleSheet.h"

#include <array>
#include <iterator>

#include "IHostServices.h"

namespace {

/// The host's numbers of background, text, field, selected and selected text: %1 to %5 in the rules.
constexpr std::uint32_t kColorIds[] = {0, 1, 8, 6, 7};

constexpr const char* kRules[] = {
    "QGroupBox{font: bold; background: none;\tborder: 1px solid grey;\tmargin-top: 8px; border-radius: 5px;}",
    "QGroupBox::title{font: bold; subcontrol-origin: margin; subcontrol-position: top left; margin-left: 2px; padding: "
    "0 0px; "
    "color: rgb(%2);}",
    "QDialog{background-color: rgb(%1); color: rgb(%2);}",
    "QLabel{color: rgb(%2);}",
    "QCheckBox{color: rgb(%2);}",
    "QRadioButton{color: rgb(%2);}",
    "QLineEdit[readOnly=\"true\"]{background: rgb(%3); color: rgb(%2); border-width: 1px;}",
    "QTabBar::tab{background-color: rgb(%1); color: rgb(%2); padding: 5px 10px; border-style: outset; border-width: "
    "1px; "
    "border-color: rgb(%2); border-top-left-radius: 2px; border-top-right-radius: 2px; margin-top: 6px;}",
    "QTabBar::tab:selected{background: rgb(%4); color: rgb(%5); border-top-left-radius: 2px; border-top-right-radius: "
    "2px; "
    "margin-top: 2px;}",
    "QTabWidget MyTabWidget{background-color: rgb(%1);}",
    "QTabWidget QLineEdit{background-color: rgb(%2);}",
    "QTabWidget CodeEditor{background-color: white;}",
    "QTableWidget{background: rgb(%3); color: rgb(%2);}",
    "QTableWidget QComboBox{background-color: transparent; color: rgb(%2);}",
    "QTabWidget::pane{border-style: outset; border-width: 1px; border-color: rgb(%2);}",
    "QListView{background-color: rgb(%3); color: rgb(%2);}",
    "QTextEdit{background-color: rgb(%3); color: rgb(%2);}",
    "QPlainTextEdit{background-color: rgb(%3); color: rgb(%2);}",
    "QFrame{color: rgb(%2);}",
};

/// Three decimal numbers, red first; the host has blue in the highest byte.
QString Numbers(std::uint32_t color) {
    return QStringLiteral("%1,%2,%3").arg(color & 0xFF).arg(color >> 8 & 0xFF).arg(color >> 16 & 0xFF);
}

} // namespace

QString BuildThemeStyleSheet(IMInterface* host) {
    auto* theme = QueryFace<IThemeManager>(host, "IThemeManager");
    if (theme == nullptr)
        return QString();
    std::array<QString, std::size(kColorIds)> tones;
    for (std::size_t tone = 0; tone < tones.size(); ++tone)
        tones[tone] = Numbers(theme->GetColor(kColorIds[tone]));
    QString sheet;
    for (const char* rule : kRules) {
        QString text = QLatin1String(rule);
        for (std::size_t tone = 0; tone < tones.size(); ++tone)
            text.replace(QStringLiteral("%") + QString::number(tone + 1), tones[tone]);
        sheet += text;
    }
    return sheet;
}
