#include "ThemeStyleSheet.h"

#include <iterator>
#include <utility>

#include <QApplication>
#include <QEvent>
#include <QPalette>
#include <QPointer>
#include <QWidget>

#include "IHostServices.h"

namespace {

/// The host's numbers of background, text, field, selected and selected text: %1 to %5 in the rules.
constexpr std::uint32_t kColorIds[] = {0, 1, 8, 6, 7};

enum Tone { GroundTone, TextTone, FieldTone, SelectedTone, SelectedTextTone };

/// What is typed on a tab stands on the colour of texts, so it has that of the ground; but a field that takes nothing looks so. What
/// is chosen in a table stands on the table's ground, whether its row is selected or not.
constexpr const char* kReadableFields = "QTabWidget QLineEdit{color: rgb(%1);}"
                                        "QTabWidget QLineEdit:disabled{background-color: rgb(%1); color: %6;}"
                                        "QTableWidget QComboBox{background-color: rgb(%3); border: none;}";

constexpr const char* kRules[] = {
    "QGroupBox{font: bold; background: none;\tborder: 1px solid grey;\tmargin-top: 8px; border-radius: 5px;}",
    ("QGroupBox::title{font: bold; subcontrol-origin: margin; subcontrol-position: top left; margin-left: 2px; "
     "padding: 0 0px; color: rgb(%2);}"),
    "QDialog{background-color: rgb(%1); color: rgb(%2);}",
    "QLabel{color: rgb(%2);}",
    "QCheckBox{color: rgb(%2);}",
    "QRadioButton{color: rgb(%2);}",
    "QLineEdit[readOnly=\"true\"]{background: rgb(%3); color: rgb(%2); border-width: 1px;}",
    ("QTabBar::tab{background-color: rgb(%1); color: rgb(%2); padding: 5px 10px; border-style: outset; "
     "border-width: 1px; border-color: rgb(%2); border-top-left-radius: 2px; border-top-right-radius: 2px; "
     "margin-top: 6px;}"),
    ("QTabBar::tab:selected{background: rgb(%4); color: rgb(%5); border-top-left-radius: 2px; "
     "border-top-right-radius: 2px; margin-top: 2px;}"),
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

/// A rule with the host's colours in the places of %1 to %5.
QString InColors(const char* rule, IThemeManager& theme) {
    QString text = QLatin1String(rule);
    for (std::size_t tone = 0; tone < std::size(kColorIds); ++tone)
        text.replace(QStringLiteral("%") + QString::number(tone + 1), Numbers(theme.GetColor(kColorIds[tone])));
    return text;
}

QColor ColorOf(IThemeManager& theme, Tone tone) {
    const std::uint32_t color = theme.GetColor(kColorIds[tone]);
    return QColor(color & 0xFF, color >> 8 & 0xFF, color >> 16 & 0xFF);
}

/// What cannot be used is half way between text and ground.
QColor Between(const QColor& left, const QColor& right) {
    return QColor((left.red() + right.red()) / 2, (left.green() + right.green()) / 2, (left.blue() + right.blue()) / 2);
}

QPalette PaletteOf(IThemeManager& theme) {
    const QColor ground = ColorOf(theme, GroundTone);
    const QColor text = ColorOf(theme, TextTone);
    QPalette palette(ground, ground);
    for (const QPalette::ColorRole role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText}) {
        palette.setColor(role, text);
        palette.setColor(QPalette::Disabled, role, Between(text, ground));
    }
    palette.setColor(QPalette::Base, ColorOf(theme, FieldTone));
    palette.setColor(QPalette::AlternateBase, ColorOf(theme, FieldTone));
    palette.setColor(QPalette::ToolTipBase, ground);
    palette.setColor(QPalette::Highlight, ColorOf(theme, SelectedTone));
    palette.setColor(QPalette::HighlightedText, ColorOf(theme, SelectedTextTone));
    return palette;
}

constexpr const char* kPainterName = "themePainter";

/// A widget under a style sheet takes no palette from its parent, so each gets its own before it is shown, those of dialogs that the
/// dialog opens too. The editor keeps its paper.
class PalettePainter : public QObject {
public:
    PalettePainter(QWidget& dialog, QPalette palette)
        : QObject(&dialog)
        , m_dialog(dialog)
        , m_palette(std::move(palette)) {
        setObjectName(QLatin1String(kPainterName));
        qApp->installEventFilter(this);
        for (QWidget* part : dialog.findChildren<QWidget*>())
            Paint(*part);
    }

    /// Gives everything the desktop's colours again.
    void Undo() const {
        m_dialog.setPalette(QPalette());
        for (QWidget* part : m_dialog.findChildren<QWidget*>())
            if (IsBelow(*part))
                part->setPalette(QPalette());
    }

    bool eventFilter(QObject* watched, QEvent* event) override {
        auto* widget = event->type() == QEvent::Polish ? qobject_cast<QWidget*>(watched) : nullptr;
        if (widget != nullptr)
            Paint(*widget);
        return false;
    }

private:
    void Paint(QWidget& widget) const {
        if (IsBelow(widget))
            widget.setPalette(m_palette);
    }
    bool IsBelow(const QWidget& widget) const {
        const QWidget* above = &widget;
        while (above != nullptr && above != &m_dialog && !above->inherits("CodeEditor"))
            above = above->parentWidget();
        return above == &m_dialog;
    }

    QWidget& m_dialog;
    const QPalette m_palette;
};

} // namespace

QString BuildThemeStyleSheet(IMInterface* host) {
    auto* theme = QueryFace<IThemeManager>(host, "IThemeManager");
    QString sheet;
    if (theme != nullptr)
        for (const char* rule : kRules)
            sheet += InColors(rule, *theme);
    return sheet;
}

void WearTheme(QWidget& dialog, IMInterface* host) {
    const QPointer<QWidget> kept(&dialog); // the host may close its window when it is asked
    auto* theme = QueryFace<IThemeManager>(host, "IThemeManager");
    QString sheet;
    QPalette palette;
    if (theme != nullptr) {
        palette = PaletteOf(*theme);
        const QString unused = Between(ColorOf(*theme, TextTone), ColorOf(*theme, GroundTone)).name();
        sheet = BuildThemeStyleSheet(host) + InColors(kReadableFields, *theme).replace(QStringLiteral("%6"), unused);
    }
    if (kept == nullptr)
        return;
    auto* worn = static_cast<PalettePainter*>(
        dialog.findChild<QObject*>(QLatin1String(kPainterName), Qt::FindDirectChildrenOnly));
    if (sheet == dialog.styleSheet() || (theme == nullptr && worn == nullptr))
        return;
    if (worn != nullptr) {
        dialog.setStyleSheet(QString()); // it gives back the palettes that it found
        worn->Undo();
        delete worn;
    }
    if (theme != nullptr)
        new PalettePainter(dialog, palette);
    dialog.setStyleSheet(sheet);
}
