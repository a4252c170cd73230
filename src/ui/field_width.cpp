// Fields that are wide enough for the number that stands in them.
#include "ui/field_width.h"

#include <QLineEdit>
#include <QStyle>
#include <QStyleOptionFrame>
#include <algorithm>

namespace {

constexpr int kMostDigits = 30;

class FittingField : public QObject {
public:
    explicit FittingField(QLineEdit& field) : QObject(&field), field_(field) {
        connect(&field, &QLineEdit::textChanged, this, [this] { Fit(); });
        Fit();
    }

private:
    void Fit() {
        field_.ensurePolished();
        const QFontMetrics metrics = field_.fontMetrics();
        const int text =
            std::min(metrics.horizontalAdvance(field_.text()), kMostDigits * metrics.horizontalAdvance('0'));
        QStyleOptionFrame option;
        option.initFrom(&field_);
        option.lineWidth = field_.style()->pixelMetric(QStyle::PM_DefaultFrameWidth, &option, &field_);
        const QSize size = field_.style()->sizeFromContents(QStyle::CT_LineEdit, &option,
                                                            QSize(text + kInner, metrics.height()), &field_);
        if (size.width() > field_.minimumWidth()) field_.setMinimumWidth(size.width());
    }

    // What the toolkit leaves between a field's frame and its text, on both sides, and the cursor.
    static constexpr int kInner = 6;
    QLineEdit& field_;
};

}  // namespace

void FitWidthToText(QLineEdit& field) {
    new FittingField(field);
}
