// The window of a table: its controls, and what they decide.
#include "import/form_table.h"

#include <algorithm>
#include <charconv>
#include <system_error>
#include <utility>

#include "core/platform.h"
#include "core/text.h"
#include "import/table_mapping.h"
#include "import/table_words.h"

namespace corvinade::import {

FormTable TableWindow;

namespace {

FormTable& w = TableWindow;

const ControlEntry kControls[] = {
    {"LabelFile", &w.LabelFile, Label("")},
    {"ComboDelimiter", &w.ComboDelimiter, ComboBox(), {.Click = FormTable::ComboDelimiter_Click}},
    {"ComboDecimal", &w.ComboDecimal, ComboBox(), {.Click = FormTable::ComboDecimal_Click}},
    {"ComboEncoding", &w.ComboEncoding, ComboBox(), {.Click = FormTable::ComboEncoding_Click}},
    {"ComboUnit", &w.ComboUnit, ComboBox(), {.Click = FormTable::ComboUnit_Click}},
    {"TextSkip", &w.TextSkip, TextBox("0"), {.Change = FormTable::TextSkip_Change}},
    {"TextComment", &w.TextComment, TextBox(), {.Change = FormTable::TextComment_Change}},
    {"CheckStrict",
     &w.CheckStrict,
     CheckBox("&Strict: no row may be bad, and nothing doubtful", 1),
     {.Click = FormTable::CheckStrict_Click}},
    {"ComboRole1", &w.ComboRole[0], ComboBox(), {.Click = FormTable::ComboRole_Click}},
    {"ComboRole2", &w.ComboRole[1], ComboBox(), {.Click = FormTable::ComboRole_Click}},
    {"ComboRole3", &w.ComboRole[2], ComboBox(), {.Click = FormTable::ComboRole_Click}},
    {"ComboRole4", &w.ComboRole[3], ComboBox(), {.Click = FormTable::ComboRole_Click}},
    {"ComboRole5", &w.ComboRole[4], ComboBox(), {.Click = FormTable::ComboRole_Click}},
    {"ComboRole6", &w.ComboRole[5], ComboBox(), {.Click = FormTable::ComboRole_Click}},
    {"ComboRole7", &w.ComboRole[6], ComboBox(), {.Click = FormTable::ComboRole_Click}},
    {"ComboRole8", &w.ComboRole[7], ComboBox(), {.Click = FormTable::ComboRole_Click}},
    {"ComboRole9", &w.ComboRole[8], ComboBox(), {.Click = FormTable::ComboRole_Click}},
    {"ComboRole10", &w.ComboRole[9], ComboBox(), {.Click = FormTable::ComboRole_Click}},
    {"ComboRole11", &w.ComboRole[10], ComboBox(), {.Click = FormTable::ComboRole_Click}},
    {"ComboRole12", &w.ComboRole[11], ComboBox(), {.Click = FormTable::ComboRole_Click}},
    {"ComboRole13", &w.ComboRole[12], ComboBox(), {.Click = FormTable::ComboRole_Click}},
    {"ComboRole14", &w.ComboRole[13], ComboBox(), {.Click = FormTable::ComboRole_Click}},
    {"ComboRole15", &w.ComboRole[14], ComboBox(), {.Click = FormTable::ComboRole_Click}},
    {"ComboRole16", &w.ComboRole[15], ComboBox(), {.Click = FormTable::ComboRole_Click}},
    {"ComboRole17", &w.ComboRole[16], ComboBox(), {.Click = FormTable::ComboRole_Click}},
    {"ComboRole18", &w.ComboRole[17], ComboBox(), {.Click = FormTable::ComboRole_Click}},
    {"ComboRole19", &w.ComboRole[18], ComboBox(), {.Click = FormTable::ComboRole_Click}},
    {"ComboRole20", &w.ComboRole[19], ComboBox(), {.Click = FormTable::ComboRole_Click}},
    {"ComboRole21", &w.ComboRole[20], ComboBox(), {.Click = FormTable::ComboRole_Click}},
    {"ComboRole22", &w.ComboRole[21], ComboBox(), {.Click = FormTable::ComboRole_Click}},
    {"ComboRole23", &w.ComboRole[22], ComboBox(), {.Click = FormTable::ComboRole_Click}},
    {"ComboRole24", &w.ComboRole[23], ComboBox(), {.Click = FormTable::ComboRole_Click}},
    {"GridPreview", &w.GridPreview, Grid(1, 1)},
    {"LabelCount", &w.LabelCount, Label("")},
    {"LabelProblem", &w.LabelProblem, Label("")},
    {"BtnAuto", &w.BtnAuto, Button("Find &again"), {.Click = FormTable::BtnAuto_Click}},
    {"BtnPlain", &w.BtnPlain, Button("&Plain file"), {.Click = FormTable::BtnPlain_Click}},
    {"BtnOK", &w.BtnOK, Button("OK"), {.Click = FormTable::BtnOK_Click}},
    {"BtnCancel", &w.BtnCancel, Button("Cancel"), {.Click = FormTable::BtnCancel_Click}},
};

constexpr std::int32_t kObstacleGround = 0x66D1FF;  // amber, as that of warnings; dark text reads well on it

// The first entry of each list forgets what the user has said.
constexpr const char* kFound = "auto";
constexpr const char* kUnits[] = {kFound, "mm", "cm", "m", "km", "in", "ft"};
constexpr const char* kDecimals[] = {kFound, ".", ","};
constexpr TableEncoding kEncodings[] = {TableEncoding::Utf8, TableEncoding::Utf16Le, TableEncoding::Utf16Be,
                                        TableEncoding::Windows1252};
constexpr const char* kUsualComments = "# % ! //";

// --- What is shown ----------------------------------------------------------------------------------------

// From code: no handler runs.
void ShowEntry(Control& list, const std::string& text) {
    const auto found = std::find(list.Items.begin(), list.Items.end(), text);
    list.Index = found == list.Items.end() ? -1 : static_cast<int>(found - list.Items.begin());
    list.Text = list.Index < 0 ? "" : text;
}

void FillLists() {
    w.ComboDelimiter.Items = {kFound};
    for (const DelimiterWord& word : TableDelimiterWords()) w.ComboDelimiter.Items.emplace_back(word.Name);
    w.ComboDecimal.Items.assign(std::begin(kDecimals), std::end(kDecimals));
    w.ComboUnit.Items.assign(std::begin(kUnits), std::end(kUnits));
    w.ComboEncoding.Items = {kFound};
    for (const TableEncoding encoding : kEncodings)
        w.ComboEncoding.Items.emplace_back(TableEncodingName(encoding));
    for (Control& role : w.ComboRole)
        for (std::size_t i = 0; i < kTableRoles; ++i)
            role.Items.emplace_back(TableRoleName(static_cast<TableRole>(i)));
}

// What a user has to decide first is shown as not found.
bool IsOpenQuestion() {
    return !w.Preview.Found || w.Preview.Refusal.TwoWays;
}

void ShowFound() {
    const TableForm& form = w.Preview.Form;
    const bool open = IsOpenQuestion();
    const char delimiter = w.Decided.Delimiter != '\0' ? w.Decided.Delimiter : open ? '\0' : form.Delimiter;
    const char decimal = w.Decided.Decimal != '\0' ? w.Decided.Decimal : open ? '\0' : form.Decimal;
    ShowEntry(w.ComboDelimiter, delimiter == '\0' ? kFound : TableDelimiterWord(delimiter));
    ShowEntry(w.ComboDecimal, decimal == '\0' ? kFound : std::string(1, decimal));
    const bool text = w.File->NoText.empty();
    ShowEntry(w.ComboEncoding, text                 ? TableEncodingName(w.File->Text->Encoding)
                               : w.Decided.Encoding ? TableEncodingName(*w.Decided.Encoding)
                                                    : kFound);
    const std::string& named = w.Decided.Unit.empty() ? form.Unit : w.Decided.Unit;
    ShowEntry(w.ComboUnit, named.empty() ? UsualTableUnit() : named);
    for (std::size_t i = 0; i < kRoleCombos; ++i) {
        Control& role = w.ComboRole[i];
        role.Visible = w.Preview.Found && i < w.Preview.Columns;
        ShowEntry(role, TableRoleName(i < form.Columns.size() ? form.Columns[i] : TableRole::Pass));
    }
}

void FillGrid() {
    const std::vector<PreviewLine>& lines = w.Preview.Lines;
    GridState& grid = w.GridPreview.Grid;
    const auto cols = static_cast<int>(std::max<std::size_t>(w.Preview.Columns, 1)) + 1;
    SizeGrid(grid, static_cast<int>(lines.size()) + 1, cols);
    grid.Aligns.assign(static_cast<std::size_t>(cols), GridAlign::Left);
    grid.Aligns[0] = GridAlign::Right;
    SetCell(grid, 0, 0, "Line");
    for (int col = 1; col < cols; ++col) SetCell(grid, 0, col, std::to_string(col));
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const PreviewLine& line = lines[i];
        const int row = static_cast<int>(i) + 1;
        SetCell(grid, row, 0, std::to_string(line.Number));
        for (std::size_t k = 0; k < line.Cells.size(); ++k)
            SetCell(grid, row, static_cast<int>(k) + 1, line.Cells[k]);
        for (int col = 1; col < cols; ++col) {
            const auto k = static_cast<std::size_t>(col) - 1;
            if (k < line.Bad.size() && line.Bad[k]) SetCellBackColor(grid, row, col, kBadCellGround);
            if (!line.IsPoint && w.Preview.Found) SetCellBackColor(grid, row, col, kPassedOverGround);
        }
    }
    KeepSelectionInside(grid);
}

std::string Counted(std::int64_t count, const char* what) {
    return std::to_string(count) + " " + what + (count == 1 ? " row" : " rows");
}

// The first warning about the table, "" where there is none.
std::string FirstWarning() {
    for (const Note& note : w.Count.Notes)
        if (note.Weight == Severity::Warning) return InWordsOfDesktop(note.Text);
    return "";
}

// What stands against taking the table as it is; "" where nothing does.
std::string Obstacle() {
    if (!w.WrongSkip.empty()) return "\"" + Printable(w.WrongSkip) + "\" is no number of lines to skip";
    if (!w.File->NoText.empty())
        return RefusalOfDesktop("Cannot read \"" + w.Path + "\": " + w.File->NoText, w.Path);
    if (w.Preview.Refusal.Refused()) return RefusalOfDesktop(w.Preview.Refusal.Text, w.Path);
    if (w.Count.Refusal.Refused()) return RefusalOfDesktop(w.Count.Refusal.Text, w.Path);
    if (w.CheckStrict.Value != 1) return "";
    if (w.Count.FirstBad.Refused()) return RefusalOfDesktop(w.Count.FirstBad.Text, w.Path);
    const std::string warning = FirstWarning();
    return warning.empty() ? "" : warning + "; without \"Strict\" it is taken so";
}

void ShowCount() {
    const bool counted = !w.Count.Refusal.Refused() && !w.Preview.Refusal.Refused() && w.File->NoText.empty();
    w.LabelCount.Text =
        counted ? Counted(w.Count.Good, "good") + ", " + Counted(w.Count.Bad, "bad") : "no rows counted";
    const std::string obstacle = Obstacle();
    std::string text = obstacle;
    if (text.empty() && w.Count.FirstBad.Refused()) {
        text = "Bad rows are passed over. The first one: " + RefusalOfDesktop(w.Count.FirstBad.Text, w.Path);
        text.erase(std::min(text.rfind(" (without \"Strict\""), text.size()));  // it is without
    }
    if (text.empty()) text = FirstWarning();
    w.LabelProblem.Text = text;
    w.LabelProblem.Visible = !text.empty();
    w.LabelProblem.BackColor = obstacle.empty() ? kSystemColour : kObstacleGround;
}

// --- Finding and counting ---------------------------------------------------------------------------------

TableOptions Wanted() {
    return OptionsOfSide(w.Side, w.Decided);
}

void TakeText() {
    OpenTable& file = *w.File;
    if (file.Text != nullptr && file.Wanted == w.Decided.Encoding) return;
    file.Wanted = w.Decided.Encoding;
    file.Text = std::make_unique<TableText>();
    file.NoText = TakeTableText(file.Bytes.View(), file.Wanted ? &*file.Wanted : nullptr, *file.Text);
}

void ShowPreview(TableOptions options) {
    options.UsualUnit.clear();  // a unit that is found is that of the heading
    w.Preview = w.File->NoText.empty() ? PreviewTable(*w.File->Text, w.Path, options) : TablePreview();
    ShowFound();
    FillGrid();
}

// Counts the rows of the whole file. It yields: another change ends it, and so does the end of the window.
void CountRows() {
    const std::shared_ptr<OpenTable> file = w.File;
    const std::uint64_t change = w.Change;
    const auto isWanted = [&file, change] { return w.File == file && w.Change == change; };
    w.Count = TableCount();
    if (!file->NoText.empty() || w.Preview.Refusal.Refused()) {
        w.Count.Done = true;
        ShowCount();
        return;
    }
    w.LabelProblem.Visible = false;
    w.LabelCount.Text = "counting...";
    TableOptions options = Wanted();
    options.GoesOn = [&isWanted](const TableProgress& progress) {
        if (!isWanted()) return false;
        w.LabelCount.Text = "counting, " + std::to_string(static_cast<int>(100 * progress.Share)) +
                            " %: " + Counted(progress.Good, "good") + ", " + Counted(progress.Bad, "bad");
        YieldToEvents();
        return isWanted();
    };
    TableRefusal firstBad;
    const TableResult result = CountTable(file->Bytes.View(), w.Path, options, firstBad);
    if (result.Cancelled || !isWanted()) return;
    // A row far behind may be the first that shows the decimal delimiter.
    if (!result.Refusal.Refused() && result.Form.Decimal != w.Preview.Form.Decimal) {
        options.Decimal = result.Form.Decimal;
        ShowPreview(options);
    }
    w.Count.Done = true;
    w.Count.Good = result.Refusal.Refused() ? 0 : result.Points.Count();
    w.Count.Bad = result.Skipped;
    w.Count.Refusal = result.Refusal;
    w.Count.FirstBad = firstBad;
    w.Count.Notes = result.Notes;
    std::erase_if(w.Count.Notes, [](const Note& note) { return note.Code == NoteCode::LinesSkipped; });
    ShowCount();
}

// After each change of what the user has decided.
void Find() {
    ++w.Change;
    TakeText();
    ShowPreview(Wanted());
    CountRows();
}

std::string ChosenEntry(const Control& list) {
    return list.Index <= 0 ? "" : list.Text;
}

// The text without blanks, which only part what begins comments.
std::optional<std::string> TypedComment() {
    std::string marks = w.TextComment.Text;
    if (marks == kUsualComments) return std::nullopt;
    std::erase(marks, ' ');
    return marks;
}

void ShowDecided() {
    w.TextSkip.Text = std::to_string(w.Decided.Skip);
    w.TextComment.Text = w.Decided.Comment.value_or(kUsualComments);
    w.WrongSkip.clear();
}

void Close() {
    UnloadWindow(FormTable_Entry.Name);
    AskForNextTable();
}

}  // namespace

const WindowEntry FormTable_Entry = {
    .Name = "FormTable",
    .State = &w.Window,
    .Controls = kControls,
    .Fresh = [] { w = FormTable{}; },
    .Load = FormTable::Form_Load,
    .Escape = FormTable::Form_Escape,
    .Stand = WindowStand::Dialog,
};

void FormTable::Form_Load() {
    w.Side = Tables.Asked;
    w.Path = PathOfSide(w.Side).Text;
    w.LabelFile.Text = std::string(NameOfSide(w.Side)) + ": " + w.Path;
    FillLists();
    const BusyPointer busy;
    w.File = std::make_shared<OpenTable>();
    if (!w.Path.empty()) w.File->Bytes = ReadFile(w.Path);
    const std::string mapping = MappingOfSide(w.Side).value_or("");
    w.Decided = MappingFromText(mapping).value_or(TableOptions());
    w.CheckStrict.Value = std::exchange(w.Decided.SkipBad, false) ? 0 : 1;
    ShowDecided();
    ++w.Change;
    TakeText();
    ShowPreview(Wanted());
    CountRows();
}

void FormTable::Form_Escape() {
    Close();
}

void FormTable::ComboDelimiter_Click() {
    const std::string chosen = ChosenEntry(w.ComboDelimiter);
    w.Decided.Delimiter = '\0';
    for (const DelimiterWord& word : TableDelimiterWords())
        if (chosen == word.Name) w.Decided.Delimiter = word.Delimiter;
    Find();
}

void FormTable::ComboDecimal_Click() {
    const std::string chosen = ChosenEntry(w.ComboDecimal);
    w.Decided.Decimal = chosen.empty() ? '\0' : chosen.front();
    Find();
}

void FormTable::ComboEncoding_Click() {
    TableEncoding encoding{};
    w.Decided.Encoding.reset();
    if (TableEncodingByName(ChosenEntry(w.ComboEncoding), encoding)) w.Decided.Encoding = encoding;
    Find();
}

void FormTable::ComboUnit_Click() {
    w.Decided.Unit = ChosenEntry(w.ComboUnit);
    Find();
}

void FormTable::TextSkip_Change() {
    const std::string& text = w.TextSkip.Text;
    std::int64_t lines = 0;
    const auto [end, wrong] = std::from_chars(text.data(), text.data() + text.size(), lines);
    const bool good = wrong == std::errc() && end == text.data() + text.size() && lines >= 0;
    w.WrongSkip = good || text.empty() ? "" : text;
    w.Decided.Skip = good ? lines : 0;
    Find();
}

void FormTable::TextComment_Change() {
    w.Decided.Comment = TypedComment();
    Find();
}

void FormTable::CheckStrict_Click() {
    if (w.Count.Done) ShowCount();
}

// One of the roles: a column that had it gets the one that this one had.
void FormTable::ComboRole_Click() {
    std::vector<TableRole> roles = w.Preview.Form.Columns;
    roles.resize(std::max(roles.size(), std::min(w.Preview.Columns, kRoleCombos)), TableRole::Pass);
    for (std::size_t i = 0; i < std::min(roles.size(), kRoleCombos); ++i) {
        const auto chosen = static_cast<TableRole>(std::max(w.ComboRole[i].Index, 0));
        if (chosen == roles[i]) continue;
        const auto other = std::find(roles.begin(), roles.end(), chosen);
        if (chosen != TableRole::Pass && other != roles.end()) *other = roles[i];
        roles[i] = chosen;
        break;
    }
    w.Decided.Columns = std::move(roles);
    Find();
}

void FormTable::BtnAuto_Click() {
    w.Decided = TableOptions();
    ShowDecided();
    Find();
}

void FormTable::BtnPlain_Click() {
    TakeMappingOfSide(w.Side, w.Path, "");
    Close();
}

void FormTable::BtnOK_Click() {
    if (!w.Count.Done) {  // what is counted for somebody else ends
        ++w.Change;
        CountRows();
        if (!w.Count.Done) return;
    }
    const std::string obstacle = Obstacle();
    if (!obstacle.empty()) {
        ShowMessage("The table cannot be taken so. " + obstacle);
        return;
    }
    TableOptions options = w.Decided;
    // Else the same file would be read in another unit some day.
    if (options.Unit.empty() && w.Preview.Form.Unit.empty()) options.Unit = UsualTableUnit();
    options.SkipBad = w.CheckStrict.Value != 1;
    TakeMappingOfSide(w.Side, w.Path, MappingText(options));
    Close();
}

void FormTable::BtnCancel_Click() {
    Close();
}

}  // namespace corvinade::import
