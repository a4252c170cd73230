// How the cells of a table are painted.
#pragma once

#include <QStyledItemDelegate>

#include "core/rooms.h"

namespace corvinade::ui {

inline constexpr int kBarRole = Qt::UserRole;  // how much of the cell a bar takes, 0 to 1

// A cell that is selected still shows its own ground, so that a use cell that is turned over is seen to turn.
// A bar lies on the ground of its cell, and its text is read through it.
class CellDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;
    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;
};

}  // namespace corvinade::ui
