// What `corvinade-cli fit` was asked for.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/rooms.h"

namespace corvinade::cli {

enum class FitOutput { Table, Json, Csv };

struct FitOptions {
    std::string Start, Target;
    std::string Pairs;                  // path of a file that holds both; "" = none
    std::string PairColumns;            // of it, "name,x,y,z,X,Y,Z"; "" = its heading names them
    std::string Job;                    // path of a job that stands in the place of both; "" = none
    std::string Save;                   // path of the job to write with its result; "" = none
    std::string TargetKind = "points";  // by name: import/robot_files.h
    std::string Match = "id";           // id, coordinate, distance
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
    std::string Report;  // path of the page to write; empty = none

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
};

}  // namespace corvinade::cli
