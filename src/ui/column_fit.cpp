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

QString LongestText(GridState& grid, int col) {
    QString longest;
    const int rows = grid.Rows - grid.FixedRows, samples = std::min(rows, kSampledRows);
    for (int k = 0; k < samples; ++k) {
        const int row =
            grid.FixedRows + static_cast<int>(std::int64_t{k} * (rows - 1) / std::max(1, samples - 1));
        const QString text = Q(CellText(grid, row, col));
        if (text.size() > longest.size()) longest = text;
    }
    return longest.left(kMostCharacters);
}

int WidthFor(GridState& grid, const QTableView& view, int col) {
    const QHeaderView& heading = *view.horizontalHeader();
    const QStyle& style = *view.style();
    // The sign of a sorting, a square as high as the heading, may come to every one.
    int mark = heading.sizeHint().height() + style.pixelMetric(QStyle::PM_HeaderMargin);
    if (heading.isSortIndicatorShown() && heading.sortIndicatorSection() == col) mark = 0;
    // Another row than those that were looked at may be a digit longer.
    const int value = view.fontMetrics().horizontalAdvance(LongestText(grid, col) + '0') +
                      2 * (style.pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, &view) + 2);
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
