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

void PärchenSuchen(const MatchingOptions& options) {
    const auto nMCS = static_cast<std::size_t>(Job.nMCS), nOCS = static_cast<std::size_t>(Job.nOCS);
    std::vector<double> startX(nMCS + 1), startY(nMCS + 1), startZ(nMCS + 1);
    for (std::size_t i = 1; i <= nMCS; ++i)
        TransformPoint(Job.MCS_X[i].value_or(0), Job.MCS_Y[i].value_or(0), Job.MCS_Z[i], startX[i], startY[i],
                       startZ[i]);
    std::vector<double> targetX(nOCS + 1), targetY(nOCS + 1), targetZ(nOCS + 1);
    for (std::size_t j = 1; j <= nOCS; ++j) {
        targetX[j] = Job.OCS_X[j].value_or(0);
        targetY[j] = Job.OCS_Y[j].value_or(0);
        targetZ[j] = Job.OCS_Z[j];
    }
    // An element without a name is no point, only a place that a line too short for one has left unused.
    constexpr double kNowhere = std::numeric_limits<double>::quiet_NaN();
    for (std::size_t i = 1; i <= nMCS; ++i)
        if (Job.MCS_Name[i].empty()) startX[i] = kNowhere;
    for (std::size_t j = 1; j <= nOCS; ++j)
        if (Job.OCS_Name[j].empty()) targetX[j] = kNowhere;
    Job.nIdent = 0;
    Run.StopRequested = kFalse;
    const std::uint64_t generation = Run.JobGeneration;
    std::optional<ProgressWindow> progress;  // seldom needed; the search by distances has shown its own
    const auto whileLong = [&](std::size_t done) {
        if (!progress && !Progress.Window.Loaded) progress.emplace("Pairing by coordinates - Progress");
        SetValue(Progress.ProgressBar1, std::max(static_cast<int>(100 * done / nMCS), 2));
        YieldToEvents();
        return !IsTrue(Run.StopRequested) && Run.JobGeneration == generation;
    };
    const std::vector<std::int32_t> partner =
        PairByCoordinates({startX, startY, startZ}, {targetX, targetY, targetZ}, Run.Etta, whileLong);
    if (Run.JobGeneration != generation) {
        LongImport.Overtaken = true;
        Run.ImportFailed = kTrue;  // the points that are there now are not to be matched
        return;
    }
    if (IsTrue(Run.StopRequested)) return;
    for (std::size_t i = 1; i <= nMCS; ++i) {
        if (partner[i] == 0) continue;
        std::string& startName = Job.MCS_Name[i];
        std::string& targetName = Job.OCS_Name[static_cast<std::size_t>(partner[i])];
        if (!options.CheckRenameMCS && !options.CheckRenameOCS)
            startName = targetName = startName + "=" + targetName;
        if (options.CheckRenameMCS) startName = targetName;
        if (options.CheckRenameOCS) targetName = startName;
        ++Job.nIdent;
    }
}
