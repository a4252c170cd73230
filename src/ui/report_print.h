// The report on paper.
#pragma once

#include "analysis/report.h"
#include "core/rooms.h"

class QPrinter;

namespace corvinade::ui {

// Asks for a printer and the pages, and prints them.
void PrintReport(const Report& report);

// Prints the pages that the printer has been told of, all where it has none, as the preview shows them: on
// paper of another size than A4 as large as they fit. False where the printer cannot be used.
bool PrintOn(QPrinter& printer, const Report& report);

}  // namespace corvinade::ui
