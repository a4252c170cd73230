// The records of job and program run by name: one description that the automation, `info` and the job
// file share.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "core/arrays.h"
#include "core/job.h"
#include "core/notes.h"
#include "core/rooms.h"
#include "core/screen_record.h"

namespace corvinade::core {

// Fixed arrays inside a record.
struct TextRow {
    std::string* First;
    int Count;
};
// The rows of a table of texts: `Columns` lists of one length, from 1, each a column from its element 0 on.
struct TextTable {
    std::vector<std::string>* First;
    int Columns;
};
struct NumberRow16 {
    std::int16_t* First;
    int Count;
};
struct NumberRow {
    double* First;
    int Count;
};
struct ViewRow {
    ScreenRecord* First;
    int Count;
};

// A column of one of the job's point sets, whose length goes with those of the others.
struct PointsPlace {
    PointSet* Set;
    PointPart Part;
};
// A count that follows from the job's points.
struct CountPlace {
    JobRecord* Of;
    JobCount Count;
};

// Flags are 16-bit numbers, -1 and 0.
using RecordPlace = std::variant<std::int16_t*, std::int32_t*, float*, double*, std::string*,
                                 std::vector<std::string>*, std::vector<TaggedValue>*, std::vector<double>*,
                                 std::vector<std::int16_t>*, Matrix*, TextRow, TextTable, NumberRow16,
                                 NumberRow, ViewRow, const std::vector<Note>*, PointsPlace, CountPlace>;

enum class Storage : std::uint8_t {
    JobFile,  // stored in the job file
    Run       // lives for the program run
};

struct RecordEntry {
    const char* Name;
    RecordPlace Place;
    Storage Stored;
};

// The records of core/, and of all rooms together (the table above all rooms puts them side by side).
std::span<const RecordEntry> CoreRecords();
std::span<const std::span<const RecordEntry>> AllRecords();

const RecordEntry* FindRecord(std::string_view name);  // null when there is none

// The fields of a view record by name, in the order in which it is stored.
using ScreenFieldPlace =
    std::variant<std::int16_t ScreenRecord::*, std::int32_t ScreenRecord::*, float ScreenRecord::*,
                 double ScreenRecord::*, std::string ScreenRecord::*, std::vector<double> ScreenRecord::*,
                 std::vector<std::int16_t> ScreenRecord::*, std::vector<FlagRecord> ScreenRecord::*,
                 Mat3 ScreenRecord::*>;
// The indices of an array of a view: rows 1 to Rows first, where it has two of them; then columns from
// LowestColumn, as many as there are elements, or exactly Columns.
struct ScreenArray {
    ArrayShape ScreenRecord::*Shape = nullptr;  // null: the field is no array
    std::uint32_t Rows = 0;
    std::int32_t LowestColumn = 0;
    std::uint32_t Columns = 0;
};
struct ScreenField {
    const char* Name;
    ScreenFieldPlace Place;
    ScreenArray Array = {};
};
std::span<const ScreenField> ScreenFields();

// The fields of a flag record, likewise.
using FlagFieldPlace = std::variant<std::int16_t FlagRecord::*, std::int32_t FlagRecord::*,
                                    float FlagRecord::*, std::string FlagRecord::*>;
struct FlagField {
    const char* Name;
    FlagFieldPlace Place;
};
std::span<const FlagField> FlagFields();

}  // namespace corvinade::core
