// The window that hands the result on in the form that another machine takes: the forms of `export --as`, the
// text in the chosen one, and ways to take it along.
#pragma once

#include <string>

#include "analysis/exports.h"
#include "core/rooms.h"
#include "core/window.h"

namespace corvinade::analysis {

struct FormExport {
    WindowState Window{.Caption = "Export result"};

    Control ListForms;
    Control LabelPlace;
    Control TextPlace;
    Control LabelTool;
    Control TextTool;
    Control LabelRobot;
    Control TextRobot;
    Control TextPreview;
    Control LabelProblem;
    Control BtnCopy;
    Control BtnSave;
    Control BtnClose;

    UnconvergedConsent Consent;
    bool Agreed = true;  // the result that is shown converged, or goes out all the same

    static void Form_Load();
    static void Form_Escape();
    static void ListForms_Click();
    static void Names_Change();
    static void BtnCopy_Click();
    static void BtnSave_Click();
    static void BtnClose_Click();
};
extern FormExport ExportWindow;
extern const WindowEntry FormExport_Entry;

// Shows what the forms make of the result that there is now. Does nothing while the window is not open.
void ShowInExport();

// The same after a calculation, or with another job: whether a result that did not converge goes out is asked
// anew.
void ShowNewResult();

}  // namespace corvinade::analysis
