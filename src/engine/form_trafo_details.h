// The details window: the solution of the job in all forms of its rotation, its matrices and its inverse,
// and the spread of the last Monte Carlo runs. It shows what stood when it was filled.
#pragma once

#include "core/rooms.h"
#include "core/window.h"
#include "engine/solution_details.h"

namespace corvinade::engine {

struct FormTrafoDetails {
    WindowState Window{.Caption = "Details"};

    Control GridRotMatrix, BtnClipR;
    Control GridRotXYZ, BtnClipRotXYZ;
    Control GridRotZYX, BtnClipRotZYX;
    Control GridRotZXY, BtnClipRotZXY;
    Control GridRotZXZ, BtnClipRotZXZ;
    Control GridRotZYZ, BtnClipRotZYZ;
    Control GridHomogen, BtnClipHomogen;
    Control GridAffineMatrix, Command1;
    Control GridScaleMatrix, Command2;
    Control GridInverse, Command3;
    Control GridQuat, BtnClipQuat, LabelQuat;
    Control GridMonteCarlo, BtnClipMonteCarlo;
    Control BtnClipALL;
    Control Check1, BtnOK;

    SolutionDetails Shown;

    static void Form_Load();
    static void BtnClipR_Click();
    static void BtnClipRotXYZ_Click();
    static void BtnClipRotZYX_Click();
    static void BtnClipRotZXY_Click();
    static void BtnClipRotZXZ_Click();
    static void BtnClipRotZYZ_Click();
    static void BtnClipHomogen_Click();
    static void Command1_Click();
    static void Command2_Click();
    static void Command3_Click();
    static void BtnClipQuat_Click();
    static void BtnClipMonteCarlo_Click();
    static void BtnClipALL_Click();
    static void Check1_Click();
    static void BtnOK_Click();
};
extern FormTrafoDetails DetailsWindow;
extern const WindowEntry FormTrafoDetails_Entry;

// Fills all grids from the job's present solution and the last Monte Carlo runs. The message of a solution
// without an inverse of its own form may come up.
void DetailFormFuellen();

// Opens the window; one that is open already is filled again.
void ShowDetails();

}  // namespace corvinade::engine
