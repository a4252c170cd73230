// The start page: what stands in the empty frame, and leads to the first points.
#pragma once

#include <array>
#include <string>

#include "core/rooms.h"
#include "core/window.h"

namespace corvinade::core {

inline constexpr std::size_t kRecentJobs = 4, kExampleJobs = 2;

struct FormStart {
    WindowState Window{.Caption = "Start"};

    Control BtnOpen, BtnInputFiles;
    Control LabelRecent;  // where there is no recent job yet
    Control BtnRecent1, BtnRecent2, BtnRecent3, BtnRecent4;
    Control LabelExamples;  // where the examples are not installed
    Control BtnExample1, BtnExample2;
    Control BtnStepPoints, BtnStepFit, BtnStepCheck, BtnStepHandOn;
    Control CheckAtStart;
    Control BtnClose;

    std::array<std::string, kRecentJobs> Recent;  // the paths behind the buttons, "" = none

    static void Form_Load();
    static void Form_Escape();
    static void BtnOpen_Click();
    static void BtnInputFiles_Click();
    static void BtnRecent1_Click();
    static void BtnRecent2_Click();
    static void BtnRecent3_Click();
    static void BtnRecent4_Click();
    static void BtnExample1_Click();
    static void BtnExample2_Click();
    static void BtnStepFit_Click();
    static void BtnStepCheck_Click();
    static void BtnStepHandOn_Click();
    static void CheckAtStart_Click();
    static void BtnClose_Click();
};
extern FormStart StartPage;
extern const WindowEntry FormStart_Entry;

// At the start of the program, where no job is opened with it and nobody has switched the page off.
void ShowStartPage();

// Of the open page: recent jobs, and the steps that can be taken. It closes where points have come in.
void FollowOnStartPage(bool pointsCameIn);

// Where the examples are installed; "" where they are not.
std::string ExamplesFolder();

}  // namespace corvinade::core
