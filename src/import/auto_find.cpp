// The search for a transformation by distances.
#include "import/auto_find.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/form_progress_bar.h"
#include "core/job.h"
#include "core/numbers.h"
#include "core/platform.h"
#include "core/run.h"
#include "core/settings.h"
#include "engine/seed.h"
#include "import/distance_search.h"
#include "import/long_import.h"

namespace corvinade::import {

namespace {

// What the search holds in memory for each row of a table. The start table has its distances alone.
constexpr std::int64_t kMemoryLimit_bytes = std::int64_t{1} << 30;
constexpr std::int64_t kStartRow_bytes = 8, kTargetRow_bytes = 24;

constexpr std::int64_t RowsOf(std::int64_t points) {
    return points * (points - 1) / 2;
}

// Points 0 to count of a set as plain columns; point 0 is the origin.
struct Columns {
    std::vector<double> X, Y, Z;
};
Columns Gather(const PointSet& points, std::int64_t count) {
    Columns columns;
    for (std::size_t i = 0; i <= static_cast<std::size_t>(count); ++i) {
        columns.X.push_back(points.X[i].value_or(0));
        columns.Y.push_back(points.Y[i].value_or(0));
        columns.Z.push_back(points.Z[i]);
    }
    return columns;
}

// An accepted pair of pairs. The two lengths are kept as text, whose 15 digits decide which is larger.
struct Candidate {
    PointPair Start, Target;
    std::string Difference, NextNearest;  // mm
};

struct Tables {
    std::int64_t StartPoints = 0;
    std::int64_t TargetPoints = 0;  // those that go into the table
    std::vector<double> Start, Target;
};

// How many target points the table takes.
std::int64_t TargetPoints(const MatchingOptions& options) {
    if (!options.CheckUseOnlyFirst || !(options.TextMaxOCS < Job.Target.Count())) return Job.Target.Count();
    return options.TextMaxOCS < 1 ? 0 : static_cast<std::int64_t>(options.TextMaxOCS);
}

bool RefuseTable(std::int64_t points, std::int64_t row_bytes, const char* label) {
    if (RowsOf(points) <= kMemoryLimit_bytes / row_bytes) return false;
    std::int64_t most = points;
    while (RowsOf(most) > kMemoryLimit_bytes / row_bytes) most = most > 2 * 20000 ? most / 2 : most - 1;
    ShowMessage("The table of the distances between all " + std::to_string(points) + " points of the " +
                label + " File does not fit into memory. Please use " + std::to_string(most) +
                " points at most.");
    return true;
}

Tables MakeTables(std::int64_t targetPoints) {
    Tables tables;
    tables.StartPoints = Job.Start.Count();
    tables.TargetPoints = targetPoints;
    const Columns start = Gather(Job.Start, Job.Start.Count());
    const Columns target = Gather(Job.Target, targetPoints);
    tables.Start = DistancesOfPairs(start.X, start.Y, start.Z, Job.Start.Count());
    tables.Target = DistancesOfPairs(target.X, target.Y, target.Z, targetPoints);
    // The rest of the target table holds zeros. They are searched like any distance, and the two lowest
    // rows of them decide all that more of them would.
    const std::int64_t zeros = RowsOf(Job.Target.Count()) - RowsOf(targetPoints);
    tables.Target.insert(tables.Target.end(), static_cast<std::size_t>(std::min<std::int64_t>(zeros, 2)),
                         0.0);
    return tables;
}

// The search itself with its progress. False when the job has changed under it.
bool FindCandidates(const Tables& tables, std::vector<Candidate>& candidates) {
    const std::uint64_t generation = Run.JobGeneration;
    const auto rows = static_cast<double>(tables.Start.size());
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
    const auto found = SearchDistances(tables.Start, tables.Target, Run.Etta, beforeRow);
    for (const DistanceCandidate& match : found) {
        Candidate candidate;
        candidate.Start = PairOfRow(match.StartRow, tables.StartPoints);
        if (match.TargetRow < RowsOf(tables.TargetPoints))  // a row of zeros has points 0 and 0
            candidate.Target = PairOfRow(match.TargetRow, tables.TargetPoints);
        candidate.Difference = PlainText(match.Best1);
        candidate.NextNearest = PlainText(match.Best2);
        candidates.push_back(candidate);
    }
    return !jobChanged;
}

// The three candidates that stand clearest of all other distances; of equal ones the earlier.
std::vector<Candidate> ChooseThree(const std::vector<Candidate>& candidates) {
    if (candidates.size() == 3) return candidates;
    std::vector<Candidate> chosen;
    std::vector<bool> used(candidates.size());
    for (int k = 1; k <= 3; ++k) {
        std::size_t best = candidates.size();
        double clearest = -1;
        for (std::size_t i = 0; i < candidates.size(); ++i) {
            const double clear = std::fabs(NumberFromText(candidates[i].NextNearest, "NextNearest"));
            if (used[i] || !(clear > clearest)) continue;
            best = i;
            clearest = clear;
        }
        used[best] = true;
        chosen.push_back(candidates[best]);
    }
    return chosen;
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

Vec3 Middle(const Vec3& a, const Vec3& b) {
    return {(a(1) + b(1)) / 2, (a(2) + b(2)) / 2, (a(3) + b(3)) / 2};
}

// The raw solution from the middles of the chosen pairs: which end of a distance is which does not show,
// but the middle is the same either way.
void SolveFromMiddles(const std::vector<Candidate>& chosen) {
    std::array<Vec3, kSeeds> start, target;
    for (std::size_t k = 0; k < 3; ++k) {
        const auto point = [](std::int64_t i) { return static_cast<int>(i); };
        start[k] =
            Middle(StartPoint(point(chosen[k].Start.First)), StartPoint(point(chosen[k].Start.Second)));
        target[k] =
            Middle(TargetPoint(point(chosen[k].Target.First)), TargetPoint(point(chosen[k].Target.Second)));
    }
    SeedPoints seeds;
    for (std::size_t k = 1; k <= kSeeds; ++k) {
        seeds.Pair[k] = static_cast<int>(k);
        seeds.Start[k] = start[k - 1];
        seeds.Target[k] = target[k - 1];
        Job.SeedIndex[k] = static_cast<std::int16_t>(k);
    }
    seeds.Reference = ReferenceInFrame(seeds.Target);
    seeds.ScalesAreOne = true;
    Parameters raw;
    RawSolution(seeds, raw);
    Job.TraX = raw[kTraX];
    Job.TraY = raw[kTraY];
    Job.TraZ = raw[kTraZ];
    Job.RotXCopy = raw[kRotX];
    Job.RotYCopy = raw[kRotY];
    Job.RotZCopy = raw[kRotZ];
    Job.ScaleX = raw[kScaleX];
    Job.ScaleY = raw[kScaleY];
    Job.ScaleZ = raw[kScaleZ];
    LeaveRoomOfSeeds(Job.Start, start);
    LeaveRoomOfSeeds(Job.Target, target);
}

}  // namespace

void AutoFindPts(const MatchingOptions& options) {
    Run.StopRequested = kFalse;
    Job.SetPairs(0);
    if (IsTrue(Run.RobotFileHasId))
        for (std::size_t i = 1; i <= static_cast<std::size_t>(Job.Start.Count()); ++i)
            Job.Start.Name[i] = " " + std::to_string(i) + "_" + Job.Start.Name[i];

    const std::int64_t targetPoints = TargetPoints(options);
    if (RefuseTable(Job.Start.Count(), kStartRow_bytes, "MCS") ||
        RefuseTable(targetPoints, kTargetRow_bytes, "OCS"))
        return;

    std::vector<Candidate> candidates;
    const BusyPointer busy;
    std::optional<ProgressWindow> progress("AutoFind Indentically Points - Progress");
    if (!FindCandidates(MakeTables(targetPoints), candidates)) {
        LongImport.Overtaken = true;
        Run.ImportFailed = kTrue;  // the points that are there now are not to be matched
        return;
    }
    if (candidates.size() < 3) {
        progress.reset();
        ShowMessage("Could not solve the auto find problem, maybe try changing ETTA Value");
        return;
    }
    SolveFromMiddles(ChooseThree(candidates));
    if (!IsTrue(Run.StopRequested)) PärchenSuchen(options);
}

}  // namespace corvinade::import
