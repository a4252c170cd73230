// Records of the job and of the program run as JSON, and back.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

#include "core/records.h"
#include "core/rooms.h"

namespace corvinade::cli {

// Numbers with full precision, flags -1 and 0, an empty tagged value null, arrays with their element 0,
// two-dimensional arrays as rows.
nlohmann::json RecordToJson(const RecordEntry& record);

// Writes a record. Gives "" or what is wrong, the record then being as it was: a value of another kind
// or size than the record, or one after which counts and arrays of the job would not fit each other.
std::string RecordFromJson(const RecordEntry& record, const nlohmann::json& value);

// {code, severity, text, file, line, count} of each; file and line null where there is none.
nlohmann::json NotesToJson(std::span<const Note> notes);

// The state of a graphics window, or of a saved view, by the names of its fields.
nlohmann::json ScreenToJson(const ScreenRecord& view);

// {name, version} of the program, as every object has it that a command prints.
nlohmann::json ProgramAsJson();

}  // namespace corvinade::cli
