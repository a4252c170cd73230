// A grid of the logic in a table view.
#include "ui/grid_view.h"

#include <QAbstractTableModel>
#include <QApplication>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QTableView>
#include <algorithm>

#include "ui/colours.h"
#include "ui/column_fit.h"
#include "ui/desktop.h"
#include "ui/qt_text.h"

namespace {

class GridModel : public QAbstractTableModel {
public:
    GridModel(Control& grid, QObject* parent) : QAbstractTableModel(parent), control_(grid) {}

    int Headings() const { return control_.Grid.FixedRows > 0 ? 1 : 0; }

    int rowCount(const QModelIndex& parent) const override { return parent.isValid() ? 0 : rows_; }
    int columnCount(const QModelIndex& parent) const override { return parent.isValid() ? 0 : cols_; }

    QVariant data(const QModelIndex& index, int role) const override {
        GridState& grid = control_.Grid;
        const int row = index.row() + Headings(), col = index.column();
        if (role == Qt::DisplayRole) return Q(CellText(grid, row, col));
        if (role == Qt::BackgroundRole || role == Qt::ForegroundRole) {
            const std::int32_t colour = CellBackColor(grid, row, col);
            if (IsDesktopGround(colour)) return {};
            return role == Qt::BackgroundRole ? ColourOf(colour) : QColor::fromRgb(kDarkText);
        }
        if (role == Qt::TextAlignmentRole) {
            const auto place = static_cast<std::size_t>(col);
            const GridAlign align = place < grid.Aligns.size() ? grid.Aligns[place] : GridAlign::Left;
            const Qt::Alignment across = align == GridAlign::Right    ? Qt::AlignRight
                                         : align == GridAlign::Centre ? Qt::AlignHCenter
                                                                      : Qt::AlignLeft;
            return QVariant(across | Qt::AlignVCenter);
        }
        return {};
    }

    QVariant headerData(int section, Qt::Orientation orientation, int role) const override {
        if (orientation != Qt::Horizontal || role != Qt::DisplayRole || Headings() == 0) return {};
        return Q(CellText(control_.Grid, 0, section));
    }

    // Takes over the grid's size; true when it has changed.
    bool TakeSize() {
        const int rows = std::max(0, control_.Grid.Rows - Headings()), cols = std::max(0, control_.Grid.Cols);
        if (rows == rows_ && cols == cols_) return false;
        beginResetModel();
        rows_ = rows;
        cols_ = cols;
        endResetModel();
        return true;
    }

private:
    Control& control_;
    int rows_ = 0, cols_ = 0;
};

GridModel& ModelOf(const QTableView& view) {
    return *static_cast<GridModel*>(view.model());
}

// The name of a key as the logic knows it; "" for keys that it does not.
std::string KeyName(const QKeyEvent& event) {
    if (event.modifiers() & Qt::ControlModifier) {
        if (event.key() == Qt::Key_C) return "Ctrl+C";
        if (event.key() == Qt::Key_Insert) return "Ctrl+Insert";
        return "";
    }
    if (event.key() == Qt::Key_Space) return "Space";
    return "";
}

// What the mouse and the keyboard do in the cells. The view selects by itself; what it has selected is told
// to the logic when the button or the key is let go.
class GridEvents : public QObject {
public:
    GridEvents(Control& grid, QTableView& view) : QObject(&view), control_(grid), view_(view) {}

    bool eventFilter(QObject* object, QEvent* event) override {
        const bool inCells = object == view_.viewport();
        if (inCells && event->type() == QEvent::MouseButtonRelease)
            return Released(*static_cast<QMouseEvent*>(event));
        if (inCells && event->type() == QEvent::MouseButtonDblClick)
            return DoubleClicked(*static_cast<QMouseEvent*>(event));
        if (!inCells && event->type() == QEvent::KeyPress) return Pressed(*static_cast<QKeyEvent*>(event));
        if (!inCells && event->type() == QEvent::KeyRelease) TellSelection();
        return false;
    }

    // Tells the logic the rectangle that is selected, where it is another one.
    void TellSelection() {
        const QItemSelection selection = view_.selectionModel()->selection();
        if (selection.isEmpty()) return;
        const QItemSelectionRange& range = selection.last();
        const int first = ModelOf(view_).Headings();
        const GridRect rect{range.top() + first, range.left(), range.bottom() + first, range.right()};
        const GridRect held = Selected(control_.Grid);
        if (rect.Row == held.Row && rect.Col == held.Col && rect.Row2 == held.Row2 && rect.Col2 == held.Col2)
            return;
        UserDid([&] { UserSelectCells(control_, rect); });
    }

private:
    bool Released(const QMouseEvent& event) {
        const QModelIndex index = view_.indexAt(event.position().toPoint());
        if (!index.isValid() || doubleClick_) {
            doubleClick_ = false;
            return false;
        }
        const int row = index.row() + ModelOf(view_).Headings(), col = index.column();
        if (event.button() == Qt::RightButton) {
            TellSelection();
            UserDid([&] { UserRightClickCell(control_, row, col); });
        } else if (event.button() == Qt::LeftButton) {
            const auto selected = view_.selectionModel()->selectedIndexes();
            if (selected.size() > 1) {
                TellSelection();
            } else {
                const bool extend = (event.modifiers() & Qt::ShiftModifier) != 0;
                UserDid([&] { UserClickCell(control_, row, col, extend); });
            }
        }
        return false;
    }
    bool DoubleClicked(const QMouseEvent& event) {
        const QModelIndex index = view_.indexAt(event.position().toPoint());
        if (!index.isValid() || event.button() != Qt::LeftButton) return false;
        doubleClick_ = true;
        const int row = index.row() + ModelOf(view_).Headings();
        UserDid([&] { UserDblClickCell(control_, row, index.column()); });
        return true;
    }
    bool Pressed(const QKeyEvent& event) {
        const std::string key = KeyName(event);
        if (key.empty()) return false;
        TellSelection();
        UserDid([&] { UserKey(control_, key); });
        return true;
    }

    Control& control_;
    QTableView& view_;
    bool doubleClick_ = false;
};

void BindHeading(Control& control, QTableView& view) {
    QHeaderView& heading = *view.horizontalHeader();
    heading.setSectionsClickable(true);
    heading.setHighlightSections(false);
    QObject::connect(&heading, &QHeaderView::sectionClicked, &view, [&control](int col) {
        if (control.Grid.FixedRows > 0) UserDid([&] { UserClickCell(control, 0, col, false); });
    });
    QObject::connect(&heading, &QHeaderView::sectionResized, &view, [&control](int col, int, int width) {
        std::vector<int>& widths = control.Grid.ColWidths;
        const auto place = static_cast<std::size_t>(col);
        if (width == 0) return;  // a column that is hidden keeps its width
        if (widths.size() <= place) widths.resize(place + 1, 0);
        widths[place] = width * kTwips;
    });
}

}  // namespace

void BindGrid(Control& control, QTableView& view) {
    view.setModel(new GridModel(control, &view));
    view.setSelectionMode(QAbstractItemView::ContiguousSelection);
    view.setEditTriggers(QAbstractItemView::NoEditTriggers);
    view.setWordWrap(false);
    view.setCornerButtonEnabled(false);
    view.verticalHeader()->setVisible(false);
    view.verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    view.verticalHeader()->setDefaultSectionSize(view.fontMetrics().height() + 6);
    view.horizontalHeader()->setVisible(control.Grid.FixedRows > 0);
    BindHeading(control, view);
    auto* events = new GridEvents(control, view);
    view.installEventFilter(events);
    view.viewport()->installEventFilter(events);
}

void ShowGrid(Control& control, QTableView& view) {
    GridState& grid = control.Grid;
    GridModel& model = ModelOf(view);
    const bool resized = model.TakeSize();
    QHeaderView& heading = *view.horizontalHeader();
    if (resized) {
        heading.setVisible(grid.FixedRows > 0);
        const QSignalBlocker quiet(heading);
        for (int col = 0; col < grid.Cols; ++col) {
            const auto place = static_cast<std::size_t>(col);
            const int width = place < grid.ColWidths.size() ? grid.ColWidths[place] / kTwips : 0;
            heading.setSectionHidden(col, IsHiddenCol(grid, col));
            if (width > 0) heading.resizeSection(col, width);
        }
    }
    FitColumns(control, view, resized);
    const bool sorted = grid.SortCol >= 0 && grid.SortCol < grid.Cols;
    heading.setSortIndicatorShown(sorted);
    if (sorted)
        heading.setSortIndicator(grid.SortCol,
                                 grid.SortDescending ? Qt::DescendingOrder : Qt::AscendingOrder);
    const int first = model.Headings();
    const QModelIndex current = model.index(grid.Row - first, grid.Col);
    if (current.isValid() && view.currentIndex() != current && Selected(grid).Row == Selected(grid).Row2) {
        // A cell where nobody has been yet is not marked: the eye shall find what matters.
        const bool untouched = grid.Row == grid.FixedRows && grid.Col == grid.FixedCols;
        view.selectionModel()->setCurrentIndex(
            current, untouched ? QItemSelectionModel::NoUpdate : QItemSelectionModel::ClearAndSelect);
        view.scrollTo(current);
    }
    view.viewport()->update();
    heading.viewport()->update();
}
