#include "SettingsForm.h"

#include <algorithm>
#include <memory>

#include <QEvent>
#include <QGridLayout>
#include <QLabel>
#include <QVariant>

#include "MyResourceSelector.h"

namespace {

constexpr int kColumns = 2;
constexpr int kFieldStretch = 2;
constexpr int kRowSpacing = 4;
constexpr int kRightMargin = 6; ///< keeps the fields off the scroll bar
constexpr int kSpacerWidth = 40;
constexpr int kSpacerHeight = 20;

Qt::Alignment AlignmentOf(FieldLayout layout) {
    return layout == FieldLayout::LabelAndWideField ? Qt::Alignment(Qt::AlignVCenter)
                                                    : Qt::AlignLeft | Qt::AlignVCenter;
}

} // namespace

SettingsForm::SettingsForm(QWidget* parent)
    : QWidget(parent)
    , m_grid(new QGridLayout(this)) {
    m_grid->setObjectName(QStringLiteral("gridLayoutMainSetup"));
    m_grid->setContentsMargins(0, 0, kRightMargin, 0); // the tab has its own
    m_grid->setVerticalSpacing(kRowSpacing);
}

void SettingsForm::ShowSettings(const ScriptSettings& settings) {
    Clear();
    int row = 0;
    for (const MScriptSetting& setting : settings)
        AddRow(row++, setting);
    CloseRows(row);
}

void SettingsForm::Clear() {
    for (int index = m_grid->count() - 1; index >= 0; --index) {
        const std::unique_ptr<QLayoutItem> item(m_grid->takeAt(index));
        delete item->widget();
    }
    for (int row = m_grid->rowCount() - 1; row >= 0; --row) {
        m_grid->setRowMinimumHeight(row, 0);
        m_grid->setRowStretch(row, 0);
    }
}

void SettingsForm::AddRow(int row, const MScriptSetting& setting) {
    QWidget* field = MakeField(setting, m_host);
    const FieldLayout layout = LayoutOf(setting);
    if (layout != FieldLayout::FieldAlone && layout != FieldLayout::WholeRow)
        AddLabel(row, setting, field);
    if (field != nullptr)
        AddField(row, setting, field);
}

void SettingsForm::AddLabel(int row, const MScriptSetting& setting, QWidget* field) {
    auto* label = new QLabel(setting.name, this);
    label->setTextFormat(Qt::PlainText);
    if (field == nullptr)
        label->setToolTip(tr("There is no field for this kind of setting."));
    m_grid->addWidget(label, row, 0, Qt::AlignRight | Qt::AlignVCenter);
}

void SettingsForm::AddField(int row, const MScriptSetting& setting, QWidget* field) {
    const FieldLayout layout = LayoutOf(setting);
    if (layout == FieldLayout::WholeRow)
        m_grid->addWidget(field, row, 0, 1, kColumns);
    else
        m_grid->addWidget(field, row, 1, AlignmentOf(layout));
    if (auto* resource = qobject_cast<MyResourceSelector*>(field))
        connect(resource, &MyResourceSelector::SignalChosen, this, &SettingsForm::SignalResourceChosen);
    KeepWheelAway(field);
}

/// What is left below the last row belongs to no row.
void SettingsForm::CloseRows(int row) {
    m_grid->addWidget(new QWidget(this), row, 0);
    m_grid->addItem(new QSpacerItem(kSpacerWidth, kSpacerHeight, QSizePolicy::Minimum, QSizePolicy::Expanding), row + 1,
                    0);
    m_grid->setColumnStretch(1, kFieldStretch);
}

void SettingsForm::KeepWheelAway(QWidget* field) {
    QList<QWidget*> parts = field->findChildren<QWidget*>();
    parts.append(field);
    for (QWidget* part : parts) {
        if (part->focusPolicy() == Qt::WheelFocus)
            part->setFocusPolicy(Qt::StrongFocus);
        part->installEventFilter(this);
    }
}

bool SettingsForm::eventFilter(QObject* watched, QEvent* event) {
    auto* field = qobject_cast<QWidget*>(watched);
    if (event->type() != QEvent::Wheel || field == nullptr || field->hasFocus())
        return QWidget::eventFilter(watched, event);
    event->ignore();
    return true;
}

void SettingsForm::ReadBack(ScriptSettings& settings) const {
    for (int row = 0; row < m_grid->rowCount(); ++row) {
        QLayoutItem* item = m_grid->itemAtPosition(row, 1);
        const QWidget* field = item != nullptr ? item->widget() : nullptr;
        const QVariant name = field != nullptr ? field->property(kSettingNameProperty) : QVariant();
        if (!name.isValid())
            continue;
        const auto setting = std::find_if(settings.begin(), settings.end(), [&](const MScriptSetting& candidate) {
            return candidate.name == name.toString();
        });
        if (setting != settings.end())
            setting->value = ReadField(*field, *setting);
    }
}
