// The forms in which a result goes to other machines, a row each: what is written, and what has no place in
// it.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/rooms.h"
#include "fit/placement_forms.h"

namespace corvinade::analysis {

using fit::ExactText;
using fit::Placement;
using fit::TurnsAboutXYZ;
using fit::UnitQuaternion;

// Names that stand in a frame file.
struct FrameNames {
    std::string Place, Tool, Robot;
};

struct ExportForm {
    fit::PlacementForm Form;
    std::string (*OfJob)(const FrameNames&) = nullptr;  // null: the placement is written, by Form.Text
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

}  // namespace corvinade::analysis
