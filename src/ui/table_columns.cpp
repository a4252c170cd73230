// The columns of a table as the user wants them.
#include "ui/table_columns.h"

#include <QHeaderView>
#include <QMenu>
#include <QSignalBlocker>
#include <QTableView>
#include <string>

#include "core/platform.h"
#include "core/settings.h"
#include "ui/desktop.h"
#include "ui/qt_text.h"

namespace corvinade::ui {

namespace {

constexpr const char* kSection = "Columns";
constexpr const char* kOwnOrder = "_ownOrder";  // property of the table

// Tables whose columns are all of one piece say so in their form.
bool HasOwnColumns(const Control& control, const QTableView& view) {
    return control.Grid.FixedRows > 0 && view.property("columns").toBool();
}

// "FormMainSheet.MSFlexGrid1", of the form that the table stands in.
std::string KeyOf(const QTableView& view) {
    const QWidget* form = view.parentWidget();
    while (form != nullptr && !form->objectName().startsWith(QLatin1String("Form")))
        form = form->parentWidget();
    return (form == nullptr ? "" : S(form->objectName()) + ".") + S(view.objectName());
}

void Keep(const Control& control, const QTableView& view) {
    Dispatch([&] { IniWertSchreiben(kSection, KeyOf(view), ColumnsText(control.Grid)); });
}

void TakeOrder(Control& control, const QHeaderView& heading) {
    std::vector<int> order;
    for (int place = 0; place < heading.count(); ++place) order.push_back(heading.logicalIndex(place));
    control.Grid.ColOrder = std::move(order);
}

void TakeOut(Control& control, int col, bool out) {
    std::vector<bool>& leftOut = control.Grid.LeftOut;
    leftOut.resize(static_cast<std::size_t>(control.Grid.Cols), false);
    leftOut[static_cast<std::size_t>(col)] = out;
}

int ShownColumns(const GridState& grid) {
    int shown = 0;
    for (int col = 0; col < grid.Cols; ++col) shown += IsHiddenCol(grid, col) ? 0 : 1;
    return shown;
}

// A column that the window itself hides is not offered.
bool IsOffered(const GridState& grid, int col) {
    const auto k = static_cast<std::size_t>(col);
    return k >= grid.HiddenCols.size() || !grid.HiddenCols[k];
}

void PopUpColumns(Control& control, QTableView& view, const QPoint& place) {
    GridState& grid = control.Grid;
    const int under = view.horizontalHeader()->logicalIndexAt(place);
    auto* menu = new QMenu(&view);
    menu->setObjectName(QStringLiteral("_Columns"));
    menu->setAttribute(Qt::WA_DeleteOnClose);
    if (under >= 0 && control.Entry != nullptr && control.Entry->On.Click != nullptr) {
        menu->addAction(QStringLiteral("Sort by &size without sign\tShift+click"), &view,
                        [&control, under] { UserDid([&] { UserClickCell(control, 0, under, true); }); });
        menu->addSeparator();
    }
    for (int at = 0; at < grid.Cols; ++at) {
        const int col = ColAtPlace(grid, at);
        if (!IsOffered(grid, col)) continue;
        QAction* action = menu->addAction(Q(CellText(grid, 0, col)).replace('&', QLatin1String("&&")));
        action->setCheckable(true);
        action->setChecked(!IsHiddenCol(grid, col));
        // One column stays, or there would be no heading to ask for the others at.
        action->setEnabled(!action->isChecked() || ShownColumns(grid) > 1);
        QObject::connect(action, &QAction::triggered, &view, [&control, &view, col](bool shown) {
            TakeOut(control, col, !shown);
            view.setColumnHidden(col, !shown);
            Keep(control, view);
        });
    }
    menu->addSeparator();
    menu->addAction(QStringLiteral("&All columns in their order"), &view, [&control, &view] {
        TakeColumnsText(S(view.property(kOwnOrder).toString()), control.Grid);
        ShowColumns(control, view);
        for (int col = 0; col < control.Grid.Cols; ++col)
            view.setColumnHidden(col, IsHiddenCol(control.Grid, col));
        Keep(control, view);
    });
    menu->popup(view.horizontalHeader()->viewport()->mapToGlobal(place));
}

}  // namespace

void BindColumns(Control& control, QTableView& view) {
    if (!HasOwnColumns(control, view)) return;
    QHeaderView& heading = *view.horizontalHeader();
    heading.setSectionsMovable(true);
    heading.setContextMenuPolicy(Qt::CustomContextMenu);
    heading.setToolTip(
        QStringLiteral("Click: sort. Shift+click: by size, without sign. Drag: move. "
                       "Right click: choose the columns."));
    // As the window has them, which need not be by their numbers.
    view.setProperty(kOwnOrder, Q(ColumnsText(control.Grid)));
    if (const auto kept = FindIniWert(KeyOf(view))) TakeColumnsText(*kept, control.Grid);
    QObject::connect(&heading, &QHeaderView::sectionMoved, &view, [&control, &view](int, int, int) {
        TakeOrder(control, *view.horizontalHeader());
        Keep(control, view);
    });
    QObject::connect(&heading, &QHeaderView::customContextMenuRequested, &view,
                     [&control, &view](const QPoint& place) { PopUpColumns(control, view, place); });
}

void ShowColumns(Control& control, QTableView& view) {
    if (!HasOwnColumns(control, view)) return;
    QHeaderView& heading = *view.horizontalHeader();
    const QSignalBlocker quiet(heading);
    for (int place = 0; place < control.Grid.Cols && place < heading.count(); ++place)
        heading.moveSection(heading.visualIndex(ColAtPlace(control.Grid, place)), place);
}

}  // namespace corvinade::ui
