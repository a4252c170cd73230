// How a user has told a table to be read, kept for the next time: by the name of the file in the settings,
// and with the job that has its points. It is written as the options of the command line say it, so that it
// reads the same there: "--format table --columns name,x,y,z --delimiter semicolon --decimal , --unit m".
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "core/job.h"
#include "core/job_block.h"
#include "core/rooms.h"
#include "import/table_reader.h"

namespace corvinade::import {

struct DelimiterWord {
    const char* Name;  // "semicolon"
    char Delimiter;    // ' ' = blanks
};
std::span<const DelimiterWord> TableDelimiterWords();
const char* TableDelimiterWord(char delimiter);  // "" of another character

// Of `options` those that the user decides; what is not decided is found anew each time, and not told. Never
// empty.
std::string MappingText(const TableOptions& options);

// Nothing where the text is no such mapping. An option that is not named is not decided.
std::optional<TableOptions> MappingFromText(std::string_view text);

// --- By file, in the settings -----------------------------------------------------------------------------

inline constexpr int kMappingsKept = 20;  // the oldest one goes

// Keeps the mapping of a file, or with "" forgets it. A path with a tab or a line end has none.
void RememberMapping(const std::string& path, const std::string& mapping);
std::string RememberedMapping(const std::string& path);  // "" where there is none

// --- With the job -----------------------------------------------------------------------------------------

// The mapping that the start or the target points of a job were read by, member kStartTable or kTargetTable
// of its block (core/job_block.h); "" = their file was a plain one, or none of points.
std::string MappingOfJob(const JobRecord& job, std::string_view member);
void PutMappingOfJob(JobRecord& job, std::string_view member, const std::string& mapping);

}  // namespace corvinade::import
