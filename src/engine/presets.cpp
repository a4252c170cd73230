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

const Preset* FindPreset(const std::string& preset) {
    const auto found = std::find_if(Presets().begin(), Presets().end(),
                                    [&preset](const Preset& known) { return preset == known.Name; });
    return found == Presets().end() ? nullptr : &*found;
}

}  // namespace

bool FloatsInPreset(const std::string& preset, int parameter) {
    const Preset* found = FindPreset(preset);
    return found != nullptr &&
           std::find(found->Float.begin(), found->Float.end(), parameter) != found->Float.end();
}

bool SelectPreset(const std::string& preset) {
    const Preset* found = FindPreset(preset);
    if (found == nullptr) return false;
    for (int k = 1; k < kParameterEnd; ++k)
        Job.ParamText[static_cast<std::size_t>(k)] = k <= kRotZ ? "0" : kNotUsed;
    for (const int k : found->Float) Job.ParamText[static_cast<std::size_t>(k)] = kFloat;
    return true;
}
