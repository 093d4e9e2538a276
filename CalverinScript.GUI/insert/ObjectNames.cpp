#include "ObjectNames.h"

#include <algorithm>
#include <iterator>

#include <QListWidget>
#include <QStandardItemModel>

#include "CompletionTable.h"

namespace {

constexpr QSize kPictureSize(32, 32);

bool IsOfList(const QStandardItem& row, std::uint32_t listType) {
    const QString category = row.toolTip();
    return std::any_of(std::begin(kCompletionKinds), std::end(kCompletionKinds), [&](const CompletionKind& kind) {
        return kind.listType == listType && category == QLatin1String(kind.category);
    });
}

} // namespace

void CopyNames(const QStandardItemModel& table, std::uint32_t listType, QStandardItemModel& names) {
    QList<QStandardItem*> rows;
    for (int at = 0; at < table.rowCount(); ++at)
        if (const QStandardItem* row = table.item(at); row != nullptr && IsOfList(*row, listType))
            rows.append(new QStandardItem(row->text()));
    names.clear();
    names.invisibleRootItem()->appendRows(rows);
    names.sort(0, Qt::AscendingOrder);
}

void ShowNames(const QStandardItemModel& names, QListWidget& list) {
    QStringList texts;
    for (int at = 0; at < names.rowCount(); ++at)
        texts.append(names.item(at)->text());
    list.clear();
    list.setIconSize(kPictureSize);
    list.addItems(texts);
    ForgetCurrent(list);
}

void ForgetCurrent(QListWidget& list) {
    list.setCurrentIndex(QModelIndex());
}
