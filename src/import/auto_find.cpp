// The search for a transformation by distances.
#include "import/auto_find.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/form_progress_bar.h"
#include "core/job.h"
#include "core/platform.h"
#include "core/run.h"
#include "import/distance_match.h"
#include "import/long_import.h"

namespace corvinade::import {

namespace {

// How many target points the table takes.
std::int64_t TargetPoints(const MatchingOptions& options) {
    if (!options.CheckUseOnlyFirst || !(options.TextMaxOCS < Job.Target.Count())) return Job.Target.Count();
    return options.TextMaxOCS < 1 ? 0 : static_cast<std::int64_t>(options.TextMaxOCS);
}

// The search itself with its progress. False when the job has changed under it.
bool FindPairs(std::int64_t targetPoints, std::vector<DistancePair>& pairs) {
    const std::uint64_t generation = Run.JobGeneration;
    const auto points = static_cast<std::int64_t>(Job.Start.Count());
    const auto rows = static_cast<double>(points * (points - 1) / 2);
    bool jobChanged = false;
    const auto beforeRow = [&](std::int64_t row, int found) {
        if (IsTrue(Run.StopRequested)) return false;
        const double percent =
            std::max(static_cast<double>(row + 1) / rows * 100, found / double{kEnoughCandidates} * 100);
        SetValue(Progress.ProgressBar1, static_cast<int>(std::clamp(percent, 2.0, 100.0)));
        YieldToEvents();
        jobChanged = Run.JobGeneration != generation;
        return !jobChanged;
    };
    pairs = FindDistancePairs(Job.Start, Job.Target, targetPoints, Run.Etta, beforeRow);
    return !jobChanged;
}

bool Refused(const std::string& why) {
    if (!why.empty()) ShowMessage(why);
    return !why.empty();
}

constexpr int kSeeds = 3;

// The coordinates stay three elements longer than the names, as if the seeds had stood in front of the points
// and all had moved down again: the job file shows what is left then, the last three of both.
void LeaveRoomOfSeeds(PointSet& points, const std::array<Vec3, kSeeds>& seeds) {
    points.SpareCoordinates(kSeeds);
    const int count = points.Count();
    for (int i = count + 1; i <= count + kSeeds; ++i) {
        if (const int seed = i - 1; seed < kSeeds) {
            const Vec3& left = seeds[static_cast<std::size_t>(seed)];
            points.SetPoint(i, left(1), left(2), left(3));
            continue;
        }
        const auto to = static_cast<std::size_t>(i), from = to - kSeeds;
        points.X[to] = points.X[from];
        points.Y[to] = points.Y[from];
        points.Z[to] = points.Z[from];
    }
}

void TakeSeeds(const DistanceSeeds& seeds) {
    for (std::size_t k = 1; k <= kSeeds; ++k) Job.SeedIndex[k] = static_cast<std::int16_t>(k);
    Job.TraX = seeds.Raw[kTraX];
    Job.TraY = seeds.Raw[kTraY];
    Job.TraZ = seeds.Raw[kTraZ];
    Job.RotXCopy = seeds.Raw[kRotX];
    Job.RotYCopy = seeds.Raw[kRotY];
    Job.RotZCopy = seeds.Raw[kRotZ];
    Job.ScaleX = seeds.Raw[kScaleX];
    Job.ScaleY = seeds.Raw[kScaleY];
    Job.ScaleZ = seeds.Raw[kScaleZ];
    LeaveRoomOfSeeds(Job.Start, seeds.Start);
    LeaveRoomOfSeeds(Job.Target, seeds.Target);
}

}  // namespace

void AutoFindPts(const MatchingOptions& options) {
    Run.StopRequested = kFalse;
    Job.SetPairs(0);
    if (IsTrue(Run.RobotFileHasId))
        for (std::size_t i = 1; i <= static_cast<std::size_t>(Job.Start.Count()); ++i)
            Job.Start.Name[i] = " " + std::to_string(i) + "_" + Job.Start.Name[i];

    const std::int64_t targetPoints = TargetPoints(options);
    if (Refused(StartTableRefusal(Job.Start.Count(), "MCS")) ||
        Refused(TargetTableRefusal(targetPoints, "OCS")))
        return;

    std::vector<DistancePair> pairs;
    const BusyPointer busy;
    std::optional<ProgressWindow> progress("AutoFind Indentically Points - Progress");
    if (!FindPairs(targetPoints, pairs)) {
        LongImport.Overtaken = true;
        Run.ImportFailed = kTrue;  // the points that are there now are not to be matched
        return;
    }
    if (pairs.size() < 3) {
        progress.reset();
        ShowMessage("Could not solve the auto find problem, maybe try changing ETTA Value");
        return;
    }
    TakeSeeds(SeedsOf(pairs, Job.Start, Job.Target));
    if (!IsTrue(Run.StopRequested)) PärchenSuchen(options);
}

}  // namespace corvinade::import
