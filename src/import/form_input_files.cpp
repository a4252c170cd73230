// The dialog in which a job gets its points: its controls and what they do to each other.
#include "import/form_input_files.h"

#include <algorithm>
#include <utility>

#include "core/changes.h"
#include "core/controller.h"
#include "core/desktop_defaults.h"
#include "core/files.h"
#include "core/job.h"
#include "core/numbers.h"
#include "core/open_file.h"
#include "core/platform.h"
#include "core/run.h"
#include "core/settings.h"
#include "core/text.h"
#include "engine/undo.h"
#include "import/form_table.h"
#include "import/import_request.h"
#include "import/input_tables.h"
#include "import/point_file.h"
#include "import/point_file_checks.h"
#include "import/readers_above.h"
#include "import/robot_files.h"

namespace corvinade::import {

FormInputFiles InputFiles;

namespace {

const ControlEntry kControls[] = {
    {"FrameMCS", &InputFiles.FrameMCS, Frame("Start system (MCS)")},
    {"TextNameMCS", &InputFiles.TextNameMCS, TextBox(), {.Change = FormInputFiles::Path_Change}},
    {"BtnBrowseMCS",
     &InputFiles.BtnBrowseMCS,
     Button("&Browse..."),
     {.Click = FormInputFiles::BtnBrowseMCS_Click}},
    {"BtnEditMCS", &InputFiles.BtnEditMCS, Button("&Edit"), {.Click = FormInputFiles::BtnEditMCS_Click}},
    {"BtnExploreMCS",
     &InputFiles.BtnExploreMCS,
     Button("E&xplore"),
     {.Click = FormInputFiles::BtnExploreMCS_Click}},
    {"BtnMCSfromClip",
     &InputFiles.BtnMCSfromClip,
     Button("from &Clipboard"),
     {.Click = FormInputFiles::BtnMCSfromClip_Click}},
    {"LabelRenameMCS", &InputFiles.LabelRenameMCS, Label("Name of the system")},
    {"TextRenameMCS", &InputFiles.TextRenameMCS, TextBox()},
    {"LabelTableMCS", &InputFiles.LabelTableMCS, Label("")},
    {"BtnTableMCS",
     &InputFiles.BtnTableMCS,
     Button("Table..."),
     {.Click = FormInputFiles::BtnTableMCS_Click}},
    {"FrameOCS", &InputFiles.FrameOCS, Frame("Target system (OCS)")},
    {"ComboOCS_Data", &InputFiles.ComboOCS_Data, ComboBox(), {.Click = FormInputFiles::ComboOCS_Data_Click}},
    {"TextNameOCS", &InputFiles.TextNameOCS, TextBox(), {.Change = FormInputFiles::Path_Change}},
    {"ButtonBrowseOCS",
     &InputFiles.ButtonBrowseOCS,
     Button("B&rowse..."),
     {.Click = FormInputFiles::ButtonBrowseOCS_Click}},
    {"BtnEditOCS", &InputFiles.BtnEditOCS, Button("E&dit"), {.Click = FormInputFiles::BtnEditOCS_Click}},
    {"BtnExploreOCS",
     &InputFiles.BtnExploreOCS,
     Button("Ex&plore"),
     {.Click = FormInputFiles::BtnExploreOCS_Click}},
    {"BtnOCSfromClip",
     &InputFiles.BtnOCSfromClip,
     Button("from C&lipboard"),
     {.Click = FormInputFiles::BtnOCSfromClip_Click}},
    {"LabelRenameOCS", &InputFiles.LabelRenameOCS, Label("Name of the system")},
    {"TextRenameOCS", &InputFiles.TextRenameOCS, TextBox()},
    {"LabelTableOCS", &InputFiles.LabelTableOCS, Label("")},
    {"BtnTableOCS",
     &InputFiles.BtnTableOCS,
     Button("Table..."),
     {.Click = FormInputFiles::BtnTableOCS_Click}},
    {"FrameIdentify", &InputFiles.FrameIdentify, Frame("Identical points")},
    {"OptionByID", &InputFiles.OptionByID, Option("by &ID", 1), {.Click = FormInputFiles::OptionByID_Click}},
    {"OptionByCoordinate",
     &InputFiles.OptionByCoordinate,
     Option("by c&oordinate", 1),
     {.Click = FormInputFiles::OptionByCoordinate_Click}},
    {"OptionByDis",
     &InputFiles.OptionByDis,
     Option("by di&stance", 1),
     {.Click = FormInputFiles::OptionByDis_Click}},
    {"CheckRenameMCS", &InputFiles.CheckRenameMCS, CheckBox("rename points in the &MCS file")},
    {"CheckRenameOCS", &InputFiles.CheckRenameOCS, CheckBox("rename points in the OCS &file")},
    {"CheckUseOnlyFirst",
     &InputFiles.CheckUseOnlyFirst,
     CheckBox("use only some OCS points"),
     {.Click = FormInputFiles::CheckUseOnlyFirst_Click}},
    {"LabelMaxOCS1", &InputFiles.LabelMaxOCS1, Label("use only the first")},
    {"TextMaxOCS", &InputFiles.TextMaxOCS, TextBox("100")},
    {"LabelMaxOCS2", &InputFiles.LabelMaxOCS2, Label("points of the OCS file")},
    {"FrameMoreMCS", &InputFiles.FrameMoreMCS, Frame("Add points to the start system")},
    {"TextNameMoreMCS",
     &InputFiles.TextNameMoreMCS,
     TextBox(),
     {.Change = FormInputFiles::Path_Change},
     "FrameMoreMCS"},
    {"BtnBrowseMoreMCS",
     &InputFiles.BtnBrowseMoreMCS,
     Button("Bro&wse..."),
     {.Click = FormInputFiles::BtnBrowseMoreMCS_Click},
     "FrameMoreMCS"},
    {"BtnEditMoreMCS",
     &InputFiles.BtnEditMoreMCS,
     Button("Edi&t"),
     {.Click = FormInputFiles::BtnEditMoreMCS_Click},
     "FrameMoreMCS"},
    {"BtnExploreMoreMCS",
     &InputFiles.BtnExploreMoreMCS,
     Button("Explore"),
     {.Click = FormInputFiles::BtnExploreMoreMCS_Click},
     "FrameMoreMCS"},
    {"BtnMoreMCSClip",
     &InputFiles.BtnMoreMCSClip,
     Button("from Clipboard"),
     {.Click = FormInputFiles::BtnMoreMCSClip_Click},
     "FrameMoreMCS"},
    {"OptionPrefix", &InputFiles.OptionPrefix, Option("Prefix", 2), {}, "FrameMoreMCS"},
    {"Option2", &InputFiles.Option2, Option("S&uffix", 2), {}, "FrameMoreMCS"},
    {"TextPreSuff", &InputFiles.TextPreSuff, TextBox(), {}, "FrameMoreMCS"},
    {"LabelTableMore", &InputFiles.LabelTableMore, Label(""), {}, "FrameMoreMCS"},
    {"BtnTableMore",
     &InputFiles.BtnTableMore,
     Button("Table..."),
     {.Click = FormInputFiles::BtnTableMore_Click},
     "FrameMoreMCS"},
    {"BtnImportMoreMCS",
     &InputFiles.BtnImportMoreMCS,
     Button("Add poi&nts"),
     {.Click = FormInputFiles::BtnImportMoreMCS_Click},
     "FrameMoreMCS"},
    {"Command2", &InputFiles.Command2, Button("Bundle file..."), {.Click = FormInputFiles::Command2_Click}},
    {"BtnSpezial", &InputFiles.BtnSpezial, Button("Spezial"), {.Click = FormInputFiles::BtnSpezial_Click}},
    {"BtnOK", &InputFiles.BtnOK, Button("OK"), {.Click = FormInputFiles::BtnOK_Click}},
    {"BtnApply", &InputFiles.BtnApply, Button("&Apply"), {.Click = FormInputFiles::BtnApply_Click}},
    {"BtnCancel", &InputFiles.BtnCancel, Button("Cancel"), {.Click = FormInputFiles::BtnCancel_Click}},
};

constexpr const char* kPointFileFilter =
    "Text files (*.txt;*.csv;*.asc)|*.txt;*.csv;*.asc|"
    "Clouds and other carriers (*.ply;*.pcd;*.xyz;*.pts;*.asc;*.points;*.tum;*.xml)|"
    "*.ply;*.pcd;*.xyz;*.pts;*.asc;*.points;*.tum;*.xml|All files (*.*)|*.*|";
constexpr const char* kBundleFileFilter =
    "Text files (*.txt;*.csv;*.asc)|*.txt;*.csv;*.asc|All files (*.*)|*.*|";

void Browse(TableSide side, const std::string& folder, const char* title) {
    const auto path = AskOpenFile({title, kPointFileFilter, folder, ""});
    if (!path) return;
    SetText(PathOfSide(side), *path);
    FilesChosen({side});
}

void Edit(const Control& text) {
    OpenToLookAt(text.Text);
}

void Explore(const Control& text) {
    StartFile("explore", Pfad(text.Text));
}

// Puts the clipboard text into a file of the settings folder and names it in the text box.
void FromClipboard(TableSide side, const char* name) {
    if (!Directory_Exist(SettingsFolder())) CreateFolder(SettingsFolder());
    const std::string path = JoinPath(SettingsFolder(), name);
    WriteFile(path, EncodeText(ClipboardText()));
    SetText(PathOfSide(side), path);
    FilesChosen({side});
}

// Points can be added to points alone.
void EnableMorePoints() {
    InputFiles.FrameMoreMCS.Enabled = IsTrue(Run.JobDataValid);
}

// What is shown follows the way of identifying.
void ShowForIdentification() {
    FormInputFiles& w = InputFiles;
    const bool byDistance = w.OptionByDis.Value == 1;
    for (Control* shown : {&w.LabelMaxOCS1, &w.LabelMaxOCS2, &w.TextMaxOCS}) shown->Visible = byDistance;
    w.CheckRenameMCS.Visible = w.CheckRenameOCS.Visible = w.OptionByCoordinate.Value == 1;
}

Pairing ChosenWay() {
    const FormInputFiles& w = InputFiles;
    if (w.OptionByID.Value == 1 || !w.OptionByID.Enabled) return Pairing::ByID;
    if (w.OptionByDis.Value == 1 && w.OptionByDis.Enabled) return Pairing::ByDistance;
    if (w.OptionByCoordinate.Value == 1 && w.OptionByCoordinate.Enabled) return Pairing::ByCoordinate;
    return Pairing::None;
}

ImportRequest RequestOfDialog() {
    const FormInputFiles& w = InputFiles;
    ImportRequest request;
    request.StartPath = w.TextNameMCS.Text;
    request.TargetPath = w.TextNameOCS.Text;
    request.StartName = w.TextRenameMCS.Text;
    request.TargetName = w.TextRenameOCS.Text;
    request.Kind = static_cast<TargetKind>(std::max(w.ComboOCS_Data.Index, 0));
    request.Way = ChosenWay();
    request.RenameStart = w.CheckRenameMCS.Value == 1;
    request.RenameTarget = w.CheckRenameOCS.Value == 1;
    if (w.CheckUseOnlyFirst.Value == 1) request.OnlyFirst = w.TextMaxOCS.Text;
    request.ReplacesQuietly = IsTrue(Run.OverwriteQuiet);
    request.Window = FormInputFiles_Entry.Name;
    return request;
}

}  // namespace

const WindowEntry FormInputFiles_Entry = {
    .Name = "FormInputFiles",
    .State = &InputFiles.Window,
    .Controls = kControls,
    .Fresh = [] { InputFiles = FormInputFiles{}; },
    .Load = FormInputFiles::Form_Load,
    .Unload = FormInputFiles::Form_Unload,
    .Escape = FormInputFiles::Form_Escape,
    .Stand = WindowStand::Dialog,
};

void FormInputFiles::Form_Load() {
    FormInputFiles& w = InputFiles;
    Form_Resize();
    SetValue(w.OptionByID, 1);
    SetValue(w.OptionPrefix, 1);
    EnableMorePoints();
    ShowForIdentification();
    SetText(w.TextNameMCS, Job.PathMCS);
    SetText(w.TextNameOCS, Job.PathOCS);
    SetText(w.TextRenameMCS, Job.NameMCS.empty() ? "MCS" : Job.NameMCS);
    SetText(w.TextRenameOCS, Job.NameOCS.empty() ? "OCS" : Job.NameOCS);
    for (const InputKind& kind : InputKinds()) w.ComboOCS_Data.Items.emplace_back(kind.Entry);
    const int last = Settings.LastDropDownInfoInOCS;
    const bool known = last >= 0 && last < static_cast<int>(w.ComboOCS_Data.Items.size());
    SetIndex(w.ComboOCS_Data, known ? last : 0);
    Tables = InputTablesRecord();
    ShowTables();
}

void FormInputFiles::Form_Unload() {
    Tables.ToAsk.clear();
    UnloadWindow(FormTable_Entry.Name);
}

void FormInputFiles::Path_Change() {
    ShowTables();
}

void FormInputFiles::Form_Resize() {
    // Below this the frames would have no width left.
    WindowPlace& place = InputFiles.Window.Place;
    if (place.Height < 350) place.Height = 350;
    if (place.Width < 650) place.Width = 650;
}

void FormInputFiles::Form_Escape() {
    UnloadWindow("FormInputFiles");
}

void FormInputFiles::ComboOCS_Data_Click() {
    // The choice stays with the dialog: the job is of its kind as long as it has its points.
    ShowTables();
}

void FormInputFiles::OptionByID_Click() {
    ShowForIdentification();
}
void FormInputFiles::OptionByCoordinate_Click() {
    ShowForIdentification();
}
void FormInputFiles::OptionByDis_Click() {
    ShowForIdentification();
}

void FormInputFiles::CheckUseOnlyFirst_Click() {
    FormInputFiles& w = InputFiles;
    const bool shown = w.CheckUseOnlyFirst.Value == 1 && w.OptionByDis.Value == 1;
    for (Control* control : {&w.LabelMaxOCS1, &w.LabelMaxOCS2, &w.TextMaxOCS}) control->Visible = shown;
}

void FormInputFiles::BtnBrowseMCS_Click() {
    Browse(TableSide::Start, Settings.LastMCSRoot, "MCS File");
}
void FormInputFiles::ButtonBrowseOCS_Click() {
    Browse(TableSide::Target, Settings.LastOCSRoot, "OCS File");
}
void FormInputFiles::BtnBrowseMoreMCS_Click() {
    Browse(TableSide::More, Settings.LastMCSRoot, "More MCS Points");
}

void FormInputFiles::BtnTableMCS_Click() {
    AskForTable(TableSide::Start);
}
void FormInputFiles::BtnTableOCS_Click() {
    AskForTable(TableSide::Target);
}
void FormInputFiles::BtnTableMore_Click() {
    AskForTable(TableSide::More);
}

void FormInputFiles::BtnEditMCS_Click() {
    Edit(InputFiles.TextNameMCS);
}
void FormInputFiles::BtnEditOCS_Click() {
    Edit(InputFiles.TextNameOCS);
}
void FormInputFiles::BtnEditMoreMCS_Click() {
    Edit(InputFiles.TextNameMoreMCS);
}

void FormInputFiles::BtnExploreMCS_Click() {
    Explore(InputFiles.TextNameMCS);
}
void FormInputFiles::BtnExploreOCS_Click() {
    Explore(InputFiles.TextNameOCS);
}
void FormInputFiles::BtnExploreMoreMCS_Click() {
    Explore(InputFiles.TextNameMoreMCS);
}

void FormInputFiles::BtnMCSfromClip_Click() {
    FromClipboard(TableSide::Start, "mcs.txt");
}
void FormInputFiles::BtnOCSfromClip_Click() {
    FromClipboard(TableSide::Target, "ocs.txt");
}
void FormInputFiles::BtnMoreMCSClip_Click() {
    FromClipboard(TableSide::More, "mcs.txt");
}

void FormInputFiles::BtnImportMoreMCS_Click() {
    const FormInputFiles& w = InputFiles;
    if (w.TextNameMoreMCS.Text.empty()) {
        ShowMessage("Please select a File with the browse button");
        return;
    }
    if (AsksForTyped({TableSide::More})) return;
    const bool prefix = w.OptionPrefix.Value == 1;
    Run.ImportFailed = kFalse;
    JobStep step;
    const std::string path = w.TextNameMoreMCS.Text, before = prefix ? w.TextPreSuff.Text : "",
                      behind = prefix ? "" : w.TextPreSuff.Text;
    if (IsReadHere(TableSide::More) ? !AddTable(path, before, behind) : !ReadMorePoints(path, before, behind))
        return;
    const std::uint64_t generation = ++Run.JobGeneration;
    step.Keep("Import", JobChange::Import);
    Changed(What::MorePoints);
    ShowChanges();
    if (Run.JobGeneration != generation) return;
    Run.JobDirty = kTrue;
}

void FormInputFiles::Command2_Click() {
    const auto path = AskOpenFile({"Bundle File", kBundleFileFilter, Settings.LastMCSRoot, ""});
    if (path) InputFiles.BundleFile = *path;
}

void FormInputFiles::BtnSpezial_Click() {
    const std::string& path = InputFiles.TextNameMCS.Text;
    const FileBytes bytes = ReadFile(path);
    std::int64_t lines = 0;
    AnzZeilen(path, lines);
    const std::int64_t blocks = (lines - 2) / 7;
    std::vector<Mat3> read(1);
    std::string_view rest = bytes.View();
    std::string_view line;
    std::string scratch;
    int number = 0;
    const auto next = [&] {
        ++number;
        if (!CutLine(rest, line))
            throw PlatformError{"\"" + path + "\" ends in line " + std::to_string(number) +
                                ", inside a block"};
    };
    next();
    for (std::int64_t block = 1; block <= blocks; ++block) {
        Mat3& values = read.emplace_back();
        next();
        next();
        for (int row = 1; row <= 3; ++row) {
            next();
            CutField(line, ' ', scratch);
            for (int column = 1; column <= 3; ++column)
                values(row, column) = NumberFromText(CutField(line, ' ', scratch),
                                                     "\"" + path + "\", line " + std::to_string(number));
        }
        next();
        next();
    }
    Spezial.Blocks = std::move(read);
}

bool myBtn_OK() {
    const std::string bundle = std::exchange(InputFiles.BundleFile, "");
    if (!bundle.empty()) {
        ReadAbove(FileAbove::Network, {bundle});
        return true;
    }
    if (AsksForTyped({TableSide::Start, TableSide::Target})) return false;
    ImportRequest request = RequestOfDialog();
    TablesRead tables;
    if (!TakeTables(request, tables)) return false;
    const ImportOutcome outcome = Import(request);
    if (outcome == ImportOutcome::Done && tables.Any()) KeepTables(tables);
    // The dialog stays with what is typed, where the points of before stay, so that it can be mended.
    return outcome != ImportOutcome::NotRead || !DesktopDefaults.FailedImport;
}

void FormInputFiles::BtnOK_Click() {
    if (myBtn_OK()) UnloadWindow("FormInputFiles");
}

void FormInputFiles::BtnApply_Click() {
    if (myBtn_OK()) EnableMorePoints();
}

void FormInputFiles::BtnCancel_Click() {
    UnloadWindow("FormInputFiles");
}

}  // namespace corvinade::import
