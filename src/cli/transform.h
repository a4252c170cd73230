// `corvinade-cli transform`: point files through the transformation of a job.
#pragma once

#include <CLI/CLI.hpp>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "core/rooms.h"

namespace corvinade::cli {

struct TransformOptions {
    std::string Job;
    std::vector<std::string> In;  // files, and folders that stand for their files
    std::string To;
    bool Overwrite = false;
    bool Unconverged = false;     // a result that did not converge is taken too
    std::string Delimiter = " ";  // of a file that shows none
    std::optional<char> Decimal;
    std::optional<bool> Questions;  // --yes or --no
    bool Strict = false;            // no warning may pass
    bool Json = false;              // what was written and left, and the notes
};

struct TransformSwitches {
    TransformOptions Options;
    std::string Decimal;
    bool Yes = false, No = false;
};

CLI::App* AddTransform(CLI::App& app, TransformSwitches& s);
void TakeTransformSwitches(TransformSwitches& s);

// Transforms all files, each whole or not at all. What was left, and why, and which lines held no point, is
// said on `err` at the end. kDone; kUnreadable where a file could not be read; kRefused where one could not
// be written, or the job has no transformation.
int RunTransform(const TransformOptions& options, std::ostream& out, std::ostream& err, bool progress);

}  // namespace corvinade::cli
