// What `corvinade-cli fit` was asked for.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/rooms.h"

namespace corvinade::cli {

enum class FitOutput { Table, Json, Csv };

// What the user says of one of the two files; "" and nothing = it is found.
struct TableFile {
    std::string Columns;    // "name,x,y,z"
    std::string Delimiter;  // one character
    std::optional<char> Decimal;
    std::string Unit;       // of lengths: "mm", "m", "in", "ft", "cm", "km"
    std::string AngleUnit;  // by its long name
    std::string Encoding, Format = "auto";
    std::optional<std::string> Comment;
    std::int64_t Skip = 0;
};

// How a file was read, for `--verbose` and the member `files` of the JSON; "" and -1 = it has none.
struct ReadFileFacts {
    std::string What;  // "START", "TARGET"
    std::string File, Format, Encoding, Delimiter, Decimal;
    int HeadingLines = -1;
    std::string Columns, Unit;
    std::int64_t Skipped = 0;
};

struct FitOptions {
    std::string Start, Target;
    std::array<TableFile, 2> Files;        // START and TARGET
    bool SkipBad = false;                  // rows that cannot be read are passed over
    bool Verbose = false;                  // how the files were read is told
    std::istream* In = nullptr;            // what the path "-" stands for
    std::vector<ReadFileFacts> FileFacts;  // START and TARGET once they are read; empty for a job
    std::string Pairs;                     // path of a file that holds both; "" = none
    std::string PairColumns;               // of it, "name,x,y,z,X,Y,Z"; "" = its heading names them
    std::string Job;                       // path of a job that stands in the place of both; "" = none
    std::string Save;                      // path of the job to write with its result; "" = none
    std::string TargetKind = "points";     // by name: import/robot_files.h
    std::string Names;                     // of poses: number, program; "" = by those of the start points
    std::vector<std::string> Select;       // names of poses
    std::string Match = "id";              // id, coordinate, distance
    double Tolerance_mm = 0.8;
    int OnlyFirst = 0;             // matching by distance looks at the first so many target points; 0 = all
    std::string Parameters = "6";  // by name: engine/presets.h
    std::string Norm = "l2";       // by name: engine/norm_table.h
    bool RDist = false;            // the distance model: points lie at one distance from their targets
    bool Tool = false;             // the tool model, with the orientations of the robot program
    std::string Poses;             // file of the target poses' orientations for the tool model; "" = none
    int MonteCarloRuns = 0;        // 0 = none
    std::array<double, 3> Noise_mm{};      // standard deviation of the start points for Monte Carlo, by axis
    std::uint32_t Seed = 0;                // of its random numbers
    std::vector<std::string> Hold;         // "rotz=0"
    std::vector<std::string> LeaveOut;     // "P7", "P9:z"
    bool FromTarget = false;               // the target file's points are fitted to those of the start file
    std::vector<std::string> SeedPoints;   // one text "A,B,C" or three names; empty: the first pairs
    std::vector<std::string> StartValues;  // "rotz=30"
    std::string LengthUnit = "millimeter", AngleUnit = "degree";
    int LengthDigits = 3, AngleDigits = 4;
    int ScaleDigits = 0;
    std::optional<char> Decimal;
    std::string Delimiter;
    std::optional<bool> Questions;  // --yes or --no
    bool Strict = false;            // no warning may pass
    bool Inverse = false;           // table and JSON tell the inverse transformation as well
    bool Details = false;           // and the result in all forms of rotation
    bool Protocol = false;          // the complete protocol instead of the table, in JSON beside the rest
    FitOutput Output = FitOutput::Table;
    std::string Report;                // path of the page to write; empty = none
    std::vector<std::string> Exports;  // "kuka-base=cell.src", "ros=-": cli/fit_exports.h
    bool Unconverged = false;          // they take a result that did not converge too
    std::optional<double> Limit_mm;    // the largest deviation in use that passes
    std::optional<double> Within_mm;   // the tolerance of the job; none: its own, if it has one
    bool NoPoints = false;             // JSON without points

    // Standard deviations of the coordinates in each file's own system, in the length unit.
    std::optional<std::array<double, 3>> StartSigma, TargetSigma;
    bool Statistics = false;                        // table and JSON tell how far the result can be trusted
    bool Snoop = false;                             // outliers are taken out one by one
    std::optional<double> Alpha;                    // of all tests; none: those of TestLevels
    double Power = 0.8, Confidence = 0.95;          // of the MDB and of the ellipsoids
    std::vector<std::array<double, 3>> AccuracyAt;  // points of the start system, in the length unit

    std::vector<std::string> Given;  // the options that the user has given: "--norm"
    bool IsGiven(std::string_view option) const {
        return std::find(Given.begin(), Given.end(), option) != Given.end();
    }
};

// The program's exit status.
enum ExitStatus : int {
    kDone = 0,
    kRefused = 1,
    kWrongUsage = 2,
    kUnreadable = 3,
    kNotConverged = 4,
    kAboveLimit = 5,
};

}  // namespace corvinade::cli
