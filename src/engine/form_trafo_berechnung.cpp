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
#include "engine/result_state.h"
#include "engine/selection.h"
#include "engine/tolerance_check.h"
#include "engine/undo.h"
#include "fit/require.h"

namespace corvinade::engine {

FormTrafoBerechnung TrafoWindow;

namespace {

FormTrafoBerechnung& w = TrafoWindow;

// A seed field can be typed into while its box is set; an empty one begins at 0.
template <int parameter>
void SeedBox_Click() {
    const ParameterControls& row = RowOf(parameter);
    row.SeedText->Enabled = row.SeedCheck->Value == 1;
    if (row.SeedText->Enabled && row.SeedText->Text.empty()) SetText(*row.SeedText, "0");
    ChoiceChanged();
}

template <Control FormTrafoBerechnung::*option>
void Norm_Click() {
    ChooseNorm(option);
}

Control Field(const char* text) {
    Control control = TextBox(text);
    control.SelectsOnFocus = true;
    return control;
}
Control SeedBox() {
    return Disabled(CheckBox(""));
}
Control SeedField() {
    return Disabled(Field(""));
}
Control Arrow(const char* shape) {
    return Hidden(Label(shape));
}

const ControlEntry kControls[] = {
    {"CheckTraX", &w.CheckTraX, CheckBox("Tra &x"), {.Click = FormTrafoBerechnung::CheckTraX_Click}},
    {"TextTraX", &w.TextTraX, Field("0"), {.Change = ChoiceChanged}},
    {"CheckTraY", &w.CheckTraY, CheckBox("Tra &y"), {.Click = FormTrafoBerechnung::CheckTraY_Click}},
    {"TextTraY", &w.TextTraY, Field("0"), {.Change = ChoiceChanged}},
    {"CheckTraZ", &w.CheckTraZ, CheckBox("Tra &z"), {.Click = FormTrafoBerechnung::CheckTraZ_Click}},
    {"TextTraZ", &w.TextTraZ, Field("0"), {.Change = ChoiceChanged}},
    {"CheckRotX", &w.CheckRotX, CheckBox("Rot x"), {.Click = FormTrafoBerechnung::CheckRotX_Click}},
    {"TextRotX", &w.TextRotX, Field("0"), {.Change = ChoiceChanged}},
    {"CheckRotY", &w.CheckRotY, CheckBox("Rot y'"), {.Click = FormTrafoBerechnung::CheckRotY_Click}},
    {"TextRotY", &w.TextRotY, Field("0"), {.Change = FormTrafoBerechnung::TextRotY_Change}},
    {"CheckRotZ", &w.CheckRotZ, CheckBox("Rot z''"), {.Click = FormTrafoBerechnung::CheckRotZ_Click}},
    {"TextRotZ", &w.TextRotZ, Field("0"), {.Change = ChoiceChanged}},
    {"CheckScaleX", &w.CheckScaleX, CheckBox("Scale x"), {.Click = FormTrafoBerechnung::CheckScaleX_Click}},
    {"TextScaleX", &w.TextScaleX, Field("1"), {.Change = ChoiceChanged}},
    {"CheckScaleY", &w.CheckScaleY, CheckBox("Scale y"), {.Click = FormTrafoBerechnung::CheckScaleY_Click}},
    {"TextScaleY", &w.TextScaleY, Field("1"), {.Change = ChoiceChanged}},
    {"CheckScaleZ", &w.CheckScaleZ, CheckBox("Scale z"), {.Click = FormTrafoBerechnung::CheckScaleZ_Click}},
    {"TextScaleZ", &w.TextScaleZ, Field("1"), {.Change = ChoiceChanged}},
    {"CheckScaleXYZ",
     &w.CheckScaleXYZ,
     CheckBox("Scale xyz"),
     {.Click = FormTrafoBerechnung::CheckScaleXYZ_Click}},
    {"TextScaleXYZ", &w.TextScaleXYZ, Field("1"), {.Change = ChoiceChanged}},
    {"CheckXY", &w.CheckXY, CheckBox("xy"), {.Click = FormTrafoBerechnung::CheckXY_Click}},
    {"TextXY", &w.TextXY, Field("0"), {.Change = Logic_BtnShowAlternativ}},
    {"CheckAzimuth",
     &w.CheckAzimuth,
     CheckBox("Azimuth"),
     {.Click = FormTrafoBerechnung::CheckAzimuth_Click}},
    {"TextAzimuth", &w.TextAzimuth, Field("0"), {.Change = Logic_BtnShowAlternativ}},
    {"CheckZtoXY", &w.CheckZtoXY, CheckBox("z to xy"), {.Click = FormTrafoBerechnung::CheckZtoXY_Click}},
    {"TextZtoXY", &w.TextZtoXY, Field("0"), {.Change = Logic_BtnShowAlternativ}},
    {"CheckRDist", &w.CheckRDist, CheckBox("R Dist"), {.Click = FormTrafoBerechnung::CheckRDist_Click}},
    {"TextRDist", &w.TextRDist, Field("0"), {.Change = ChoiceChanged}},
    {"CheckUseABC",
     &w.CheckUseABC,
     CheckBox("R vector, use A B C of the poses"),
     {.Click = FormTrafoBerechnung::CheckUseABC_Click}},
    {"TextRvec_x", &w.TextRvec_x, Field("0"), {.Change = ChoiceChanged}},
    {"TextRvec_y", &w.TextRvec_y, Field("0"), {.Change = ChoiceChanged}},
    {"TextRvec_z", &w.TextRvec_z, Field("0"), {.Change = ChoiceChanged}},
    {"CheckRDataKnown",
     &w.CheckRDataKnown,
     CheckBox("R data known"),
     {.Click = FormTrafoBerechnung::CheckRDataKnown_Click}},
    {"BtnLoadRData",
     &w.BtnLoadRData,
     Disabled(Button("Load &R data")),
     {.Click = FormTrafoBerechnung::BtnLoadRData_Click}},
    {"CheckSeedTrax", &w.CheckSeedTrax, SeedBox(), {.Click = SeedBox_Click<kTraX>}},
    {"TextSeedTrax", &w.TextSeedTrax, SeedField(), {.Change = ChoiceChanged}},
    {"CheckSeedTray", &w.CheckSeedTray, SeedBox(), {.Click = SeedBox_Click<kTraY>}},
    {"TextSeedTray", &w.TextSeedTray, SeedField(), {.Change = ChoiceChanged}},
    {"CheckSeedTraz", &w.CheckSeedTraz, SeedBox(), {.Click = SeedBox_Click<kTraZ>}},
    {"TextSeedTraz", &w.TextSeedTraz, SeedField(), {.Change = ChoiceChanged}},
    {"CheckSeedRotx", &w.CheckSeedRotx, SeedBox(), {.Click = SeedBox_Click<kRotX>}},
    {"TextSeedRotx", &w.TextSeedRotx, SeedField(), {.Change = ChoiceChanged}},
    {"CheckSeedRoty", &w.CheckSeedRoty, SeedBox(), {.Click = SeedBox_Click<kRotY>}},
    {"TextSeedRoty", &w.TextSeedRoty, SeedField(), {.Change = ChoiceChanged}},
    {"CheckSeedRotz", &w.CheckSeedRotz, SeedBox(), {.Click = SeedBox_Click<kRotZ>}},
    {"TextSeedRotz", &w.TextSeedRotz, SeedField(), {.Change = ChoiceChanged}},
    {"CheckSeedScalex", &w.CheckSeedScalex, SeedBox(), {.Click = SeedBox_Click<kScaleX>}},
    {"TextSeedScalex", &w.TextSeedScalex, SeedField(), {.Change = ChoiceChanged}},
    {"CheckSeedScaley", &w.CheckSeedScaley, SeedBox(), {.Click = SeedBox_Click<kScaleY>}},
    {"TextSeedScaley", &w.TextSeedScaley, SeedField(), {.Change = ChoiceChanged}},
    {"CheckSeedScalez", &w.CheckSeedScalez, SeedBox(), {.Click = SeedBox_Click<kScaleZ>}},
    {"TextSeedScalez", &w.TextSeedScalez, SeedField(), {.Change = ChoiceChanged}},
    {"CheckSeedScalexyz", &w.CheckSeedScalexyz, SeedBox(), {.Click = SeedBox_Click<kScaleXYZ>}},
    {"TextSeedScalexyz", &w.TextSeedScalexyz, SeedField(), {.Change = ChoiceChanged}},
    {"CheckSeedxy", &w.CheckSeedxy, SeedBox(), {.Click = SeedBox_Click<kAngleXY>}},
    {"TextSeedXY", &w.TextSeedXY, SeedField(), {.Change = ChoiceChanged}},
    {"CheckSeedAzimuth", &w.CheckSeedAzimuth, SeedBox(), {.Click = SeedBox_Click<kAzimuth>}},
    {"TextSeedAzimuth", &w.TextSeedAzimuth, SeedField(), {.Change = ChoiceChanged}},
    {"CheckSeedztoxy", &w.CheckSeedztoxy, SeedBox(), {.Click = SeedBox_Click<kAngleZtoXY>}},
    {"TextSeedZtoXY", &w.TextSeedZtoXY, SeedField(), {.Change = ChoiceChanged}},
    {"CheckSeedRdist", &w.CheckSeedRdist, SeedBox(), {.Click = SeedBox_Click<kRDist>}},
    {"TextSeedRdist", &w.TextSeedRdist, SeedField(), {.Change = ChoiceChanged}},
    {"CheckSeedr0_x", &w.CheckSeedr0_x, SeedBox(), {.Click = SeedBox_Click<kRvecX>}},
    {"TextSeedr0_x", &w.TextSeedr0_x, SeedField(), {.Change = ChoiceChanged}},
    {"CheckSeedr0_y", &w.CheckSeedr0_y, SeedBox(), {.Click = SeedBox_Click<kRvecY>}},
    {"TextSeedr0_y", &w.TextSeedr0_y, SeedField(), {.Change = ChoiceChanged}},
    {"CheckSeedr0_z", &w.CheckSeedr0_z, SeedBox(), {.Click = SeedBox_Click<kRvecZ>}},
    {"TextSeedr0_z", &w.TextSeedr0_z, SeedField(), {.Change = ChoiceChanged}},
    {"TextSigmaTraX", &w.TextSigmaTraX, Locked(TextBox())},
    {"TextSignifikanzTraX", &w.TextSignifikanzTraX, Locked(TextBox())},
    {"TextSigmaTraY", &w.TextSigmaTraY, Locked(TextBox())},
    {"TextSignifikanzTraY", &w.TextSignifikanzTraY, Locked(TextBox())},
    {"TextSigmaTraZ", &w.TextSigmaTraZ, Locked(TextBox())},
    {"TextSignifikanzTraZ", &w.TextSignifikanzTraZ, Locked(TextBox())},
    {"TextSigmaRotX", &w.TextSigmaRotX, Locked(TextBox())},
    {"TextSignifikanzRotX", &w.TextSignifikanzRotX, Locked(TextBox())},
    {"TextSigmaRotY", &w.TextSigmaRotY, Locked(TextBox())},
    {"TextSignifikanzRotY", &w.TextSignifikanzRotY, Locked(TextBox())},
    {"TextSigmaRotZ", &w.TextSigmaRotZ, Locked(TextBox())},
    {"TextSignifikanzRotZ", &w.TextSignifikanzRotZ, Locked(TextBox())},
    {"TextSigmaScaleX", &w.TextSigmaScaleX, Locked(TextBox())},
    {"TextSignifikanzScaleX", &w.TextSignifikanzScaleX, Locked(TextBox())},
    {"TextSigmaScaleY", &w.TextSigmaScaleY, Locked(TextBox())},
    {"TextSignifikanzScaleY", &w.TextSignifikanzScaleY, Locked(TextBox())},
    {"TextSigmaScaleZ", &w.TextSigmaScaleZ, Locked(TextBox())},
    {"TextSignifikanzScaleZ", &w.TextSignifikanzScaleZ, Locked(TextBox())},
    {"TextSigmaScaleXYZ", &w.TextSigmaScaleXYZ, Locked(TextBox())},
    {"TextSignifikanzScaleXYZ", &w.TextSignifikanzScaleXYZ, Locked(TextBox())},
    {"TextSigmaXY", &w.TextSigmaXY, Locked(TextBox())},
    {"TextSignifikanzXY", &w.TextSignifikanzXY, Locked(TextBox())},
    {"TextSigmaAzimuth", &w.TextSigmaAzimuth, Locked(TextBox())},
    {"TextSignifikanzAzimuth", &w.TextSignifikanzAzimuth, Locked(TextBox())},
    {"TextSigmaZtoXY", &w.TextSigmaZtoXY, Locked(TextBox())},
    {"TextSignifikanzZtoXY", &w.TextSignifikanzZtoXY, Locked(TextBox())},
    {"TextSigmaRDist", &w.TextSigmaRDist, Locked(TextBox())},
    {"TextSignifikanzRDist", &w.TextSignifikanzRDist, Locked(TextBox())},
    {"Option6Parameter",
     &w.Option6Parameter,
     Option("&6 Parameter", 1),
     {.Click = FormTrafoBerechnung::Option6Parameter_Click}},
    {"Option7Parameter",
     &w.Option7Parameter,
     Option("&7 Parameter", 1),
     {.Click = FormTrafoBerechnung::Option7Parameter_Click}},
    {"Option9Parameter",
     &w.Option9Parameter,
     Option("&9 Parameter", 1),
     {.Click = FormTrafoBerechnung::Option9Parameter_Click}},
    {"Option12", &w.Option12, Option("&12 Parameter", 1), {.Click = FormTrafoBerechnung::Option12_Click}},
    {"OptionHoldLevel",
     &w.OptionHoldLevel,
     Option("H&old Level", 1),
     {.Click = FormTrafoBerechnung::OptionHoldLevel_Click}},
    {"OptionL1", &w.OptionL1, Option("L1", 2), {.Click = Norm_Click<&FormTrafoBerechnung::OptionL1>}},
    {"OptionL2", &w.OptionL2, Option("L2", 2), {.Click = Norm_Click<&FormTrafoBerechnung::OptionL2>}},
    {"OptionLoo",
     &w.OptionLoo,
     Option("Loo - max to min\r\n- in Betta state -", 2),
     {.Click = Norm_Click<&FormTrafoBerechnung::OptionLoo>}},
    {"CheckMonteCarlo",
     &w.CheckMonteCarlo,
     CheckBox("&Monte Carlo"),
     {.Click = FormTrafoBerechnung::CheckMonteCarlo_Click}},
    {"CheckAutoRec",
     &w.CheckAutoRec,
     CheckBox("&Auto recalculate"),
     {.Click = FormTrafoBerechnung::CheckAutoRec_Click}},
    {"BtnCalculate",
     &w.BtnCalculate,
     Button("&Calculate"),
     {.Click = FormTrafoBerechnung::BtnCalculate_Click}},
    {"LabelResultState", &w.LabelResultState, Hidden(Label(""))},
    {"BtnSTOP", &w.BtnSTOP, Disabled(Button("STO&P")), {.Click = FormTrafoBerechnung::BtnSTOP_Click}},
    {"BtnSwitchMcsOcs",
     &w.BtnSwitchMcsOcs,
     Button("Sw&itch MCS OCS"),
     {.Click = FormTrafoBerechnung::BtnSwitchMcsOcs_Click}},
    {"LabelDirection", &w.LabelDirection, Label("")},
    {"BtnSEED", &w.BtnSEED, Disabled(Button("SEED")), {.Click = FormTrafoBerechnung::BtnSEED_Click}},
    {"BtnDetails", &w.BtnDetails, Button("&Details"), {.Click = FormTrafoBerechnung::BtnDetails_Click}},
    {"BtnSecSolution",
     &w.BtnSecSolution,
     Button("Second solution"),
     {.Click = FormTrafoBerechnung::BtnSecSolution_Click}},
    {"BtnSecAffSol",
     &w.BtnSecAffSol,
     Button("Second affine solution"),
     {.Click = FormTrafoBerechnung::BtnSecAffSol_Click}},
    {"BtnShowAlternativeRottAff",
     &w.BtnShowAlternativeRottAff,
     Disabled(Button("Alternative solution")),
     {.Click = FormTrafoBerechnung::BtnShowAlternativeRottAff_Click}},
    {"TextSxyz", &w.TextSxyz, Locked(TextBox())},
    {"ArrRedSxyz", &w.ArrRedSxyz, Arrow("↑")},
    {"ArrGreenSxyz", &w.ArrGreenSxyz, Arrow("↓")},
    {"TextS0", &w.TextS0, Locked(TextBox())},
    {"ArrRedS0", &w.ArrRedS0, Arrow("↑")},
    {"ArrGreenS0", &w.ArrGreenS0, Arrow("↓")},
    {"TextSx", &w.TextSx, Locked(TextBox())},
    {"ArrRedSx", &w.ArrRedSx, Arrow("↑")},
    {"ArrGreenSx", &w.ArrGreenSx, Arrow("↓")},
    {"TextSy", &w.TextSy, Locked(TextBox())},
    {"ArrRedSy", &w.ArrRedSy, Arrow("↑")},
    {"ArrGreenSy", &w.ArrGreenSy, Arrow("↓")},
    {"TextSz", &w.TextSz, Locked(TextBox())},
    {"ArrRedSz", &w.ArrRedSz, Arrow("↑")},
    {"ArrGreenSz", &w.ArrGreenSz, Arrow("↓")},
    {"TextMaxDevxyz", &w.TextMaxDevxyz, Locked(TextBox())},
    {"ArrRedMaxDevxyz", &w.ArrRedMaxDevxyz, Arrow("↑")},
    {"ArrGreenMaxDevxyz", &w.ArrGreenMaxDevxyz, Arrow("↓")},
    {"TextMaxDevX", &w.TextMaxDevX, Locked(TextBox())},
    {"ArrRedMaxDevX", &w.ArrRedMaxDevX, Arrow("↑")},
    {"ArrGreenMaxDevX", &w.ArrGreenMaxDevX, Arrow("↓")},
    {"TextMaxDevY", &w.TextMaxDevY, Locked(TextBox())},
    {"ArrRedMaxDevY", &w.ArrRedMaxDevY, Arrow("↑")},
    {"ArrGreenMaxDevY", &w.ArrGreenMaxDevY, Arrow("↓")},
    {"TextMaxDevZ", &w.TextMaxDevZ, Locked(TextBox())},
    {"ArrRedMaxDevZ", &w.ArrRedMaxDevZ, Arrow("↑")},
    {"ArrGreenMaxDevZ", &w.ArrGreenMaxDevZ, Arrow("↓")},
    {"TextMinDevX", &w.TextMinDevX, Locked(TextBox())},
    {"ArrRedMinDevX", &w.ArrRedMinDevX, Arrow("↑")},
    {"ArrGreenMinDevX", &w.ArrGreenMinDevX, Arrow("↓")},
    {"TextMinDevY", &w.TextMinDevY, Locked(TextBox())},
    {"ArrRedMinDevY", &w.ArrRedMinDevY, Arrow("↑")},
    {"ArrGreenMinDevY", &w.ArrGreenMinDevY, Arrow("↓")},
    {"TextMinDevZ", &w.TextMinDevZ, Locked(TextBox())},
    {"ArrRedMinDevZ", &w.ArrRedMinDevZ, Arrow("↑")},
    {"ArrGreenMinDevZ", &w.ArrGreenMinDevZ, Arrow("↓")},
    {"TextMaxMinX", &w.TextMaxMinX, Locked(TextBox())},
    {"ArrRedMaxMinX", &w.ArrRedMaxMinX, Arrow("↑")},
    {"ArrGreenMaxMinX", &w.ArrGreenMaxMinX, Arrow("↓")},
    {"TextMaxMinY", &w.TextMaxMinY, Locked(TextBox())},
    {"ArrRedMaxMinY", &w.ArrRedMaxMinY, Arrow("↑")},
    {"ArrGreenMaxMinY", &w.ArrGreenMaxMinY, Arrow("↓")},
    {"TextMaxMinZ", &w.TextMaxMinZ, Locked(TextBox())},
    {"ArrRedMaxMinZ", &w.ArrRedMaxMinZ, Arrow("↑")},
    {"ArrGreenMaxMinZ", &w.ArrGreenMaxMinZ, Arrow("↓")},
    {"TextMaxDevXYZPkt",
     &w.TextMaxDevXYZPkt,
     Locked(TextBox()),
     {.DblClick = FormTrafoBerechnung::TextMaxDevXYZPkt_DblClick}},
    {"TextMaxDevXPkt",
     &w.TextMaxDevXPkt,
     Locked(TextBox()),
     {.DblClick = FormTrafoBerechnung::TextMaxDevXPkt_DblClick}},
    {"TextMaxDevYPkt",
     &w.TextMaxDevYPkt,
     Locked(TextBox()),
     {.DblClick = FormTrafoBerechnung::TextMaxDevYPkt_DblClick}},
    {"TextMaxDevZPkt",
     &w.TextMaxDevZPkt,
     Locked(TextBox()),
     {.DblClick = FormTrafoBerechnung::TextMaxDevZPkt_DblClick}},
    {"TextMinDevXPkt",
     &w.TextMinDevXPkt,
     Locked(TextBox()),
     {.DblClick = FormTrafoBerechnung::TextMinDevXPkt_DblClick}},
    {"TextMinDevYPkt",
     &w.TextMinDevYPkt,
     Locked(TextBox()),
     {.DblClick = FormTrafoBerechnung::TextMinDevYPkt_DblClick}},
    {"TextMinDevZPkt",
     &w.TextMinDevZPkt,
     Locked(TextBox()),
     {.DblClick = FormTrafoBerechnung::TextMinDevZPkt_DblClick}},
    {"CheckMeasurement",
     &w.CheckMeasurement,
     CheckBox("MCS"),
     {.Click = FormTrafoBerechnung::CheckMeasurement_Click}},
    {"CheckObject", &w.CheckObject, CheckBox("OCS"), {.Click = FormTrafoBerechnung::CheckObject_Click}},
    {"CheckDeviation",
     &w.CheckDeviation,
     CheckBox("Deviation"),
     {.Click = FormTrafoBerechnung::CheckDeviation_Click}},
    {"LabelTolerance", &w.LabelTolerance, Label("Tolerance")},
    {"TextTolerance", &w.TextTolerance, Field(""), {.Change = TextTolerance_Change}},
    {"LabelVerdict", &w.LabelVerdict, Hidden(Label(""))},
    {"BtnUseAllPts",
     &w.BtnUseAllPts,
     Button("&Use all points"),
     {.Click = FormTrafoBerechnung::BtnUseAllPts_Click}},
    {"Tabelle",
     &w.Tabelle,
     Grid(1, 1),
     {.Click = FormTrafoBerechnung::Tabelle_Click,
      .DblClick = FormTrafoBerechnung::Tabelle_DblClick,
      .SelChange = FormTrafoBerechnung::Tabelle_SelChange,
      .RightClick = FormTrafoBerechnung::Tabelle_RightClick,
      .Key = FormTrafoBerechnung::Tabelle_Key}},
    {"MenuTabelleCopy",
     &w.MenuTabelleCopy,
     Hidden(Menu("&Copy")),
     {.Click = FormTrafoBerechnung::MenuTabelleCopy_Click}},
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
    ShowKnownResult();
    ShowTolerance(true);
}

void FormTrafoBerechnung::Form_Unload() {
    Selection.DialogOpen = false;
    ForgetShownChoices();
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
