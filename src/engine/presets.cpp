// The common choices of parameters.
#include "engine/presets.h"

#include <algorithm>
#include <vector>

#include "core/job.h"

namespace {

struct Preset {
    const char* Name;
    std::vector<int> Float;
};

const std::vector<Preset>& Presets() {
    static const std::vector<Preset> presets = {
        {"level", {kTraX, kTraY, kTraZ, kRotZ}},
        {"6", {kTraX, kTraY, kTraZ, kRotX, kRotY, kRotZ}},
        {"7", {kTraX, kTraY, kTraZ, kRotX, kRotY, kRotZ, kScaleXYZ}},
        {"9", {kTraX, kTraY, kTraZ, kRotX, kRotY, kRotZ, kScaleX, kScaleY, kScaleZ}},
        {"12",
         {kTraX, kTraY, kTraZ, kRotX, kRotY, kRotZ, kScaleX, kScaleY, kScaleZ, kAngleXY, kAzimuth,
          kAngleZtoXY}},
    };
    return presets;
}

}  // namespace

bool SelectPreset(const std::string& preset) {
    const auto found = std::find_if(Presets().begin(), Presets().end(),
                                    [&preset](const Preset& known) { return preset == known.Name; });
    if (found == Presets().end()) return false;
    for (int k = 1; k < kParameterEnd; ++k)
        Job.ParamText[static_cast<std::size_t>(k)] = k <= kRotZ ? "0" : kNotUsed;
    for (const int k : found->Float) Job.ParamText[static_cast<std::size_t>(k)] = kFloat;
    return true;
}
