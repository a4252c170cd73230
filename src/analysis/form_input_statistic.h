// The window that shows what an import has brought in.
#pragma once

#include "core/rooms.h"
#include "core/window.h"

namespace corvinade::analysis {

struct FormInputStatistic {
    WindowState Window{.Caption = "Input Statistic"};

    Control Label1;
    Control Text1;
    Control Label2;
    Control Text2;
    Control Label3;
    Control Text3;
    Control Label4;
    Control Text4;
    Control Label5;
    Control Text5;
    Control Label6;
    Control Text6;
    Control Label7;
    Control Text7;
    Control LabelSigmaStart;
    Control TextSigmaStart;
    Control LabelSigmaTarget;
    Control TextSigmaTarget;
    Control FrameABCRange;
    Control TextRangeA;
    Control TextRangeB;
    Control TextRangeC;
    Control LabelNext;
    Control BtnNextPairs;
    Control BtnNextCalculation;

    static void Form_Load();
    static void Form_Escape();
    static void BtnNextPairs_Click();
    static void BtnNextCalculation_Click();
};
extern FormInputStatistic InputStatistic;
extern const WindowEntry FormInputStatistic_Entry;

void FORMfüllen();             // refills the window
void ShowSigmasInStatistic();  // the standard deviations alone

}  // namespace corvinade::analysis
