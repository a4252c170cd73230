// What the calculation window chooses, as the engine reads it.
#include "engine/selection.h"

#include "core/job.h"

void SelectionFromJob() {
    Selection = SelectionRecord{};
    for (std::size_t k = kTraX; k < kParameterEnd; ++k) {
        Selection.FieldText[k] = Job.ParamText[k];
        Selection.Float[k] = Job.ParamText[k] == kFloat;
    }
    Selection.CheckRDist = Selection.Float[kRDist];
    Selection.CheckUseABC = Selection.Float[kRvecX] && Selection.Float[kRvecY] && Selection.Float[kRvecZ];
    Selection.RDistShown = !Selection.CheckUseABC;
}
