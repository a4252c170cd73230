// The a-priori standard deviations of a job's coordinates: how accurately its two sides were measured. No
// field of the job file has a place for them, so they are members of its block (core/job_block.h), which the
// job carries as they are written.
#pragma once

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/job.h"
#include "core/job_block.h"
#include "core/rooms.h"

namespace corvinade::core {

// Of x, y, z in the side's own system, mm; 0 is free of errors.
using SideAccuracy = std::array<double, 3>;

// Of each point of a side in their order, the first one at 0; by axis. All three are as long.
struct PointAccuracies {
    std::array<std::vector<double>, 3> Of;
    std::size_t Count() const { return Of[0].size(); }
    friend bool operator==(const PointAccuracies&, const PointAccuracies&) = default;
};
using SharedAccuracies = std::shared_ptr<const PointAccuracies>;

// A side has one for all its points, or one for each of them, or nothing: none was told. A side without any
// beside a side that has some counts as free of errors.
struct MeasurementSigmas {
    std::optional<SideAccuracy> Start, Target;
    SharedAccuracies StartOfEach, TargetOfEach;  // in the place of the one for all; null where there is none
    bool AnyOfStart() const { return Start.has_value() || StartOfEach != nullptr; }
    bool AnyOfTarget() const { return Target.has_value() || TargetOfEach != nullptr; }
    bool Any() const { return AnyOfStart() || AnyOfTarget(); }
};

// Of the job's start and target points, whichever file they came from. Those of each point are kept from one
// call to the next and cost no more than a look at their text.
MeasurementSigmas SigmasOf(const JobRecord& job);
void PutSigmas(const MeasurementSigmas& sigmas, JobRecord& job);

// For a job whose sides change places.
MeasurementSigmas Swapped(const MeasurementSigmas& sigmas);
void SwapSigmas(JobRecord& job);

// For a job that has got more points: those have no errors as far as it knows.
void ReachNewPoints(JobRecord& job);

// "0.02, 0.03, 0.05" in the unit in use; of each point the least and the largest of them; "free of errors" of
// a side without any.
std::string SigmasInWords(const std::optional<SideAccuracy>& ofAll, const SharedAccuracies& ofEach);

// The members of the block (job_block.h), and whether a value is one: three numbers of 0 or
// more in brackets, or as many such lists in brackets as the side has points. Null for all others.
std::optional<SideAccuracy> SideFromText(std::string_view value);
SharedAccuracies AccuraciesFromText(std::string_view value);
bool AreSigmasOf(std::string_view value, int points);

}  // namespace corvinade::core
