// Consistency of the job's records.
#include "core/job.h"

#include <algorithm>
#include <array>

#include "core/run.h"
#include "fit/require.h"

bool JobCountsFit(const JobRecord& job) {
    const auto reaches = [](std::int32_t count, const auto&... arrays) {
        return ((UpperBound(arrays) >= count) && ...);
    };
    const bool counts = job.nMCS >= 0 && job.nOCS >= 0 && job.nIdent >= 0 && job.nIdent <= job.nMCS &&
                        job.nIdent <= job.nOCS && job.nMCSOnly == job.nMCS - job.nIdent &&
                        job.nOCSOnly == job.nOCS - job.nIdent;
    return counts && UpperBound(job.MCS_Name) == job.nMCS && UpperBound(job.OCS_Name) == job.nOCS &&
           reaches(job.nMCS, job.MCS_X, job.MCS_Y, job.MCS_Z) &&
           reaches(job.nOCS, job.OCS_X, job.OCS_Y, job.OCS_Z) &&
           reaches(job.nMCS, job.TMCS_Name, job.TMCS_X, job.TMCS_Y, job.TMCS_Z) &&
           reaches(job.nIdent, job.RVecX, job.RVecY, job.RVecZ) && reaches(3 * job.nIdent, job.UseFlags);
}

void RepairJobCounts() {
    if (JobCountsFit(Job)) return;
    const auto grow = [](std::int32_t count, auto&... arrays) {
        ((arrays.resize(std::max(arrays.size(), static_cast<std::size_t>(count) + 1))), ...);
    };
    grow(0, Job.MCS_Name, Job.OCS_Name);
    Job.nMCS = UpperBound(Job.MCS_Name);
    Job.nOCS = UpperBound(Job.OCS_Name);
    Job.nIdent = 0;
    Job.nMCSOnly = Job.nMCS;
    Job.nOCSOnly = Job.nOCS;
    grow(Job.nMCS, Job.MCS_X, Job.MCS_Y, Job.MCS_Z, Job.TMCS_Name, Job.TMCS_X, Job.TMCS_Y, Job.TMCS_Z);
    grow(Job.nOCS, Job.OCS_X, Job.OCS_Y, Job.OCS_Z);
    grow(0, Job.RVecX, Job.RVecY, Job.RVecZ, Job.UseFlags);
    Run.JobDataValid = kFalse;
    ++Run.JobGeneration;
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
