// `corvinade-cli export`: a result for other machines.
#pragma once

#include <CLI/CLI.hpp>
#include <iosfwd>
#include <optional>
#include <string>

#include "core/rooms.h"

namespace corvinade::cli {

struct ExportOptions {
    std::string Job;
    std::string RobCad, Rocal, Points;  // the file to write; one of them, or
    std::string As, Out = "-";          // the form by name, and its file; "-" is standard output
    std::string Place, Tool, Robot;     // names in a frame file
    bool Unconverged = false;           // a result that did not converge goes out too
    bool Json = false;                  // what was written, and the notes
    std::optional<char> Decimal;
    std::optional<bool> Questions;  // --yes or --no
    bool Strict = false;            // no warning may pass
};

struct ExportSwitches {
    ExportOptions Options;
    std::string Decimal;
    bool Yes = false, No = false;
};

CLI::App* AddExport(CLI::App& app, ExportSwitches& s);

// "" or what is wrong with the options as a whole.
std::string TakeExportSwitches(ExportSwitches& s);

// Writes the file, whole or not at all. kDone, or why not on `err`.
int RunExport(const ExportOptions& options, std::ostream& out, std::ostream& err);

}  // namespace corvinade::cli
