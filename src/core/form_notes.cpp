// The window that lists what the program noticed, and the number of notes in the status bar.
#include "core/form_notes.h"

#include <algorithm>

#include "core/form_main.h"
#include "core/open_file.h"
#include "core/platform.h"
#include "core/settings.h"

namespace corvinade::core {

FormNotes NotesWindow;

namespace {

FormNotes& w = NotesWindow;

const ControlEntry kControls[] = {
    {"LabelSummary", &w.LabelSummary, Label("")},
    {"GridNotes", &w.GridNotes, Grid(1, 1), {.DblClick = FormNotes::GridNotes_DblClick}},
    {"BtnCopy", &w.BtnCopy, Button("&Copy"), {.Click = FormNotes::BtnCopy_Click}},
    {"BtnClose", &w.BtnClose, Button("Cl&ose"), {.Click = FormNotes::BtnClose_Click}},
};

constexpr int kHeadings = 1;
constexpr std::int32_t kWarningGround = 0x66D1FF;  // amber, red in the low byte; dark text reads well on it

bool Same(const Note& one, const Note& other) {
    return one.Code == other.Code && one.Text == other.Text && one.File == other.File &&
           one.Line == other.Line && one.Count == other.Count;
}

std::string Counted(std::size_t count, const char* one) {
    return std::to_string(count) + " " + one + (count == 1 ? "" : "s");
}

// "1 warning, 2 notes"; what there is none of is left out.
std::string Summary() {
    const auto warnings =
        static_cast<std::size_t>(std::count_if(Notes.List.begin(), Notes.List.end(), [](const Note& note) {
            return note.Weight == Severity::Warning;
        }));
    const std::size_t others = Notes.List.size() - warnings;
    if (warnings == 0) return Counted(others, "note");
    return Counted(warnings, "warning") + (others == 0 ? "" : ", " + Counted(others, "note"));
}

void ShowInStatusBar() {
    Control& panel = Main.StatusBar_Notes;
    panel.Visible = !Notes.List.empty();
    panel.Text = Notes.List.empty() ? "" : Counted(Notes.List.size(), "note");
    panel.BackColor = HasWarnings() ? kWarningGround : kSystemColour;
    panel.ToolTip =
        Notes.List.empty() ? "" : Summary() + " of the last import and calculation: click for the list";
}

void FillTable() {
    w.Rows = Notes.List;
    w.LabelSummary.Text = w.Rows.empty() ? "The last import and calculation left nothing to be noted."
                                         : Summary() + " of the last import and calculation.";
    w.BtnCopy.Enabled = !w.Rows.empty();
    GridState& grid = w.GridNotes.Grid;
    SizeGrid(grid, static_cast<int>(w.Rows.size()) + kHeadings, kNotesCols);
    grid.Aligns.assign(kNotesCols, GridAlign::Left);
    grid.Aligns[kNotesLine] = grid.Aligns[kNotesCount] = GridAlign::Right;
    constexpr const char* kTitles[] = {"Severity", "File", "Line", "Text", "Count"};
    for (int col = 0; col < kNotesCols; ++col) SetCell(grid, 0, col, kTitles[col]);
    for (std::size_t i = 0; i < w.Rows.size(); ++i) {
        const Note& note = w.Rows[i];
        const int row = static_cast<int>(i) + kHeadings;
        SetCell(grid, row, kNotesSeverity, SeverityName(note.Weight));
        if (note.Weight == Severity::Warning) SetCellBackColor(grid, row, kNotesSeverity, kWarningGround);
        SetCell(grid, row, kNotesFile, note.File);
        if (note.Line > 0) SetCell(grid, row, kNotesLine, std::to_string(note.Line));
        SetCell(grid, row, kNotesText, note.Text);
        SetCell(grid, row, kNotesCount, std::to_string(note.Count));
    }
    KeepSelectionInside(grid);
}

}  // namespace

const WindowEntry FormNotes_Entry = {
    .Name = "FormNotes",
    .State = &w.Window,
    .Controls = kControls,
    .Fresh = [] { w = FormNotes{}; },
    .Load = FormNotes::Form_Load,
    .Escape = FormNotes::Form_Escape,
};

void ShowNotes() {
    ShowInStatusBar();
    const bool current = std::equal(w.Rows.begin(), w.Rows.end(), Notes.List.begin(), Notes.List.end(), Same);
    if (w.Window.Loaded && !current) FillTable();
}

void FormNotes::Form_Load() {
    FillTable();
}

void FormNotes::Form_Escape() {
    UnloadWindow("FormNotes");
}

void FormNotes::GridNotes_DblClick() {
    const int row = w.GridNotes.Grid.MouseRow - kHeadings;
    if (row < 0 || row >= static_cast<int>(w.Rows.size())) return;
    const std::string& file = w.Rows[static_cast<std::size_t>(row)].File;
    if (!file.empty()) OpenToLookAt(file);
}

void FormNotes::BtnCopy_Click() {
    GridState& grid = w.GridNotes.Grid;
    ToClipboard(RectText(grid, {0, 0, grid.Rows - 1, grid.Cols - 1}));
}

void FormNotes::BtnClose_Click() {
    UnloadWindow("FormNotes");
}

}  // namespace corvinade::core
