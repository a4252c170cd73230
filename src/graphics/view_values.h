// Limits that the state of a view keeps, whatever a settings file or a job says.
#pragma once

#include "core/rooms.h"
#include "core/screen_record.h"

namespace corvinade::graphics {

inline constexpr double kLeastFaktor = 1e-15, kLargestFaktor = 1e15;  // pixels per mm
inline constexpr int kLargestBigNess = 500;                           // pixels
inline constexpr int kMostClasses = 100;                              // on each side of zero

// Brings numbers that no window can show (point sizes below 1, no class at all, factors that are not finite,
// tables of odd sizes, planes without a frame) to the nearest that one can; all else stays.
void MakeViewUsable(ScreenRecord& view);

}  // namespace corvinade::graphics
