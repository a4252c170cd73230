// The statistics that pictures show.
#include "graphics/point_trust.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "core/job.h"
#include "core/run.h"
#include "engine/calculation_window.h"
#include "engine/result_statistics.h"
#include "graphics/scene.h"

namespace corvinade::graphics {

bool ColoursByTrust(const std::string& colorBased) {
    return colorBased == kByStandardized || colorBased == kByAccuracy;
}

const AdjustmentStatistics* StatisticsForPictures() {
    PointTrustRecord& kept = PointTrust;
    const bool same = kept.Known && kept.JobGeneration == Run.JobGeneration &&
                      kept.Started == CalculationWindow.Started && kept.Stamp == Scene.Stamp;
    if (!same) {
        kept = {true, Run.JobGeneration, CalculationWindow.Started, Scene.Stamp, StatisticsOfResult({})};
        if (kept.Of && kept.Of->Singular) kept.Of.reset();
    }
    return kept.Of ? &*kept.Of : nullptr;
}

double TrustOfPair(const std::string& colorBased, int i) {
    const AdjustmentStatistics* s = StatisticsForPictures();
    constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
    if (s == nullptr || i > Job.Pairs()) return kNone;
    if (colorBased == kByAccuracy) {
        if (!std::isfinite(s->VarianceFactor)) return kNone;
        const Vec3 sigma = SigmaOfTransformed(*s, StartPoint(i));
        return std::sqrt(sigma(1) * sigma(1) + sigma(2) * sigma(2) + sigma(3) * sigma(3));
    }
    double largest = kNone;
    for (int axis = 1; axis <= 3; ++axis) {
        const auto index = static_cast<std::size_t>(3 * (i - 1) + axis);
        if (index >= s->Standardized.size()) continue;
        const double size = std::fabs(s->Standardized[index]);
        if (std::isfinite(size) && !(size <= largest)) largest = size;
    }
    return largest;
}

double TrustLimit(const std::string& colorBased) {
    const AdjustmentStatistics* s = StatisticsForPictures();
    if (s == nullptr) return 0;
    if (colorBased == kByStandardized) return std::isfinite(s->CriticalValue) ? s->CriticalValue : 0;
    constexpr double kAbove = 1.0001;  // the largest one is within
    double largest = 0;
    for (int i = 1; i <= Job.Pairs(); ++i) largest = std::fmax(largest, TrustOfPair(colorBased, i));
    return kAbove * largest;
}

}  // namespace corvinade::graphics
