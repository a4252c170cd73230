// One file of a batch: checked, transformed, written.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "analysis/transformed_lines.h"
#include "core/rooms.h"
#include "import/point_text.h"

namespace corvinade::analysis {

// A larger file is left: it is read whole.
inline constexpr std::size_t kMostBytesOfBatchFile = std::size_t{1} << 30;

// "a.b.txt" gives "a_out.b.txt": what stands behind the first dot is the extension. A name without a dot is
// extension as a whole: "points" gives "_out.points".
std::string BatchOutName(const std::string& name);

struct BatchInput {
    PointText Text;
    LineForm Form;
    bool ColumnsChange = false;  // not all lines have the same number of delimiters, or none is known
};

// Reads a file and looks how it writes its points, with all checks of a point file and their messages.
// Run.Delimiter is that of the previous file before, and the one found behind. A file that fails a check is
// taken all the same where its points can be told: columns that change, too many decimal delimiters, both of
// them; lines that hold no points then read as zeros. Throws PlatformError, with the reason, where the file
// has to be left: unreadable, no text, empty, too large, without any delimiter, or with another decimal
// delimiter that the user does not want changed.
BatchInput ReadBatchFile(const std::string& path);

// Transforms a file into another, which is replaced whole or not at all. False, with the target as it was,
// where `goOn` has ended it. Throws PlatformError where the disk refuses, and where a coordinate is larger
// than any number. What is read otherwise than it may be meant is noted with its line and its field.
bool WriteBatchFile(const BatchInput& input, const std::string& outPath,
                    const std::function<bool(double share)>& goOn, LineCounts& counts);

// The same into what takes the bytes as they come: standard output. What has been handed on is of no use
// where it throws.
void PutBatchFile(const BatchInput& input, const std::function<void(std::string_view)>& write,
                  LineCounts& counts);

// The same without a file to write: counts and notes.
void LookIntoBatchFile(const BatchInput& input, LineCounts& counts);

// What a batch has to tell at its end.
struct BatchNotes {
    struct Left {
        std::string Path, Why;
    };
    struct Doubtful {
        std::string Path;
        LineCounts Counts;
    };
    std::int64_t Done = 0;  // files written
    std::vector<Left> FilesLeft;
    std::vector<Doubtful> WithoutNumbers;  // files with lines that hold no three numbers
};

// A line for each file that was left, and for each with lines that are no points; at most `most` of a kind,
// 0 = all.
std::vector<std::string> NotesAsLines(const BatchNotes& notes, std::size_t most);

}  // namespace corvinade::analysis
