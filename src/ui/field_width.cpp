// Fields that are wide enough for the number that stands in them.
#include "ui/field_width.h"

#include <QLineEdit>
#include <algorithm>

namespace corvinade::ui {

namespace {

constexpr int kMostDigits = 30;

// What stands beside the text, in pixels: frame and inner margin on both sides, and the cursor.
constexpr int kBeside = 18;

}  // namespace

void FitWidthToText(QLineEdit& field) {
    if (!field.property("fits").toBool()) return;
    const QFontMetrics metrics = field.fontMetrics();
    const int text =
        std::min(metrics.horizontalAdvance(field.text()), kMostDigits * metrics.horizontalAdvance('0'));
    if (text + kBeside > field.minimumWidth()) field.setMinimumWidth(text + kBeside);
}

}  // namespace corvinade::ui
