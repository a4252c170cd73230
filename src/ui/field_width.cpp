// Fields that are wide enough for the number that stands in them.
#include "ui/field_width.h"

#include <QEvent>
#include <QLineEdit>
#include <algorithm>

namespace {

constexpr int kMostDigits = 30;

class FittingField : public QObject {
public:
    explicit FittingField(QLineEdit& field) : QObject(&field), field_(field) {
        field.installEventFilter(this);
    }

    // The signals of a field that the logic sets are blocked; painted it is in any case.
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Paint) Fit();
        return false;
    }

private:
    void Fit() {
        const QFontMetrics metrics = field_.fontMetrics();
        const int text =
            std::min(metrics.horizontalAdvance(field_.text()), kMostDigits * metrics.horizontalAdvance('0'));
        if (text + kBeside > field_.minimumWidth()) field_.setMinimumWidth(text + kBeside);
    }

    // What stands beside the text: frame and inner margin on both sides, and the cursor.
    static constexpr int kBeside = 18;
    QLineEdit& field_;
};

}  // namespace

void FitWidthToText(QLineEdit& field) {
    new FittingField(field);
}
