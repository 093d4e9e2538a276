#include "CustomDelegate.h"

#include <QPainter>
#include <QStyle>
#include <QTableView>

#include "ParamTable.h"

namespace {

constexpr QColor kLineColor(128, 128, 128, 100);

std::unique_ptr<QStyleOptionViewItem> OptionOf(const QTableView& table) {
    auto option = std::make_unique<QStyleOptionViewItem>();
    option->initFrom(&table);
    return option;
}

QPen GridPen(const QTableView& table, const QStyleOptionViewItem& option) {
    const int color = table.style()->styleHint(QStyle::SH_Table_GridLineColor, &option, &table);
    return QPen(QColor::fromRgba(static_cast<QRgb>(color)), 0, table.gridStyle(), Qt::SquareCap, Qt::BevelJoin);
}

} // namespace

CustomDelegate::CustomDelegate(QTableView& table)
    : QStyledItemDelegate(&table)
    , m_option(OptionOf(table))
    , m_pen(GridPen(table, *m_option)) {}

CustomDelegate::~CustomDelegate() = default;

void CustomDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const {
    painter->save();
    QPen line(m_pen);
    line.setColor(kLineColor);
    painter->setPen(line);
    painter->drawLine(option.rect.bottomLeft(), option.rect.bottomRight());
    if (index.column() == ParamColumn::Direction)
        painter->drawLine(option.rect.topRight(), option.rect.bottomRight());
    painter->restore();
    QStyledItemDelegate::paint(painter, option, index);
}
