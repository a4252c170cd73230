// The calculation window: its controls, how it opens and closes.
#include "engine/form_trafo_berechnung.h"

#include <algorithm>

#include "core/controller.h"
#include "core/form_main.h"
#include "core/job.h"
#include "core/run.h"
#include "core/units.h"
#include "engine/calculation_window.h"
#include "engine/monte_carlo.h"
#include "engine/norm_table.h"
#include "engine/selection.h"
#include "fit/require.h"

namespace corvinade::engine {

namespace {

FormTrafoBerechnung& w = TrafoWindow;

// A seed field can be typed into while its box is set; an empty one begins at 0.
template <int parameter>
void SeedBox_Click() {
    const ParameterControls& row = RowOf(parameter);
    row.SeedText->Enabled = row.SeedCheck->Value == 1;
    if (row.SeedText->Enabled && row.SeedText->Text.empty()) SetText(*row.SeedText, "0");
}

template <Control FormTrafoBerechnung::*option>
void Norm_Click() {
    ChooseNorm(option);
}

const ControlEntry kControls[] = {
    {"CheckTraX", &w.CheckTraX, {.Click = FormTrafoBerechnung::CheckTraX_Click}},
    {"TextTraX", &w.TextTraX},
    {"CheckTraY", &w.CheckTraY, {.Click = FormTrafoBerechnung::CheckTraY_Click}},
    {"TextTraY", &w.TextTraY},
    {"CheckTraZ", &w.CheckTraZ, {.Click = FormTrafoBerechnung::CheckTraZ_Click}},
    {"TextTraZ", &w.TextTraZ},
    {"CheckRotX", &w.CheckRotX, {.Click = FormTrafoBerechnung::CheckRotX_Click}},
    {"TextRotX", &w.TextRotX},
    {"CheckRotY", &w.CheckRotY, {.Click = FormTrafoBerechnung::CheckRotY_Click}},
    {"TextRotY", &w.TextRotY, {.Change = FormTrafoBerechnung::TextRotY_Change}},
    {"CheckRotZ", &w.CheckRotZ, {.Click = FormTrafoBerechnung::CheckRotZ_Click}},
    {"TextRotZ", &w.TextRotZ},
    {"CheckScaleX", &w.CheckScaleX, {.Click = FormTrafoBerechnung::CheckScaleX_Click}},
    {"TextScaleX", &w.TextScaleX},
    {"CheckScaleY", &w.CheckScaleY, {.Click = FormTrafoBerechnung::CheckScaleY_Click}},
    {"TextScaleY", &w.TextScaleY},
    {"CheckScaleZ", &w.CheckScaleZ, {.Click = FormTrafoBerechnung::CheckScaleZ_Click}},
    {"TextScaleZ", &w.TextScaleZ},
    {"CheckScaleXYZ", &w.CheckScaleXYZ, {.Click = FormTrafoBerechnung::CheckScaleXYZ_Click}},
    {"TextScaleXYZ", &w.TextScaleXYZ},
    {"CheckXY", &w.CheckXY, {.Click = FormTrafoBerechnung::CheckXY_Click}},
    {"TextXY", &w.TextXY, {.Change = Logic_BtnShowAlternativ}},
    {"CheckAzimuth", &w.CheckAzimuth, {.Click = FormTrafoBerechnung::CheckAzimuth_Click}},
    {"TextAzimuth", &w.TextAzimuth, {.Change = Logic_BtnShowAlternativ}},
    {"CheckZtoXY", &w.CheckZtoXY, {.Click = FormTrafoBerechnung::CheckZtoXY_Click}},
    {"TextZtoXY", &w.TextZtoXY, {.Change = Logic_BtnShowAlternativ}},
    {"CheckRDist", &w.CheckRDist, {.Click = FormTrafoBerechnung::CheckRDist_Click}},
    {"TextRDist", &w.TextRDist},
    {"CheckUseABC", &w.CheckUseABC, {.Click = FormTrafoBerechnung::CheckUseABC_Click}},
    {"TextRvec_x", &w.TextRvec_x},
    {"TextRvec_y", &w.TextRvec_y},
    {"TextRvec_z", &w.TextRvec_z},
    {"CheckRDataKnown", &w.CheckRDataKnown, {.Click = FormTrafoBerechnung::CheckRDataKnown_Click}},
    {"BtnLoadRData", &w.BtnLoadRData, {.Click = FormTrafoBerechnung::BtnLoadRData_Click}},
    {"CheckSeedTrax", &w.CheckSeedTrax, {.Click = SeedBox_Click<kTraX>}},
    {"TextSeedTrax", &w.TextSeedTrax},
    {"CheckSeedTray", &w.CheckSeedTray, {.Click = SeedBox_Click<kTraY>}},
    {"TextSeedTray", &w.TextSeedTray},
    {"CheckSeedTraz", &w.CheckSeedTraz, {.Click = SeedBox_Click<kTraZ>}},
    {"TextSeedTraz", &w.TextSeedTraz},
    {"CheckSeedRotx", &w.CheckSeedRotx, {.Click = SeedBox_Click<kRotX>}},
    {"TextSeedRotx", &w.TextSeedRotx},
    {"CheckSeedRoty", &w.CheckSeedRoty, {.Click = SeedBox_Click<kRotY>}},
    {"TextSeedRoty", &w.TextSeedRoty},
    {"CheckSeedRotz", &w.CheckSeedRotz, {.Click = SeedBox_Click<kRotZ>}},
    {"TextSeedRotz", &w.TextSeedRotz},
    {"CheckSeedScalex", &w.CheckSeedScalex, {.Click = SeedBox_Click<kScaleX>}},
    {"TextSeedScalex", &w.TextSeedScalex},
    {"CheckSeedScaley", &w.CheckSeedScaley, {.Click = SeedBox_Click<kScaleY>}},
    {"TextSeedScaley", &w.TextSeedScaley},
    {"CheckSeedScalez", &w.CheckSeedScalez, {.Click = SeedBox_Click<kScaleZ>}},
    {"TextSeedScalez", &w.TextSeedScalez},
    {"CheckSeedScalexyz", &w.CheckSeedScalexyz, {.Click = SeedBox_Click<kScaleXYZ>}},
    {"TextSeedScalexyz", &w.TextSeedScalexyz},
    {"CheckSeedxy", &w.CheckSeedxy, {.Click = SeedBox_Click<kAngleXY>}},
    {"TextSeedXY", &w.TextSeedXY},
    {"CheckSeedAzimuth", &w.CheckSeedAzimuth, {.Click = SeedBox_Click<kAzimuth>}},
    {"TextSeedAzimuth", &w.TextSeedAzimuth},
    {"CheckSeedztoxy", &w.CheckSeedztoxy, {.Click = SeedBox_Click<kAngleZtoXY>}},
    {"TextSeedZtoXY", &w.TextSeedZtoXY},
    {"CheckSeedRdist", &w.CheckSeedRdist, {.Click = SeedBox_Click<kRDist>}},
    {"TextSeedRdist", &w.TextSeedRdist},
    {"CheckSeedr0_x", &w.CheckSeedr0_x, {.Click = SeedBox_Click<kRvecX>}},
    {"TextSeedr0_x", &w.TextSeedr0_x},
    {"CheckSeedr0_y", &w.CheckSeedr0_y, {.Click = SeedBox_Click<kRvecY>}},
    {"TextSeedr0_y", &w.TextSeedr0_y},
    {"CheckSeedr0_z", &w.CheckSeedr0_z, {.Click = SeedBox_Click<kRvecZ>}},
    {"TextSeedr0_z", &w.TextSeedr0_z},
    {"TextSigmaTraX", &w.TextSigmaTraX},
    {"TextSignifikanzTraX", &w.TextSignifikanzTraX},
    {"TextSigmaTraY", &w.TextSigmaTraY},
    {"TextSignifikanzTraY", &w.TextSignifikanzTraY},
    {"TextSigmaTraZ", &w.TextSigmaTraZ},
    {"TextSignifikanzTraZ", &w.TextSignifikanzTraZ},
    {"TextSigmaRotX", &w.TextSigmaRotX},
    {"TextSignifikanzRotX", &w.TextSignifikanzRotX},
    {"TextSigmaRotY", &w.TextSigmaRotY},
    {"TextSignifikanzRotY", &w.TextSignifikanzRotY},
    {"TextSigmaRotZ", &w.TextSigmaRotZ},
    {"TextSignifikanzRotZ", &w.TextSignifikanzRotZ},
    {"TextSigmaScaleX", &w.TextSigmaScaleX},
    {"TextSignifikanzScaleX", &w.TextSignifikanzScaleX},
    {"TextSigmaScaleY", &w.TextSigmaScaleY},
    {"TextSignifikanzScaleY", &w.TextSignifikanzScaleY},
    {"TextSigmaScaleZ", &w.TextSigmaScaleZ},
    {"TextSignifikanzScaleZ", &w.TextSignifikanzScaleZ},
    {"TextSigmaScaleXYZ", &w.TextSigmaScaleXYZ},
    {"TextSignifikanzScaleXYZ", &w.TextSignifikanzScaleXYZ},
    {"TextSigmaXY", &w.TextSigmaXY},
    {"TextSignifikanzXY", &w.TextSignifikanzXY},
    {"TextSigmaAzimuth", &w.TextSigmaAzimuth},
    {"TextSignifikanzAzimuth", &w.TextSignifikanzAzimuth},
    {"TextSigmaZtoXY", &w.TextSigmaZtoXY},
    {"TextSignifikanzZtoXY", &w.TextSignifikanzZtoXY},
    {"TextSigmaRDist", &w.TextSigmaRDist},
    {"TextSignifikanzRDist", &w.TextSignifikanzRDist},
    {"Option6Parameter", &w.Option6Parameter, {.Click = FormTrafoBerechnung::Option6Parameter_Click}},
    {"Option7Parameter", &w.Option7Parameter, {.Click = FormTrafoBerechnung::Option7Parameter_Click}},
    {"Option9Parameter", &w.Option9Parameter, {.Click = FormTrafoBerechnung::Option9Parameter_Click}},
    {"Option12", &w.Option12, {.Click = FormTrafoBerechnung::Option12_Click}},
    {"OptionHoldLevel", &w.OptionHoldLevel, {.Click = FormTrafoBerechnung::OptionHoldLevel_Click}},
    {"OptionL1", &w.OptionL1, {.Click = Norm_Click<&FormTrafoBerechnung::OptionL1>}},
    {"OptionL2", &w.OptionL2, {.Click = Norm_Click<&FormTrafoBerechnung::OptionL2>}},
    {"OptionLoo", &w.OptionLoo, {.Click = Norm_Click<&FormTrafoBerechnung::OptionLoo>}},
    {"CheckMonteCarlo", &w.CheckMonteCarlo, {.Click = FormTrafoBerechnung::CheckMonteCarlo_Click}},
    {"CheckAutoRec", &w.CheckAutoRec, {.Click = FormTrafoBerechnung::CheckAutoRec_Click}},
    {"BtnCalculate", &w.BtnCalculate, {.Click = FormTrafoBerechnung::BtnCalculate_Click}},
    {"BtnSTOP", &w.BtnSTOP, {.Click = FormTrafoBerechnung::BtnSTOP_Click}},
    {"BtnSwitchMcsOcs", &w.BtnSwitchMcsOcs, {.Click = FormTrafoBerechnung::BtnSwitchMcsOcs_Click}},
    {"LabelDirection", &w.LabelDirection},
    {"BtnSEED", &w.BtnSEED, {.Click = FormTrafoBerechnung::BtnSEED_Click}},
    {"BtnDetails", &w.BtnDetails, {.Click = FormTrafoBerechnung::BtnDetails_Click}},
    {"BtnSecSolution", &w.BtnSecSolution, {.Click = FormTrafoBerechnung::BtnSecSolution_Click}},
    {"BtnSecAffSol", &w.BtnSecAffSol, {.Click = FormTrafoBerechnung::BtnSecAffSol_Click}},
    {"BtnShowAlternativeRottAff",
     &w.BtnShowAlternativeRottAff,
     {.Click = FormTrafoBerechnung::BtnShowAlternativeRottAff_Click}},
    {"TextSxyz", &w.TextSxyz},
    {"ArrRedSxyz", &w.ArrRedSxyz},
    {"ArrGreenSxyz", &w.ArrGreenSxyz},
    {"TextS0", &w.TextS0},
    {"ArrRedS0", &w.ArrRedS0},
    {"ArrGreenS0", &w.ArrGreenS0},
    {"TextSx", &w.TextSx},
    {"ArrRedSx", &w.ArrRedSx},
    {"ArrGreenSx", &w.ArrGreenSx},
    {"TextSy", &w.TextSy},
    {"ArrRedSy", &w.ArrRedSy},
    {"ArrGreenSy", &w.ArrGreenSy},
    {"TextSz", &w.TextSz},
    {"ArrRedSz", &w.ArrRedSz},
    {"ArrGreenSz", &w.ArrGreenSz},
    {"TextMaxDevxyz", &w.TextMaxDevxyz},
    {"ArrRedMaxDevxyz", &w.ArrRedMaxDevxyz},
    {"ArrGreenMaxDevxyz", &w.ArrGreenMaxDevxyz},
    {"TextMaxDevX", &w.TextMaxDevX},
    {"ArrRedMaxDevX", &w.ArrRedMaxDevX},
    {"ArrGreenMaxDevX", &w.ArrGreenMaxDevX},
    {"TextMaxDevY", &w.TextMaxDevY},
    {"ArrRedMaxDevY", &w.ArrRedMaxDevY},
    {"ArrGreenMaxDevY", &w.ArrGreenMaxDevY},
    {"TextMaxDevZ", &w.TextMaxDevZ},
    {"ArrRedMaxDevZ", &w.ArrRedMaxDevZ},
    {"ArrGreenMaxDevZ", &w.ArrGreenMaxDevZ},
    {"TextMinDevX", &w.TextMinDevX},
    {"ArrRedMinDevX", &w.ArrRedMinDevX},
    {"ArrGreenMinDevX", &w.ArrGreenMinDevX},
    {"TextMinDevY", &w.TextMinDevY},
    {"ArrRedMinDevY", &w.ArrRedMinDevY},
    {"ArrGreenMinDevY", &w.ArrGreenMinDevY},
    {"TextMinDevZ", &w.TextMinDevZ},
    {"ArrRedMinDevZ", &w.ArrRedMinDevZ},
    {"ArrGreenMinDevZ", &w.ArrGreenMinDevZ},
    {"TextMaxMinX", &w.TextMaxMinX},
    {"ArrRedMaxMinX", &w.ArrRedMaxMinX},
    {"ArrGreenMaxMinX", &w.ArrGreenMaxMinX},
    {"TextMaxMinY", &w.TextMaxMinY},
    {"ArrRedMaxMinY", &w.ArrRedMaxMinY},
    {"ArrGreenMaxMinY", &w.ArrGreenMaxMinY},
    {"TextMaxMinZ", &w.TextMaxMinZ},
    {"ArrRedMaxMinZ", &w.ArrRedMaxMinZ},
    {"ArrGreenMaxMinZ", &w.ArrGreenMaxMinZ},
    {"TextMaxDevXYZPkt", &w.TextMaxDevXYZPkt, {.DblClick = FormTrafoBerechnung::TextMaxDevXYZPkt_DblClick}},
    {"TextMaxDevXPkt", &w.TextMaxDevXPkt, {.DblClick = FormTrafoBerechnung::TextMaxDevXPkt_DblClick}},
    {"TextMaxDevYPkt", &w.TextMaxDevYPkt, {.DblClick = FormTrafoBerechnung::TextMaxDevYPkt_DblClick}},
    {"TextMaxDevZPkt", &w.TextMaxDevZPkt, {.DblClick = FormTrafoBerechnung::TextMaxDevZPkt_DblClick}},
    {"TextMinDevXPkt", &w.TextMinDevXPkt, {.DblClick = FormTrafoBerechnung::TextMinDevXPkt_DblClick}},
    {"TextMinDevYPkt", &w.TextMinDevYPkt, {.DblClick = FormTrafoBerechnung::TextMinDevYPkt_DblClick}},
    {"TextMinDevZPkt", &w.TextMinDevZPkt, {.DblClick = FormTrafoBerechnung::TextMinDevZPkt_DblClick}},
    {"CheckMeasurement", &w.CheckMeasurement, {.Click = FormTrafoBerechnung::CheckMeasurement_Click}},
    {"CheckObject", &w.CheckObject, {.Click = FormTrafoBerechnung::CheckObject_Click}},
    {"CheckDeviation", &w.CheckDeviation, {.Click = FormTrafoBerechnung::CheckDeviation_Click}},
    {"BtnUseAllPts", &w.BtnUseAllPts, {.Click = FormTrafoBerechnung::BtnUseAllPts_Click}},
    {"Tabelle",
     &w.Tabelle,
     {.Click = FormTrafoBerechnung::Tabelle_Click,
      .DblClick = FormTrafoBerechnung::Tabelle_DblClick,
      .SelChange = FormTrafoBerechnung::Tabelle_SelChange,
      .RightClick = FormTrafoBerechnung::Tabelle_RightClick,
      .Key = FormTrafoBerechnung::Tabelle_Key}},
    {"MenuTabelleCopy", &w.MenuTabelleCopy, {.Click = FormTrafoBerechnung::MenuTabelleCopy_Click}},
};

const ParameterControls kParameters[] = {
    {kTraX, &w.CheckTraX, &w.TextTraX, &w.CheckSeedTrax, &w.TextSeedTrax, &w.TextSigmaTraX,
     &w.TextSignifikanzTraX},
    {kTraY, &w.CheckTraY, &w.TextTraY, &w.CheckSeedTray, &w.TextSeedTray, &w.TextSigmaTraY,
     &w.TextSignifikanzTraY},
    {kTraZ, &w.CheckTraZ, &w.TextTraZ, &w.CheckSeedTraz, &w.TextSeedTraz, &w.TextSigmaTraZ,
     &w.TextSignifikanzTraZ},
    {kRotX, &w.CheckRotX, &w.TextRotX, &w.CheckSeedRotx, &w.TextSeedRotx, &w.TextSigmaRotX,
     &w.TextSignifikanzRotX},
    {kRotY, &w.CheckRotY, &w.TextRotY, &w.CheckSeedRoty, &w.TextSeedRoty, &w.TextSigmaRotY,
     &w.TextSignifikanzRotY},
    {kRotZ, &w.CheckRotZ, &w.TextRotZ, &w.CheckSeedRotz, &w.TextSeedRotz, &w.TextSigmaRotZ,
     &w.TextSignifikanzRotZ},
    {kScaleX, &w.CheckScaleX, &w.TextScaleX, &w.CheckSeedScalex, &w.TextSeedScalex, &w.TextSigmaScaleX,
     &w.TextSignifikanzScaleX},
    {kScaleY, &w.CheckScaleY, &w.TextScaleY, &w.CheckSeedScaley, &w.TextSeedScaley, &w.TextSigmaScaleY,
     &w.TextSignifikanzScaleY},
    {kScaleZ, &w.CheckScaleZ, &w.TextScaleZ, &w.CheckSeedScalez, &w.TextSeedScalez, &w.TextSigmaScaleZ,
     &w.TextSignifikanzScaleZ},
    {kScaleXYZ, &w.CheckScaleXYZ, &w.TextScaleXYZ, &w.CheckSeedScalexyz, &w.TextSeedScalexyz,
     &w.TextSigmaScaleXYZ, &w.TextSignifikanzScaleXYZ},
    {kAngleXY, &w.CheckXY, &w.TextXY, &w.CheckSeedxy, &w.TextSeedXY, &w.TextSigmaXY, &w.TextSignifikanzXY},
    {kAzimuth, &w.CheckAzimuth, &w.TextAzimuth, &w.CheckSeedAzimuth, &w.TextSeedAzimuth, &w.TextSigmaAzimuth,
     &w.TextSignifikanzAzimuth},
    {kAngleZtoXY, &w.CheckZtoXY, &w.TextZtoXY, &w.CheckSeedztoxy, &w.TextSeedZtoXY, &w.TextSigmaZtoXY,
     &w.TextSignifikanzZtoXY},
    {kRDist, &w.CheckRDist, &w.TextRDist, &w.CheckSeedRdist, &w.TextSeedRdist, &w.TextSigmaRDist,
     &w.TextSignifikanzRDist},
    {kRvecX, &w.CheckUseABC, &w.TextRvec_x, &w.CheckSeedr0_x, &w.TextSeedr0_x},
    {kRvecY, &w.CheckUseABC, &w.TextRvec_y, &w.CheckSeedr0_y, &w.TextSeedr0_y},
    {kRvecZ, &w.CheckUseABC, &w.TextRvec_z, &w.CheckSeedr0_z, &w.TextSeedr0_z},
};

const QualityControls kQualities[] = {
    {&w.TextSxyz, &w.ArrRedSxyz, &w.ArrGreenSxyz},
    {&w.TextS0, &w.ArrRedS0, &w.ArrGreenS0},
    {&w.TextSx, &w.ArrRedSx, &w.ArrGreenSx},
    {&w.TextSy, &w.ArrRedSy, &w.ArrGreenSy},
    {&w.TextSz, &w.ArrRedSz, &w.ArrGreenSz},
    {&w.TextMaxDevxyz, &w.ArrRedMaxDevxyz, &w.ArrGreenMaxDevxyz},
    {&w.TextMaxDevX, &w.ArrRedMaxDevX, &w.ArrGreenMaxDevX},
    {&w.TextMaxDevY, &w.ArrRedMaxDevY, &w.ArrGreenMaxDevY},
    {&w.TextMaxDevZ, &w.ArrRedMaxDevZ, &w.ArrGreenMaxDevZ},
    {&w.TextMinDevX, &w.ArrRedMinDevX, &w.ArrGreenMinDevX},
    {&w.TextMinDevY, &w.ArrRedMinDevY, &w.ArrGreenMinDevY},
    {&w.TextMinDevZ, &w.ArrRedMinDevZ, &w.ArrGreenMinDevZ},
    {&w.TextMaxMinX, &w.ArrRedMaxMinX, &w.ArrGreenMaxMinX},
    {&w.TextMaxMinY, &w.ArrRedMaxMinY, &w.ArrGreenMaxMinY},
    {&w.TextMaxMinZ, &w.ArrRedMaxMinZ, &w.ArrGreenMaxMinZ},
};

}  // namespace

const WindowEntry FormTrafoBerechnung_Entry = {
    .Name = "FormTrafoBerechnung",
    .State = &TrafoWindow.Window,
    .Controls = kControls,
    .Fresh = [] { TrafoWindow = FormTrafoBerechnung{}; },
    .Load = FormTrafoBerechnung::Form_Load,
    .Unload = FormTrafoBerechnung::Form_Unload,
};

std::span<const ParameterControls> ParameterRows() {
    return kParameters;
}

const ParameterControls& RowOf(int parameter) {
    Require(parameter >= kTraX && parameter < kParameterEnd);
    return kParameters[parameter - 1];
}

const QualityControls& QualityRow(int quality) {
    Require(quality >= kSxyz && quality < kQualityEnd);
    return kQualities[quality - 1];
}

void FormTrafoBerechnung::Form_Load() {
    INI_Formtrafoberechnung();
}

void FormTrafoBerechnung::Form_Unload() {
    Selection.DialogOpen = false;
    MonteCarlo.MonteCarloOn = kFalse;
    Main.MenuTransformationCalculation.Checked = false;
    Main.Toolbar1_TrafoBerechnung.Value = 0;
    SchreibeTabellenSpalteBreite_in_ini();
}

namespace {

// A job with a shape takes its targets from that: direction and norm are given, and there is no distance.
void LockForParaboloid() {
    w.BtnSwitchMcsOcs.Enabled = false;
    SetValue(w.*LeastSquares().Option, 1);
    OfferOtherNorms(false);
    w.CheckRDist.Enabled = false;
}

void SelectNorm() {
    if (Job.NormType == 0) Job.NormType = LeastSquares().Number;
    SetValue(w.*NormOfJob().Option, 1);
}

// The parameters come back from their slots. Slots 12 and 13 come back exchanged on purpose: that is how
// the window has always read what it stored.
int ParameterOfSlot(int slot) {
    if (slot == kAzimuth) return kAngleZtoXY;
    return slot == kAngleZtoXY ? kAzimuth : slot;
}

void RestoreParameters() {
    const auto slots = Job.ParamText;
    CalculationWindow.UseABCActive = ToFlag(ToolVectorGoverns(slots));
    for (int slot = kTraX; slot < kParameterEnd; ++slot) {
        const ParameterControls& row = RowOf(ParameterOfSlot(slot));
        const std::string& text = slots[static_cast<std::size_t>(slot)];
        SetValue(*row.Check, text == kFloat ? 1 : 0);
        SetText(*row.Text, text);
    }
}

void BeginWithSixParameters() {
    SetValue(w.Option12, 1);
    SetValue(w.CheckRDist, 1);
    SetValue(w.Option6Parameter, 1);
    for (std::size_t i = 1; i < Job.UseFlags.size(); i += 3)
        if (CoordinateInUse(i)) return;
    for (std::size_t i = 1; i < Job.UseFlags.size(); ++i) Job.UseFlags[i] = 1;
}

}  // namespace

void INI_Formtrafoberechnung() {
    const BusyPointer busy;
    {
        const NoRecalculation none;  // whatever the boxes do
        for (Control* const text : {&w.TextScaleX, &w.TextScaleY, &w.TextScaleZ, &w.TextScaleXYZ})
            text->ForeColor = QbColor(8);
        w.BtnSwitchMcsOcs.ToolTip =
            "Switch Transformation Direction  MCS = " + Job.NameMCS + "   |   OCS = " + Job.NameOCS;
        SelectNorm();
        SetValue(w.CheckMonteCarlo, 0);
        MonteCarlo.MonteCarloOn = Run.StopRequested = kFalse;
        INI_Rdist();
        ShowDirection(" => ");
        if (Job.ParamText[1].empty()) {
            BeginWithSixParameters();
        } else {
            RestoreParameters();
            MarkPreset();
        }
        if (IsTrue(Job.IsParaboloid)) LockForParaboloid();
    }
    SetValue(w.CheckAutoRec, IsTrue(Job.AutoRecalc) ? 1 : 0);
    SetValue(w.CheckDeviation, 1);
    PreparePointTable();
    SetStatus(8, Job.LengthUnitName);
    SetStatus(9, Job.AngleUnitName);
    // A window that was closed and opened in the events of a run is that of this run.
    w.BtnSTOP.Enabled = CalculationWindow.Running;
    w.BtnCalculate.Enabled = !CalculationWindow.Running;
    CalculationWindow.LengthFactor = Units.LengthFactor;
    CalculationWindow.AngleFactor = Units.AngleFactor;
    TabelleFüllenNeu();
}

}  // namespace corvinade::engine
