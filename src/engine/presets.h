// The common choices of parameters, a row each.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "core/rooms.h"

namespace corvinade::core {
struct Control;
}

namespace corvinade::engine {

struct FormTrafoBerechnung;

struct PresetRow {
    const char* Name;                      // on the command line
    Control FormTrafoBerechnung::*Option;  // of the calculation window
    std::span<const int> Floating;         // numbers of parameters, in the order in which their boxes are set
    bool WhenUnmarked = false;  // its boxes are set also by a click that leaves its option without the mark
    bool BlanksRest = false;    // xy, azimuth, z to xy and the distance are shown as not used
};

// "level" (shifts and the rotation about z), "6" (rigid), "7" (one scale), "9" (a scale an axis), "12"
// (affine).
std::span<const PresetRow> Presets();

bool Floats(const PresetRow& preset, int parameter);

// Puts the preset of a name into Job.ParamText: its parameters float, the other shifts and rotations are held
// at 0, all else is not used. False, and nothing changed, when there is no such preset.
bool SelectPreset(const std::string& name);

// All names, and what the help of the command line says of them.
std::vector<std::string> PresetNames();
const char* PresetsInWords();

}  // namespace corvinade::engine
