// The window of the forms that a result is handed on in.
#include "analysis/form_export.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "analysis/export_forms.h"
#include "analysis/form_main_exports.h"
#include "core/files.h"
#include "core/folders.h"
#include "core/form_main.h"
#include "core/job.h"
#include "core/notes.h"
#include "core/numbers.h"
#include "core/platform.h"
#include "core/run.h"
#include "core/settings.h"
#include "core/text.h"
#include "engine/result_state.h"

namespace corvinade::analysis {

FormExport ExportWindow;

namespace {

FormExport& w = ExportWindow;

const ControlEntry kControls[] = {
    {"ListForms", &w.ListForms, ComboBox(), {.Click = FormExport::ListForms_Click}},
    {"LabelPlace", &w.LabelPlace, Label("Place of measurement")},
    {"TextPlace", &w.TextPlace, TextBox(), {.Change = FormExport::Names_Change}},
    {"LabelTool", &w.LabelTool, Label("Tool or fixture")},
    {"TextTool", &w.TextTool, TextBox(), {.Change = FormExport::Names_Change}},
    {"LabelRobot", &w.LabelRobot, Label("Robot")},
    {"TextRobot", &w.TextRobot, TextBox(), {.Change = FormExport::Names_Change}},
    {"TextPreview", &w.TextPreview, TextBox()},
    {"LabelProblem", &w.LabelProblem, Label("")},
    {"BtnCopy", &w.BtnCopy, Button("&Copy"), {.Click = FormExport::BtnCopy_Click}},
    {"BtnSave", &w.BtnSave, Button("S&ave..."), {.Click = FormExport::BtnSave_Click}},
    {"BtnClose", &w.BtnClose, Button("Cl&ose"), {.Click = FormExport::BtnClose_Click}},
};

constexpr std::int32_t kProblemGround = 0x66D1FF;  // amber, as that of warnings

const ExportForm& ChosenForm() {
    return ExportForms()[static_cast<std::size_t>(std::max(w.ListForms.Index, 0))];
}

bool TakesNames(const ExportForm& form) {
    return form.Form.Name == std::string_view("robcad");
}

bool IsFinite(const Placement& placement) {
    for (int i = 1; i <= 3; ++i) {
        if (!std::isfinite(placement.Shift_mm(i))) return false;
        for (int j = 1; j <= 3; ++j)
            if (!std::isfinite(placement.Matrix(i, j))) return false;
    }
    return true;
}

// Why the result does not go out in a form; "" where it does.
std::string WhyNot(const ExportForm& form, const Placement& placement) {
    if (!ResultStands()) return "There is no result: make a calculation";
    if (!w.Agreed) return "The calculation did not converge; choose Export result... again for its result";
    if (!IsFinite(placement)) return "The result is not finite";
    return WhyNotInForm(form, placement);
}

Placement PlacementNow() {
    return PlacementOfJob(Run.JobFilePath == kDefaultJobPath ? "" : Run.JobFilePath);
}

// The result in the chosen form. What is noted of it is left to `notes`.
std::string TextOfForm(const ExportForm& form, const Placement& placement, std::vector<Note>& notes) {
    const PointInTexts point;
    std::vector<Note> before = std::exchange(Notes.List, {});
    std::string text = ExportText(form, placement, {w.TextPlace.Text, w.TextTool.Text, w.TextRobot.Text});
    notes = std::exchange(Notes.List, std::move(before));
    return text;
}

// A list entry: the name that the command line has, and what the form is.
std::string EntryOf(const ExportForm& form, const Placement& placement) {
    return std::string(form.Form.Name) + ": " + form.Form.Words +
           (WhyNot(form, placement).empty() ? "" : " (not of this result)");
}

void ShowChosen() {
    const ExportForm& form = ChosenForm();
    const Placement placement = PlacementNow();
    for (Control* names :
         {&w.LabelPlace, &w.TextPlace, &w.LabelTool, &w.TextTool, &w.LabelRobot, &w.TextRobot})
        names->Visible = TakesNames(form);
    std::string why = WhyNot(form, placement);
    const bool goes = why.empty();
    w.TextPreview.Text.clear();
    if (goes) {
        std::vector<Note> notes;
        w.TextPreview.Text = TextOfForm(form, placement, notes);
        // What the form has no place for is told here too, ahead of the copy.
        for (const Note& note : notes) why += (why.empty() ? "" : " ") + note.Text;
        if (w.TextPreview.Text.empty()) why = "No start point is without a partner";
    }
    w.LabelProblem.Text = why;
    w.LabelProblem.Visible = !why.empty();
    w.LabelProblem.BackColor = goes ? kSystemColour : kProblemGround;
    w.BtnCopy.Enabled = w.BtnSave.Enabled = goes && !w.TextPreview.Text.empty();
}

// The text to be taken along; its notes are among those of the program then. "" where it does not go out.
std::string TakenAlong() {
    if (!ResultStands() || !w.Consent.Given()) return "";
    const ExportForm& form = ChosenForm();
    const Placement placement = PlacementNow();
    if (!WhyNot(form, placement).empty()) return "";
    std::vector<Note> notes;
    std::string text = TextOfForm(form, placement, notes);
    for (const Note& note : notes) AddNote(note.Code, note.Text, note.File, note.Line, note.Count);
    return text;
}

std::string FileNameFor(const ExportForm& form) {
    const bool unnamed = Run.JobFilePath == kDefaultJobPath;
    const std::string name = unnamed ? "result.cvn" : NameOfFile(Run.JobFilePath);
    return name.substr(0, name.find_last_of('.')) + "." + form.Form.Extension;
}

// What the settings give for a key that is not there.
std::string Stored(const std::string& value) {
    return value == "1000" ? "" : value;
}

}  // namespace

const WindowEntry FormExport_Entry = {
    .Name = "FormExport",
    .State = &w.Window,
    .Controls = kControls,
    .Fresh = [] { w = FormExport{}; },
    .Load = FormExport::Form_Load,
    .Escape = FormExport::Form_Escape,
};

void FormExport::Form_Load() {
    w.TextPreview.Locked = true;
    w.TextPlace.Text = Stored(Settings.Place);
    w.TextTool.Text = Stored(Settings.ToolName);
    w.ListForms.Index = 0;
    ShowInExport();
}

void FormExport::Form_Escape() {
    UnloadWindow(FormExport_Entry.Name);
}

void FormExport::ListForms_Click() {
    ShowChosen();
}

void FormExport::Names_Change() {
    ShowChosen();
}

void FormExport::BtnCopy_Click() {
    const std::string text = TakenAlong();
    if (!text.empty()) ToClipboard(text);
}

void FormExport::BtnSave_Click() {
    const ExportForm& form = ChosenForm();
    const auto path =
        AskSaveFile({"Export result", std::string("*.") + form.Form.Extension + "|*.*",
                     Run.JobFilePath == kDefaultJobPath ? "" : Pfad(Run.JobFilePath), FileNameFor(form)});
    // The dialog has let events be handled.
    if (!path || path->empty() || !w.Window.Loaded || &ChosenForm() != &form) return;
    const std::string text = TakenAlong();
    if (!text.empty()) WriteFile(*path, text);
}

void FormExport::BtnClose_Click() {
    UnloadWindow(FormExport_Entry.Name);
}

// A result that comes up while the window is open has not been asked for: it is not shown unless it
// converged.
void ShowNewResult() {
    if (!w.Window.Loaded) return;
    w.Consent = {};
    w.Agreed = !IsTrue(Job.Unconverged);
    ShowInExport();
}

void ShowInExport() {
    if (!w.Window.Loaded) return;
    const Placement placement = PlacementNow();
    w.ListForms.Items.clear();
    for (const ExportForm& form : ExportForms()) w.ListForms.Items.push_back(EntryOf(form, placement));
    w.ListForms.Text = w.ListForms.Items[static_cast<std::size_t>(std::max(w.ListForms.Index, 0))];
    ShowChosen();
}

void MenueFileExportResult_Click() {
    if (!ResultStands()) {
        ShowMessage("You must make a calculation to export its result");
        return;
    }
    UnconvergedConsent consent;
    if (!consent.Given()) return;
    ShowWindow(FormExport_Entry.Name);
    ExportWindow.Consent = consent;
    ExportWindow.Agreed = true;
    ShowInExport();
}

}  // namespace corvinade::analysis
