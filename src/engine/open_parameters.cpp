// The rank of the last calculation's design matrix.
#include "engine/open_parameters.h"

#include <cmath>
#include <vector>

#include "core/job.h"
#include "engine/adjustment.h"
#include "engine/calculation.h"
#include "engine/linear_rows.h"

namespace {

// Where a parameter is open a pivot of the normal matrix is rounding alone, and its entry of the inverse is
// large. It is so for a very small object as well; the rank is looked at then.
bool LooksSuspicious(const FitModel& model) {
    constexpr double kLarge = 1e-2;
    for (int parameter = kRotX; parameter < kParameterEnd; ++parameter) {
        const int i = model.UnknownOf[static_cast<std::size_t>(parameter)];
        if (i != 0 && !(std::fabs(Calculation.Q(i, i)) < kLarge)) return true;
    }
    return false;
}

}  // namespace

int OpenParameters() {
    const FitModel& model = Adjustment.Model;
    if (!CalculationIsOfThisJob() || model.Mode != FitMode::Coincide || !Calculation.Finite) return 0;
    if (model.Unknowns != Calculation.nFloat || !LooksSuspicious(model)) return 0;
    GatheredPoints points;
    GatherPoints(WeightsFromUseFlags(3 * Job.nIdent), false, points);
    LinearRows rows;
    std::vector<std::vector<double>> T;
    MakeLinearRows(points, model, Linearise(model, points), rows, T);
    return model.Unknowns - static_cast<int>(T.size());
}
