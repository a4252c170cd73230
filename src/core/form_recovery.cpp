// The window of the jobs that killed programs have left.
#include "core/form_recovery.h"

#include <algorithm>
#include <string>

#include "core/job_file.h"
#include "core/platform.h"
#include "core/run.h"

namespace corvinade::core {

FormRecovery RecoveryWindow;

namespace {

FormRecovery& w = RecoveryWindow;

const ControlEntry kControls[] = {
    {"LabelSummary", &w.LabelSummary, Label("")},
    {"GridRecovery", &w.GridRecovery, Grid(1, 1), {.DblClick = FormRecovery::BtnRestore_Click}},
    {"BtnRestore", &w.BtnRestore, Button("&Restore"), {.Click = FormRecovery::BtnRestore_Click}},
    {"BtnDiscard", &w.BtnDiscard, Button("&Discard"), {.Click = FormRecovery::BtnDiscard_Click}},
    {"BtnClose", &w.BtnClose, Button("Cl&ose"), {.Click = FormRecovery::BtnClose_Click}},
};

constexpr int kHeadings = 1;

std::string NameOf(const LeftBehind& left) {
    if (!left.Fault.empty()) return left.Copy;
    return left.JobPath == kDefaultJobPath ? "(never saved)" : left.JobPath;
}

std::string PointsOf(const LeftBehind& left) {
    if (!left.Fault.empty()) return "cannot be read: " + left.Fault;
    return std::to_string(left.Pairs) + " pairs, " + std::to_string(left.Start) + " start, " +
           std::to_string(left.Target) + " target";
}

void FillTable() {
    w.Rows = LeftBehindCopies();
    const std::string count = std::to_string(w.Rows.size());
    w.LabelSummary.Text = w.Rows.empty() ? "Nothing was left behind."
                          : w.Rows.size() == 1
                              ? "A job was left behind with changes that were not saved."
                              : count + " jobs were left behind with changes that were not saved.";
    w.BtnRestore.Enabled = w.BtnDiscard.Enabled = !w.Rows.empty();
    GridState& grid = w.GridRecovery.Grid;
    SizeGrid(grid, static_cast<int>(w.Rows.size()) + kHeadings, kRecoveryCols);
    grid.Aligns.assign(kRecoveryCols, GridAlign::Left);
    constexpr const char* kTitles[] = {"Job", "Last change", "Points"};
    for (int col = 0; col < kRecoveryCols; ++col) SetCell(grid, 0, col, kTitles[col]);
    for (std::size_t i = 0; i < w.Rows.size(); ++i) {
        const int row = static_cast<int>(i) + kHeadings;
        SetCell(grid, row, kRecoveryJob, NameOf(w.Rows[i]));
        SetCell(grid, row, kRecoveryTime, w.Rows[i].Time);
        SetCell(grid, row, kRecoveryPoints, PointsOf(w.Rows[i]));
    }
    KeepSelectionInside(grid);
}

// The one that is chosen; the only one need not be.
const LeftBehind* Chosen() {
    const int row = w.Rows.size() == 1 ? 0 : w.GridRecovery.Grid.Row - kHeadings;
    if (row >= 0 && row < static_cast<int>(w.Rows.size())) return &w.Rows[static_cast<std::size_t>(row)];
    ShowMessage("Choose a job in the list first.");
    return nullptr;
}

}  // namespace

const WindowEntry FormRecovery_Entry = {
    .Name = "FormRecovery",
    .State = &w.Window,
    .Controls = kControls,
    .Fresh = [] { w = FormRecovery{}; },
    .Load = FormRecovery::Form_Load,
    .Escape = FormRecovery::Form_Escape,
};

void BeginRecovery() {
    StartRecovery();
    KeepRecoveryCopy();  // what the start has opened is what stands on the disk
    if (IsTrue(Run.JobDataValid)) TellWhetherOpenElsewhere(Run.JobFilePath);
    ShowWhatWasLeft();
}

void ShowWhatWasLeft() {
    if (!LeftBehindCopies().empty()) ShowWindow("FormRecovery");
}

void FormRecovery::Form_Load() {
    FillTable();
}

void FormRecovery::Form_Escape() {
    UnloadWindow("FormRecovery");
}

// The opened job closes this window as all others.
void FormRecovery::BtnRestore_Click() {
    const LeftBehind* chosen = Chosen();
    if (chosen == nullptr) return;
    const LeftBehind left = *chosen;
    RestoreCopy(left);
    if (!w.Window.Loaded) ShowWhatWasLeft();
}

void FormRecovery::BtnDiscard_Click() {
    const LeftBehind* chosen = Chosen();
    if (chosen == nullptr) return;
    const LeftBehind left = *chosen;
    if (!AskYesNo("The changes of this job are lost then:\r\n\r\n" + NameOf(left) +
                  "\r\n\r\nDo you want to discard them?"))
        return;
    DiscardCopy(left);
    FillTable();
    if (w.Rows.empty()) UnloadWindow("FormRecovery");
}

void FormRecovery::BtnClose_Click() {
    UnloadWindow("FormRecovery");
}

}  // namespace corvinade::core
