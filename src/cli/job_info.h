// What the open job holds, for people, as JSON, and as CSV.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

#include "core/rooms.h"

namespace corvinade::cli {

// What is known of the file besides the job in it.
struct JobFileFacts {
    std::string Path, Version;
    std::uint64_t Bytes = 0;
    std::vector<std::string> Views;  // names of the saved views
};

void WriteJobTable(const JobFileFacts& file, std::ostream& out, bool colour);

// The same for programs. `records` adds every stored record by its name, with all points.
void WriteJobJson(const JobFileFacts& file, bool records, std::ostream& out);

// The points, a line a pair or a point without partner, with full precision in mm.
void WriteJobCsv(std::ostream& out);

}  // namespace corvinade::cli
