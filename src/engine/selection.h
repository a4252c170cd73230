// What the calculation window chooses, as the engine reads it: which parameters float, which start
// values are the user's own, which model holds.
#pragma once

#include <array>
#include <string>

#include "core/rooms.h"

namespace corvinade::engine {

// Indices 1 to 17 as in `ParamText`; index 0 is unused.
struct SelectionRecord {
    bool DialogOpen = false;       // the user's own start values apply only while the window is open
    std::array<bool, 18> Float{};  // the float boxes; 15 to 17 share one
    std::array<std::string, 18> FieldText{};  // the parameter fields: a value, "float" or "not used"
    std::array<bool, 18> Seed{};              // the boxes of the start values
    std::array<std::string, 18> SeedText{};   // and their fields
    bool CheckRDist = false;                  // the distance from the target points is an unknown
    bool CheckUseABC = false;                 // the tool vector is an unknown
    bool RDistShown = true;  // the field of R_Dist is on show: the distance model, else the tool model
};
inline SelectionRecord Selection;

// True where the tool vector, floating or held, and not the distance is what the choice is about. The fields
// of the other one read "not used".
bool ToolVectorGoverns(const std::array<std::string, 18>& ParamText);

// Where no window chooses: what Job.ParamText says, without start values of the user's own.
void SelectionFromJob();

}  // namespace corvinade::engine
