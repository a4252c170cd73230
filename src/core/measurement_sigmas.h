// The a-priori standard deviations of a job's coordinates: how accurately its two sides were measured. No
// field of the job file has a place for them, so they are members of its block (core/job_block.h), which the
// job carries as they are written.
#pragma once

#include <array>
#include <optional>
#include <string_view>

#include "core/job.h"
#include "core/rooms.h"

namespace corvinade::core {

// Of x, y, z in the side's own system, mm; 0 is free of errors.
using SideAccuracy = std::array<double, 3>;

// Nothing: none was told. A side without one beside a side that has one counts as free of errors.
struct MeasurementSigmas {
    std::optional<SideAccuracy> Start, Target;
    bool Any() const { return Start.has_value() || Target.has_value(); }
};

// Of the job's start and target points, whichever file they came from.
MeasurementSigmas SigmasOf(const JobRecord& job);
void PutSigmas(const MeasurementSigmas& sigmas, JobRecord& job);

// For a job whose sides change places.
void SwapSigmas(JobRecord& job);

// The members of the block, with their quotation marks, and whether a value is one: three numbers of 0 or
// more in brackets.
inline constexpr std::string_view kStartSigmas = "\"startSigmas\"", kTargetSigmas = "\"targetSigmas\"";
std::optional<SideAccuracy> SideFromText(std::string_view value);

}  // namespace corvinade::core
