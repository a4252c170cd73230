// Pairing by coordinates: the points of the job go through the transformation, the pairs get equal names.
#include <algorithm>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "core/form_progress_bar.h"
#include "core/job.h"
#include "core/platform.h"
#include "core/run.h"
#include "engine/transform.h"
#include "import/coordinate_pairs.h"
#include "import/long_import.h"
#include "import/matching.h"

namespace corvinade::import {

namespace {

// The search ends: stopped, or because other points have taken the place of those it was begun for, which are
// not to be matched.
void EndOvertaken(std::uint64_t generation) {
    if (Run.JobGeneration == generation) return;
    LongImport.Overtaken = true;
    Run.ImportFailed = kTrue;
}

}  // namespace

void PärchenSuchen(const MatchingOptions& options) {
    const auto nMCS = static_cast<std::size_t>(Job.Start.Count()),
               nOCS = static_cast<std::size_t>(Job.Target.Count());
    Job.SetPairs(0);
    Run.StopRequested = kFalse;
    const std::uint64_t generation = Run.JobGeneration;
    std::optional<ProgressWindow> progress;  // seldom needed; the search by distances has shown its own
    const auto whileLong = [&](std::size_t done) {
        if (!progress && !Progress.Window.Loaded) progress.emplace("Pairing by coordinates - Progress");
        const std::size_t all = std::max<std::size_t>(nMCS, 1);
        SetValue(Progress.ProgressBar1, std::max(static_cast<int>(100 * done / all), 2));
        YieldToEvents();
        return !IsTrue(Run.StopRequested) && Run.JobGeneration == generation;
    };
    // Tables that take their time themselves are filled one between two yields.
    constexpr std::size_t kMany = 1 << 17;
    const bool many = nMCS + nOCS > kMany;
    if (many && !whileLong(0)) return EndOvertaken(generation);
    std::vector<double> startX(nMCS + 1), startY(nMCS + 1), startZ(nMCS + 1);
    for (std::size_t i = 1; i <= nMCS; ++i)
        TransformPoint(Job.Start.X[i].value_or(0), Job.Start.Y[i].value_or(0), Job.Start.Z[i], startX[i],
                       startY[i], startZ[i]);
    if (many && !whileLong(0)) return EndOvertaken(generation);
    std::vector<double> targetX(nOCS + 1), targetY(nOCS + 1), targetZ(nOCS + 1);
    for (std::size_t j = 1; j <= nOCS; ++j) {
        targetX[j] = Job.Target.X[j].value_or(0);
        targetY[j] = Job.Target.Y[j].value_or(0);
        targetZ[j] = Job.Target.Z[j];
    }
    // An element without a name is no point, only a place that a line too short for one has left unused.
    constexpr double kNowhere = std::numeric_limits<double>::quiet_NaN();
    for (std::size_t i = 1; i <= nMCS; ++i)
        if (Job.Start.Name[i].empty()) startX[i] = kNowhere;
    for (std::size_t j = 1; j <= nOCS; ++j)
        if (Job.Target.Name[j].empty()) targetX[j] = kNowhere;
    if (many && !whileLong(0)) return EndOvertaken(generation);
    const std::vector<std::int32_t> partner =
        PairByCoordinates({startX, startY, startZ}, {targetX, targetY, targetZ}, Run.Etta, whileLong);
    if (Run.JobGeneration != generation || IsTrue(Run.StopRequested)) return EndOvertaken(generation);
    constexpr std::size_t kNamesBetweenYields = 1 << 15;
    int pairs = 0;
    for (std::size_t i = 1; i <= nMCS; ++i) {
        if (i % kNamesBetweenYields == 0 && !whileLong(nMCS)) return EndOvertaken(generation);
        if (partner[i] == 0) continue;
        std::string& startName = Job.Start.Name[i];
        std::string& targetName = Job.Target.Name[static_cast<std::size_t>(partner[i])];
        if (!options.CheckRenameMCS && !options.CheckRenameOCS)
            startName = targetName = startName + "=" + targetName;
        if (options.CheckRenameMCS) startName = targetName;
        if (options.CheckRenameOCS) targetName = startName;
        ++pairs;
    }
    Job.SetPairs(pairs);
}

}  // namespace corvinade::import
