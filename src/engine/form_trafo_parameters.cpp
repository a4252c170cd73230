// The calculation window's choice of parameters and norm: what each box and option does to the others.
#include <algorithm>
#include <array>
#include <vector>

#include "core/changes.h"
#include "core/job.h"
#include "core/units.h"
#include "engine/calculation_window.h"
#include "engine/field_number.h"
#include "engine/monte_carlo.h"
#include "engine/norm_table.h"
#include "engine/presets.h"
#include "engine/selection.h"
#include "fit/require.h"

namespace corvinade::engine {

namespace {

FormTrafoBerechnung& w = TrafoWindow;

constexpr int kDarkGrey = 8, kBlack = 0;  // of the sixteen colours

void Place(Control& text, bool enabled, bool locked) {
    text.Enabled = enabled;
    text.Locked = locked;
}

void TurnFrom(Control& text, const char* from, const char* to) {
    if (text.Text == from) SetText(text, to);
}

// --- Switching the recalculation off ----------------------------------------------------------------------

// A choice that sets many boxes is followed by one calculation, not by one for each box: the box of the
// recalculation is cleared meanwhile, and put back.
class OneRecalculation {
public:
    OneRecalculation() {
        if (wanted_) SetValue(w.CheckAutoRec, 0);
    }
    ~OneRecalculation() {
        if (wanted_ && IsLoaded("FormTrafoBerechnung")) SetValue(w.CheckAutoRec, 1);
    }
    OneRecalculation(const OneRecalculation&) = delete;
    OneRecalculation& operator=(const OneRecalculation&) = delete;

private:
    bool wanted_ = RecalculatesByItself();
};

// --- The mark of the presets ------------------------------------------------------------------------------

bool BoxesAreThoseOf(const PresetRow& preset) {
    const auto rows = ParameterRows();
    return std::all_of(rows.begin(), rows.end(), [&preset](const ParameterControls& row) {
        return (row.Check->Value == 1) == Floats(preset, row.Parameter);
    });
}

bool HoldsNothingOfItsOwn(const ParameterControls& row) {
    const std::string& text = row.Text->Text;
    if (row.Check->Value == 1 || text == kNotUsed) return true;
    const ParameterKind kind = KindOf(row.Parameter);
    const double value = kind == ParameterKind::Angle ? FieldAngle(text) : FieldNumber(text);
    return value == (kind == ParameterKind::Scale ? 1 : 0);
}

// A preset whose boxes the user has changed is no longer the choice, and can be chosen again.
void UnmarkPreset() {
    if (CalculationWindow.ChoosingPreset) return;
    for (const PresetRow& preset : Presets()) {
        Control& option = w.*preset.Option;
        if (option.Value == 1 && !BoxesAreThoseOf(preset)) option.Value = 0;
    }
}

// --- Boxes ------------------------------------------------------------------------------------------------

// The seed of a parameter can be chosen while the parameter floats.
void FollowWithSeed(const ParameterControls& row) {
    ChoiceChanged();
    const bool floats = row.Check->Value == 1;
    row.SeedCheck->Enabled = floats;
    row.SeedText->Enabled = floats && row.SeedCheck->Value == 1;
}

void FloatOrHold(int parameter) {
    const ParameterControls& row = RowOf(parameter);
    if (row.Check->Value == 1) {
        row.Text->Enabled = false;
        SetText(*row.Text, kFloat);
    } else {
        row.Text->Enabled = true;
        TurnFrom(*row.Text, kFloat, "0");
    }
    FollowWithSeed(row);
}

void PlainBox(int parameter) {
    FloatOrHold(parameter);
    UnmarkPreset();
    RecalculateIfAutomatic();
}

// Fields of scales are locked and not disabled, so that their values can be copied.
void ScaleBox(int parameter) {
    const ParameterControls& row = RowOf(parameter);
    const bool floats = row.Check->Value == 1;
    if (floats) SetValue(w.CheckScaleXYZ, 0);
    row.Text->Locked = floats;
    row.Text->ForeColor = QbColor(floats ? kDarkGrey : kBlack);
    if (floats) {
        SetText(*row.Text, kFloat);
        w.TextScaleXYZ.Locked = true;
        SetText(w.TextScaleXYZ, kNotUsed);
    } else {
        TurnFrom(*row.Text, kFloat, "1");
    }
    FollowWithSeed(row);
    UnmarkPreset();
    RecalculateIfAutomatic();
}

}  // namespace

void FormTrafoBerechnung::CheckTraX_Click() {
    PlainBox(kTraX);
}
void FormTrafoBerechnung::CheckTraY_Click() {
    PlainBox(kTraY);
}
void FormTrafoBerechnung::CheckTraZ_Click() {
    PlainBox(kTraZ);
}
void FormTrafoBerechnung::CheckRotX_Click() {
    PlainBox(kRotX);
}
void FormTrafoBerechnung::CheckRotY_Click() {
    PlainBox(kRotY);
}
void FormTrafoBerechnung::CheckRotZ_Click() {
    PlainBox(kRotZ);
}
void FormTrafoBerechnung::CheckXY_Click() {
    PlainBox(kAngleXY);
}
void FormTrafoBerechnung::CheckScaleX_Click() {
    ScaleBox(kScaleX);
}
void FormTrafoBerechnung::CheckScaleY_Click() {
    ScaleBox(kScaleY);
}
void FormTrafoBerechnung::CheckScaleZ_Click() {
    ScaleBox(kScaleZ);
}

void FormTrafoBerechnung::CheckScaleXYZ_Click() {
    const std::array<Control*, 3> single = {&w.TextScaleX, &w.TextScaleY, &w.TextScaleZ};
    {
        const OneRecalculation once;
        const bool floats = w.CheckScaleXYZ.Value == 1;
        if (floats) {
            for (Control* const box : {&w.CheckScaleX, &w.CheckScaleY, &w.CheckScaleZ}) SetValue(*box, 0);
            w.TextScaleXYZ.Locked = true;
            w.TextScaleXYZ.ForeColor = QbColor(kDarkGrey);
            SetText(w.TextScaleXYZ, kFloat);
            for (Control* const text : single) text->Locked = true;
        } else {
            w.TextScaleXYZ.Locked = false;
            w.TextScaleXYZ.ForeColor = QbColor(kBlack);
            TurnFrom(w.TextScaleXYZ, kFloat, "1");
        }
        for (Control* const text : single) SetText(*text, kNotUsed);
        FollowWithSeed(RowOf(kScaleXYZ));
    }
    UnmarkPreset();
    RecalculateIfAutomatic();
}

// The azimuth acts only through the angle of z to the plane xy, and cannot float without it.
void FormTrafoBerechnung::CheckAzimuth_Click() {
    if (w.CheckAzimuth.Value == 1) SetValue(w.CheckZtoXY, 1);
    PlainBox(kAzimuth);
}
void FormTrafoBerechnung::CheckZtoXY_Click() {
    if (w.CheckZtoXY.Value == 0) SetValue(w.CheckAzimuth, 0);
    PlainBox(kAngleZtoXY);
}

void FormTrafoBerechnung::CheckRDist_Click() {
    FloatOrHold(kRDist);
    const bool floats = w.CheckRDist.Value == 1;
    w.CheckUseABC.Enabled = !floats;
    w.CheckRDataKnown.Enabled = floats;
    INI_Rdist();
    UnmarkPreset();
    RecalculateIfAutomatic();
}

void FormTrafoBerechnung::CheckUseABC_Click() {
    const bool floats = w.CheckUseABC.Value == 1;
    w.CheckRDist.Enabled = !floats;
    if (floats) w.CheckRDataKnown.Enabled = true;
    for (const int parameter : {kRvecX, kRvecY, kRvecZ}) {
        const ParameterControls& row = RowOf(parameter);
        Place(*row.Text, !floats, floats);
        if (floats) {
            SetText(*row.Text, kFloat);
        } else {
            TurnFrom(*row.Text, kFloat, "0");
        }
        FollowWithSeed(row);
    }
    INI_Rdist();
    UnmarkPreset();
    RecalculateIfAutomatic();
}

void FormTrafoBerechnung::CheckRDataKnown_Click() {
    w.BtnLoadRData.Enabled = w.CheckRDataKnown.Value == 1;
}

void FormTrafoBerechnung::CheckAutoRec_Click() {
    Job.AutoRecalc = ToFlag(w.CheckAutoRec.Value == 1);
}

void FormTrafoBerechnung::CheckMonteCarlo_Click() {
    MonteCarlo.MonteCarloOn = ToFlag(w.CheckMonteCarlo.Value == 1);
}

void INI_Rdist() {
    const std::array<Control*, 3> parts = {&w.TextRvec_x, &w.TextRvec_y, &w.TextRvec_z};
    const auto enableSeeds = [](bool vector, bool distance) {
        for (const int parameter : {kRvecX, kRvecY, kRvecZ}) {
            RowOf(parameter).SeedCheck->Enabled = vector;
            RowOf(parameter).SeedText->Enabled = vector;
        }
        w.CheckSeedRdist.Enabled = distance;
        w.TextSeedRdist.Enabled = distance;
    };
    if (w.CheckRDist.Value == 1) {
        CalculationWindow.UseABCActive = kFalse;
        enableSeeds(false, true);
        for (Control* const part : parts) {
            part->Enabled = false;
            SetText(*part, kNotUsed);
        }
        SetText(w.TextRDist, kFloat);
        OfferOtherNorms(true);
        w.BtnSwitchMcsOcs.Enabled = true;
    }
    // The R vector exists for least squares and in the direction of the poses alone.
    if (w.CheckUseABC.Value == 1) {
        CalculationWindow.UseABCActive = kTrue;
        for (Control* const part : parts) SetText(*part, kFloat);
        SetText(w.TextRDist, kNotUsed);
        w.TextRDist.Enabled = false;
        for (const NormRow& norm : Norms())
            if (!IsLeastSquares(norm)) (w.*norm.Option).Value = 0;
        OfferOtherNorms(false);
        SetValue(w.*LeastSquares().Option, 1);
        enableSeeds(true, false);
        w.BtnSwitchMcsOcs.Enabled = false;
        if (!IsTrue(Job.DirectionMCStoOCS)) FormTrafoBerechnung::BtnSwitchMcsOcs_Click();
    }
}

// --- Presets ----------------------------------------------------------------------------------------------

void CheckReset() {
    for (Control* const box : {&w.CheckRotX, &w.CheckRotY, &w.CheckRotZ, &w.CheckTraX, &w.CheckTraY,
                               &w.CheckTraZ, &w.CheckScaleX, &w.CheckScaleY, &w.CheckScaleZ, &w.CheckScaleXYZ,
                               &w.CheckXY, &w.CheckAzimuth, &w.CheckZtoXY, &w.CheckRDist, &w.CheckUseABC})
        SetValue(*box, 0);
}

void AnzeigeReset() {
    for (const ParameterControls& row : ParameterRows())
        for (Control* const field : {row.Sigma, row.Signifikanz})
            if (field != nullptr) SetText(*field, "");
    for (int quality = kSx; quality < kQualityEnd; ++quality) SetText(*QualityRow(quality).Field, "");
}

namespace {

// Turns the other fields of scales to "not used": that is what the box's own handler does.
void NoScaleAtAll() {
    SetValue(w.CheckScaleXYZ, 1);
    SetValue(w.CheckScaleXYZ, 0);
    SetText(w.TextScaleXYZ, kNotUsed);
    w.TextScaleXYZ.Locked = true;
}

// While it lives the boxes that change are those of a preset.
class Choosing {
public:
    Choosing() { CalculationWindow.ChoosingPreset = true; }
    ~Choosing() { CalculationWindow.ChoosingPreset = false; }
    Choosing(const Choosing&) = delete;
    Choosing& operator=(const Choosing&) = delete;
};

void SetBoxesOf(const PresetRow& preset) {
    for (const int parameter : preset.Floating) SetValue(*RowOf(parameter).Check, 1);
    if (std::none_of(preset.Floating.begin(), preset.Floating.end(),
                     [](int parameter) { return KindOf(parameter) == ParameterKind::Scale; }))
        NoScaleAtAll();
    if (!preset.BlanksRest) return;
    for (Control* const text : {&w.TextXY, &w.TextAzimuth, &w.TextZtoXY, &w.TextRDist}) {
        SetText(*text, kNotUsed);
        text->Enabled = false;
    }
}

void ChoosePreset(Control FormTrafoBerechnung::*option) {
    const auto presets = Presets();
    const auto preset = std::find_if(presets.begin(), presets.end(),
                                     [option](const PresetRow& row) { return row.Option == option; });
    Require(preset != presets.end());
    {
        const OneRecalculation once;
        const Choosing choosing;
        CheckReset();
        AnzeigeReset();
        if ((w.*option).Value != 0 || preset->WhenUnmarked) SetBoxesOf(*preset);
    }
    RecalculateIfAutomatic();
}

}  // namespace

void ChoiceChanged() {
    Changed(What::Choice);
}

void MarkPreset() {
    const auto rows = ParameterRows();
    const bool plain = std::all_of(rows.begin(), rows.end(), HoldsNothingOfItsOwn);
    for (const PresetRow& preset : Presets())
        (w.*preset.Option).Value = plain && BoxesAreThoseOf(preset) ? 1 : 0;
}

void FormTrafoBerechnung::OptionHoldLevel_Click() {
    ChoosePreset(&FormTrafoBerechnung::OptionHoldLevel);
}
void FormTrafoBerechnung::Option6Parameter_Click() {
    ChoosePreset(&FormTrafoBerechnung::Option6Parameter);
}
void FormTrafoBerechnung::Option7Parameter_Click() {
    ChoosePreset(&FormTrafoBerechnung::Option7Parameter);
}
void FormTrafoBerechnung::Option9Parameter_Click() {
    ChoosePreset(&FormTrafoBerechnung::Option9Parameter);
}
void FormTrafoBerechnung::Option12_Click() {
    ChoosePreset(&FormTrafoBerechnung::Option12);
}

// --- Norms ------------------------------------------------------------------------------------------------

void ChooseNorm(Control FormTrafoBerechnung::*option) {
    for (const NormRow& norm : Norms())
        if (norm.Option == option && (w.*option).Value != 0) Job.NormType = norm.Number;
    ChoiceChanged();
    RecalculateIfAutomatic();
    if (!IsLoaded("FormTrafoBerechnung")) return;
    // The spread of noise is that of least squares.
    const bool leastSquares = Job.NormType == LeastSquares().Number;
    if (!leastSquares) SetValue(w.CheckMonteCarlo, 0);
    w.CheckMonteCarlo.Enabled = leastSquares;
}

void OfferOtherNorms(bool offered) {
    for (const NormRow& norm : Norms())
        if (!IsLeastSquares(norm)) (w.*norm.Option).Enabled = offered;
}

// --- What the engine reads --------------------------------------------------------------------------------

void TakeSelection() {
    std::array<std::string, 18> slots;
    slots.fill(kFloat);
    slots[0] = Job.ParamText[0];
    SelectionRecord taken;
    taken.DialogOpen = true;
    for (const ParameterControls& row : ParameterRows()) {
        const auto k = static_cast<std::size_t>(row.Parameter);
        taken.Float[k] = row.Check->Value == 1;
        taken.FieldText[k] = row.Text->Text;
        taken.Seed[k] = row.SeedCheck->Value == 1;
        taken.SeedText[k] = row.SeedText->Text;
        if (taken.Float[k]) continue;
        const bool angle = KindOf(row.Parameter) == ParameterKind::Angle;
        slots[k] = angle ? SaveWinkelZurück(row.Text->Text) : row.Text->Text;
        // An empty slot is that of a fresh job, and a held field is no number however it is worded.
        if (slots[k].empty() || slots[k] == kFloat) slots[k] = "0";
    }
    taken.CheckRDist = w.CheckRDist.Value == 1;
    taken.CheckUseABC = w.CheckUseABC.Value == 1;
    taken.RDistShown = !IsTrue(CalculationWindow.UseABCActive);
    Selection = taken;
    Job.ParamText = slots;
}

}  // namespace corvinade::engine
