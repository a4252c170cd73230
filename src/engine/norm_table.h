// The norms that a calculation can be made in, a row each: all that tells one from another but the
// mathematics (fit/norms.h).
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/rooms.h"
#include "fit/norm_run.h"

namespace corvinade::core {
struct Control;
}

namespace corvinade::engine {

struct FormTrafoBerechnung;

struct NormRow {
    std::int16_t Number;                   // Job.NormType, in job files too: fixed for good
    FitNorm Fit;                           // what runs
    const char* Name;                      // on the command line
    const char* ExactName;                 // there, run on to the true optimum; nullptr for least squares
    Control FormTrafoBerechnung::*Option;  // of the calculation window
    // Words: its name in tables and in what `info` tells, and in messages; what it makes least, in tables;
    // what its loop makes least, in messages; what its optimum is the least of.
    const char *Label, *Told, *Least, *Weighted, *Optimum;
    // Of a loop, in the status bar. Panels 6 and 7 as it begins, nullptr: as they are. The same in each
    // round, from what is told of it (FitStep::LoopRound): `value` in the unit of length. And panel 6 in each
    // step of the way to the optimum, with the number of steps behind.
    const char* Begins;
    void (*ShowRound)(double value, int rounds);
    const char* Steps;
};

std::span<const NormRow> Norms();

constexpr bool IsLeastSquares(const NormRow& norm) {
    return norm.Fit == FitNorm::LeastSquares;
}
const NormRow& LeastSquares();

// The row of a number of Job.NormType; any other number is read as least squares.
const NormRow& NormOf(int number);
const NormRow& NormOfJob();  // that of Job.NormType
const NormRow& NormOfFit(FitNorm norm);

// What a name of the command line asks for. It has to be one of NormNames.
struct NormWish {
    const NormRow& Norm;
    bool Exact;  // run on to the true optimum
};
NormWish NormByName(std::string_view name);

// All names of the command line, those of the exact norms last; and what its help says of them.
std::vector<std::string> NormNames();
const char* NormsInWords();

}  // namespace corvinade::engine
