// The common choices of parameters.
#include "engine/presets.h"

#include <algorithm>

#include "core/job.h"
#include "engine/form_trafo_berechnung.h"

namespace corvinade::engine {

namespace {

constexpr int kLevel[] = {kRotZ, kTraX, kTraY, kTraZ};
constexpr int kRigid[] = {kRotX, kRotY, kRotZ, kTraX, kTraY, kTraZ};
constexpr int kOneScale[] = {kRotX, kRotY, kRotZ, kTraX, kTraY, kTraZ, kScaleXYZ};
constexpr int kThreeScales[] = {kRotX, kRotY, kRotZ, kTraX, kTraY, kTraZ, kScaleX, kScaleY, kScaleZ};
constexpr int kAffine[] = {kRotX,   kRotY,   kRotZ,   kTraX,    kTraY,       kTraZ,
                           kScaleX, kScaleY, kScaleZ, kAngleXY, kAngleZtoXY, kAzimuth};

using Window = FormTrafoBerechnung;

constexpr PresetRow kPresets[] = {
    {.Name = "level", .Option = &Window::OptionHoldLevel, .Floating = kLevel},
    {.Name = "6", .Option = &Window::Option6Parameter, .Floating = kRigid, .BlanksRest = true},
    {.Name = "7", .Option = &Window::Option7Parameter, .Floating = kOneScale},
    {.Name = "9", .Option = &Window::Option9Parameter, .Floating = kThreeScales, .WhenUnmarked = true},
    {.Name = "12", .Option = &Window::Option12, .Floating = kAffine, .WhenUnmarked = true},
};

constexpr const char* kWords =
    "What floats: level (3 shifts and the rotation about z), 6 (rigid),\n"
    "7 (with one scale), 9 (with three scales), 12 (affine); default: 6";

}  // namespace

std::span<const PresetRow> Presets() {
    return kPresets;
}

bool Floats(const PresetRow& preset, int parameter) {
    return std::find(preset.Floating.begin(), preset.Floating.end(), parameter) != preset.Floating.end();
}

bool SelectPreset(const std::string& name) {
    const auto found = std::find_if(std::begin(kPresets), std::end(kPresets),
                                    [&name](const PresetRow& preset) { return preset.Name == name; });
    if (found == std::end(kPresets)) return false;
    for (int k = 1; k < kParameterEnd; ++k)
        Job.ParamText[static_cast<std::size_t>(k)] = k <= kRotZ ? "0" : kNotUsed;
    for (const int k : found->Floating) Job.ParamText[static_cast<std::size_t>(k)] = kFloat;
    return true;
}

std::vector<std::string> PresetNames() {
    std::vector<std::string> names;
    for (const PresetRow& preset : kPresets) names.emplace_back(preset.Name);
    return names;
}

const char* PresetsInWords() {
    return kWords;
}

}  // namespace corvinade::engine
