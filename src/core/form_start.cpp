// The start page.
#include "core/form_start.h"

#include <algorithm>
#include <filesystem>

#include "core/desktop_defaults.h"
#include "core/file_state.h"
#include "core/files.h"
#include "core/form_main.h"
#include "core/job.h"
#include "core/job_commands.h"
#include "core/platform.h"
#include "core/run.h"
#include "core/settings.h"

namespace corvinade::core {

FormStart StartPage;

namespace {

FormStart& w = StartPage;

const ControlEntry kControls[] = {
    {"BtnOpen", &w.BtnOpen, Button("Open &Job..."), {.Click = FormStart::BtnOpen_Click}},
    {"BtnInputFiles", &w.BtnInputFiles, Button("&Input Files..."), {.Click = FormStart::BtnInputFiles_Click}},
    {"LabelRecent", &w.LabelRecent, Label("No job has been opened yet.")},
    {"BtnRecent1", &w.BtnRecent1, Hidden(Button("Recent job 1")), {.Click = FormStart::BtnRecent1_Click}},
    {"BtnRecent2", &w.BtnRecent2, Hidden(Button("Recent job 2")), {.Click = FormStart::BtnRecent2_Click}},
    {"BtnRecent3", &w.BtnRecent3, Hidden(Button("Recent job 3")), {.Click = FormStart::BtnRecent3_Click}},
    {"BtnRecent4", &w.BtnRecent4, Hidden(Button("Recent job 4")), {.Click = FormStart::BtnRecent4_Click}},
    {"LabelExamples", &w.LabelExamples, Hidden(Label("The examples are not installed."))},
    {"BtnExample1", &w.BtnExample1, Button("Robot cell"), {.Click = FormStart::BtnExample1_Click}},
    {"BtnExample2", &w.BtnExample2, Button("Roof"), {.Click = FormStart::BtnExample2_Click}},
    {"BtnStepPoints", &w.BtnStepPoints, Button("&1 Points"), {.Click = FormStart::BtnInputFiles_Click}},
    {"BtnStepFit", &w.BtnStepFit, Button("&2 Fit"), {.Click = FormStart::BtnStepFit_Click}},
    {"BtnStepCheck", &w.BtnStepCheck, Button("&3 Check"), {.Click = FormStart::BtnStepCheck_Click}},
    {"BtnStepHandOn", &w.BtnStepHandOn, Button("&4 Hand on"), {.Click = FormStart::BtnStepHandOn_Click}},
    {"CheckAtStart",
     &w.CheckAtStart,
     CheckBox("Show this page when the program st&arts"),
     {.Click = FormStart::CheckAtStart_Click}},
    {"BtnClose", &w.BtnClose, Button("Cl&ose"), {.Click = FormStart::BtnClose_Click}},
};

constexpr const char* kKey = "StartPage";
constexpr std::array<const char*, kExampleJobs> kExamples = {"robot_cell.cvn", "roof.cvn"};

std::array<Control*, kRecentJobs> RecentButtons() {
    return {&w.BtnRecent1, &w.BtnRecent2, &w.BtnRecent3, &w.BtnRecent4};
}

// The name of a file without folder; an "&" of a path is no mark of a key.
std::string CaptionOfFile(const std::string& path) {
    std::string caption;
    for (const char letter : path.substr(std::min(Pfad(path).size(), path.size()))) {
        if (letter == '/' || letter == '\\') continue;
        caption += letter;
        if (letter == '&') caption += letter;
    }
    return caption;
}

void ShowRecent() {
    bool any = false;
    for (std::size_t i = 0; i < kRecentJobs; ++i) {
        w.Recent[i] = Run.LastFile[i + 1];
        Control& button = *RecentButtons()[i];
        button.Visible = !w.Recent[i].empty();
        if (button.Visible) button.Text = CaptionOfFile(w.Recent[i]);
        button.ToolTip = w.Recent[i];
        any |= button.Visible;
    }
    w.LabelRecent.Visible = !any;
}

// A step that cannot be taken yet says what it waits for.
void ShowSteps() {
    const auto show = [](Control& button, bool can, const char* what, const char* waits) {
        button.Enabled = can;
        button.ToolTip = can ? what : waits;
    };
    const bool data = IsTrue(Run.JobDataValid);
    w.BtnStepPoints.ToolTip = "Choose the files of measured and nominal points";
    show(w.BtnStepFit, data && Job.Pairs() >= 2, "Calculate the transformation",
         "The points come first: two at least that stand in both files");
    show(w.BtnStepCheck, data, "Look through points and deviations", "The points come first");
    // As the command of the exports: a stored result that is shown can be handed on too.
    show(w.BtnStepHandOn, data && (IsTrue(Run.TrafoValid) || Main.MenueFileExport.Enabled),
         "Print the report, or save it as PDF, HTML or CSV", "The calculation comes first");
}

void OpenPath(const std::string& path) {
    if (!path.empty()) OpenLastProjekt("&1 " + path);
}

void OpenExample(std::size_t example) {
    const std::string folder = ExamplesFolder();
    if (!folder.empty()) OpenPath(JoinPath(folder, kExamples[example]));
}

}  // namespace

const WindowEntry FormStart_Entry = {
    .Name = "FormStart",
    .State = &w.Window,
    .Controls = kControls,
    .Fresh = [] { w = FormStart{}; },
    .Load = FormStart::Form_Load,
    .Escape = FormStart::Form_Escape,
    .StoresPlace = false,  // it stands in the middle of the empty frame
};

// Installed they stand beside the documents, in a built tree beside the sources.
std::string ExamplesFolder() {
    for (const char* place : {"../share/doc/corvinade/examples", "../../examples"}) {
        const std::string folder =
            std::filesystem::path(JoinPath(ProgramFolder(), place)).lexically_normal().string();
        if (FileIsThere(JoinPath(folder, kExamples.front()))) return folder;
    }
    return "";
}

void ShowStartPage() {
    if (DesktopDefaults.StartPage && !IsTrue(Run.JobDataValid)) ShowWindow(FormStart_Entry.Name);
}

void FollowOnStartPage(bool pointsCameIn) {
    if (!w.Window.Loaded) return;
    if (pointsCameIn) return UnloadWindow(FormStart_Entry.Name);
    ShowRecent();
    ShowSteps();
}

void FormStart::Form_Load() {
    ShowRecent();
    ShowSteps();
    const bool examples = !ExamplesFolder().empty();
    w.BtnExample1.Visible = w.BtnExample2.Visible = examples;
    w.LabelExamples.Visible = !examples;
    w.BtnExample1.ToolTip = "14 points of a laser tracker and of a robot cell, one of them 3 mm off";
    w.BtnExample2.ToolTip = "273 points of a roof that sags, with two saved views";
    // Put there directly: its handler would write the settings.
    w.CheckAtStart.Value = FindIniWert(kKey) != kAsBefore ? 1 : 0;
}

void FormStart::Form_Escape() {
    UnloadWindow(FormStart_Entry.Name);
}

void FormStart::BtnOpen_Click() {
    MenuFileOpen_Command();
}

void FormStart::BtnInputFiles_Click() {
    FormMain::MenuFileInputFiles_Click();
}

void FormStart::BtnRecent1_Click() {
    OpenPath(w.Recent[0]);
}
void FormStart::BtnRecent2_Click() {
    OpenPath(w.Recent[1]);
}
void FormStart::BtnRecent3_Click() {
    OpenPath(w.Recent[2]);
}
void FormStart::BtnRecent4_Click() {
    OpenPath(w.Recent[3]);
}

void FormStart::BtnExample1_Click() {
    OpenExample(0);
}
void FormStart::BtnExample2_Click() {
    OpenExample(1);
}

// The entry of the menu closes a window that is open.
void FormStart::BtnStepFit_Click() {
    if (IsLoaded("FormTrafoBerechnung")) return ShowWindow("FormTrafoBerechnung");
    FormMain::MenuTransformationCalculation_Click();
}

void FormStart::BtnStepCheck_Click() {
    FormMain::MenuVievMainSheet_Click();
    if (IsTrue(Run.TrafoValid)) FormMain::MenuTransformationReliability_Click();
}

void FormStart::BtnStepHandOn_Click() {
    ShowWindow("FormReport");
}

void FormStart::CheckAtStart_Click() {
    IniWertSchreiben("Desktop", kKey, w.CheckAtStart.Value == 1 ? "at the start" : kAsBefore);
}

void FormStart::BtnClose_Click() {
    UnloadWindow(FormStart_Entry.Name);
}

}  // namespace corvinade::core
