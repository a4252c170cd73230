// Tables among the files of the input dialog.
#include "import/input_tables.h"

#include <algorithm>
#include <utility>

#include "core/files.h"
#include "core/job.h"
#include "core/notes.h"
#include "core/platform.h"
#include "core/text.h"
#include "core/units.h"
#include "import/form_input_files.h"
#include "import/form_table.h"
#include "import/point_file.h"
#include "import/table_mapping.h"
#include "import/table_preview.h"
#include "import/table_sigmas.h"
#include "import/table_words.h"

namespace corvinade::import {

namespace {

constexpr const char* kSideNames[] = {"Start system (MCS)", "Target system (OCS)", "More start points"};

std::size_t Place(TableSide side) {
    return static_cast<std::size_t>(side);
}

TargetKind KindOfTarget() {
    return static_cast<TargetKind>(std::max(InputFiles.ComboOCS_Data.Index, 0));
}

// Start points are always points; the target may be a robot program, or a shape.
bool HasPoints(TableSide side) {
    return side != TableSide::Target || KindOfTarget() == TargetKind::Points;
}

// Files whose rows are coordinates first, with what they measured behind.
bool BeginsWithX(const std::string& path) {
    const std::string upper = UpperAscii(path);
    return upper.ends_with(".XYZ") || upper.ends_with(".PTS") || upper.ends_with(".ASC");
}

bool IsAskedFor(TableSide side) {
    const std::string& path = PathOfSide(side).Text;
    if (!HasPoints(side) || !File_Exist(path)) return false;
    try {
        const BusyPointer busy;
        const FileBytes bytes = ReadFile(path);
        TableOptions options = OptionsOfSide(side, {});
        options.PlainDecimal = SystemDecimal();
        options.GoesOn = [side, path](const TableProgress&) {
            YieldToEvents();
            return InputFiles.Window.Loaded && PathOfSide(side).Text == path;
        };
        return !IsPlainTable(bytes.View(), path, options) && LooksLikeTable(bytes.View(), path, options);
    } catch (const PlatformError&) {  // the import tells it
        return false;
    }
}

struct ReadingGuard {
    ReadingGuard() { Tables.Reading = true; }
    ~ReadingGuard() { Tables.Reading = false; }
    ReadingGuard(const ReadingGuard&) = delete;
    ReadingGuard& operator=(const ReadingGuard&) = delete;
};

// A whole table. Nothing where the dialog was closed, or the table refused, which the window of tables shows.
std::optional<TableResult> ReadSide(TableSide side, const std::string& path, const std::string& mapping) {
    const BusyPointer busy;
    const ReadingGuard reading;
    const std::optional<TableOptions> decided = MappingFromText(mapping);
    TableOptions options = OptionsOfSide(side, decided.value_or(TableOptions()));
    options.GoesOn = [](const TableProgress&) {
        YieldToEvents();
        return InputFiles.Window.Loaded;
    };
    TableResult result = ReadTable(ReadFile(path).View(), path, options);
    if (result.Cancelled) return std::nullopt;
    if (!result.Refusal.Refused()) return result;
    ShowMessage(InWordsOfDesktop(result.Refusal.Text));
    if (InputFiles.Window.Loaded && PathOfSide(side).Text == path) AskForTable(side);
    return std::nullopt;
}

}  // namespace

Control& PathOfSide(TableSide side) {
    switch (side) {
        case TableSide::Target:
            return InputFiles.TextNameOCS;
        case TableSide::More:
            return InputFiles.TextNameMoreMCS;
        case TableSide::Start:
            break;
    }
    return InputFiles.TextNameMCS;
}

const char* NameOfSide(TableSide side) {
    return kSideNames[Place(side)];
}

std::string UsualTableUnit() {
    for (const UnitRow& unit : LengthUnits())
        if (Job.LengthUnitName == unit.Name) return unit.Given.front();
    return "mm";
}

TableOptions OptionsOfSide(TableSide side, TableOptions decided) {
    decided.UsualUnit = UsualTableUnit();
    decided.DoubleNames = InputFiles.OptionByID.Value != 1 || InputKindOf(KindOfTarget()).NumbersPoints ||
                          side == TableSide::More;
    decided.FirstIsX = BeginsWithX(PathOfSide(side).Text);
    return decided;
}

std::optional<std::string> MappingOfSide(TableSide side) {
    const std::string& path = PathOfSide(side).Text;
    if (path.empty()) return std::nullopt;
    const TableChoice& choice = Tables.Choices[Place(side)];
    std::string mapping;
    if (choice.Mapping && choice.Path == path) {
        mapping = *choice.Mapping;
    } else {
        if (side == TableSide::Start && path == Job.PathMCS) mapping = MappingOfJob(Job, kStartTable);
        if (side == TableSide::Target && path == Job.PathOCS) mapping = MappingOfJob(Job, kTargetTable);
        if (mapping.empty()) mapping = RememberedMapping(path);
    }
    return MappingFromText(mapping) ? std::optional(mapping) : std::nullopt;
}

void TakeMappingOfSide(TableSide side, const std::string& path, const std::string& mapping) {
    Tables.Choices[Place(side)] = {path, mapping};
    RememberMapping(path, mapping);
    ShowTables();
}

void AskForTable(TableSide side) {
    const std::string& path = PathOfSide(side).Text;
    if (path.empty()) {
        ShowMessage("There is no file for the table: choose one with Browse first");
        return;
    }
    UnloadWindow(FormTable_Entry.Name);
    Tables.Asked = side;
    ShowWindow(FormTable_Entry.Name);
}

void FilesChosen(const std::vector<TableSide>& sides) {
    for (const TableSide side : sides) {
        std::erase(Tables.ToAsk, side);
        if (!MappingOfSide(side) && IsAskedFor(side)) Tables.ToAsk.push_back(side);
    }
    ShowTables();
    if (!IsLoaded(FormTable_Entry.Name)) AskForNextTable();
}

void AskForNextTable() {
    if (!InputFiles.Window.Loaded) Tables.ToAsk.clear();
    if (Tables.ToAsk.empty()) return;
    const TableSide side = Tables.ToAsk.front();
    Tables.ToAsk.erase(Tables.ToAsk.begin());
    AskForTable(side);
}

void ShowTables() {
    const auto show = [](TableSide side, Control& label) {
        const bool table = HasPoints(side) && MappingOfSide(side).has_value();
        label.Text = table ? "read as a table" : "";
        label.ToolTip = table ? *MappingOfSide(side) : "";
    };
    if (!InputFiles.Window.Loaded) return;
    show(TableSide::Start, InputFiles.LabelTableMCS);
    show(TableSide::Target, InputFiles.LabelTableOCS);
    show(TableSide::More, InputFiles.LabelTableMore);
}

bool TakeTables(ImportRequest& request, TablesRead& tables) {
    if (Tables.Reading) return false;  // asked for inside a yield
    const TableSide sides[] = {TableSide::Start, TableSide::Target};
    const std::string paths[] = {request.StartPath, request.TargetPath};
    const bool renamed[] = {request.RenameStart, request.RenameTarget};
    for (std::size_t i = 0; i < 2; ++i)
        if (HasPoints(sides[i])) tables.Mappings[i] = MappingOfSide(sides[i]).value_or("");
    for (std::size_t i = 0; i < 2; ++i) {
        if (tables.Mappings[i].empty() || !File_Exist(paths[i])) {  // the import tells of a missing one
            tables.Mappings[i].clear();
            continue;
        }
        if (renamed[i] && request.Way == Pairing::ByCoordinate) {
            ShowMessage("The file\r\n" + paths[i] +
                        "\r\nis read as a table, and is not written anew with other names of points");
            return false;
        }
        std::optional<TableResult> read = ReadSide(sides[i], paths[i], tables.Mappings[i]);
        if (!read) return false;
        tables.Results[i] = std::move(*read);
        tables.Sigmas[i] = SigmasOfTable(tables.Results[i], paths[i]);
    }
    request.StartSigmas = &tables.Sigmas[0];
    request.TargetSigmas = &tables.Sigmas[1];
    if (!tables.Mappings[0].empty()) {
        request.StartPoints = &tables.Results[0].Points;
        // A file behind one that has been read finds its delimiter as behind any other.
        request.Delimiter = std::string(1, tables.Results[0].Form.Delimiter);
    }
    if (!tables.Mappings[1].empty()) request.TargetPoints = &tables.Results[1].Points;
    return true;
}

void KeepTables(TablesRead& tables) {
    std::vector<Note> notes;
    for (const TableResult& result : tables.Results)
        for (Note note : result.Notes) {
            note.Text = InWordsOfDesktop(note.Text);
            notes.push_back(std::move(note));
        }
    Notes.List.insert(Notes.List.begin(), notes.begin(), notes.end());
    PutMappingOfJob(Job, kStartTable, tables.Mappings[0]);
    PutMappingOfJob(Job, kTargetTable, tables.Mappings[1]);
}

bool AddTable(const std::string& path, const std::string& mapping, const std::string& prefix,
              const std::string& suffix) {
    if (Tables.Reading) return false;
    std::optional<TableResult> read = ReadSide(TableSide::More, path, mapping);
    if (!read) return false;
    for (const Note& note : read->Notes)
        AddNote(note.Code, InWordsOfDesktop(note.Text), note.File, note.Line, note.Count);
    if (!read->SX.empty())
        AddNote(
            NoteCode::SigmaColumns,
            "The file has standard deviations, which points that are added do not get: they have no partner",
            path);
    AddMorePoints(path, std::move(read->Points), prefix, suffix);
    return true;
}

}  // namespace corvinade::import
