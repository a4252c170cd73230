// A report as the bytes of a PDF file: text that can be selected, and a bookmark for each section.
#pragma once

#include <string>

#include "analysis/report.h"
#include "core/rooms.h"

namespace corvinade::paint {

std::string ReportPdf(const Report& report);

}  // namespace corvinade::paint
