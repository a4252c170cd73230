// One file of a batch.
#include "analysis/batch_file.h"

#include <algorithm>
#include <limits>

#include "core/file_writer.h"
#include "core/files.h"
#include "core/notes.h"
#include "core/numbers.h"
#include "core/platform.h"
#include "core/run.h"
#include "core/text.h"
#include "import/point_file_checks.h"

namespace corvinade::analysis {

namespace {

[[noreturn]] void Leave(const std::string& path, const std::string& why) {
    throw PlatformError{"Cannot read \"" + path + "\": " + why};
}

// The first line that holds anything.
std::string_view FirstFilledLine(const PointText& file) {
    LineWalk lines(file);
    std::string_view line;
    while (lines.Next(line))
        if (line.find_first_not_of(" \t") != std::string_view::npos) return line;
    return {};
}

// Where the checks have broken off they have told nothing of names. Blanks and tabs divide the fields where
// no other delimiter is known.
bool LinesHoldNames(PointText& file, const std::string& delimiter) {
    if (!delimiter.empty()) {
        std::int64_t columns = 0, badRow = 0;
        Diverse_Checks(file, columns, delimiter, badRow);
        return columns != 3;
    }
    std::int32_t fields = 0;
    AnzSpalten(std::string(FirstFilledLine(file)), fields, delimiter);
    if (fields < 3) Leave(file.Path, "it has no delimiter between its fields");
    return fields != 3;
}

bool ColumnsChange(PointText& file, const std::string& delimiter) {
    std::int64_t columns = 0, badRow = 1;
    if (!delimiter.empty()) Diverse_Checks(file, columns, delimiter, badRow);
    return badRow != 0;
}

// Do the coordinates bear the comma where the system has the point?
bool HasForeignComma(const PointText& file, const LineForm& form) {
    if (SystemDecimal() == ',' || form.Delimiter == ',') return false;
    LineWalk lines(file);
    std::string_view line;
    std::string scratch;
    while (lines.Next(line)) {
        if (form.HasName) CutField(line, form.Delimiter, scratch);
        for (int field = 0; field < 3; ++field)
            if (CutField(line, form.Delimiter, scratch).find(',') != std::string_view::npos) return true;
    }
    return false;
}

}  // namespace

std::string BatchOutName(const std::string& name) {
    const std::size_t dot = name.find('.');
    if (dot == std::string::npos) return "_out." + name;
    return name.substr(0, dot) + "_out" + name.substr(dot);
}

BatchInput ReadBatchFile(const std::string& path) {
    if (FileSize(path) > kMostBytesOfBatchFile) Leave(path, "it is larger than 1 GiB");
    BatchInput input = {.Text = LoadPointText(path)};
    if (input.Text.Text.empty()) Leave(path, "it is empty");
    Run.ImportFailed = kFalse;
    Flag hasName = kFalse;
    ASCII_FileCheck(input.Text, hasName, Run.Delimiter);
    const bool failed = IsTrue(Run.ImportFailed);
    Run.ImportFailed = kFalse;
    input.ColumnsChange = failed && ColumnsChange(input.Text, Run.Delimiter);
    input.Form.HasName = failed ? LinesHoldNames(input.Text, Run.Delimiter) : IsTrue(hasName);
    input.Form.Delimiter = DelimiterCharacter(Run.Delimiter);
    // Every value would be cut at its comma.
    if (failed && HasForeignComma(input.Text, input.Form))
        Leave(path, "its decimal delimiter is the comma, that of the system is the point");
    return input;
}

namespace {

// Fields of a line that hold anything: what stands between its delimiters, or between blanks and tabs where
// these delimit. A mark of a point of a network at the end is none.
int CountFields(std::string_view line, char delimiter) {
    std::string scratch;
    int count = 0;
    while (HoldsMore(line) && !IsMark(line)) {
        if (delimiter == '\0' || delimiter == ' ') {
            CutField(line, delimiter, scratch);
            ++count;
        } else {
            const std::size_t end = std::min(line.find(delimiter), line.size());
            if (HoldsMore(line.substr(0, end))) ++count;
            line.remove_prefix(std::min(end + 1, line.size()));
        }
    }
    return count;
}

// Are the fields of a line from `first` on, counted from 0, all numbers? Of commas of thousands they are.
bool SurplusIsOfNumbers(std::string_view line, char delimiter, int first) {
    std::string scratch;
    double value = 0;
    for (int field = 0; HoldsMore(line) && !IsMark(line); ++field) {
        const std::string_view cell = CutField(line, delimiter, scratch);
        if (field >= first && !TextToNumber(cell, '.', value)) return false;
    }
    return true;
}

// Rows with more fields than other rows that hold a point. The comma of thousands makes such a field, and all
// that stands behind it moves on by one, as the blank of thousands does; a file to fit is refused for them.
// Remarks, and columns behind other delimiters, move nothing.
void NoteChangedColumns(const BatchInput& input, RowNotes& notes) {
    const char delimiter = input.Form.Delimiter;
    if (delimiter != ',' && delimiter != ' ' && delimiter != '\0') return;
    const int wanted = input.Form.HasName ? 4 : 3;
    const auto walk = [&input, wanted, delimiter](auto take) {
        LineWalk lines(input.Text);
        std::string_view line;
        std::string decoded;
        while (lines.Next(line)) {
            const std::string_view text = DecodedLine(input.Text, line, decoded);
            const int fields = CountFields(text, delimiter);
            if (fields >= wanted) take(fields, lines.Row, text);
        }
    };
    int fewest = std::numeric_limits<int>::max();
    walk([&fewest](int fields, std::int64_t, std::string_view) { fewest = std::min(fewest, fields); });
    walk([&](int fields, std::int64_t row, std::string_view text) {
        if (fields == fewest || !SurplusIsOfNumbers(text, delimiter, fewest)) return;
        notes.Count(NoteCode::ColumnsChanged, row, [fields, fewest, &input] {
            return "The row has " + std::to_string(fields) + " fields where others have " +
                   std::to_string(fewest) + "; its first ones are taken as " +
                   (input.Form.HasName ? "name, x, y and z" : "x, y and z");
        });
    });
}

// Commas of thousands in every row: all rows have as many fields then, and no other row shows it.
void NoteCommasOfThousands(const BatchInput& input) {
    if (input.Form.Delimiter != ',') return;
    const std::size_t wanted = input.Form.HasName ? 4 : 3;
    LineWalk lines(input.Text);
    std::string_view line;
    std::string decoded;
    std::int64_t first = 0, count = 0;
    while (lines.Next(line)) {
        const std::string_view text = DecodedLine(input.Text, line, decoded);
        if (CountFields(text, ',') < static_cast<int>(wanted)) continue;  // holds no point
        if (!CommasOfThousands(text, wanted, input.Form.HasName)) return;
        if (++count == 1) first = lines.Row;
    }
    if (count > 0)
        AddNote(NoteCode::ColumnsChanged, kCommasOfThousands, input.Text.Path, static_cast<int>(first),
                static_cast<int>(count));
}

// Transforms a file into what `write` takes, and notes what its rows hold.
bool TransformAndNote(const BatchInput& input, const std::function<void(std::string_view)>& write,
                      const std::function<bool(double share)>& goOn, LineCounts& counts) {
    RowNotes rows(input.Text.Path, input.Form.Delimiter, PointFields(input.Form.HasName));
    if (!TransformLines(input.Text, input.Form, {write, goOn, false, &rows}, counts)) return false;
    if (input.ColumnsChange) NoteChangedColumns(input, rows);
    rows.Write();
    if (counts.MoreFields > 0 && !input.ColumnsChange) NoteCommasOfThousands(input);
    if (input.Form.HasName) NoteDoubleNames(input.Text, input.Form.Delimiter);
    if (counts.MoreFields > 0)
        AddNote(NoteCode::ColumnsIgnored, "Fields behind z are not read", input.Text.Path,
                static_cast<int>(counts.FirstMore), static_cast<int>(counts.MoreFields));
    return true;
}

}  // namespace

bool WriteBatchFile(const BatchInput& input, const std::string& outPath,
                    const std::function<bool(double share)>& goOn, LineCounts& counts) {
    FileBeside out(outPath);
    if (!TransformAndNote(
            input, [&out](std::string_view lines) { out.Write(lines); }, goOn, counts))
        return false;
    out.Keep(Keeping::Unflushed);
    return true;
}

void PutBatchFile(const BatchInput& input, const std::function<void(std::string_view)>& write,
                  LineCounts& counts) {
    TransformAndNote(input, write, nullptr, counts);
}

void LookIntoBatchFile(const BatchInput& input, LineCounts& counts) {
    PutBatchFile(
        input, [](std::string_view) {}, counts);
}

std::vector<std::string> NotesAsLines(const BatchNotes& notes, std::size_t most) {
    std::vector<std::string> lines;
    const auto shown = [most](std::size_t all) { return most == 0 ? all : std::min(most, all); };
    const auto rest = [&](std::size_t all) {
        if (all > shown(all)) lines.push_back("and " + std::to_string(all - shown(all)) + " more");
    };
    for (std::size_t i = 0; i < shown(notes.FilesLeft.size()); ++i)
        lines.push_back("left: " + notes.FilesLeft[i].Why);
    rest(notes.FilesLeft.size());
    for (std::size_t i = 0; i < shown(notes.WithoutNumbers.size()); ++i) {
        const auto& [path, counts] = notes.WithoutNumbers[i];
        lines.push_back("\"" + path + "\": " + std::to_string(counts.WithoutNumbers) + " of " +
                        std::to_string(counts.Lines) + " lines held no three numbers, the first in line " +
                        std::to_string(counts.FirstWithout));
    }
    rest(notes.WithoutNumbers.size());
    return lines;
}

}  // namespace corvinade::analysis
