// Where the iteration of the adjustment begins.
#include "engine/start_values.h"

#include "core/job.h"
#include "engine/field_number.h"
#include "engine/seed.h"
#include "engine/selection.h"

namespace corvinade::engine {

namespace {

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

}  // namespace

StartChoice ReadStartChoice(const std::array<std::string, 18>& ParamText) {
    StartChoice choice;
    for (int parameter = kTraX; parameter < kParameterEnd; ++parameter) {
        const std::string& text = ParamText[At(parameter)];
        choice.Floats[At(parameter)] = text == kFloat;
        choice.Held[At(parameter)] = IsHeldValue(text);
        choice.Seeded[At(parameter)] = Selection.DialogOpen && Selection.Seed[At(parameter)];
        if (choice.Held[At(parameter)]) choice.Value[At(parameter)] = ParameterFromText(parameter, text);
    }
    if (Selection.DialogOpen && !IsTrue(Job.IsParaboloid)) choice.Own = ReadOwnStarts();
    return choice;
}

void TakeStartValues(const std::array<std::string, 18>& ParamText) {
    TakeStartValues(ReadStartChoice(ParamText), TakeSeedPoints());
}

void TakeStartValues(const StartChoice& choice, const SeedPoints& seeds) {
    PutParameters(StartValues(choice, seeds), Job);
}

}  // namespace corvinade::engine
