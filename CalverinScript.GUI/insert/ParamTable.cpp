#include "ParamTable.h"

#include <algorithm>
#include <iterator>

#include <QComboBox>
#include <QHeaderView>
#include <QSignalBlocker>
#include <QTableWidget>

#include "CompletionTable.h"
#include "CustomDelegate.h"
#include "LatePicture.h"

namespace {

constexpr int kPictureColumnWidth = 22;
constexpr int kRowHeight = 20;
constexpr Qt::ItemFlags kShownFlags = Qt::ItemIsSelectable | Qt::ItemIsEnabled;
constexpr Qt::ItemFlags kValueFlags = kShownFlags | Qt::ItemIsEditable;

/// What is shown of the way of a value; indexed by ParamWay.
struct WayLook {
    const char* picture;
    const char* words;
};

constexpr WayLook kWayLooks[] = {{":/dirIn", "in"}, {":/dirOut", "out"}, {":/dirInOut", "in and out"}};
static_assert(std::size(kWayLooks) == static_cast<std::size_t>(ParamWay::InOut) + 1, "one row for each way");

constexpr const char* kTypedTypes[] = {"StringData", "IntegerData", "RealData"};
constexpr const char* kChosenType = "EnumData";

/// A parameter has the picture of a variable of its type.
QIcon PictureOfType(const QString& type) {
    const auto* kind =
        std::find_if(std::begin(kCompletionKinds), std::end(kCompletionKinds), [&](const CompletionKind& row) {
            return row.valueName != nullptr && type == QLatin1String(row.valueName);
        });
    return kind != std::end(kCompletionKinds) ? LatePictureOf(kind->picture) : QIcon();
}

bool IsTyped(const QString& type) {
    return std::any_of(std::begin(kTypedTypes), std::end(kTypedTypes),
                       [&](const char* typed) { return type == QLatin1String(typed); });
}

QTableWidgetItem* PictureItem(const QIcon& picture, const QString& words) {
    auto* item = new QTableWidgetItem(picture, QString());
    item->setFlags(kShownFlags);
    item->setToolTip(words);
    item->setData(Qt::AccessibleTextRole, words);
    return item;
}

QTableWidgetItem* TextItem(const QString& text, Qt::ItemFlags flags) {
    auto* item = new QTableWidgetItem(text);
    item->setFlags(flags);
    return item;
}

QComboBox* MakeChoice(const OfferedParam& param, const std::function<void()>& changed) {
    auto* box = new QComboBox;
    box->setFrame(false);
    box->setAccessibleName(param.name);
    for (const auto& item : param.items)
        box->insertItem(item.first, item.second);
    box->setCurrentIndex(param.current);
    QObject::connect(box, QOverload<int>::of(&QComboBox::currentIndexChanged), box, changed);
    return box;
}

void ShowParam(QTableWidget& table, int row, const OfferedParam& param, const std::function<void()>& changed) {
    const WayLook& way = kWayLooks[static_cast<std::size_t>(param.way)];
    table.setItem(row, ParamColumn::Type, PictureItem(PictureOfType(param.type), param.type));
    table.setItem(row, ParamColumn::Name, TextItem(param.name, kShownFlags));
    table.setItem(row, ParamColumn::Direction, PictureItem(LatePictureOf(way.picture), QLatin1String(way.words)));
    if (IsTyped(param.type))
        table.setItem(row, ParamColumn::Value, TextItem(param.value, kValueFlags));
    if (param.type == QLatin1String(kChosenType))
        table.setCellWidget(row, ParamColumn::Value, MakeChoice(param, changed));
}

/// A value that was typed, else one that was chosen.
QString ValueIn(const QTableWidget& table, int row) {
    if (const QTableWidgetItem* item = table.item(row, ParamColumn::Value))
        return item->text();
    const auto* box = qobject_cast<QComboBox*>(table.cellWidget(row, ParamColumn::Value));
    return box != nullptr ? box->currentText() : QString();
}

} // namespace

void SetUpParamTable(QTableWidget& table) {
    table.setColumnCount(ParamColumn::Count);
    table.setHorizontalHeaderLabels({QStringLiteral("Type"), QStringLiteral("Name"), QStringLiteral("Direction"),
                                     QStringLiteral("Value"), QStringLiteral("Wizard"), QStringLiteral("VarSelector")});
    table.horizontalHeader()->hide();
    table.verticalHeader()->hide();
    table.verticalHeader()->setMinimumSectionSize(0);
    table.verticalHeader()->setDefaultSectionSize(std::max(kRowHeight, table.fontMetrics().height() + 2));
    table.setShowGrid(false);
    table.setSelectionBehavior(QAbstractItemView::SelectRows);
    table.setItemDelegate(new CustomDelegate(table));
    QHeaderView& columns = *table.horizontalHeader();
    columns.setMinimumSectionSize(0);
    columns.setSectionResizeMode(QHeaderView::Fixed);
    columns.setSectionResizeMode(ParamColumn::Name, QHeaderView::ResizeToContents);
    columns.setSectionResizeMode(ParamColumn::Value, QHeaderView::Stretch);
    for (const int column : {ParamColumn::Type, ParamColumn::Direction})
        columns.resizeSection(column, kPictureColumnWidth);
    for (const int column : {ParamColumn::Wizard, ParamColumn::VarSelector})
        columns.resizeSection(column, 0);
}

void ShowParams(QTableWidget& table, const std::vector<OfferedParam>& params, const std::function<void()>& changed) {
    const QSignalBlocker quiet(table);
    table.setRowCount(0);
    table.setRowCount(static_cast<int>(params.size()));
    for (int row = 0; row < table.rowCount(); ++row)
        ShowParam(table, row, params[static_cast<std::size_t>(row)], changed);
    table.setCurrentCell(0, ParamColumn::Value, QItemSelectionModel::NoUpdate); // where the keyboard begins
}

std::vector<GivenParam> ReadParamTable(const QTableWidget& table) {
    std::vector<GivenParam> params;
    for (int row = 0; row < table.rowCount(); ++row)
        if (const QTableWidgetItem* name = table.item(row, ParamColumn::Name))
            params.push_back({name->text(), ValueIn(table, row)});
    return params;
}
