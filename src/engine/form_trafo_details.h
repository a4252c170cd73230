// The details window: the solution of the job in all forms of its rotation, its matrices and its inverse,
// and the spread of the last Monte Carlo runs. It shows what stood when it was filled.
#pragma once

#include "core/rooms.h"
#include "core/window.h"
#include "engine/solution_details.h"

namespace corvinade::engine {

struct FormTrafoDetails {
    WindowState Window{.Caption = "Details"};

    Control GridRotMatrix = Grid(0, 0), BtnClipR = Button("Copy");
    Control GridRotXYZ = Grid(1, 1), BtnClipRotXYZ = Button("Copy");
    Control GridRotZYX = Grid(1, 1), BtnClipRotZYX = Button("Copy");
    Control GridRotZXY = Grid(1, 1), BtnClipRotZXY = Button("Copy");
    Control GridRotZXZ = Grid(1, 1), BtnClipRotZXZ = Button("Copy");
    Control GridRotZYZ = Grid(1, 1), BtnClipRotZYZ = Button("Copy");
    Control GridHomogen = Grid(0, 0), BtnClipHomogen = Button("Copy");
    Control GridAffineMatrix = Grid(0, 0), Command1 = Button("Copy");
    Control GridScaleMatrix = Grid(0, 0), Command2 = Button("Copy");
    Control GridInverse = Grid(1, 1), Command3 = Button("Copy");
    Control GridQuat = Grid(0, 1), BtnClipQuat = Button("Copy"), LabelQuat = Label("");
    Control GridMonteCarlo = Grid(1, 1), BtnClipMonteCarlo = Button("Copy");
    Control BtnClipALL = Button("Copy &all");
    Control Check1 = CheckBox("Check for &gimbal lock"), BtnOK = Button("&OK");

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
inline FormTrafoDetails DetailsWindow;
extern const WindowEntry FormTrafoDetails_Entry;

// Fills all grids from the job's present solution and the last Monte Carlo runs. The message of a solution
// without an inverse of its own form may come up.
void DetailFormFuellen();

// Opens the window; one that is open already is filled again.
void ShowDetails();

}  // namespace corvinade::engine
