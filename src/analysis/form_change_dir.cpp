// The dialog that chooses a folder.
#include "analysis/form_change_dir.h"

#include <algorithm>

#include "core/files.h"
#include "core/folders.h"
#include "core/platform.h"

namespace corvinade::analysis {

FormChangeDir ChangeDir;

namespace {

FormChangeDir& w = ChangeDir;

const ControlEntry kControls[] = {
    {"Drive1", &w.Drive1, ComboBox(), {.Click = FormChangeDir::Drive1_Click}},
    {"Dir1",
     &w.Dir1,
     ComboBox(),
     {.Click = FormChangeDir::Dir1_Click, .DblClick = FormChangeDir::Dir1_DblClick}},
    {"TextPath", &w.TextPath, TextBox()},
    {"BtnOpen", &w.BtnOpen, Button("O&pen Folder"), {.Click = FormChangeDir::BtnOpen_Click}},
    {"Command3", &w.Command3, Button("&New Folder..."), {.Click = FormChangeDir::Command3_Click}},
    {"BtnOK", &w.BtnOK, Button("&OK"), {.Click = FormChangeDir::BtnOK_Click}},
    {"BtnCancel", &w.BtnCancel, Button("&Cancel"), {.Click = FormChangeDir::BtnCancel_Click}},
};

constexpr const char* kAbove = "..";

// The folder of the list that is selected; the open one where there is none.
std::string SelectedFolder() {
    if (w.Dir1.Index < 0) return w.Path;
    return w.Dir1.Text == kAbove ? FolderAbove(w.Path) : JoinPath(w.Path, w.Dir1.Text);
}

void OpenFolder(const std::string& folder) {
    w.Path = PlainFolder(folder);
    std::vector<std::string> folders = FoldersOfFolder(w.Path);
    folders.insert(folders.begin(), kAbove);
    w.Dir1.Index = -1;
    w.Dir1.Text.clear();
    w.Dir1.Items = std::move(folders);
    SetText(w.TextPath, w.Path);
    // The drive with the longest name that the path begins with.
    int drive = -1;
    for (std::size_t i = 0; i < w.Drive1.Items.size(); ++i)
        if (w.Path.starts_with(w.Drive1.Items[i])) drive = static_cast<int>(i);
    w.Drive1.Index = drive;
    w.Drive1.Text = drive < 0 ? "" : w.Drive1.Items[static_cast<std::size_t>(drive)];
}

std::string NearestFolder(const std::string& wanted) {
    std::string folder = PlainFolder(wanted.empty() ? "." : wanted);
    while (!Directory_Exist(folder)) {
        const std::string above = FolderAbove(folder);
        if (above == folder) return Drives().front();
        folder = above;
    }
    return folder;
}

}  // namespace

const WindowEntry FormChangeDir_Entry = {
    .Name = "FormChangeDir",
    .State = &w.Window,
    .Controls = kControls,
    .Fresh = [] { w = FormChangeDir{}; },
    .Load = FormChangeDir::Form_Load,
    .Escape = FormChangeDir::BtnCancel_Click,
    .Stand = WindowStand::Dialog,
};

void FormChangeDir::Form_Load() {
    ChangeDirAnswer.Chosen.reset();
    w.Window.Caption = ChangeDirAnswer.Title;
    w.Drive1.Items = Drives();
    OpenFolder(NearestFolder(ChangeDirAnswer.Begin));
}

void FormChangeDir::Drive1_Click() {
    if (w.Drive1.Index >= 0) OpenFolder(w.Drive1.Text);
}

void FormChangeDir::Dir1_Click() {
    if (w.Dir1.Index >= 0) SetText(w.TextPath, SelectedFolder());
}

void FormChangeDir::Dir1_DblClick() {
    if (w.Dir1.Index >= 0) OpenFolder(SelectedFolder());
}

void FormChangeDir::BtnOpen_Click() {
    const std::string folder = w.TextPath.Text;
    if (!Directory_Exist(folder)) throw PlatformError{"There is no folder \"" + folder + "\"."};
    OpenFolder(folder);
}

void FormChangeDir::Command3_Click() {
    const std::string within = Directory_Exist(w.TextPath.Text) ? w.TextPath.Text : w.Path;
    const auto name = AskInput("Neues Verzeichnis erstellen in: " + within, "Verzeichnis erstellen", "");
    if (!name || name->empty() || !w.Window.Loaded) return;
    const std::string folder = JoinPath(within, *name);
    CreateFolder(folder);
    OpenFolder(folder);
}

void FormChangeDir::BtnOK_Click() {
    const std::string folder = w.TextPath.Text;
    if (!Directory_Exist(folder)) throw PlatformError{"There is no folder \"" + folder + "\"."};
    ChangeDirAnswer.Chosen = PlainFolder(folder);
    UnloadWindow("FormChangeDir");
}

void FormChangeDir::BtnCancel_Click() {
    UnloadWindow("FormChangeDir");
}

std::optional<std::string> AskFolder(const std::string& title, const std::string& begin) {
    if (IsLoaded("FormChangeDir")) return std::nullopt;
    ChangeDirAnswer = {title, begin, std::nullopt};
    ShowWindow("FormChangeDir");
    WaitForWindow("FormChangeDir");
    return ChangeDirAnswer.Chosen;
}

}  // namespace corvinade::analysis
