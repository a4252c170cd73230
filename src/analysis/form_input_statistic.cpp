// The window that shows what an import has brought in.
#include "analysis/form_input_statistic.h"

#include "core/desktop_defaults.h"
#include "core/form_main.h"
#include "core/job.h"
#include "core/measurement_sigmas.h"
#include "core/numbers.h"
#include "core/run.h"
#include "core/settings.h"
#include "core/units.h"

namespace corvinade::analysis {

FormInputStatistic InputStatistic;

namespace {

// With DesktopDefaults.AfterImport: what to do with what has come in.
void ShowNextStep() {
    FormInputStatistic& w = InputStatistic;
    const bool shown = DesktopDefaults.AfterImport && IsTrue(Run.JobDataValid);
    for (Control* control : {&w.LabelNext, &w.BtnNextPairs, &w.BtnNextCalculation}) control->Visible = shown;
    if (!shown) return;
    const int pairs = Job.Pairs();
    w.BtnNextCalculation.Enabled = pairs >= 2;
    if (pairs >= 3) {
        SetText(w.LabelNext, "Next: look through the pairs, then calculate.");
    } else {
        SetText(w.LabelNext, std::string("Next: look through the points. ") +
                                 (pairs == 0   ? "None has a partner"
                                  : pairs == 1 ? "One alone has a partner"
                                               : "Only two have partners") +
                                 "; are the names alike in both files?");
    }
}

const ControlEntry kControls[] = {
    {"Label1", &InputStatistic.Label1, Label("")},
    {"Text1", &InputStatistic.Text1, Locked(TextBox())},
    {"Label2", &InputStatistic.Label2, Label("")},
    {"Text2", &InputStatistic.Text2, Locked(TextBox())},
    {"Label3", &InputStatistic.Label3, Label("")},
    {"Text3", &InputStatistic.Text3, Locked(TextBox())},
    {"Label4", &InputStatistic.Label4, Label("")},
    {"Text4", &InputStatistic.Text4, Locked(TextBox())},
    {"Label5", &InputStatistic.Label5, Label("")},
    {"Text5", &InputStatistic.Text5, Locked(TextBox())},
    {"Label6", &InputStatistic.Label6, Label("")},
    {"Text6", &InputStatistic.Text6, Locked(TextBox())},
    {"Label7", &InputStatistic.Label7, Label("")},
    {"Text7", &InputStatistic.Text7, Locked(TextBox())},
    {"LabelSigmaStart", &InputStatistic.LabelSigmaStart, Label("")},
    {"TextSigmaStart", &InputStatistic.TextSigmaStart, Locked(TextBox())},
    {"LabelSigmaTarget", &InputStatistic.LabelSigmaTarget, Label("")},
    {"TextSigmaTarget", &InputStatistic.TextSigmaTarget, Locked(TextBox())},
    {"FrameABCRange", &InputStatistic.FrameABCRange, Frame("ABC Range")},
    {"TextRangeA", &InputStatistic.TextRangeA, Locked(TextBox()), {}, "FrameABCRange"},
    {"TextRangeB", &InputStatistic.TextRangeB, Locked(TextBox()), {}, "FrameABCRange"},
    {"TextRangeC", &InputStatistic.TextRangeC, Locked(TextBox()), {}, "FrameABCRange"},
    {"LabelNext", &InputStatistic.LabelNext, Label("")},
    {"BtnNextPairs",
     &InputStatistic.BtnNextPairs,
     Button("Main Sheet"),
     {.Click = FormInputStatistic::BtnNextPairs_Click}},
    {"BtnNextCalculation",
     &InputStatistic.BtnNextCalculation,
     Button("Calculation"),
     {.Click = FormInputStatistic::BtnNextCalculation_Click}},
};

}  // namespace

const WindowEntry FormInputStatistic_Entry = {
    .Name = "FormInputStatistic",
    .State = &InputStatistic.Window,
    .Controls = kControls,
    .Fresh = [] { InputStatistic = FormInputStatistic{}; },
    .Load = FormInputStatistic::Form_Load,
    .Escape = FormInputStatistic::Form_Escape,
};

void FormInputStatistic::Form_Load() {
    FORMfüllen();
}

void FormInputStatistic::Form_Escape() {
    UnloadWindow("FormInputStatistic");
}

void FORMfüllen() {
    FormInputStatistic& w = InputStatistic;
    LoadWindowPlace(w.Window.Place, FormInputStatistic_Entry.Name);
    SetText(w.Label1, "MCS - Points in " + Job.NameMCS + " File");
    SetText(w.Label2, "OCS - Points in " + Job.NameOCS + " File");
    SetText(w.Label3, "Identically Points (In both Files)");
    SetText(w.Label4, "MCS only - Points only in " + Job.NameMCS);
    SetText(w.Label5, "OCS only - Points only in " + Job.NameOCS);
    SetText(w.Label6, Job.NameMCS + " Filename");
    SetText(w.Label7, Job.NameOCS + " Filename");
    SetText(w.Text6, Job.PathMCS);
    SetText(w.Text7, Job.PathOCS);
    SetText(w.Text1, PlainText(Job.Start.Count()));
    SetText(w.Text2, PlainText(Job.Target.Count()));
    SetText(w.Text3, PlainText(Job.Pairs()));
    SetText(w.Text4, PlainText(Job.StartOnly()));
    SetText(w.Text5, PlainText(Job.TargetOnly()));

    // The other kinds of robot file have spans as well; the window shows those of these two alone.
    const bool inUse = IsTrue(Job.IsKuka) || IsTrue(Job.IsQuaternion);
    if (inUse) SetText(w.FrameABCRange, "ABC Range in " + Job.AngleUnitName);
    struct Range {
        Control& Text;
        double Span_rad;
    };
    for (const Range& range :
         {Range{w.TextRangeA, Run.SpanA}, {w.TextRangeB, Run.SpanB}, {w.TextRangeC, Run.SpanC}}) {
        range.Text.Enabled = inUse;
        SetText(range.Text, inUse ? WinkelFormat(range.Span_rad) : "not in use");
    }
    ShowSigmasInStatistic();
    ShowNextStep();
}

void FormInputStatistic::BtnNextPairs_Click() {
    FormMain::MenuVievMainSheet_Click();
}

// The entry of the menu closes a window that is open.
void FormInputStatistic::BtnNextCalculation_Click() {
    if (IsLoaded("FormTrafoBerechnung")) return ShowWindow("FormTrafoBerechnung");
    FormMain::MenuTransformationCalculation_Click();
}

// By system, whichever of them is fitted to the other.
void ShowSigmasInStatistic() {
    FormInputStatistic& w = InputStatistic;
    const MeasurementSigmas job = SigmasOf(Job), sigmas = IsTrue(Job.DirectionMCStoOCS) ? job : Swapped(job);
    const auto words = [&sigmas](const std::optional<SideAccuracy>& side, const SharedAccuracies& ofEach) {
        return sigmas.Any() ? SigmasInWords(side, ofEach) : "none given";
    };
    SetText(w.LabelSigmaStart, "Sigma " + Job.NameMCS + " [" + Job.LengthUnitName + "]");
    SetText(w.LabelSigmaTarget, "Sigma " + Job.NameOCS + " [" + Job.LengthUnitName + "]");
    SetText(w.TextSigmaStart, words(sigmas.Start, sigmas.StartOfEach));
    SetText(w.TextSigmaTarget, words(sigmas.Target, sigmas.TargetOfEach));
}

}  // namespace corvinade::analysis
