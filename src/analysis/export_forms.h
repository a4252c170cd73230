// The forms in which a result goes to other machines, a row each: what is written, and what has no place in
// it.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/arrays.h"
#include "core/rooms.h"

namespace corvinade::analysis {

// What is handed on: X = Shift_mm + Matrix x, the start system seen from the target system (parent: target,
// child: start).
struct Placement {
    Mat3 Matrix;  // rotation, shear and scales in one
    Vec3 Shift_mm;
    std::optional<Vec3> Tip_mm;  // of a fit with the tool vector: the tool's tip seen from the flange
    bool TipLost = false;        // of such a fit, whose job has not kept it
    std::string Name;            // of the data that a declaration declares
};

// Names that stand in a frame file.
struct FrameNames {
    std::string Place, Tool, Robot;
};

struct ExportForm {
    const char* Name;       // on the command line
    const char* Words;      // what it is, in a list
    const char* Extension;  // of a file for it, without the point
    bool Rigid;             // has no place for scale, shear and mirror
    bool OfTool;            // describes a tool: of a fit with the tool vector its tip, not turned
    std::string (*Text)(const Placement&);    // null: the job itself is written
    std::string (*OfJob)(const FrameNames&);  // null: the placement is written
};

std::span<const ExportForm> ExportForms();
const ExportForm* FindExportForm(std::string_view name);  // null when there is none
std::vector<std::string> ExportFormNames();

// The result that the job holds; its name is that of a file without folder and extension.
Placement PlacementOfJob(const std::string& path);

// "", or why the form cannot hold the result: a scale, a shear or a mirror that moves points by more than
// rounding does, or a tool vector that is not known.
std::string WhyNotInForm(const ExportForm& form, const Placement& placement);

// The text in this form, with decimal points whatever the system has, and so many digits that the
// transformation comes back to 1e-9 mm at 10 m. Ends with a line end, which of those that OfJob writes their
// format decides. Require: WhyNotInForm has nothing against it.
std::string ExportText(const ExportForm& form, const Placement& placement, const FrameNames& names = {});

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

}  // namespace corvinade::analysis
