// The common choices of parameters.
#pragma once

#include <string>

// The names of the presets: "level" (shifts and the rotation about z), "6" (rigid), "7" (one scale),
// "9" (a scale an axis), "12" (affine).
//
// Puts a preset into Job.ParamText: its parameters float, the other shifts and rotations are held at 0,
// all else is not used. False, and nothing changed, when there is no such preset.
bool SelectPreset(const std::string& preset);

// Whether a parameter floats in a preset; false, too, when there is no such preset.
bool FloatsInPreset(const std::string& preset, int parameter);
