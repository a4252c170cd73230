// Fields above the columns of a table.
#include "ui/column_fields.h"

#include <QEvent>
#include <QHeaderView>
#include <QScrollBar>
#include <QTableView>
#include <QVariant>
#include <algorithm>

namespace corvinade::ui {

namespace {

constexpr int kLeastWidth = 76;  // of a column: a role and the arrow of its list
constexpr int kGap = 2;          // between two fields

class ColumnFields : public QObject {
public:
    ColumnFields(QWidget& holder, QTableView& table) : QObject(&holder), holder_(holder), table_(table) {
        QHeaderView& heading = *table.horizontalHeader();
        heading.setMinimumSectionSize(kLeastWidth);
        const auto arrange = [this] { Arrange(); };
        connect(&heading, &QHeaderView::sectionResized, this, arrange);
        connect(&heading, &QHeaderView::sectionCountChanged, this, arrange);
        connect(&heading, &QHeaderView::geometriesChanged, this, arrange);
        connect(table.horizontalScrollBar(), &QScrollBar::valueChanged, this, arrange);
        connect(table.horizontalScrollBar(), &QScrollBar::rangeChanged, this, arrange);
        holder.installEventFilter(this);
        int height = 0;
        for (const QWidget* field : Fields()) height = std::max(height, field->sizeHint().height());
        holder.setFixedHeight(height);
        Arrange();
    }

    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Resize || event->type() == QEvent::Show) Arrange();
        return false;
    }

private:
    QList<QWidget*> Fields() const {
        return holder_.findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly);
    }

    void Arrange() const {
        const QHeaderView& heading = *table_.horizontalHeader();
        const int left = table_.frameWidth();
        for (QWidget* field : Fields()) {
            const int column = field->property("column").toInt();
            if (column >= heading.count()) continue;  // its field is not shown
            const int width = std::max(heading.sectionSize(column) - kGap, 0);
            field->setGeometry(left + heading.sectionViewportPosition(column) + kGap / 2, 0, width,
                               holder_.height());
        }
    }

    QWidget& holder_;
    QTableView& table_;
};

}  // namespace

void PutAboveColumns(const QWidget& form) {
    for (QWidget* holder : form.findChildren<QWidget*>()) {
        const QString name = holder->property("above").toString();
        auto* table = name.isEmpty() ? nullptr : form.findChild<QTableView*>(name);
        if (table != nullptr) new ColumnFields(*holder, *table);
    }
}

}  // namespace corvinade::ui
