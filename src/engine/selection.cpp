// What the calculation window chooses, as the engine reads it.
#include "engine/selection.h"

#include <algorithm>

#include "core/job.h"

namespace corvinade::engine {

bool ToolVectorGoverns(const std::array<std::string, 18>& ParamText) {
    return std::any_of(&ParamText[kRvecX], &ParamText[kRvecZ] + 1,
                       [](const std::string& text) { return !text.empty() && text != kNotUsed; });
}

void SelectionFromJob() {
    Selection = SelectionRecord{};
    for (std::size_t k = kTraX; k < kParameterEnd; ++k) {
        Selection.FieldText[k] = Job.ParamText[k];
        Selection.Float[k] = Job.ParamText[k] == kFloat;
    }
    Selection.CheckRDist = Selection.Float[kRDist];
    Selection.CheckUseABC = Selection.Float[kRvecX] && Selection.Float[kRvecY] && Selection.Float[kRvecZ];
    Selection.RDistShown = !ToolVectorGoverns(Job.ParamText);
}

}  // namespace corvinade::engine
