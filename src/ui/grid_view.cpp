// A grid of the logic in a table view.
#include "ui/grid_view.h"

#include <QAbstractTableModel>
#include <QApplication>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QTableView>
#include <QTimer>
#include <algorithm>
#include <utility>
#include <vector>

#include "core/platform.h"
#include "core/settings.h"
#include "ui/colours.h"
#include "ui/desktop.h"
#include "ui/grid_cells.h"
#include "ui/qt_text.h"
#include "ui/table_columns.h"
#include "ui/table_search.h"

namespace corvinade::ui {

namespace {

// --- Columns as wide as what stands in them ---------------------------------------------------------------

// A width that is drawn is a whole number of pixels, which that of a missing setting is not. A column of such
// a width, or of none, is as wide as the widest text that it has shown, and what the settings file gets stays
// what it gave; a column that somebody has drawn stays as it is, narrow or not.
static_assert(kMissingColWidth % kTwips != 0);
constexpr int kLeastWidth = 68, kNarrowestWidth = 8;  // pixels; of a column by itself, and as it can be drawn
constexpr int kMostWidth = 400;                       // a column by itself is no wider
constexpr int kMostOfSentences = 1600;                // nor one whose cells are sentences

// So many rows from the first one in sight are measured before they are painted.
constexpr int kMeasuredAhead = 60;

int StoredWidth(const GridState& grid, int col) {
    const auto place = static_cast<std::size_t>(col);
    return place < grid.ColWidths.size() ? grid.ColWidths[place] : 0;
}

bool IsWidthOfItsOwn(const GridState& grid, int col) {
    const int width = StoredWidth(grid, col);
    return width > 0 && width != kMissingColWidth;
}

// Cells with a ground of their own stand out by their bold text too.
QFont CellFont(const QWidget& view, bool ownGround) {
    QFont font = view.font();
    font.setBold(ownGround);
    return font;
}

// --- The model --------------------------------------------------------------------------------------------

class GridModel : public QAbstractTableModel {
public:
    GridModel(Control& grid, QTableView& view) : QAbstractTableModel(&view), control_(grid), view_(view) {}

    mutable bool Arranging = false;  // columns and selection change by the logic's state, and not by the user
    bool Selecting = false;  // the mouse is drawing a selection, which the logic is told of at its end

    int Headings() const { return control_.Grid.FixedRows > 0 ? 1 : 0; }

    int rowCount(const QModelIndex& parent) const override { return parent.isValid() ? 0 : rows_; }
    int columnCount(const QModelIndex& parent) const override { return parent.isValid() ? 0 : cols_; }

    QVariant data(const QModelIndex& index, int role) const override {
        GridState& grid = control_.Grid;
        const int row = index.row() + Headings(), col = index.column();
        if (role == Qt::DisplayRole) {
            const QString text = Q(CellText(grid, row, col));
            Measure(row, col, text);
            return text;
        }
        if (role == Qt::BackgroundRole || role == Qt::ForegroundRole || role == Qt::FontRole) {
            const std::int32_t colour = CellBackColor(grid, row, col);
            if (IsDesktopGround(colour)) return FixedLook(col, role);
            if (role == Qt::FontRole) return CellFont(view_, true);
            return role == Qt::BackgroundRole ? ColourOf(colour) : QColor::fromRgb(kDarkText);
        }
        if (role == Qt::TextAlignmentRole) return AlignmentOf(col);
        if (role == kBarRole) return CellBar(grid, row, col);
        return {};
    }

    QVariant headerData(int section, Qt::Orientation orientation, int role) const override {
        if (orientation != Qt::Horizontal || Headings() == 0) return {};
        if (role == Qt::TextAlignmentRole) return AlignmentOf(section);
        if (role != Qt::DisplayRole) return {};
        const QString text = Q(CellText(control_.Grid, 0, section));
        const bool bySize = control_.Grid.SortBySize && control_.Grid.SortCol == section;
        return bySize ? QStringLiteral("|%1|").arg(text) : text;  // its numbers stand without their signs
    }

    // Gives every column its width. The texts that come into sight later may widen it again.
    void ArrangeColumns() {
        const bool before = std::exchange(Arranging, true);
        QHeaderView& heading = *view_.horizontalHeader();
        for (int col = 0; col < cols_; ++col) {
            heading.setSectionHidden(col, IsHiddenCol(control_.Grid, col));
            if (IsHiddenCol(control_.Grid, col)) continue;
            if (IsWidthOfItsOwn(control_.Grid, col)) {
                heading.resizeSection(col, StoredWidth(control_.Grid, col) / kTwips);
                continue;
            }
            const int headingWidth = Headings() > 0 ? HeadingWidth(heading, col) : 0;
            needed_[static_cast<std::size_t>(col)] = std::max(kLeastWidth, headingWidth);
            MeasureInSight(col);
            heading.resizeSection(col, needed_[static_cast<std::size_t>(col)]);
        }
        Arranging = before;
        ShowWhole();
    }

    // Widens columns where other texts have come into the table, in sight or beyond its edge.
    void FollowTexts() {
        QString first;
        const int row = std::max(0, view_.rowAt(0)) + Headings();
        for (int col = 0; col < cols_; ++col)
            if (!IsWidthOfItsOwn(control_.Grid, col)) first += Q(CellText(control_.Grid, row, col)) + '\t';
        if (first == firstInSight_) return;
        firstInSight_ = first;
        Widen();
    }

    // Takes over the grid's size; true when it has changed.
    bool TakeSize() {
        const int rows = std::max(0, control_.Grid.Rows - Headings()), cols = std::max(0, control_.Grid.Cols);
        if (rows == rows_ && cols == cols_) return false;
        const bool before = std::exchange(Arranging, true);
        beginResetModel();
        rows_ = rows;
        cols_ = cols;
        needed_.assign(static_cast<std::size_t>(cols), kLeastWidth);
        endResetModel();
        Arranging = before;
        return true;
    }

private:
    // With room for the sign of a sorting, a square as high as the heading, which may come to every one.
    int HeadingWidth(const QHeaderView& heading, int col) const {
        const bool sorts = control_.Entry != nullptr && control_.Entry->On.Click != nullptr;
        const bool counted = !sorts || heading.isSortIndicatorShown();
        const int margin = view_.style()->pixelMetric(QStyle::PM_HeaderMargin, nullptr, &view_);
        return heading.sectionSizeHint(col) + margin + (counted ? 0 : heading.sizeHint().height());
    }

    // Columns of headings stand on the ground of the window.
    QVariant FixedLook(int col, int role) const {
        if (col >= control_.Grid.FixedCols || role != Qt::BackgroundRole) return {};
        return view_.palette().color(QPalette::Window);
    }

    QVariant AlignmentOf(int col) const {
        const std::vector<GridAlign>& aligns = control_.Grid.Aligns;
        const auto place = static_cast<std::size_t>(col);
        const GridAlign align = place < aligns.size() ? aligns[place] : GridAlign::Left;
        const Qt::Alignment across = align == GridAlign::Right    ? Qt::AlignRight
                                     : align == GridAlign::Centre ? Qt::AlignHCenter
                                                                  : Qt::AlignLeft;
        return QVariant(across | Qt::AlignVCenter);
    }

    // The form names the column whose cells are sentences.
    int MostWidth(int col) const {
        const QVariant sentences = view_.property("sentences");
        return sentences.isValid() && sentences.toInt() == col ? kMostOfSentences : kMostWidth;
    }

    // Notes how wide a text is; a column that is too narrow for it is widened once the cells are painted.
    void Measure(int row, int col, const QString& text) const {
        int& needed = needed_[static_cast<std::size_t>(col)];
        if (text.isEmpty() || needed >= MostWidth(col) || IsWidthOfItsOwn(control_.Grid, col)) return;
        const bool bold = !IsDesktopGround(CellBackColor(control_.Grid, row, col));
        const int margin = view_.style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, &view_) + 1;
        const int width = QFontMetrics(CellFont(view_, bold)).horizontalAdvance(text) + 2 * margin + kAir;
        if (width <= needed) return;
        needed = std::min(width, MostWidth(col));
        if (Arranging || widening_) return;
        widening_ = true;
        QTimer::singleShot(0, &view_, [this] { Widen(); });
    }
    void MeasureInSight(int col) const {
        const int first = std::max(0, view_.rowAt(0)) + Headings();
        const int behind = std::min(first + kMeasuredAhead, rows_ + Headings());
        for (int row = first; row < behind; ++row) Measure(row, col, Q(CellText(control_.Grid, row, col)));
    }
    void Widen() const {
        widening_ = false;
        const bool before = std::exchange(Arranging, true);
        for (int col = 0; col < cols_; ++col) {
            if (IsWidthOfItsOwn(control_.Grid, col) || IsHiddenCol(control_.Grid, col)) continue;
            MeasureInSight(col);  // columns beyond the edge too: what made one too narrow made others so
            const int needed = needed_[static_cast<std::size_t>(col)];
            if (view_.columnWidth(col) < needed) view_.setColumnWidth(col, needed);
        }
        Arranging = before;
        ShowWhole();
    }

    // A small table that is part of a page takes the room of all its cells.
    void ShowWhole() const {
        if (!view_.property("whole").toBool()) return;
        const QHeaderView& heading = *view_.horizontalHeader();
        const int headingHeight = heading.isHidden() ? 0 : heading.sizeHint().height();
        const int frame = 2 * view_.frameWidth();
        view_.setFixedSize(heading.length() + frame,
                           view_.verticalHeader()->length() + headingHeight + frame);
    }

    static constexpr int kAir =
        8;  // what a column leaves beside its widest text, with the line between columns
    Control& control_;
    QTableView& view_;
    int rows_ = 0, cols_ = 0;
    mutable std::vector<int> needed_;  // pixels a column needs for the texts that it has shown
    mutable bool widening_ = false;
    QString firstInSight_;  // the row by which other texts are noticed
};

GridModel& ModelOf(const QTableView& view) {
    return *static_cast<GridModel*>(view.model());
}

constexpr const char* kSpace = "Space";

// The name of a key as the logic knows it; "" for keys that it does not.
std::string KeyName(const QKeyEvent& event) {
    if (event.modifiers() & Qt::ControlModifier) {
        if (event.key() == Qt::Key_C && (event.modifiers() & Qt::ShiftModifier)) return "Ctrl+Shift+C";
        if (event.key() == Qt::Key_C) return "Ctrl+C";
        if (event.key() == Qt::Key_Insert) return "Ctrl+Insert";
        return "";
    }
    if (event.key() == Qt::Key_Space) return kSpace;
    return "";
}

// What the mouse and the keyboard do in the cells. The view selects by itself; what it has selected is told
// to the logic when the button is let go, and after each key.
class GridEvents : public QObject {
public:
    GridEvents(Control& grid, QTableView& view)
        : QObject(&view), control_(grid), view_(view), cells_(view.viewport()) {
        QObject::connect(view.selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] {
            if (!ModelOf(view_).Selecting && !ModelOf(view_).Arranging) TellSelection();
        });
    }

    bool eventFilter(QObject* object, QEvent* event) override {
        const bool inCells = object == cells_;
        if (inCells && event->type() == QEvent::MouseButtonPress) {
            ModelOf(view_).Selecting = true;
            doubleClick_ = false;
        }
        if (inCells && event->type() == QEvent::MouseButtonRelease)
            return Released(*static_cast<QMouseEvent*>(event));
        if (inCells && event->type() == QEvent::MouseButtonDblClick)
            return DoubleClicked(*static_cast<QMouseEvent*>(event));
        if (!inCells && event->type() == QEvent::KeyPress) return Pressed(*static_cast<QKeyEvent*>(event));
        return false;
    }

    // Tells the logic the rectangle that is selected, where it is another one.
    void TellSelection() {
        const QItemSelection selection = view_.selectionModel()->selection();
        if (selection.isEmpty()) return;
        // Columns that were moved make several ranges of one rectangle.
        const QHeaderView& heading = *view_.horizontalHeader();
        int left = heading.count(), right = -1;
        for (const QItemSelectionRange& range : selection)
            for (int col = range.left(); col <= range.right(); ++col) {
                left = std::min(left, heading.visualIndex(col));
                right = std::max(right, heading.visualIndex(col));
            }
        const QItemSelectionRange& range = selection.last();
        const int first = ModelOf(view_).Headings();
        const GridRect rect{range.top() + first, heading.logicalIndex(left), range.bottom() + first,
                            heading.logicalIndex(right)};
        const GridRect held = Selected(control_.Grid);
        if (rect.Row == held.Row && rect.Col == held.Col && rect.Row2 == held.Row2 && rect.Col2 == held.Col2)
            return;
        UserDid([&] { UserSelectCells(control_, rect); });
    }

private:
    bool Released(const QMouseEvent& event) {
        ModelOf(view_).Selecting = false;
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
        const bool known = control_.Entry != nullptr && control_.Entry->On.Key != nullptr;
        if (known || key == "Ctrl+Shift+C") {
            UserDid([&] { UserKey(control_, key); });
        } else if (key != kSpace) {  // every table can be copied from
            UserDid(
                [&] { Dispatch([&] { ToClipboard(RectText(control_.Grid, Selected(control_.Grid))); }); });
        }
        return true;
    }

    Control& control_;
    QTableView& view_;
    // Asked for once: events come while the view is taken down, when only its base is left.
    const QObject* const cells_;
    bool doubleClick_ = false;  // the button that is let go next is that of a double click
};

void BindHeading(Control& control, QTableView& view) {
    QHeaderView& heading = *view.horizontalHeader();
    heading.setSectionsClickable(true);
    heading.setHighlightSections(false);
    heading.setMinimumSectionSize(kNarrowestWidth);
    QObject::connect(&heading, &QHeaderView::sectionClicked, &view, [&control](int col) {
        const bool shift = QApplication::keyboardModifiers().testFlag(Qt::ShiftModifier);
        if (control.Grid.FixedRows > 0) UserDid([&] { UserClickCell(control, 0, col, shift); });
    });
    QObject::connect(&heading, &QHeaderView::sectionResized, &view,
                     [&control, &view](int col, int, int width) {
                         std::vector<int>& widths = control.Grid.ColWidths;
                         const auto place = static_cast<std::size_t>(col);
                         // A column that is hidden keeps its width, and what the texts want is no choice of
                         // the user's.
                         if (width == 0 || ModelOf(view).Arranging) return;
                         if (widths.size() <= place) widths.resize(place + 1, 0);
                         widths[place] = width * kTwips;
                     });
}

bool SameCells(const QItemSelection& a, const QItemSelection& b) {
    if (a.size() == 1 && b.size() == 1) return a.first() == b.first();
    const auto columns = [](const QItemSelection& selection) {
        std::vector<int> found;
        for (const QItemSelectionRange& range : selection)
            for (int col = range.left(); col <= range.right(); ++col) found.push_back(col);
        std::sort(found.begin(), found.end());
        return found;
    };
    return !a.isEmpty() && !b.isEmpty() && a.first().top() == b.first().top() &&
           a.first().bottom() == b.first().bottom() && columns(a) == columns(b);
}

// The selection that the logic holds, on the screen.
void ShowSelection(Control& control, QTableView& view) {
    const GridState& grid = control.Grid;
    const GridModel& model = ModelOf(view);
    const int first = model.Headings();
    const GridRect rect = Selected(grid);
    const QModelIndex current = model.index(grid.Row - first, grid.Col);
    const QModelIndex from = model.index(rect.Row - first, rect.Col),
                      to = model.index(rect.Row2 - first, rect.Col2);
    if (!current.isValid() || !from.isValid() || !to.isValid()) return;
    QItemSelectionModel& selection = *view.selectionModel();
    // The columns of the rectangle, which need not be neighbours by their numbers.
    QItemSelection wanted;
    if (grid.ColOrder.empty()) {
        wanted.select(from, to);
    } else {
        for (int place = PlaceOfCol(grid, rect.Col); place <= PlaceOfCol(grid, rect.Col2); ++place) {
            const int col = ColAtPlace(grid, place);
            wanted.select(model.index(from.row(), col), model.index(to.row(), col));
        }
    }
    if (SameCells(selection.selection(), wanted)) return;
    // A cell where nobody has been yet is not marked: the eye shall find what matters.
    const bool untouched = from == to && grid.Row == grid.FixedRows && grid.Col == grid.FixedCols;
    if (untouched && view.currentIndex() == current) return;
    const bool moved = view.currentIndex() != current;
    // Nor does the table run there: it begins at its left edge.
    view.setAutoScroll(!untouched);
    selection.setCurrentIndex(current, QItemSelectionModel::NoUpdate);
    view.setAutoScroll(true);
    if (untouched) {
        selection.clearSelection();
    } else {
        selection.select(wanted, QItemSelectionModel::ClearAndSelect);
    }
    if (moved && from == to && !untouched) view.scrollTo(current);
}

}  // namespace

void BindGrid(Control& control, QTableView& view) {
    view.setModel(new GridModel(control, view));
    view.setItemDelegate(new CellDelegate(&view));
    view.setSelectionMode(QAbstractItemView::ContiguousSelection);
    view.setEditTriggers(QAbstractItemView::NoEditTriggers);
    view.setTabKeyNavigation(false);  // Tab leaves the table, the arrows move in it
    view.setWordWrap(false);
    view.setCornerButtonEnabled(false);
    view.verticalHeader()->setVisible(false);
    view.verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    view.verticalHeader()->setDefaultSectionSize(view.fontMetrics().height() + 6);
    view.horizontalHeader()->setVisible(control.Grid.FixedRows > 0);
    BindHeading(control, view);
    BindColumns(control, view);
    auto* events = new GridEvents(control, view);
    view.installEventFilter(events);
    view.viewport()->installEventFilter(events);
    AddTableSearch(view);
}

void ShowGrid(Control& control, QTableView& view) {
    GridState& grid = control.Grid;
    GridModel& model = ModelOf(view);
    QHeaderView& heading = *view.horizontalHeader();
    const bool resized = model.TakeSize();
    const bool sorted = grid.SortCol >= 0 && grid.SortCol < grid.Cols;
    heading.setSortIndicatorShown(sorted);
    if (sorted)
        heading.setSortIndicator(grid.SortCol,
                                 grid.SortDescending ? Qt::DescendingOrder : Qt::AscendingOrder);
    if (resized) {
        heading.setVisible(grid.FixedRows > 0);
        const bool before = std::exchange(model.Arranging, true);
        ShowColumns(control, view);
        model.Arranging = before;
        model.ArrangeColumns();
    }
    model.FollowTexts();
    if (!model.Selecting) {
        const bool before = std::exchange(model.Arranging, true);
        ShowSelection(control, view);
        model.Arranging = before;
    }
    view.viewport()->update();
    heading.viewport()->update();
}

}  // namespace corvinade::ui
