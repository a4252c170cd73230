// Tables and carriers among the files of the input dialog.
#include "import/input_tables.h"

#include <algorithm>
#include <utility>

#include "core/desktop_defaults.h"
#include "core/files.h"
#include "core/job.h"
#include "core/notes.h"
#include "core/platform.h"
#include "core/text.h"
#include "core/units.h"
#include "import/cloud_columns.h"
#include "import/cloud_points.h"
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

// Pairs are found by the names of the points.
bool NamesMustDiffer(TableSide side) {
    return InputFiles.OptionByID.Value == 1 && !InputKindOf(KindOfTarget()).NumbersPoints &&
           side != TableSide::More;
}

bool IsAskedFor(TableSide side) {
    const std::string& path = PathOfSide(side).Text;
    if (!HasPoints(side) || !File_Exist(path) || CarrierOfSide(side)) return false;
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
std::optional<TableResult> ReadTableSide(TableSide side, const std::string& path,
                                         const std::string& mapping) {
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

// All points of a carrier. Nothing where the dialog was closed, or the file refused, which has been shown.
std::optional<TableResult> ReadCarrierSide(TableSide side, const std::string& path) {
    CloudReading reading;
    reading.NamesOnce = NamesMustDiffer(side);
    reading.UsualUnitsPerMm = UnitsPerMm(UsualTableUnit());
    reading.GoesOn = [] {
        YieldToEvents();
        return InputFiles.Window.Loaded;
    };
    try {
        std::optional<CloudSet> set = ReadCloud(path, reading, side == TableSide::Target);
        if (!set) return std::nullopt;
        TableResult result;
        result.Notes = NotesOfCloud(set->Facts, path, false);
        result.Points = std::move(set->Points);
        return result;
    } catch (const PlatformError& error) {
        ShowMessage(InWordsOfDesktop(error.What));
        return std::nullopt;
    }
}

std::optional<TableResult> ReadSide(TableSide side, const std::string& path,
                                    const std::optional<std::string>& mapping) {
    const BusyPointer busy;
    const ReadingGuard reading;
    return mapping ? ReadTableSide(side, path, *mapping) : ReadCarrierSide(side, path);
}

// "a table", "a PLY cloud".
std::string InWords(TableSide side) {
    const std::optional<CloudKind> carrier = CarrierOfSide(side);
    return carrier ? CloudKindInWords(*carrier) : "a table";
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
    decided.DoubleNames = !NamesMustDiffer(side);
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

std::optional<CloudKind> CarrierOfSide(TableSide side) {
    const std::string& path = PathOfSide(side).Text;
    const TableChoice& choice = Tables.Choices[Place(side)];
    const bool saidPlain = choice.Mapping && choice.Mapping->empty() && choice.Path == path;
    if (!HasPoints(side) || saidPlain || MappingOfSide(side) || !File_Exist(path)) return std::nullopt;
    const CloudKind kind = KindOfFile(path);
    return IsCarrier(kind) ? std::optional(kind) : std::nullopt;
}

bool IsReadHere(TableSide side) {
    return HasPoints(side) && (MappingOfSide(side) || CarrierOfSide(side));
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
    const std::optional<CloudKind> carrier = CarrierOfSide(side);
    if (carrier && *carrier != CloudKind::MapPoints && *carrier != CloudKind::Tum) {
        ShowMessage("The file\r\n" + path + "\r\nis read as " + CloudKindInWords(*carrier) +
                    ", which says by itself what its columns are");
        return;
    }
    UnloadWindow(FormTable_Entry.Name);
    Tables.Asked = side;
    ShowWindow(FormTable_Entry.Name);
}

void FilesChosen(const std::vector<TableSide>& sides) {
    for (const TableSide side : sides) {
        std::erase(Tables.ToAsk, side);
        Tables.Looked[Place(side)] = PathOfSide(side).Text;
        if (!MappingOfSide(side) && IsAskedFor(side)) Tables.ToAsk.push_back(side);
    }
    ShowTables();
    if (!IsLoaded(FormTable_Entry.Name)) AskForNextTable();
}

bool AsksForTyped(const std::vector<TableSide>& sides) {
    if (!DesktopDefaults.TypedFiles || Tables.Reading) return false;
    std::vector<TableSide> typed;
    for (const TableSide side : sides)
        if (Tables.Looked[Place(side)] != PathOfSide(side).Text) typed.push_back(side);
    if (typed.empty()) return false;
    const bool wasOpen = IsLoaded(FormTable_Entry.Name);
    FilesChosen(typed);
    return !Tables.ToAsk.empty() || (!wasOpen && IsLoaded(FormTable_Entry.Name));
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
        const bool read = IsReadHere(side);
        label.Text = read ? "read as " + InWords(side) : "";
        label.ToolTip = read ? MappingOfSide(side).value_or("") : "";
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
    // Ahead of the reading, which yields: fields may change meanwhile.
    std::array<std::optional<std::string>, 2> mappings;
    for (std::size_t i = 0; i < 2; ++i) {
        mappings[i] = MappingOfSide(sides[i]);
        // The import tells of a missing one.
        tables.Taken[i] = IsReadHere(sides[i]) && File_Exist(paths[i]);
        if (!tables.Taken[i] || !renamed[i] || request.Way != Pairing::ByCoordinate) continue;
        ShowMessage("The file\r\n" + paths[i] + "\r\nis read as " + InWords(sides[i]) +
                    ", and is not written anew with other names of points");
        return false;
    }
    for (std::size_t i = 0; i < 2; ++i) {
        if (!tables.Taken[i]) continue;
        std::optional<TableResult> read = ReadSide(sides[i], paths[i], mappings[i]);
        if (!read) return false;
        tables.Mappings[i] = mappings[i].value_or("");
        tables.Results[i] = std::move(*read);
        tables.Sigmas[i] = SigmasOfTable(tables.Results[i], paths[i]);
    }
    request.StartSigmas = &tables.Sigmas[0];
    request.TargetSigmas = &tables.Sigmas[1];
    if (tables.Taken[0]) request.StartPoints = &tables.Results[0].Points;
    if (tables.Taken[1]) request.TargetPoints = &tables.Results[1].Points;
    // A file behind one that has been read finds its delimiter as behind any other.
    if (!tables.Mappings[0].empty()) request.Delimiter = std::string(1, tables.Results[0].Form.Delimiter);
    return true;
}

void KeepTables(TablesRead& tables) {
    const std::vector<Note> behind = std::exchange(Notes.List, {});
    for (const TableResult& result : tables.Results)
        for (const Note& note : result.Notes)
            AddNote(note.Code, InWordsOfDesktop(note.Text), note.File, note.Line, note.Count);
    Notes.List.insert(Notes.List.end(), behind.begin(), behind.end());
    PutMappingOfJob(Job, kStartTable, tables.Mappings[0]);
    PutMappingOfJob(Job, kTargetTable, tables.Mappings[1]);
}

bool AddTable(const std::string& path, const std::string& prefix, const std::string& suffix) {
    if (Tables.Reading) return false;
    std::optional<TableResult> read = ReadSide(TableSide::More, path, MappingOfSide(TableSide::More));
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
