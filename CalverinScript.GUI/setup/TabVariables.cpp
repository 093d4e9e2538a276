#include "TabVariables.h"

#include <algorithm>

#include <QSignalBlocker>

#include "DialogAddVar.h"
#include "ui_TabVariables.h"

namespace {

enum Column { NameColumn, TypeColumn, ValueColumn, ScriptColumn, ColumnCount };

constexpr int kRowHeight = 20;
constexpr int kLeastColumnWidth = 27;
constexpr int kLeastRowHeight = 19;
constexpr Qt::ItemFlags kShownFlags = Qt::ItemIsSelectable | Qt::ItemIsUserCheckable | Qt::ItemIsEnabled;

/// An empty text is no number: such a variable begins at 0.
QString ValueOrZero(const QString& value, const QString& type) {
    if (value.isEmpty() && type == QLatin1String("IntegerData"))
        return QStringLiteral("0");
    if (value.isEmpty() && type == QLatin1String("RealData"))
        return QStringLiteral("0.00000");
    return value;
}

QTableWidgetItem* ShownItem(const QString& text) {
    auto* item = new QTableWidgetItem(text);
    item->setFlags(kShownFlags);
    item->setToolTip(text);
    return item;
}

} // namespace

TabVariables::TabVariables(QWidget* parent)
    : QWidget(parent)
    , m_ui(std::make_unique<Ui::TabVariables>()) {
    m_ui->setupUi(this);
    for (QPushButton* button : {m_ui->pushButtonAddVar, m_ui->pushButtonRemoveVar, m_ui->pushButtonExtractVar}) {
        button->setEnabled(false); // variables come from the script alone
        button->hide();
    }
    SetUpTable();
    ConnectSignals();
}

TabVariables::~TabVariables() = default;

void TabVariables::SetUpTable() {
    QTableWidget& table = *m_ui->tableWidgetVar;
    table.setColumnCount(ColumnCount);
    table.setHorizontalHeaderLabels({QStringLiteral("Variable"), QStringLiteral("Type"),
                                     QStringLiteral("Default Value"), QStringLiteral("Script Default Value")});
    table.setEditTriggers(QAbstractItemView::NoEditTriggers);
    table.verticalHeader()->hide();
    table.verticalHeader()->setMinimumSectionSize(kLeastRowHeight);
    table.verticalHeader()->setDefaultSectionSize(std::max(kRowHeight, table.fontMetrics().height() + 2));
    table.horizontalHeader()->setMinimumSectionSize(kLeastColumnWidth);
    table.horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
}

void TabVariables::ConnectSignals() {
    const QTableWidget* table = m_ui->tableWidgetVar;
    connect(m_ui->pushButtonExtractVar, &QPushButton::clicked, this, &TabVariables::SignalExtract);
    connect(m_ui->pushButtonAddVar, &QPushButton::clicked, this, &TabVariables::SlotCreateVariable);
    connect(m_ui->pushButtonEditVar, &QPushButton::clicked, this, &TabVariables::SlotEditVariable);
    connect(m_ui->pushButtonRemoveVar, &QPushButton::clicked, this, &TabVariables::SlotRemoveVariable);
    connect(table, &QTableWidget::itemDoubleClicked, this, &TabVariables::SlotEditVariableItem);
    connect(table, &QTableWidget::itemClicked, this, &TabVariables::SlotCheckBoxState);
    connect(table, &QTableWidget::itemChanged, this, &TabVariables::SlotCheckBoxState); // by the keyboard
    connect(table, &QTableWidget::itemSelectionChanged, this, &TabVariables::SlotCheckMonitorList);
}

void TabVariables::SetVariables(const ScriptVariables& variables) {
    m_variables = variables;
    ShowTable();
}

void TabVariables::ShowTable() {
    QTableWidget& table = *m_ui->tableWidgetVar;
    const QSignalBlocker quiet(table);
    table.clearSelection();
    table.setCurrentItem(nullptr);
    table.setRowCount(static_cast<int>(m_variables.size()));
    int row = 0;
    for (const MScriptVariable& variable : m_variables)
        ShowRow(row++, variable);
    SlotCheckMonitorList();
}

void TabVariables::ShowRow(int row, const MScriptVariable& variable) {
    QTableWidget& table = *m_ui->tableWidgetVar;
    table.setItem(row, NameColumn, ShownItem(variable.name));
    table.setItem(row, TypeColumn, ShownItem(variable.type));
    table.setItem(row, ValueColumn, ShownItem(variable.value));
    auto* script = new QTableWidgetItem(variable.defaultScriptValue);
    script->setCheckState(variable.useDefaultScriptValue ? Qt::Checked : Qt::Unchecked);
    table.setItem(row, ScriptColumn, script);
}

/// A null text where there is no item.
QString TabVariables::TextAt(int row, int column) const {
    const QTableWidgetItem* item = m_ui->tableWidgetVar->item(row, column);
    return item != nullptr ? QLatin1String("") + item->text() : QString();
}

MScriptVariable* TabVariables::FindVariable(const QString& name) {
    const auto found = std::find_if(m_variables.begin(), m_variables.end(),
                                    [&](const MScriptVariable& variable) { return variable.name == name; });
    return found != m_variables.end() ? &*found : nullptr;
}

void TabVariables::SlotEditVariableItem(QTableWidgetItem* lpItem) {
    if (lpItem == nullptr)
        return;
    SlotCheckMonitorList();
    SlotEditVariable();
}

void TabVariables::SlotEditVariable() {
    const int row = m_ui->tableWidgetVar->currentRow();
    const QString name = TextAt(row, NameColumn);
    const QString type = TextAt(row, TypeColumn);
    const QString value = TextAt(row, ValueColumn);
    if (name.isNull() || type.isNull() || value.isNull() || TextAt(row, ScriptColumn).isNull())
        return;
    DialogAddVar dialog(this, true);
    dialog.setWindowTitle(QStringLiteral("Edit Variable"));
    if (const MScriptVariable* variable = FindVariable(name))
        dialog.SetKind(*variable);
    dialog.SetName(name);
    dialog.SetType(type);
    dialog.SetValue(value);
    if (dialog.exec() == QDialog::Accepted)
        TakeEdited(dialog, name, type);
}

/// Whoever leaves the dialog with Ok wants the value that stands there, whether it was changed or not.
void TabVariables::TakeEdited(const DialogAddVar& dialog, const QString& oldName, const QString& oldType) {
    const QString value = ValueOrZero(dialog.GetValue(), dialog.GetType());
    if (dialog.GetName() == oldName && dialog.GetType() == oldType) {
        if (MScriptVariable* variable = FindVariable(oldName)) {
            variable->value = value;
            variable->useDefaultScriptValue = false;
        }
    } else {
        RemoveFirst(dialog.GetName());
        AddVariable(dialog.GetName(), dialog.GetType(), value);
    }
    ShowTable();
}

void TabVariables::SlotCheckBoxState(QTableWidgetItem* lpItem) {
    if (lpItem == nullptr || lpItem->column() != ScriptColumn || lpItem->checkState() == Qt::PartiallyChecked)
        return;
    const QString name = TextAt(lpItem->row(), NameColumn);
    const QString type = TextAt(lpItem->row(), TypeColumn);
    const auto found = std::find_if(m_variables.begin(), m_variables.end(), [&](const MScriptVariable& variable) {
        return variable.name == name && variable.type == type;
    });
    if (found != m_variables.end())
        found->useDefaultScriptValue = lpItem->checkState() == Qt::Checked;
}

void TabVariables::SlotCheckMonitorList() {
    const bool hasCurrent = m_ui->tableWidgetVar->currentItem() != nullptr;
    m_ui->pushButtonEditVar->setEnabled(hasCurrent);
    m_ui->pushButtonRemoveVar->setEnabled(hasCurrent);
}

void TabVariables::SlotCreateVariable() {
    DialogAddVar dialog(this, false);
    dialog.setWindowTitle(QStringLiteral("Add Variable"));
    if (dialog.exec() != QDialog::Accepted)
        return;
    AddVariable(dialog.GetName(), dialog.GetType(), ValueOrZero(dialog.GetValue(), dialog.GetType()));
    ShowTable();
}

void TabVariables::AddVariable(const QString& name, const QString& type, const QString& value) {
    MScriptVariable variable;
    variable.name = name;
    variable.type = type;
    variable.value = value;
    m_variables.push_back(variable);
}

void TabVariables::SlotRemoveVariable() {
    const QString name = TextAt(m_ui->tableWidgetVar->currentRow(), NameColumn);
    if (name.isNull())
        return;
    RemoveFirst(name);
    ShowTable();
}

void TabVariables::RemoveFirst(const QString& name) {
    const auto found = std::find_if(m_variables.begin(), m_variables.end(),
                                    [&](const MScriptVariable& variable) { return variable.name == name; });
    if (found != m_variables.end())
        m_variables.erase(found);
}
