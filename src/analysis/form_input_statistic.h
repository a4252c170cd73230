// The window that shows what an import has brought in.
#pragma once

#include "core/rooms.h"
#include "core/window.h"

namespace corvinade::analysis {

struct FormInputStatistic {
    WindowState Window{.Caption = "Input Statistic"};

    Control Label1 = Label("");
    Control Text1 = Shown();
    Control Label2 = Label("");
    Control Text2 = Shown();
    Control Label3 = Label("");
    Control Text3 = Shown();
    Control Label4 = Label("");
    Control Text4 = Shown();
    Control Label5 = Label("");
    Control Text5 = Shown();
    Control Label6 = Label("");
    Control Text6 = Shown();
    Control Label7 = Label("");
    Control Text7 = Shown();
    Control LabelSigmaStart = Label("");
    Control TextSigmaStart = Shown();
    Control LabelSigmaTarget = Label("");
    Control TextSigmaTarget = Shown();
    Control FrameABCRange = Frame("ABC Range");
    Control TextRangeA = Shown();
    Control TextRangeB = Shown();
    Control TextRangeC = Shown();

    static void Form_Load();
    static void Form_Escape();

private:
    // A text to be read and copied; typing into it would change nothing.
    static Control Shown() {
        Control control = TextBox();
        control.Locked = true;
        return control;
    }
};
inline FormInputStatistic InputStatistic;
extern const WindowEntry FormInputStatistic_Entry;

void FORMfüllen();             // refills the window
void ShowSigmasInStatistic();  // the standard deviations alone

}  // namespace corvinade::analysis
