#pragma once

#include <memory>

#include <QPen>
#include <QStyledItemDelegate>

class QTableView;

/// Draws the cells of a table without a grid of its own: a line below each row, and one to the right of the direction.   [host main]
class CustomDelegate : public QStyledItemDelegate {
    Q_OBJECT

public:
    /// @param table whose grid the lines look like; owns the delegate.
    explicit CustomDelegate(QTableView& table);
    ~CustomDelegate() override;

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    /// The pen of the table's own grid.
    const QPen& GetPen() const { return m_pen; }

private:
    const std::unique_ptr<QStyleOptionViewItem> m_option; ///< of the table, for which the style gives its colours
    const QPen m_pen;
};
