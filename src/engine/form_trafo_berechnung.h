// The calculation window: which parameters float and which are held, the norm, the point table, and what
// came out. Its logic is spread over the files form_trafo_*.cpp by subject.
#pragma once

#include <span>

#include "core/rooms.h"
#include "core/window.h"
#include "engine/parameter_kind.h"
#include "engine/point_table.h"

namespace corvinade::engine {

struct FormTrafoBerechnung {
    WindowState Window{.Caption = "Transformation"};
    // The parameters: box set = it floats, and its field then holds the result; else the field holds its
    // value.
    Control CheckTraX = CheckBox("Tra &x"), TextTraX = Field("0");
    Control CheckTraY = CheckBox("Tra &y"), TextTraY = Field("0");
    Control CheckTraZ = CheckBox("Tra &z"), TextTraZ = Field("0");
    Control CheckRotX = CheckBox("Rot x"), TextRotX = Field("0");
    Control CheckRotY = CheckBox("Rot y'"), TextRotY = Field("0");
    Control CheckRotZ = CheckBox("Rot z''"), TextRotZ = Field("0");
    Control CheckScaleX = CheckBox("Scale x"), TextScaleX = Field("1");
    Control CheckScaleY = CheckBox("Scale y"), TextScaleY = Field("1");
    Control CheckScaleZ = CheckBox("Scale z"), TextScaleZ = Field("1");
    Control CheckScaleXYZ = CheckBox("Scale xyz"), TextScaleXYZ = Field("1");
    Control CheckXY = CheckBox("xy"), TextXY = Field("0");
    Control CheckAzimuth = CheckBox("Azimuth"), TextAzimuth = Field("0");
    Control CheckZtoXY = CheckBox("z to xy"), TextZtoXY = Field("0");
    Control CheckRDist = CheckBox("R Dist"), TextRDist = Field("0");
    Control CheckUseABC = CheckBox("R vector, use A B C of the poses");
    Control TextRvec_x = Field("0"), TextRvec_y = Field("0"), TextRvec_z = Field("0");
    Control CheckRDataKnown = CheckBox("R data known"), BtnLoadRData = Disabled(Button("Load &R data"));

    // The user's own start values.
    Control CheckSeedTrax = SeedBox(), TextSeedTrax = SeedField();
    Control CheckSeedTray = SeedBox(), TextSeedTray = SeedField();
    Control CheckSeedTraz = SeedBox(), TextSeedTraz = SeedField();
    Control CheckSeedRotx = SeedBox(), TextSeedRotx = SeedField();
    Control CheckSeedRoty = SeedBox(), TextSeedRoty = SeedField();
    Control CheckSeedRotz = SeedBox(), TextSeedRotz = SeedField();
    Control CheckSeedScalex = SeedBox(), TextSeedScalex = SeedField();
    Control CheckSeedScaley = SeedBox(), TextSeedScaley = SeedField();
    Control CheckSeedScalez = SeedBox(), TextSeedScalez = SeedField();
    Control CheckSeedScalexyz = SeedBox(), TextSeedScalexyz = SeedField();
    Control CheckSeedxy = SeedBox(), TextSeedXY = SeedField();
    Control CheckSeedAzimuth = SeedBox(), TextSeedAzimuth = SeedField();
    Control CheckSeedztoxy = SeedBox(), TextSeedZtoXY = SeedField();
    Control CheckSeedRdist = SeedBox(), TextSeedRdist = SeedField();
    Control CheckSeedr0_x = SeedBox(), TextSeedr0_x = SeedField();
    Control CheckSeedr0_y = SeedBox(), TextSeedr0_y = SeedField();
    Control CheckSeedr0_z = SeedBox(), TextSeedr0_z = SeedField();

    // How sure each result is, and how far from its neutral value in units of that.
    Control TextSigmaTraX = Output(), TextSignifikanzTraX = Output();
    Control TextSigmaTraY = Output(), TextSignifikanzTraY = Output();
    Control TextSigmaTraZ = Output(), TextSignifikanzTraZ = Output();
    Control TextSigmaRotX = Output(), TextSignifikanzRotX = Output();
    Control TextSigmaRotY = Output(), TextSignifikanzRotY = Output();
    Control TextSigmaRotZ = Output(), TextSignifikanzRotZ = Output();
    Control TextSigmaScaleX = Output(), TextSignifikanzScaleX = Output();
    Control TextSigmaScaleY = Output(), TextSignifikanzScaleY = Output();
    Control TextSigmaScaleZ = Output(), TextSignifikanzScaleZ = Output();
    Control TextSigmaScaleXYZ = Output(), TextSignifikanzScaleXYZ = Output();
    Control TextSigmaXY = Output(), TextSignifikanzXY = Output();
    Control TextSigmaAzimuth = Output(), TextSignifikanzAzimuth = Output();
    Control TextSigmaZtoXY = Output(), TextSignifikanzZtoXY = Output();
    Control TextSigmaRDist = Output(), TextSignifikanzRDist = Output();

    Control Option6Parameter = Option("&6 Parameter", 1), Option7Parameter = Option("&7 Parameter", 1),
            Option9Parameter = Option("&9 Parameter", 1), Option12 = Option("&12 Parameter", 1),
            OptionHoldLevel = Option("H&old Level", 1);
    Control OptionL1 = Option("L1", 2), OptionL2 = Option("L2", 2),
            OptionLoo = Option("Loo - max to min\r\n- in Betta state -", 2);
    Control CheckMonteCarlo = CheckBox("&Monte Carlo"), CheckAutoRec = CheckBox("&Auto recalculate");

    Control BtnCalculate = Button("&Calculate"), BtnSTOP = Disabled(Button("STO&P"));
    Control BtnSwitchMcsOcs = Button("Sw&itch MCS OCS"), LabelDirection = Label("");
    Control BtnSEED = Disabled(Button("SEED")), BtnDetails = Button("&Details");
    Control BtnSecSolution = Button("Second solution"), BtnSecAffSol = Button("Second affine solution"),
            BtnShowAlternativeRottAff = Disabled(Button("Alternative solution"));

    // Quality of the fit, each value with its trend against the calculation before: green has become
    // smaller.
    Control TextSxyz = Output(), ArrRedSxyz = Arrow("↑"), ArrGreenSxyz = Arrow("↓");
    Control TextS0 = Output(), ArrRedS0 = Arrow("↑"), ArrGreenS0 = Arrow("↓");
    Control TextSx = Output(), ArrRedSx = Arrow("↑"), ArrGreenSx = Arrow("↓");
    Control TextSy = Output(), ArrRedSy = Arrow("↑"), ArrGreenSy = Arrow("↓");
    Control TextSz = Output(), ArrRedSz = Arrow("↑"), ArrGreenSz = Arrow("↓");
    Control TextMaxDevxyz = Output(), ArrRedMaxDevxyz = Arrow("↑"), ArrGreenMaxDevxyz = Arrow("↓");
    Control TextMaxDevX = Output(), ArrRedMaxDevX = Arrow("↑"), ArrGreenMaxDevX = Arrow("↓");
    Control TextMaxDevY = Output(), ArrRedMaxDevY = Arrow("↑"), ArrGreenMaxDevY = Arrow("↓");
    Control TextMaxDevZ = Output(), ArrRedMaxDevZ = Arrow("↑"), ArrGreenMaxDevZ = Arrow("↓");
    Control TextMinDevX = Output(), ArrRedMinDevX = Arrow("↑"), ArrGreenMinDevX = Arrow("↓");
    Control TextMinDevY = Output(), ArrRedMinDevY = Arrow("↑"), ArrGreenMinDevY = Arrow("↓");
    Control TextMinDevZ = Output(), ArrRedMinDevZ = Arrow("↑"), ArrGreenMinDevZ = Arrow("↓");
    Control TextMaxMinX = Output(), ArrRedMaxMinX = Arrow("↑"), ArrGreenMaxMinX = Arrow("↓");
    Control TextMaxMinY = Output(), ArrRedMaxMinY = Arrow("↑"), ArrGreenMaxMinY = Arrow("↓");
    Control TextMaxMinZ = Output(), ArrRedMaxMinZ = Arrow("↑"), ArrGreenMaxMinZ = Arrow("↓");
    // The points that these belong to.
    Control TextMaxDevXYZPkt = Output();
    Control TextMaxDevXPkt = Output();
    Control TextMaxDevYPkt = Output();
    Control TextMaxDevZPkt = Output();
    Control TextMinDevXPkt = Output();
    Control TextMinDevYPkt = Output();
    Control TextMinDevZPkt = Output();

    Control CheckMeasurement = CheckBox("MCS"), CheckObject = CheckBox("OCS"),
            CheckDeviation = CheckBox("Deviation");
    Control BtnUseAllPts = Button("&Use all points");
    Control Tabelle = Grid(1, 1);

    // The menu that the right mouse button opens over the table, and the cells that it stands for as text.
    Control MenuTabelleCopy = Hidden(Menu("&Copy"));
    std::string CollectedCells;

    PointTable Points;  // what the table shows

    static void Form_Load();
    static void Form_Unload();
    static void CheckTraX_Click();
    static void CheckTraY_Click();
    static void CheckTraZ_Click();
    static void CheckRotX_Click();
    static void CheckRotY_Click();
    static void CheckRotZ_Click();
    static void CheckScaleX_Click();
    static void CheckScaleY_Click();
    static void CheckScaleZ_Click();
    static void CheckScaleXYZ_Click();
    static void CheckXY_Click();
    static void CheckAzimuth_Click();
    static void CheckZtoXY_Click();
    static void CheckRDist_Click();
    static void CheckUseABC_Click();
    static void CheckRDataKnown_Click();
    static void BtnLoadRData_Click();
    static void Option6Parameter_Click();
    static void Option7Parameter_Click();
    static void Option9Parameter_Click();
    static void Option12_Click();
    static void OptionHoldLevel_Click();
    static void CheckMonteCarlo_Click();
    static void CheckAutoRec_Click();
    static void BtnCalculate_Click();
    static void BtnSTOP_Click();
    static void BtnSwitchMcsOcs_Click();
    static void BtnSEED_Click();
    static void BtnDetails_Click();
    static void TextRotY_Change();
    static void BtnSecSolution_Click();
    static void BtnSecAffSol_Click();
    static void BtnShowAlternativeRottAff_Click();
    static void CheckMeasurement_Click();
    static void CheckObject_Click();
    static void CheckDeviation_Click();
    static void BtnUseAllPts_Click();
    static void Tabelle_Click();
    static void Tabelle_DblClick();
    static void Tabelle_SelChange();
    static void Tabelle_RightClick();
    static void Tabelle_Key();
    static void MenuTabelleCopy_Click();
    static void TextMaxDevXYZPkt_DblClick();
    static void TextMaxDevXPkt_DblClick();
    static void TextMaxDevYPkt_DblClick();
    static void TextMaxDevZPkt_DblClick();
    static void TextMinDevXPkt_DblClick();
    static void TextMinDevYPkt_DblClick();
    static void TextMinDevZPkt_DblClick();

private:
    static Control Disabled(Control control) {
        control.Enabled = false;
        return control;
    }
    static Control Field(const char* text) {
        Control control = TextBox(text);
        control.SelectsOnFocus = true;
        return control;
    }
    static Control SeedBox() { return Disabled(CheckBox("")); }
    static Control SeedField() { return Disabled(Field("")); }
    static Control Output() {
        Control control = TextBox();
        control.Locked = true;
        return control;
    }
    static Control Hidden(Control control) {
        control.Visible = false;
        return control;
    }
    static Control Arrow(const char* shape) { return Hidden(Label(shape)); }
};
inline FormTrafoBerechnung TrafoWindow;
extern const WindowEntry FormTrafoBerechnung_Entry;

}  // namespace corvinade::engine
