// The preview of the report in its window: the pages as they will print.
#pragma once

#include "core/rooms.h"

class QWidget;

namespace corvinade::ui {

void AddReportPreview(QWidget& form);
void ShowReportPreview(const QWidget& form);

}  // namespace corvinade::ui
