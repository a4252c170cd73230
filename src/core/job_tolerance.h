// What the deviations of a job are held against: one length for the whole job, or none.
#pragma once

#include <cstdint>
#include <string_view>

#include "core/job.h"
#include "core/rooms.h"

namespace corvinade::core {

// A member of the block behind the fields of a job file, with its quotation marks; its value is in mm.
inline constexpr std::string_view kTolerance = "\"tolerance_mm\"";

// The ground of a cell that is beyond it.
inline constexpr std::int32_t kBeyondTolerance = 0xA0A0FF;

// A length above 0 as the block has it, in mm; 0 for all other texts.
double ToleranceFromText(std::string_view value);

// The tolerance of the job in mm; 0 = it has none.
double ToleranceOf(const JobRecord& job);

// 0 and less, and what is no number, takes it away.
void PutTolerance(double tolerance_mm, JobRecord& job);

}  // namespace corvinade::core
