// The result of a fit as a page to look at: self-contained HTML, printable on A4.
#pragma once

#include <string>

#include "cli/fit_options.h"
#include "cli/fit_statistics.h"
#include "core/rooms.h"

namespace corvinade::cli {

// The whole page.
std::string FitReport(const FitOptions& options, const FitStatistics& statistics);

}  // namespace corvinade::cli
