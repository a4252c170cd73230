// The forms that a fit hands its result on in: `fit --export FORM=FILE`.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "cli/fit_options.h"
#include "cli/named_files.h"
#include "core/rooms.h"

namespace corvinade::cli {

// "" or why a text is no FORM=FILE.
std::string CheckFitExport(const std::string& text);

// "" or what stands against the forms, the job and the page that were asked for: standard output takes one.
std::string ExportsAgainst(const FitOptions& options);

// The files among them.
std::vector<NamedFile> ExportFiles(const FitOptions& options);

// True where one of them, the job or the page goes to standard output, in the place of the table.
bool TakesOutput(const FitOptions& options);

struct FitExport {
    std::string Path, Text;  // "-" is standard output
};

// The texts of the open job's result; none are written. kDone; kRefused with the reason on `err` where one of
// the forms cannot hold the result. None are made, which `err` tells, of a result that did not converge
// without the user's consent. Their warnings are among the notes.
int MakeExports(const FitOptions& options, std::vector<FitExport>& exports, std::ostream& err);

// Writes them, each whole or not at all. kDone, or kRefused with the reason on `err`.
int WriteExports(const std::vector<FitExport>& exports, std::ostream& out, std::ostream& err);

}  // namespace corvinade::cli
