// The files of the input dialog that are no plain point files: which of them are read as tables, or as clouds
// and other carriers, how, and what the import takes in their place.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/measurement_sigmas.h"
#include "core/rooms.h"
#include "core/window.h"
#include "import/cloud.h"
#include "import/import_request.h"
#include "import/table_reader.h"

namespace corvinade::import {

// The fields of the dialog that name a file of points.
enum class TableSide : std::uint8_t { Start, Target, More };
inline constexpr std::size_t kTableSides = 3;

// How a file of the dialog is read, as the user has said in the window of tables.
struct TableChoice {
    std::string Path;                    // of this file alone
    std::optional<std::string> Mapping;  // table_mapping.h; "" = as a plain file, nothing = nobody has said
};

struct InputTablesRecord {
    std::array<TableChoice, kTableSides> Choices;
    std::vector<TableSide> ToAsk;                 // whose window opens when the one that is open closes
    TableSide Asked = TableSide::Start;           // whose window is open, or opens next
    std::array<std::string, kTableSides> Looked;  // the file that was looked at last, table or not
    bool Reading = false;                         // a table is read, and yields
};
inline InputTablesRecord Tables;

Control& PathOfSide(TableSide side);     // the field of the dialog
const char* NameOfSide(TableSide side);  // "Start system (MCS)"

// A file has been chosen or dropped for these sides: those that are no plain point file, and look like a
// table, are asked for in the window of tables, one after the other. Clouds and other carriers are none of
// these. Reads the files; what cannot be read is left to the import.
void FilesChosen(const std::vector<TableSide>& sides);

// Ahead of an import, with the desktop default TypedFiles: files whose names were typed are looked at as
// chosen ones are, each once. True where the window of tables has opened for one, or will: the import waits.
bool AsksForTyped(const std::vector<TableSide>& sides);

// Opens the window of tables for the file of a side. Says so where there is none, or it is a cloud without
// columns to choose among, and throws PlatformError where it cannot be read.
void AskForTable(TableSide side);

// The window of tables has closed: the next one opens.
void AskForNextTable();

// What the user decides about the table of a side, by the dialog's choices, the job or the settings, in this
// order. Nothing: the file is read as a plain one.
std::optional<std::string> MappingOfSide(TableSide side);

// The carrier of points that the file of a side is, where it says by itself what it holds and the user has
// not said that it is a table or a plain file. Nothing: it is none.
std::optional<CloudKind> CarrierOfSide(TableSide side);

// Is the file of a side read here, as a table or a carrier, and not by the reader of plain files?
bool IsReadHere(TableSide side);

// The user decides it, for this dialog and for the settings: "" = the file is a plain one.
void TakeMappingOfSide(TableSide side, const std::string& path, const std::string& mapping);

// What has been decided, completed by what the dialog says: unit, kind of file, way of pairing.
TableOptions OptionsOfSide(TableSide side, TableOptions decided);

// The name of the unit that lengths of files are in where nothing says another.
std::string UsualTableUnit();

// The points that the import takes instead of files.
struct TablesRead {
    std::array<TableResult, 2> Results;  // start, target; of a carrier points and notes alone
    std::array<PointAccuracies, 2> Sigmas;
    std::array<std::string, 2> Mappings;  // "" = the file is no table
    std::array<bool, 2> Taken{};          // the file has been read: a table, or a carrier
    bool Any() const { return Taken[0] || Taken[1]; }
};
// Reads the tables and carriers among the files of a request, and puts them in. False where one cannot be
// read: the reason has been shown, and of a table the window is open with it, or the dialog has been closed
// meanwhile.
bool TakeTables(ImportRequest& request, TablesRead& tables);

// Behind an import that took them: their notes stand first, and the job keeps how they were read.
void KeepTables(TablesRead& tables);

// Adds the points of the third file, which is a table or a carrier. False as above.
bool AddTable(const std::string& path, const std::string& prefix, const std::string& suffix);

// What the dialog tells beside each file of how it is read.
void ShowTables();

}  // namespace corvinade::import
