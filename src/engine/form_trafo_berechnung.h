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
    Control CheckTraX, TextTraX;
    Control CheckTraY, TextTraY;
    Control CheckTraZ, TextTraZ;
    Control CheckRotX, TextRotX;
    Control CheckRotY, TextRotY;
    Control CheckRotZ, TextRotZ;
    Control CheckScaleX, TextScaleX;
    Control CheckScaleY, TextScaleY;
    Control CheckScaleZ, TextScaleZ;
    Control CheckScaleXYZ, TextScaleXYZ;
    Control CheckXY, TextXY;
    Control CheckAzimuth, TextAzimuth;
    Control CheckZtoXY, TextZtoXY;
    Control CheckRDist, TextRDist;
    Control CheckUseABC;
    Control TextRvec_x, TextRvec_y, TextRvec_z;
    Control CheckRDataKnown, BtnLoadRData;

    // The user's own start values.
    Control CheckSeedTrax, TextSeedTrax;
    Control CheckSeedTray, TextSeedTray;
    Control CheckSeedTraz, TextSeedTraz;
    Control CheckSeedRotx, TextSeedRotx;
    Control CheckSeedRoty, TextSeedRoty;
    Control CheckSeedRotz, TextSeedRotz;
    Control CheckSeedScalex, TextSeedScalex;
    Control CheckSeedScaley, TextSeedScaley;
    Control CheckSeedScalez, TextSeedScalez;
    Control CheckSeedScalexyz, TextSeedScalexyz;
    Control CheckSeedxy, TextSeedXY;
    Control CheckSeedAzimuth, TextSeedAzimuth;
    Control CheckSeedztoxy, TextSeedZtoXY;
    Control CheckSeedRdist, TextSeedRdist;
    Control CheckSeedr0_x, TextSeedr0_x;
    Control CheckSeedr0_y, TextSeedr0_y;
    Control CheckSeedr0_z, TextSeedr0_z;

    // How sure each result is, and how far from its neutral value in units of that.
    Control TextSigmaTraX, TextSignifikanzTraX;
    Control TextSigmaTraY, TextSignifikanzTraY;
    Control TextSigmaTraZ, TextSignifikanzTraZ;
    Control TextSigmaRotX, TextSignifikanzRotX;
    Control TextSigmaRotY, TextSignifikanzRotY;
    Control TextSigmaRotZ, TextSignifikanzRotZ;
    Control TextSigmaScaleX, TextSignifikanzScaleX;
    Control TextSigmaScaleY, TextSignifikanzScaleY;
    Control TextSigmaScaleZ, TextSignifikanzScaleZ;
    Control TextSigmaScaleXYZ, TextSignifikanzScaleXYZ;
    Control TextSigmaXY, TextSignifikanzXY;
    Control TextSigmaAzimuth, TextSignifikanzAzimuth;
    Control TextSigmaZtoXY, TextSignifikanzZtoXY;
    Control TextSigmaRDist, TextSignifikanzRDist;

    Control Option6Parameter, Option7Parameter, Option9Parameter, Option12, OptionHoldLevel;
    Control OptionL1, OptionL2, OptionLoo;
    Control CheckMonteCarlo, CheckAutoRec;

    Control BtnCalculate, BtnSTOP;
    Control LabelResultState;  // the age of what is shown, where that is not new
    Control BtnSwitchMcsOcs, LabelDirection;
    Control BtnSEED, BtnDetails;
    Control BtnSecSolution, BtnSecAffSol, BtnShowAlternativeRottAff;

    // Quality of the fit, each value with its trend against the calculation before: green has become
    // smaller.
    Control TextSxyz, ArrRedSxyz, ArrGreenSxyz;
    Control TextS0, ArrRedS0, ArrGreenS0;
    Control TextSx, ArrRedSx, ArrGreenSx;
    Control TextSy, ArrRedSy, ArrGreenSy;
    Control TextSz, ArrRedSz, ArrGreenSz;
    Control TextMaxDevxyz, ArrRedMaxDevxyz, ArrGreenMaxDevxyz;
    Control TextMaxDevX, ArrRedMaxDevX, ArrGreenMaxDevX;
    Control TextMaxDevY, ArrRedMaxDevY, ArrGreenMaxDevY;
    Control TextMaxDevZ, ArrRedMaxDevZ, ArrGreenMaxDevZ;
    Control TextMinDevX, ArrRedMinDevX, ArrGreenMinDevX;
    Control TextMinDevY, ArrRedMinDevY, ArrGreenMinDevY;
    Control TextMinDevZ, ArrRedMinDevZ, ArrGreenMinDevZ;
    Control TextMaxMinX, ArrRedMaxMinX, ArrGreenMaxMinX;
    Control TextMaxMinY, ArrRedMaxMinY, ArrGreenMaxMinY;
    Control TextMaxMinZ, ArrRedMaxMinZ, ArrGreenMaxMinZ;
    // The points that these belong to.
    Control TextMaxDevXYZPkt;
    Control TextMaxDevXPkt;
    Control TextMaxDevYPkt;
    Control TextMaxDevZPkt;
    Control TextMinDevXPkt;
    Control TextMinDevYPkt;
    Control TextMinDevZPkt;

    Control CheckMeasurement, CheckObject, CheckDeviation;
    Control LabelTolerance, TextTolerance, LabelVerdict;  // of the job
    Control BtnUseAllPts;
    Control Tabelle;

    // The menu that the right mouse button opens over the table, and the cells that it stands for as text.
    Control MenuTabelleCopy;
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
};
extern FormTrafoBerechnung TrafoWindow;
extern const WindowEntry FormTrafoBerechnung_Entry;

}  // namespace corvinade::engine
