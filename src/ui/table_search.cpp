// Ctrl+F in any table.
#include "ui/table_search.h"

#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QLineEdit>
#include <QTableView>
#include <algorithm>

namespace corvinade::ui {

namespace {

constexpr int kWidth = 220;  // pixels

// Cells are formatted when they are looked at: of longer tables the names alone are searched.
constexpr int kMostRowsInFull = 20000;

int FirstColumn(const QTableView& view) {
    int col = 0;
    while (col < view.model()->columnCount() && (view.isColumnHidden(col) || view.columnWidth(col) < 20))
        ++col;
    return col;
}

// The first cell from a row on, round the end, that has the text; none without one.
QModelIndex Find(const QTableView& view, const QString& text, int from, int step) {
    const QAbstractItemModel& model = *view.model();
    const int rows = model.rowCount(), first = FirstColumn(view);
    const int end = rows > kMostRowsInFull ? first + 1 : model.columnCount();
    for (int k = 0; k < rows; ++k) {
        const int row = ((from + k * step) % rows + rows) % rows;
        for (int col = first; col < end; ++col) {
            if (view.isColumnHidden(col)) continue;
            const QModelIndex index = model.index(row, col);
            if (index.data().toString().contains(text, Qt::CaseInsensitive)) return index;
        }
    }
    return {};
}

class SearchLine : public QLineEdit {
public:
    explicit SearchLine(QTableView& view) : QLineEdit(&view), view_(view) {
        setObjectName(QStringLiteral("_Search"));
        setAccessibleName(QStringLiteral("Search in the table"));
        setPlaceholderText(QStringLiteral("Search, Enter for the next"));
        setClearButtonEnabled(true);
        view.installEventFilter(this);
        QObject::connect(this, &QLineEdit::textEdited, this, [this] { Go(0, 1); });
    }

    void Open() {
        Place();
        show();
        raise();
        setFocus();
        selectAll();
    }

protected:
    bool eventFilter(QObject* object, QEvent* event) override {
        if (object == &view_ && event->type() == QEvent::Resize) Place();
        return false;
    }
    bool event(QEvent* event) override {
        // Keys of the frame and of dialogs leave these two to the line.
        if (event->type() == QEvent::ShortcutOverride || event->type() == QEvent::KeyPress) {
            const auto& key = *static_cast<QKeyEvent*>(event);
            const bool enter = key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter;
            if (enter || key.key() == Qt::Key_Escape) {
                event->accept();
                if (event->type() == QEvent::ShortcutOverride) return true;
                if (enter)
                    Go(1, (key.modifiers() & Qt::ShiftModifier) != 0 ? -1 : 1);
                else
                    Close();
                return true;
            }
        }
        return QLineEdit::event(event);
    }

private:
    void Place() {
        const QRect room = view_.viewport()->geometry();
        resize(std::min(kWidth, room.width()), sizeHint().height());
        move(room.right() - width() - 4, room.bottom() - height() - 4);
    }
    void Close() {
        hide();
        view_.setFocus();
    }
    // From the present row, or from the one behind it.
    void Go(int behind, int step) {
        const int row = std::max(view_.currentIndex().row(), 0);
        const QModelIndex found =
            text().isEmpty() ? QModelIndex() : Find(view_, text(), row + behind * step, step);
        QPalette colours = view_.palette();
        if (!found.isValid() && !text().isEmpty()) colours.setColor(QPalette::Text, QColor(0xd0, 0x30, 0x28));
        setPalette(colours);
        if (!found.isValid()) return;
        view_.selectionModel()->setCurrentIndex(found, QItemSelectionModel::ClearAndSelect);
        view_.scrollTo(found);
    }

    QTableView& view_;
};

class SearchKey : public QObject {
public:
    explicit SearchKey(QTableView& view) : QObject(&view), view_(view) {}
    bool eventFilter(QObject* object, QEvent* event) override {
        if (object != &view_ || event->type() != QEvent::KeyPress ||
            !static_cast<QKeyEvent*>(event)->matches(QKeySequence::Find))
            return false;
        if (line_ == nullptr) line_ = new SearchLine(view_);
        line_->Open();
        return true;
    }

private:
    QTableView& view_;
    SearchLine* line_ = nullptr;
};

}  // namespace

void AddTableSearch(QTableView& view) {
    view.installEventFilter(new SearchKey(view));
}

}  // namespace corvinade::ui
