// How the cells of a table are painted.
#include "ui/grid_cells.h"

#include <QPainter>

#include "ui/colours.h"

namespace corvinade::ui {

void CellDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                         const QModelIndex& index) const {
    constexpr float kBarStrength = 0.28F;
    QStyledItemDelegate::paint(painter, option, index);
    const double share = index.data(kBarRole).toDouble();
    if (!(share > 0)) return;
    QRectF bar = option.rect.adjusted(1, 2, -2, -2);
    bar.setWidth(bar.width() * share);
    QColor colour = option.palette.color(QPalette::Highlight);
    colour.setAlphaF(kBarStrength);
    painter->fillRect(bar, colour);
}

void CellDelegate::initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const {
    QStyledItemDelegate::initStyleOption(option, index);
    const QVariant ground = index.data(Qt::BackgroundRole);
    if (!index.data(Qt::ForegroundRole).isValid() || !(option->state & QStyle::State_Selected)) return;
    const QColor own = ground.value<QColor>(), marked = option->palette.color(QPalette::Highlight);
    constexpr double kOwn = 0.7;
    const auto mix = [](int a, int b) { return static_cast<int>(kOwn * a + (1 - kOwn) * b); };
    option->palette.setColor(
        QPalette::Highlight,
        {mix(own.red(), marked.red()), mix(own.green(), marked.green()), mix(own.blue(), marked.blue())});
    option->palette.setColor(QPalette::HighlightedText, QColor::fromRgb(kDarkText));
}

}  // namespace corvinade::ui
