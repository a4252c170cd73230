// The forms in which a result goes to other machines: those of a placement, and behind them what the job
// itself is written as.
#include "analysis/export_forms.h"

#include <algorithm>
#include <array>

#include "analysis/exports.h"
#include "core/folders.h"
#include "core/job.h"
#include "fit/chain.h"
#include "fit/matrix.h"
#include "fit/require.h"

namespace corvinade::analysis {

namespace {

std::string OfRobCad(const FrameNames& names) {
    return RobCadText(names.Place, names.Tool, names.Robot);
}
std::string OfRocal(const FrameNames&) {
    return RocalText();
}
std::string OfPoints(const FrameNames&) {
    return OnlyMcsText();
}

constexpr ExportForm kOfJob[] = {
    {{"rocal", "matrix for an offline tool", "bas", false, false, nullptr}, OfRocal},
    {{"robcad", "frame for a simulation system", "rf", false, false, nullptr}, OfRobCad},
    {{"points", "start points without a partner, transformed", "txt", false, false, nullptr}, OfPoints},
};

std::vector<ExportForm> AllForms() {
    std::vector<ExportForm> forms;
    for (const PlacementForm& form : PlacementForms()) forms.push_back({form});
    forms.insert(forms.end(), std::begin(kOfJob), std::end(kOfJob));
    return forms;
}

std::string StemOf(const std::string& path) {
    const std::string name = NameOfFile(path);
    const std::size_t dot = name.find_last_of('.');
    return dot == std::string::npos || dot == 0 ? name : name.substr(0, dot);
}

}  // namespace

std::span<const ExportForm> ExportForms() {
    static const std::vector<ExportForm> kForms = AllForms();
    return kForms;
}

const ExportForm* FindExportForm(std::string_view name) {
    const std::span<const ExportForm> forms = ExportForms();
    const auto found = std::find_if(forms.begin(), forms.end(),
                                    [name](const ExportForm& form) { return name == form.Form.Name; });
    return found == forms.end() ? nullptr : &*found;
}

std::vector<std::string> ExportFormNames() {
    std::vector<std::string> names;
    for (const ExportForm& form : ExportForms()) names.emplace_back(form.Form.Name);
    return names;
}

Placement PlacementOfJob(const std::string& path) {
    Placement p;
    Mat3 R, K;
    RotMatrixXYZ(Job.RotX, Job.RotY, Job.RotZ, R);
    BuildShearMatrix(Job.AngleXY, Job.Azimuth, Job.AngleZtoXY, K);
    WithScales(MatrixProduct(R, K), {Job.ScaleX, Job.ScaleY, Job.ScaleZ}, p.Matrix);
    p.Shift_mm = {Job.TraX, Job.TraY, Job.TraZ};
    const std::string& tool = Job.ParamText[kRvecX];
    if (!tool.empty() && tool != kNotUsed) {
        p.Tip_mm = Vec3(-Job.Rvec_x, -Job.Rvec_y, -Job.Rvec_z);
        p.TipLost = Job.Rvec_x == 0 && Job.Rvec_y == 0 && Job.Rvec_z == 0;
    }
    p.Name = AsIdentifier(StemOf(path));
    return p;
}

std::string WhyNotInForm(const ExportForm& form, const Placement& placement) {
    return fit::WhyNotInForm(form.Form, placement);
}

std::string ExportText(const ExportForm& form, const Placement& placement, const FrameNames& names) {
    if (form.OfJob != nullptr) return form.OfJob(names);
    Require(WhyNotInForm(form, placement).empty());
    return form.Form.Text(Described(form.Form, placement));
}

}  // namespace corvinade::analysis
