// Consistency of the job's records.
#include "core/job.h"

#include <algorithm>
#include <array>

#include "fit/require.h"

namespace corvinade::core {

JobRecord::JobRecord() = default;
JobRecord::~JobRecord() = default;
JobRecord::JobRecord(const JobRecord&) = default;
JobRecord::JobRecord(JobRecord&&) noexcept = default;
JobRecord& JobRecord::operator=(const JobRecord&) = default;
JobRecord& JobRecord::operator=(JobRecord&&) noexcept = default;

void JobRecord::SetPairs(int pairs) {
    Require(pairs >= 0 && pairs <= std::min(Start.Count(), Target.Count()));
    pairs_ = pairs;
}

std::int32_t CountOf(const JobRecord& job, JobCount count) {
    switch (count) {
        case JobCount::Pairs:
            return job.Pairs();
        case JobCount::Start:
            return job.Start.Count();
        case JobCount::Target:
            return job.Target.Count();
        case JobCount::StartOnly:
            return job.StartOnly();
        case JobCount::TargetOnly:
            break;
    }
    return job.TargetOnly();
}

bool JobIsWhole(const JobRecord& job) {
    const auto reaches = [](std::int32_t count, const auto&... arrays) {
        return ((UpperBound(arrays) >= count) && ...);
    };
    return job.Start.CountsAll() && job.Target.CountsAll() && job.Transformed.Count() >= job.Start.Count() &&
           reaches(job.Pairs(), job.RVecX, job.RVecY, job.RVecZ) && reaches(3 * job.Pairs(), job.UseFlags);
}

namespace {

constexpr std::array<double JobRecord::*, kParameterEnd> kPlaces = {nullptr,
                                                                    &JobRecord::TraX,
                                                                    &JobRecord::TraY,
                                                                    &JobRecord::TraZ,
                                                                    &JobRecord::RotX,
                                                                    &JobRecord::RotY,
                                                                    &JobRecord::RotZ,
                                                                    &JobRecord::ScaleX,
                                                                    &JobRecord::ScaleY,
                                                                    &JobRecord::ScaleZ,
                                                                    &JobRecord::ScaleXYZ,
                                                                    &JobRecord::AngleXY,
                                                                    &JobRecord::Azimuth,
                                                                    &JobRecord::AngleZtoXY,
                                                                    &JobRecord::RDist,
                                                                    &JobRecord::Rvec_x,
                                                                    &JobRecord::Rvec_y,
                                                                    &JobRecord::Rvec_z};

}  // namespace

double& ParameterValue(JobRecord& job, int parameter) {
    Require(parameter >= 1 && parameter < kParameterEnd);
    return job.*kPlaces[static_cast<std::size_t>(parameter)];
}

Parameters ParametersOf(const JobRecord& job) {
    Parameters parameters;
    for (int k = kTraX; k < kParameterEnd; ++k) parameters[k] = job.*kPlaces[static_cast<std::size_t>(k)];
    return parameters;
}

void PutParameters(const Parameters& parameters, JobRecord& job) {
    for (int k = kTraX; k < kParameterEnd; ++k) job.*kPlaces[static_cast<std::size_t>(k)] = parameters[k];
}

}  // namespace corvinade::core
