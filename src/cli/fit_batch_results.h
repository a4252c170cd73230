// The results of `fit --batch`: a line a fit, as CSV or as JSON.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "cli/fit_batch_list.h"
#include "core/child_process.h"
#include "core/rooms.h"

namespace corvinade::cli {

// A row as it stands in the file, without its line end. Fit names what was to be fitted and how, Files the
// state of the program and of the files that it was fitted from.
struct BatchRow {
    std::string Fit, Files, Text;
    bool Done = false;
};

struct BatchResults {
    std::vector<BatchRow> Rows;
    bool Torn = false;  // the last line had no end, and is none of these
};

// True for .csv, false for .jsonl. Throws PlatformError for another extension.
bool IsCsvOut(const std::string& path);

std::string BatchHeading(bool csv);  // with its line end; "" of JSON

// Reads what stands in a file of results. Throws PlatformError where it is none of the kind.
BatchResults ReadBatchResults(const std::string& path, bool csv);

// The row of a fit that has ended.
BatchRow RowOf(const BatchJob& job, const BatchRow& marks, const ChildEnd& end, bool csv);

// The marks of each fit of a list; its row has neither text nor result.
std::vector<BatchRow> MarksOf(const std::vector<BatchJob>& jobs);

}  // namespace corvinade::cli
