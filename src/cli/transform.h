// `corvinade-cli transform`: point files and clouds through the transformation of a job, or another one.
#pragma once

#include <CLI/CLI.hpp>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "core/rooms.h"
#include "import/cloud.h"

namespace corvinade::cli {

struct TransformOptions {
    std::string Job;   // "" with With
    std::string With;  // a job, the JSON of a fit or a matrix: mm, whatever the unit of a job; "" = Job
    std::vector<std::string> In;  // files, and folders that stand for their files; "-" is standard input
    std::string To;               // a folder
    std::string Out;              // or the file for the one of In; "-" is standard output
    CloudWish Cloud;              // of clouds, and of text that keeps its form
    bool Inverse = false;         // the way back
    bool Overwrite = false;
    bool Unconverged = false;     // a result that did not converge is taken too
    std::string Delimiter = " ";  // of a file that shows none
    std::optional<char> Decimal;
    std::optional<bool> Questions;  // --yes or --no
    bool Strict = false;            // no warning may pass
    bool Json = false;              // what was written and left, and the notes

    // Text that is no cloud becomes lines of name, X, Y, Z with tabs between, as ever; else it keeps its
    // form.
    bool KeepsForm() const {
        return !With.empty() || !Cloud.Columns.empty() || Cloud.Digits || Inverse || !Cloud.Unit.empty() ||
               Cloud.Encoding || Delimiter == "|";
    }
};

struct TransformSwitches {
    TransformOptions Options;
    std::string Decimal, Columns, Unit, Encoding;
    int Digits = 0;
    bool Yes = false, No = false;
    const CLI::Option *DelimiterOption = nullptr, *DigitsOption = nullptr;
};

CLI::App* AddTransform(CLI::App& app, TransformSwitches& s);
// "" or what is wrong with the options.
std::string TakeTransformSwitches(TransformSwitches& s);

// Transforms all files, each whole or not at all. What was left, and why, and which lines held no point, is
// said on `err` at the end. kDone; kUnreadable where a file could not be read; kRefused where one could not
// be written, or the job has no transformation.
int RunTransform(const TransformOptions& options, std::istream& in, std::ostream& out, std::ostream& err,
                 bool progress);

}  // namespace corvinade::cli
