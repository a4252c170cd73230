// Pairing by coordinates: the points of the job go through the transformation, the pairs get equal names.
#include <cstdint>
#include <string>
#include <vector>

#include "core/job.h"
#include "core/run.h"
#include "engine/transform.h"
#include "import/coordinate_pairs.h"
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
    const std::vector<std::int32_t> partner =
        PairByCoordinates({startX, startY, startZ}, {targetX, targetY, targetZ}, Run.Etta);

    Job.nIdent = 0;
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
