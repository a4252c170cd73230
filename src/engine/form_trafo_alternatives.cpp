// Other angles for the same solution: the warning where the first and the third rotation share an axis, the
// second set of angles of rotation and affine part, and the walk through the sets of both together.
#include <array>
#include <cmath>

#include "core/job.h"
#include "core/platform.h"
#include "core/run.h"
#include "core/settings.h"
#include "core/text.h"
#include "core/units.h"
#include "engine/calculation_window.h"
#include "engine/field_number.h"
#include "engine/inverted_solutions.h"
#include "engine/sound_angles.h"
#include "engine/transform.h"
#include "fit/matrix.h"

namespace corvinade::engine {

namespace {

FormTrafoBerechnung& w = TrafoWindow;

constexpr int kLightRed = 12, kWhite = 15;  // of the sixteen colours

void ShowAngle(Control& text, double value_rad) {
    SetText(text, WinkelFormat(value_rad));
}

// Rotation y comes last: its warning may calculate anew, and what that shows then stands.
void ShowRotation(const Vec3& angles) {
    ShowAngle(w.TextRotX, angles(1));
    ShowAngle(w.TextRotZ, angles(3));
    ShowAngle(w.TextRotY, angles(2));
}

// --- Gimbal lock ------------------------------------------------------------------------------------------

bool NearGimbalLock() {
    const double angle = std::fabs(FieldAngle(w.TextRotY.Text) / Units.AngleFactor);
    return std::fabs(angle - kPi / 2) < Settings.GimbalLockBorder;
}

bool AskToFixRotX() {
    const std::string question =
        std::string(
            "If rot y' is +-90° or CLOSE to +-90° (in general the second rotation for all rotation "
            "types!) there are multiple solutions for x and z rotation!") +
        kLineEnd +
        "This situation is called the Gimbal Lock and means the first and third rotation is in the same "
        "axis; you can visualize with a Gyroscop." +
        kLineEnd +
        "Fix x rotation to any value and related z rotation will be calculated, also you can do "
        "contrariwise." +
        kLineEnd + "Should x rotation be fixed to 0 and the transformation be calculated again?";
    return AskYesNo(question, "Multiple Solution Warning - Gimbal Lock");
}

// --- Rotation with affine part ----------------------------------------------------------------------------

// Whether the fields of the rotation show that of a row.
bool RowIsShown(const Matrix& list, int row) {
    constexpr double kSame = 0.001;  // in the shown unit
    const std::array<Control*, 3> texts = {&w.TextRotX, &w.TextRotY, &w.TextRotZ};
    for (int k = 1; k <= 3; ++k) {
        const double shown = FieldAngle(texts[static_cast<std::size_t>(k - 1)]->Text);
        if (!(std::fabs(shown - Units.AngleFactor * list(row, k)) < kSame)) return false;
    }
    return true;
}

// The row that follows the one on show; 0 where none does. Of a general solution the list has four rotations,
// each in two rows: the walk goes to and fro between two of them, one on either side of xy = 90 degrees, and
// takes the first row of each.
int SuccessorOfShownRow(const Matrix& list) {
    constexpr std::array<int, 8> kSuccessor = {0, 5, 0, 7, 0, 1, 0, 3};
    for (int row = 1; row <= list.Rows; ++row) {
        if (!RowIsShown(list, row)) continue;
        const int next =
            row < static_cast<int>(kSuccessor.size()) ? kSuccessor[static_cast<std::size_t>(row)] : 0;
        return next <= list.Rows ? next : 0;
    }
    return 0;
}

void TakeRow(const Matrix& list, int row) {
    Job.RotX = Job.RotXCopy = list(row, 1);
    Job.RotY = Job.RotYCopy = list(row, 2);
    Job.RotZ = Job.RotZCopy = list(row, 3);
    Job.AngleXY = list(row, 7);
    Job.Azimuth = list(row, 8);
    Job.AngleZtoXY = list(row, 9);
    Run.JobDirty = kTrue;
    ShowAngle(w.TextXY, list(row, 7));
    ShowAngle(w.TextAzimuth, list(row, 8));
    ShowAngle(w.TextZtoXY, list(row, 9));
    ShowRotation(Vec3(list(row, 1), list(row, 2), list(row, 3)));
}

}  // namespace

void FormTrafoBerechnung::TextRotY_Change() {
    const bool ambiguous = NearGimbalLock() && w.CheckRotX.Value == 1 && w.CheckRotZ.Value == 1;
    w.TextRotY.BackColor = QbColor(ambiguous ? kLightRed : kWhite);
    if (!ambiguous) {
        w.TextRotY.ToolTip = "";
        return;
    }
    if (!AskToFixRotX() || !IsLoaded("FormTrafoBerechnung")) return;
    SetValue(w.CheckRotX, 0);
    if (!IsLoaded("FormTrafoBerechnung")) return;  // the box calculates too where every change does
    SetText(w.TextRotX, "0");
    BtnCalculate_Click();
}

void Logic_BtnShowAlternativ() {
    bool any = false;
    for (const int parameter : {kAngleXY, kAzimuth, kAngleZtoXY}) {
        const ParameterControls& row = RowOf(parameter);
        const std::string& text = row.Text->Text;
        any = any || row.Check->Value == 1 || (text != kNotUsed && FieldAngle(text) != 0);
    }
    w.BtnShowAlternativeRottAff.Enabled = any;
}

void FormTrafoBerechnung::BtnSecSolution_Click() {
    Mat3 R;
    RotMatrixXYZ(Job.RotX, Job.RotY, Job.RotZ, R);
    if (!IsFinite(R)) return;
    RotationSolutions solutions;
    if (SoundSolutions(RotationOrder::XYZ, R, solutions)) NoteMatrixAngles();
    const Vec3 first(solutions.First[0], solutions.First[1], solutions.First[2]);
    const Vec3 second(solutions.Second[0], solutions.Second[1], solutions.Second[2]);
    // One of the shown unit, whatever that is.
    const double shown = FieldAngle(w.TextRotX.Text);
    ShowRotation(std::fabs(shown - Units.AngleFactor * first(1)) >= 1 ? first : second);
}

void FormTrafoBerechnung::BtnSecAffSol_Click() {
    Mat3 K;
    BuildShearMatrix(Job.AngleXY, Job.Azimuth, Job.AngleZtoXY, K);
    if (!IsFinite(K)) return;
    Vec3 first, second;
    DecomposeShear(K, first, second);
    const double shown = FieldAngle(w.TextAzimuth.Text);
    const Vec3& other = std::fabs(shown - Units.AngleFactor * first(2)) >= 1 ? first : second;
    ShowAngle(w.TextXY, other(1));
    ShowAngle(w.TextAzimuth, other(2));
    ShowAngle(w.TextZtoXY, other(3));
}

void FormTrafoBerechnung::BtnShowAlternativeRottAff_Click() {
    const BusyPointer busy;
    Mat3 R, A;
    RotMatrixXYZ(Job.RotX, Job.RotY, Job.RotZ, R);
    BuildShearMatrix(Job.AngleXY, Job.Azimuth, Job.AngleZtoXY, A);
    const bool affine = Job.AngleXY != 0 || Job.Azimuth != 0 || Job.AngleZtoXY != 0;
    const bool scaled = Job.ScaleX != 1 || Job.ScaleY != 1 || Job.ScaleZ != 1 || Job.ScaleXYZ != 1;
    Matrix list;
    InvertedSolutions(MatrixProduct(R, A), affine, scaled, list);
    if (const int next = SuccessorOfShownRow(list); next != 0) TakeRow(list, next);
}

}  // namespace corvinade::engine
