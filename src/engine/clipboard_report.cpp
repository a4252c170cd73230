// What a calculation puts on the clipboard.
#include "engine/clipboard_report.h"

#include <algorithm>
#include <array>

#include "core/job.h"
#include "core/notes.h"
#include "core/platform.h"
#include "core/settings.h"
#include "core/text.h"
#include "engine/calculation.h"
#include "engine/calculation_window.h"
#include "engine/deviation_extremes.h"
#include "engine/field_number.h"
#include "engine/inverse.h"
#include "engine/parameter_kind.h"
#include "engine/result_notes.h"
#include "engine/selection.h"
#include "fit/coordinate_forms.h"

namespace corvinade::engine {

namespace {

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

bool Floats(int parameter) {
    return Selection.Float[At(parameter)];
}

// The tool vector governs the calculation, not the distance.
bool ToolVectorGoverns() {
    return !Selection.RDistShown;
}

// --- Complete protocol ------------------------------------------------------------------------------------

void AddLine(std::string& text, const char* label, const std::string& value) {
    text.append(label).append("\t").append(value).append(kLineEnd);
}

void AddSystems(std::string& text) {
    text += "Start = MCS File: " + Job.PathMCS + "\t" + Job.NameMCS + kLineEnd;
    text += "Target = OCS File: " + Job.PathOCS + "\t" + Job.NameOCS + kLineEnd;
}

void AddParameters(std::string& text) {
    struct Line {
        int Parameter;
        const char* Label;
    };
    constexpr std::array<Line, 17> kLines = {{{kTraX, "Tra x    "},
                                              {kTraY, "Tra y    "},
                                              {kTraZ, "Tra z    "},
                                              {kRotX, "Rotx "},
                                              {kRotY, "Roty "},
                                              {kRotZ, "Rotz "},
                                              {kScaleXYZ, "Scale xyz"},
                                              {kScaleX, "Scale x    "},
                                              {kScaleY, "Scale y    "},
                                              {kScaleZ, "Scale z    "},
                                              {kAngleXY, "xy   "},
                                              {kAzimuth, "Azimuth   "},
                                              {kAngleZtoXY, "ZtoXY   "},
                                              {kRvecX, "R_vec_x   "},
                                              {kRvecY, "R_vec_y   "},
                                              {kRvecZ, "R_vec_z   "},
                                              {kRDist, "R_Dist   "}}};
    for (const Line& line : kLines) {
        if (line.Parameter == kScaleXYZ && !Floats(kScaleXYZ)) continue;
        if (line.Parameter >= kRDist && (line.Parameter == kRDist) == ToolVectorGoverns()) continue;
        std::string value = ShownAs(KindOf(line.Parameter), ParameterValue(Job, line.Parameter));
        if (IsLeftOpen(line.Parameter)) value.append("\t").append(kOpenSignificance);
        AddLine(text, line.Label, value);
    }
}

void AddQuality(std::string& text) {
    AddLine(text, "s0 ", ShownLength(Calculation.s0));
    AddLine(text, "sigma xyz ", ShownLength(Calculation.SigmaXYZ));
    struct Labels {
        const char *Sigma, *Max, *Min, *Span;
    };
    constexpr std::array<Labels, 3> kLabels = {{{"sx   ", "max x ", "min x   ", "max x - min x   "},
                                                {"sy   ", "max y ", "min y   ", "max y - min y   "},
                                                {"sz   ", "max z ", "min z   ", "max z - min z   "}}};
    const std::array<double, 3> sigmas = {Calculation.sx, Calculation.sy, Calculation.sz};
    const Extremes found = FindExtremes();
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const double max = found.Max[axis], min = found.Min[axis];
        const Labels& labels = kLabels[axis];
        text.append(labels.Sigma).append("\t").append(ShownLength(sigmas[axis])).append("\t");
        text.append(labels.Max).append("\t").append(ShownLength(max)).append("\t");
        text.append(labels.Min).append("\t").append(ShownLength(min)).append("\t");
        AddLine(text, labels.Span, ShownLength(max - min));
    }
}

constexpr const char* kPointHeading =
    "PktNr.\tMCS.x \t MCS.y \t MCS.z \t OCS.x \t OCS.y \t OCS.z \t dev.x \t dev.y \t dev.z \t use.x \t use.y "
    "\t use.z \t MCS.r.CYL \t MCS.Phi \t OCS.r.CYL \t OCS.Phi \t dev.r.CYL \t dev.Phi \t MCS.R.SPH \t "
    "MCS.Theta.SPH \t OCS.R.SPH \t OCS.Theta.SPH \t dev.R.SPH \t dev.Theta.SPH";

void AddLengths(std::string& text, const Vec3& lengths) {
    for (int axis = 1; axis <= 3; ++axis) text.append("\t").append(ShownLength(lengths(axis)));
}

void AddPoint(std::string& text, int i) {
    const Vec3 image = TransformedPoint(i), target = TargetPoint(i);
    text += Job.Start.Name[At(i)];
    AddLengths(text, StartPoint(i));
    AddLengths(text, target);
    AddLengths(text, {image(1) - target(1), image(2) - target(2), image(3) - target(3)});
    for (int axis = 1; axis <= 3; ++axis) text.append("\t").append(Used(i, axis) ? "1" : "0");
    const CoordinateForms ofStart = FormsOf(image), ofTarget = FormsOf(target);
    const std::array<CoordinateForms, 3> forms = {ofStart, ofTarget, FormDifference(ofStart, ofTarget)};
    const auto add = [&text](double length, double angle) {
        text.append("\t").append(ShownLength(length)).append("\t").append(ShownAngle(angle));
    };
    for (const CoordinateForms& form : forms) add(form.CylRadius, form.Phi);
    for (const CoordinateForms& form : forms) add(form.SphRadius, form.Theta);
    text += kLineEnd;
}

// --- Robot modes ------------------------------------------------------------------------------------------

// A parameter's field in the calculation window, or what it would show there.
std::string FieldText(int parameter) {
    if (IsLoaded("FormTrafoBerechnung")) return RowOf(parameter).Text->Text;
    const std::string& choice = Job.ParamText[At(parameter)];
    const bool staysAsTyped = parameter == kScaleXYZ || (Calculation.Refused && IsHeldValue(choice));
    return staysAsTyped ? choice : ShownAs(KindOf(parameter), ParameterValue(Job, parameter));
}

// More than a translation and a rotation has been calculated, or is held.
bool IsMoreThanSixParameters() {
    constexpr std::array<int, 7> kOthers = {kScaleX,  kScaleY,  kScaleZ,    kScaleXYZ,
                                            kAngleXY, kAzimuth, kAngleZtoXY};
    return std::any_of(kOthers.begin(), kOthers.end(), [](int parameter) {
        if (Floats(parameter)) return true;
        const double neutral = KindOf(parameter) == ParameterKind::Scale ? 1 : 0;
        const std::string text = FieldText(parameter);
        return text != kNotUsed && ParameterFromText(parameter, text) != neutral;
    });
}

// What stands before a result that did not converge.
std::string UnconvergedNotice() {
    if (!IsTrue(Job.Unconverged)) return "";
    return std::string("Notice: The calculation did not converge, its result is not the best fit!") +
           kLineEnd;
}

// What stands before values that the points leave open, where there is no room behind each of them.
std::string OpenNotice() {
    const std::string open = NamesLeftOpen();
    if (open.empty()) return "";
    return "Notice: The points leave " + open + " open, what stands here for that is arbitrary!" + kLineEnd;
}

// What the program noticed; nothing where it noticed nothing.
void AddNotes(std::string& text) {
    if (Notes.List.empty()) return;
    text.append("Notes").append(kLineEnd);
    for (const Note& note : Notes.List) AddLine(text, SeverityName(note.Weight), NoteLine(note));
}

std::string InvertedParameters() {
    std::string text = UnconvergedNotice() + OpenNotice();
    if (IsMoreThanSixParameters())
        text +=
            std::string(
                "Notice: Your have NOT calculated a simple 6 parameter transformation, be sure what "
                "you are doing!") +
            kLineEnd +
            "ONLY the 3 Translations and the 3 Rotations are copied to clipboard, no other parameter which "
            "might be important in your configuration!" +
            kLineEnd;
    InverseTransformation();
    for (const double length : {Inverse.InvTraX, Inverse.InvTraY, Inverse.InvTraZ})
        text += ShownLength(length) + "\t";
    if (Inverse.InvSolutions.Rows >= 1)
        for (int k = 1; k <= 3; ++k) text += ShownAngle(-Inverse.InvSolutions(1, k)) + "\t";
    return text;
}

}  // namespace

std::string CompleteProtocol() {
    std::string text;
    text.reserve(2000 + 300 * At(Job.Pairs()));
    text += UnconvergedNotice();
    AddSystems(text);
    AddParameters(text);
    AddQuality(text);
    text.append(kPointHeading).append(kLineEnd);
    for (int i = 1; i <= Job.Pairs(); ++i) AddPoint(text, i);
    AddNotes(text);
    return text;
}

std::string BmwParameters() {
    if (IsTrue(Settings.InvertedBMW)) return InvertedParameters();
    std::string text = UnconvergedNotice() + OpenNotice();
    for (const double length : {Job.TraX, Job.TraY, Job.TraZ}) text += ShownLength(length) + "\t";
    for (const double angle : {Job.RotX, Job.RotY, Job.RotZ}) text += ShownAngle(-angle) + "\t";
    return text;
}

std::string KukaParameters() {
    std::string text = UnconvergedNotice() + OpenNotice();
    for (const double length : {Job.TraX, Job.TraY, Job.TraZ}) text += ShownLength(length) + "\t";
    for (const double angle : {Job.RotZ, Job.RotY, Job.RotX}) text += ShownAngle(-angle) + "\t";
    if (!IsTrue(Settings.AdTCP)) return text + "Trala xyz, Rot -z-y'-x''";
    for (const double length : {Job.Rvec_x, Job.Rvec_y, Job.Rvec_z}) text += ShownLength(-length) + "\t";
    return text + "Trala xyz, Rot -z-y'-x'', TCP -x-y-z";
}

void ReportToClipboard() {
    enum : std::int16_t { kComplete = 2, kBmw = 4, kKuka = 5 };
    const std::int16_t mode = Settings.ClipboardValue;
    if (mode == kBmw && IsLoaded("FormTrafoBerechnung")) FormTrafoBerechnung::BtnSecSolution_Click();
    // What the fields bring up may have closed the window or replaced the job.
    if (!CalculationIsOfThisJob()) return;
    std::string text;
    switch (mode) {
        case kComplete:
            text = CompleteProtocol();
            break;
        case kBmw:
            text = BmwParameters();
            break;
        case kKuka:
            text = KukaParameters();
            break;
        default:
            return;
    }
    ToClipboard(text);
}

}  // namespace corvinade::engine
