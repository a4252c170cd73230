// Whether the job keeps its tolerance, and the fields of the calculation window that say so.
#pragma once

#include <cstdint>
#include <string>

#include "core/rooms.h"
#include "fit/arrays.h"

namespace corvinade::engine {

enum class Verdict : std::uint8_t {
    None,
    Pass,
    Fail
};  // none: without a tolerance, a result, or pairs in use

struct ToleranceCheck {
    Verdict Word = Verdict::None;
    int InUse = 0, Beyond = 0;  // coordinates of pairs
    double Tolerance_mm = 0;
};

// What the tolerance is held against, mm: the transformed start less its target; of a calculation of
// distances what of that way is more (or less) than the distance, along the axes.
Vec3 DeviationInFit(int pair);

// Is this coordinate (axis 1 to 3) of a pair in use, and does it deviate in the fit by more than the
// tolerance? False without one, 0.
bool IsBeyond(int pair, int axis, double tolerance_mm);

// Of the points as the job's result has transformed them.
ToleranceCheck CheckTolerance();
const char* WordOf(Verdict verdict);  // "pass", "fail" or ""

// "0.05 millimeter: fail, 2 of 36 coordinates in use are beyond it"
std::string ToleranceInWords(const ToleranceCheck& check);

// Of the calculation window, while it is open: the verdict; `anew` also the number and its unit.
void ShowTolerance(bool anew);

void TextTolerance_Change();

}  // namespace corvinade::engine
