// The point files of a fit: what the user says of each, reading them as tables, and telling how it was done.
#pragma once

#include <array>
#include <iosfwd>
#include <nlohmann/json_fwd.hpp>
#include <string>

#include "cli/fit_options.h"
#include "core/measurement_sigmas.h"
#include "core/point_set.h"
#include "core/rooms.h"
#include "import/table_reader.h"

namespace corvinade::cli {

// A point file that has been read ahead of the import.
struct FitFile {
    bool Read = false;  // else the import reads it as it is told
    PointSet Points;
    PointAccuracies Sigmas;  // of each point; empty = it has none
    std::string Delimiter;   // that of the file
    ReadFileFacts Facts;
};

// Reads a file of the fit as a table, or leaves it to the import: `--format plain`, and files that are no
// points. Adds its notes to the list. "" or why it cannot be read.
//   file   0 = START, 1 = TARGET
//   in     what the path "-" stands for
std::string ReadFitFile(const FitOptions& options, int file, std::istream* in, FitFile& read);

// Reads both sets from the file of --pairs, likewise.
std::string ReadFitPairs(const FitOptions& options, std::array<FitFile, 2>& files);

// The program's name of a unit of length; "" where it is a unit of tables alone (cm, km).
std::string ProgramUnit(const std::string& unit);

// What the told reader makes of a file.
ReadFileFacts ToldFacts(const FitOptions& options, int file);

// "START a.csv: table, utf-8, ..." as one line.
std::string FactsLine(const ReadFileFacts& facts);
nlohmann::ordered_json FactsJson(const ReadFileFacts& facts);

}  // namespace corvinade::cli
