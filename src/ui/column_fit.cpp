// Columns that nobody has given a width yet.
#include "ui/column_fit.h"

#include <QHeaderView>
#include <QStyle>
#include <QTableView>
#include <algorithm>

#include "core/settings.h"
#include "ui/qt_text.h"

namespace {

// So many rows, spread over the table, stand for all of them.
constexpr int kSampledRows = 24;

// A long name is cut rather than push the values off the screen.
constexpr qsizetype kMostCharacters = 28;

constexpr const char* kFittedFor = "fittedFor";

// A width that is dragged is a whole number of pixels, which this is not: it comes from a missing setting.
static_assert(kMissingColWidth % kTwips != 0);
bool HasNoWidth(const GridState& grid, int col) {
    const auto place = static_cast<std::size_t>(col);
    return place < grid.ColWidths.size() && grid.ColWidths[place] == kMissingColWidth &&
           !IsHiddenCol(grid, col);
}

// The first, the middle and the last row, which tell a refilled table from the one that was fitted.
QString FingerprintOf(GridState& grid) {
    QString text;
    for (const int row : {grid.FixedRows, grid.Rows / 2, grid.Rows - 1})
        for (int col = 0; col < grid.Cols; ++col)
            if (HasNoWidth(grid, col)) text += Q(CellText(grid, row, col)) + '\t';
    return text;
}

int WidestText(GridState& grid, const QFontMetrics& font, int col) {
    int widest = 0;
    const int rows = grid.Rows - grid.FixedRows, samples = std::min(rows, kSampledRows);
    for (int k = 0; k < samples; ++k) {
        const std::int64_t row = grid.FixedRows + std::int64_t{k} * (rows - 1) / std::max(1, samples - 1);
        const QString text = Q(CellText(grid, static_cast<int>(row), col)).left(kMostCharacters);
        widest = std::max(widest, font.horizontalAdvance(text));
    }
    return widest;
}

int WidthFor(GridState& grid, const QTableView& view, int col) {
    const QHeaderView& heading = *view.horizontalHeader();
    const QStyle& style = *view.style();
    // The sign of a sorting, a square as high as the heading, may come to every one.
    int mark = heading.sizeHint().height() + style.pixelMetric(QStyle::PM_HeaderMargin);
    if (heading.isSortIndicatorShown()) mark = 0;  // it is in the heading's own measure already
    // Another row than those that were looked at may be a digit longer.
    const QFontMetrics font = view.fontMetrics();
    const int margins = 2 * (style.pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, &view) + 2);
    const int value = WidestText(grid, font, col) + font.horizontalAdvance('0') + margins;
    return std::max(heading.sectionSizeHint(col) + mark, value);
}

}  // namespace

void FitColumns(Control& control, QTableView& view, bool anew) {
    GridState& grid = control.Grid;
    if (grid.Rows <= grid.FixedRows) return;
    const QString fingerprint = FingerprintOf(grid);
    if (!anew && view.property(kFittedFor).toString() == fingerprint) return;
    view.setProperty(kFittedFor, fingerprint);
    QHeaderView& heading = *view.horizontalHeader();
    bool wider = false;
    {
        const QSignalBlocker quiet(heading);  // these are no widths that somebody has chosen
        for (int col = 0; col < grid.Cols; ++col) {
            const int width = HasNoWidth(grid, col) ? WidthFor(grid, view, col) : 0;
            if (width <= heading.sectionSize(col)) continue;
            heading.resizeSection(col, width);
            wider = true;
        }
    }
    if (wider) view.doItemsLayout();
}
