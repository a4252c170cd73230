// The result of a fit as a page to look at: self-contained HTML, printable on A4.
#pragma once

#include <string>

#include "cli/fit_options.h"
#include "cli/fit_statistics.h"
#include "core/rooms.h"

namespace corvinade::cli {

// The whole page.
std::string FitReport(const FitOptions& options, const FitStatistics& statistics);

// The report by the ending of its path: "*.pdf" and "*.csv" are those of the report window
// (analysis/report.h), all else is the page.
std::string ReportAs(const FitOptions& options, const FitStatistics& statistics);

}  // namespace corvinade::cli
