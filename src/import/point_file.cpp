// Reading of point files into the job.
#include "import/point_file.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <limits>
#include <string_view>
#include <unordered_set>

#include "core/file_state.h"
#include "core/job.h"
#include "core/measurement_sigmas.h"
#include "core/notes.h"
#include "core/numbers.h"
#include "core/platform.h"
#include "core/run.h"
#include "core/text.h"
#include "core/units.h"
#include "import/long_import.h"
#include "import/point_file_checks.h"
#include "import/point_text.h"
#include "import/row_notes.h"

namespace corvinade::import {

namespace {

// Points as they come from a file.
struct FilePoints {
    PointSet Set;
    std::string Error;       // why the reading broke off; empty = it did not
    bool Cancelled = false;  // it broke off because the import must end
};

// A long file yields as often.
constexpr std::size_t kPointsBetweenYields = 1 << 12;

// What a field that is no number does: it ends the reading of start points, and leaves the value of a
// target point as it is. The difference is the program's way.
enum class BadField { Ends, LeavesValue };

constexpr std::array<double, 16> kPowersOfTen = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                 1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};

// Cuts the next field off a line where it is a plain decimal number, in one go with its conversion. Up to
// 15 digits are a whole number that a 64-bit float holds exactly, and so is the power of ten, so that one
// division gives the correctly rounded value. False, and the line as it was, for any other field.
//   passed  set where a delimiter stands in front of the field, behind the one that ended the field before
bool CutPlainDecimal(std::string_view& line, char delimiter, char decimal, double& value, bool& passed) {
    const char* at = line.data();
    const char* const end = at + line.size();
    while (at != end && *at == delimiter) ++at;
    passed |= at != line.data();
    while (at != end && (*at == ' ' || *at == '\t')) ++at;
    const bool negative = at != end && *at == '-';
    if (negative) ++at;
    std::uint64_t number = 0;
    const auto takeDigits = [&] {
        const char* const begin = at;
        for (; at != end; ++at) {
            const unsigned digit = static_cast<unsigned>(static_cast<unsigned char>(*at)) - '0';
            if (digit > 9) break;
            number = number * 10 + digit;  // one that runs over has too many digits below
        }
        return static_cast<std::size_t>(at - begin);
    };
    std::size_t digits = takeDigits(), places = 0;
    if (at != end && *at == decimal && decimal != delimiter) {
        ++at;
        places = takeDigits();
        digits += places;
    }
    if (digits < 1 || digits > 15) return false;
    if (at != end && *at != delimiter && *at != ' ' && *at != '\t') return false;
    const double size = static_cast<double>(number) / kPowersOfTen[places];
    value = negative ? -size : size;
    line.remove_prefix(static_cast<std::size_t>(at - line.data()) + (at == end ? 0 : 1));
    return true;
}

constexpr std::array<const char*, 3> kAxes = {"x", "y", "z"};

// Notes on a field that is no plain decimal number.
void NoteSlowField(std::string_view field, bool good, BadField badField, const char* axis,
                   const std::string& name, std::int64_t row, RowNotes& notes) {
    const auto place = [&] { return std::string(axis) + " of point \"" + Printable(name) + "\""; };
    if (field.empty()) {
        notes.Count(NoteCode::EmptyCoordinate, row,
                    [&] { return "The " + place() + " is empty and counts as 0"; });
    } else if (good) {
        notes.LookAtDigits(field, row);
    } else if (badField == BadField::LeavesValue) {
        notes.Count(NoteCode::ValueKept, row, [&] {
            return "The field \"" + Printable(field) + "\" in " + place() +
                   " is not a number; the value stays empty, which counts as 0";
        });
    }
}

// Reads the lines of a checked file.
FilePoints ReadPoints(const PointText& file, bool hasName, char delimiter, char decimal, BadField badField) {
    std::int64_t rows = 0;
    AnzZeilen(file, rows);
    if (rows >= std::numeric_limits<std::int32_t>::max())
        throw PlatformError{"Cannot read \"" + file.Path + "\": it has more lines than a job has room for"};
    // With the delimiter of an earlier file such a one passes all checks.
    if (rows == 0) throw PlatformError{"Cannot read \"" + file.Path + "\": there is no point in it"};
    const auto n = static_cast<std::size_t>(rows);
    FilePoints points;
    PointSet& set = points.Set;
    set.Resize(static_cast<int>(n));
    const double factor = Units.LengthFactor;
    RowNotes notes(file.Path, delimiter, PointFields(hasName));
    std::size_t p = 0, ignored = 0;
    LineWalk lines(file);
    std::string_view line;
    std::string decoded, scratch;
    while (lines.Next(line)) {
        std::string_view rest = DecodedLine(file, line, decoded);
        if (rest.size() < 2 || (rest.size() < 8 && CharacterCount(rest) < 2)) {
            if (p >= n) break;
            ShowMessage("Empty Row in File " + std::string(kLineEnd) + file.Path + kLineEnd + " in line " +
                        std::to_string(p + 1 + ignored) + " will be ignored");
            notes.Count(NoteCode::EmptyRow, lines.Row, [] { return "A row without a point is passed over"; });
            ++ignored;
            continue;
        }
        ++p;
        if (p % kPointsBetweenYields == 0 &&
            !ImportGoesOn(kShareOfChecks + (1 - kShareOfChecks) * static_cast<double>(p) / rows)) {
            points.Cancelled = true;
            break;
        }
        const std::string_view whole = rest;
        bool passed = rest.front() == delimiter;
        if (hasName) {
            set.Name[p] = CutField(rest, delimiter, scratch);
        } else {
            set.Name[p] = std::to_string(p);
        }
        std::array<double, 3> xyz{};
        std::array<bool, 3> good{};
        for (std::size_t i = 0; i < 3; ++i) {
            good[i] = CutPlainDecimal(rest, delimiter, decimal, xyz[i], passed);
            std::string_view field;
            if (!good[i]) {
                passed |= !rest.empty() && rest.front() == delimiter;
                field = CutField(rest, delimiter, scratch);
                good[i] =
                    field.empty() || (TextToNumber(field, decimal, xyz[i]) && std::isfinite(xyz[i] / factor));
                NoteSlowField(field, good[i], badField, kAxes[i], set.Name[p], lines.Row, notes);
            }
            xyz[i] /= factor;
            if (good[i] || badField == BadField::LeavesValue) continue;
            points.Error = "Cannot read \"" + file.Path + "\", line " + std::to_string(lines.Row) + ": \"" +
                           Printable(field) + "\" is not a number";
            break;
        }
        if (good[0]) set.X[p] = xyz[0];
        if (good[1]) set.Y[p] = xyz[1];
        if (good[2]) set.Z[p] = xyz[2];
        if (!points.Error.empty()) break;
        // A plain row has no delimiter too many and nothing behind its last field.
        const bool marked = hasName && notes.TakeMark(rest, set.Name[p], lines.Row);
        if ((passed && delimiter != ' ') || (HoldsMore(rest) && !marked)) notes.Look(whole, lines.Row);
    }
    notes.Write();
    return points;
}

// Where the file of a set stands in the progress of an import, percent.
struct Share {
    int From, To;
};

// Checks and reads one of the two files; nothing where a message has said why not.
bool ReadSet(const std::string& path, const Reading& how, BadField badField, Share share,
             void (*replace)(PointSet)) {
    if (!FileIsThere(path)) {
        Run.ImportFailed = kTrue;
        ShowMessage("File " + path + " not found");
        return false;
    }
    PointText file = LoadPointText(path);
    BeginFile(file.Text.size(), share.From, share.To);
    Flag hasName = kFalse;
    ASCII_FileCheck(file, hasName, Run.Delimiter, how);
    if (IsTrue(Run.ImportFailed)) return false;
    FilePoints points =
        ReadPoints(file, IsTrue(hasName), DelimiterCharacter(Run.Delimiter), how.Decimal, badField);
    if (points.Cancelled) return false;
    replace(std::move(points.Set));
    if (!points.Error.empty()) throw PlatformError{points.Error};
    return true;
}

}  // namespace

void Einlesen_Neu(const PointFiles& files) {
    if (files.StartPoints != nullptr) {
        ReplaceStart(std::move(*files.StartPoints));
    } else if (!ReadSet(files.Start, files.How, BadField::Ends, {0, 35}, ReplaceStart)) {
        return;
    }
    Job.RobotABC = Matrix{};  // the orientations of target points that go now
    if (files.TargetIsCopy) {
        ReplaceTarget(Job.Start);
        return;
    }
    if (!ImportGoesOn(1)) return;
    if (files.TargetPoints != nullptr) {
        ReplaceTarget(std::move(*files.TargetPoints));
        return;
    }
    ReadSet(files.Target, files.How, BadField::LeavesValue, {35, 70}, ReplaceTarget);
}

void Einlesen_Neu() {
    Einlesen_Neu({Job.PathMCS, Job.PathOCS, IsTrue(Job.IsParaboloid), {}});
}

namespace {

// Names of further points that a point has already, of the job or among them.
void NoteNamesThatAreThere(const std::string& path, const std::vector<std::string>& added,
                           std::string_view prefix, std::string_view suffix) {
    std::unordered_set<std::string_view> names(Job.Start.Name.begin() + 1, Job.Start.Name.end());
    std::string_view first;
    int count = 0;
    for (std::size_t i = 1; i < added.size(); ++i) {
        if (added[i].empty() || names.insert(added[i]).second) continue;
        if (count++ == 0) first = added[i];
    }
    if (count == 0) return;
    const std::array<int, 2> lines =
        LinesOfName(path, first.substr(prefix.size(), first.size() - prefix.size() - suffix.size()));
    const std::string other = lines[1] > 0 ? "in line " + std::to_string(lines[1]) : "among the start points";
    AddNote(NoteCode::DuplicateName,
            "The name \"" + Printable(first) + "\" of line " + std::to_string(lines[0]) + " stands " + other +
                " too",
            path, lines[0], count);
}

}  // namespace

bool ReadMorePoints(const std::string& path, const std::string& prefix, const std::string& suffix) {
    Run.ImportFailed = kFalse;
    const ImportUnderWay underWay(nullptr);
    const Reading how;
    PointText file = LoadPointText(path);
    BeginFile(file.Text.size(), 0, 100);
    Flag hasName = kFalse;
    ASCII_FileCheck(file, hasName, Run.Delimiter, how);
    if (IsTrue(Run.ImportFailed)) return false;
    FilePoints more =
        ReadPoints(file, IsTrue(hasName), DelimiterCharacter(Run.Delimiter), how.Decimal, BadField::Ends);
    if (more.Cancelled) return false;
    if (!more.Error.empty()) throw PlatformError{more.Error};
    AddMorePoints(path, std::move(more.Set), prefix, suffix);
    return true;
}

void AddMorePoints(const std::string& path, PointSet points, const std::string& prefix,
                   const std::string& suffix) {
    std::span<std::string> names(points.Name);
    if (!prefix.empty() || !suffix.empty())
        for (std::string& name : names.subspan(1)) name = prefix + name + suffix;
    NoteNamesThatAreThere(path, points.Name, prefix, suffix);
    // The new points follow the last name, in both sets.
    Job.Start.CountAll();
    Job.Transformed.Resize(Job.Start.Count());
    Job.Transformed.Append(points);
    Job.Start.Append(std::move(points));
    ReachNewPoints(Job);
    ++Run.JobGeneration;
}

void RewritePointFile(const std::string& path, std::span<const std::string> names,
                      std::span<const TaggedValue> x, std::span<const TaggedValue> y,
                      std::span<const double> z, char decimal) {
    const auto number = [decimal](double value) {
        std::string text = PlainText(value);
        std::replace(text.begin(), text.end(), SystemDecimal(), decimal);
        return text;
    };
    std::string content;
    for (std::size_t i = 1; i < names.size(); ++i)
        // Line by line, as it will be decoded.
        content += EncodeText(names[i] + Run.Delimiter + number(x[i].value_or(0)) + Run.Delimiter +
                              number(y[i].value_or(0)) + Run.Delimiter + number(z[i]) + kLineEnd);
    std::string kept = path + ".$";
    while (KindOfPath(kept) != PathKind::Nothing) kept += ".$";
    RenameFile(path, kept);
    try {
        WriteFile(path, content);
    } catch (const PlatformError& refusal) {
        try {
            RenameFile(kept, path);
        } catch (const PlatformError&) {
            throw PlatformError{refusal.What + "; the old file is now \"" + kept + "\""};
        }
        throw;
    }
}

}  // namespace corvinade::import
