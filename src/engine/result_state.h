// Whether what the calculation window shows is the result of what the job holds now: it says so where the
// result is stored, out of date, or not there yet.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "core/arrays.h"
#include "core/rooms.h"
#include "engine/calculation_window.h"

namespace corvinade::engine {

enum class ResultState : std::uint8_t {
    None,     // no calculation has ended for these points
    Fresh,    // that of the last calculation
    Stored,   // as the job file has it
    Outdated  // points, choice, norm or use are others since
};

// What a result is made from, as the window shows it.
struct ResultSource {
    std::uint64_t JobGeneration = 0;
    std::int16_t Norm = 0;
    std::array<std::string, 18> Choice;  // of the parameters: the held text, or empty for one that floats
    std::vector<std::int16_t> UseFlags;
    bool operator==(const ResultSource&) const = default;
};

struct ResultStateRecord {
    ResultState State = ResultState::None;  // of what the fields show
    ResultSource From;                      // what that was made from
    bool OfFile = false;                    // stored, until the next calculation
    std::uint64_t TrendOf = 0;              // of the points whose quality is kept for the next comparison
};
inline ResultStateRecord ShownResult;

// A calculation has just been shown.
void ResultIsFresh();

// The window has opened: shows the result that there is, of this run or as the job has it.
void ShowKnownResult();

// Says anew how fields and job stand to each other, and dims fields that are out of date.
void CheckResultState();

// Whether there is a result to hand on: that of a calculation, or the one that the job was opened with and
// that the calculation window shows as stored. Within a calculation there is none; its parameters are those
// of a pass.
bool ResultStands();
bool StoredResultStands();

// Texts of held fields are written in other units; what they stand for is the same.
void ResultInOtherUnits();

// With DesktopDefaults.ResultState: the calculation window for the job that has just been opened.
void OpenWindowOfResult();

// With DesktopDefaults.AfterImport: what has come in, and what to do with it.
void ShowImport();

// Fills Calculation with residuals and statistics of the parameters that the job holds, without a fit and
// without changing the job; says how much that is. Nothing but residuals where the statistics would not be
// those that were calculated: of another norm than least squares, with sigmas as weights, of parameters that
// do not give the stored points. Nothing at all for distances, tools and shapes.
KnownOfResult TakeStoredResult();

}  // namespace corvinade::engine
