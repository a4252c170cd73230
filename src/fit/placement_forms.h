// A placement as texts that other machines read, a row each, and what has no place in them.
#pragma once

#include <array>
#include <optional>
#include <span>
#include <string>

#include "fit/arrays.h"

namespace corvinade::fit {

// What is handed on: X = Shift_mm + Matrix x, the start system seen from the target system (parent: target,
// child: start).
struct Placement {
    Mat3 Matrix;  // rotation, shear and scales in one
    Vec3 Shift_mm;
    std::optional<Vec3> Tip_mm;  // of a fit with the tool vector: the tool's tip seen from the flange
    bool TipLost = false;        // of such a fit, whose job has not kept it
    std::string Name;            // of the data that a declaration declares
};

struct PlacementForm {
    const char* Name;       // on the command line
    const char* Words;      // what it is, in a list
    const char* Extension;  // of a file for it, without the point
    bool Rigid;             // has no place for scale, shear and mirror
    bool OfTool;            // describes a tool: of a fit with the tool vector its tip, not turned
    std::string (*Text)(const Placement&);
};

std::span<const PlacementForm> PlacementForms();

// "", or why a form that is rigid, or of the tool, cannot hold the placement: a scale, a shear or a mirror
// that moves points by more than rounding does, or a tool vector that is not known.
std::string WhyNotInForm(const PlacementForm& form, const Placement& placement);

// In a form of the tool stands its tip, where the fit has found one.
Placement Described(const PlacementForm& form, const Placement& placement);

// A name as a program of a robot takes it: letters, digits and underlines, at most 24; "result" for none.
std::string AsIdentifier(std::string name);

// --- What the forms are made of ---------------------------------------------------------------------------

// A number that reads back as the same one, with a point and without an exponent; what is nearer to 0 than
// 1e-20 is "0".
std::string ExactText(double value);

// The turns about the fixed axes x, y and z, in this order, that make a rotation: R = Rz(z) Ry(y) Rx(x) with
// the elementary rotations that turn a point; rad. Where the second turn brings the third axis onto the first
// (gimbal lock) the one about z is 0.
Vec3 TurnsAboutXYZ(const Mat3& R);

// The quaternion w, x, y, z of a rotation, of length 1, w not below 0.
std::array<double, 4> UnitQuaternion(const Mat3& R);

}  // namespace corvinade::fit
