// The reader of network files.
#include "bundle/bundle_file.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "bundle/distance_check.h"
#include "core/notes.h"
#include "core/numbers.h"
#include "core/platform.h"
#include "core/text.h"
#include "core/units.h"
#include "import/point_text.h"
#include "import/row_notes.h"

namespace corvinade::bundle {

namespace {

struct Section {
    const char* Keyword;
    bool SecondLine;  // each entry has a further one, which is skipped
    std::int64_t MostEntries;
};
constexpr std::array<Section, 3> kSections = {
    {{"Theodolite", true, std::numeric_limits<std::int16_t>::max()},
     {"Object Points", true, std::numeric_limits<std::int16_t>::max()},
     {"Distances", false, std::numeric_limits<std::int32_t>::max() - 1}}};

// A line that must be there; the file's end is a failure of the read, told with what was looked for.
std::string_view NextLine(const PointText& file, LineWalk& lines, const std::string& missing) {
    std::string_view line;
    if (lines.Next(line)) return line;
    throw PlatformError{"Cannot read \"" + file.Path + "\": it ends behind line " +
                        std::to_string(lines.Row) + ", before " + missing};
}

// Where a line that the format passes over stands, as a note on it says.
constexpr const char* kBehindKeyword = "it stands in the line behind a keyword, where a heading is expected";
constexpr const char* kSecondLine = "it stands in the place of the second line of the entry before it";
constexpr const char* kLineOfEnd = "it begins with END, and ends its section";
constexpr const char* kBetween = "it stands behind the END of its section";

// Walks over all sections; `take` gets the section's number, each of its entries and their lines. `pass` gets
// the same of the lines that are passed over from the first keyword on, and where they stand. Throws
// PlatformError where the file ends before its sections do: an empty line in the place of an entry takes the
// next one for the second line of its own.
template <class Take, class Pass>
void ForEachEntry(const PointText& file, Take take, Pass pass) {
    LineWalk lines(file);
    std::int64_t empty = 0;
    try {
        for (std::size_t s = 0; s < kSections.size(); ++s) {
            const Section& section = kSections[s];
            const std::string name = std::string("\"") + section.Keyword + "\"";
            const std::string end = "the line END of the section " + name;
            for (;;) {
                const std::string_view line = NextLine(file, lines, "a section " + name);
                if (line.starts_with(section.Keyword)) break;
                if (s > 0) pass(s - 1, line, lines.Row, kBetween);
            }
            const std::string_view heading = NextLine(file, lines, end);
            pass(s, heading, lines.Row, kBehindKeyword);
            for (;;) {
                const std::string_view entry = NextLine(file, lines, end);
                if (entry.starts_with("END")) {
                    pass(s, entry, lines.Row, kLineOfEnd);
                    break;
                }
                if (entry.empty() && empty == 0) empty = lines.Row;
                take(s, entry, lines.Row);
                if (!section.SecondLine) continue;
                const std::string_view second = NextLine(file, lines, end);
                pass(s, second, lines.Row, kSecondLine);
            }
        }
    } catch (PlatformError& refusal) {
        if (empty > 0)
            refusal.What +=
                "; line " + std::to_string(empty) + ", which is empty, stands in the place of an entry";
        throw;
    }
}

// Fields of a line, one after the other.
class Fields {
public:
    Fields(std::string_view line, std::int64_t row, BundleRecord& network, RowNotes& notes)
        : rest_(line), row_(row), network_(network), notes_(notes) {}
    std::string Text() { return std::string(CutField(rest_, ' ', scratch_)); }
    // `place` is what the length is of, for its note.
    double Length(const std::string& place) {
        const std::string_view field = CutField(rest_, ' ', scratch_);
        const double value = Val(field);
        double whole = 0;
        // A decimal comma among them: what stands before it is a number, and a wrong one.
        if (!TextToNumber(field, '.', whole) && std::isfinite(value) && ++network_.NoNumbers == 1)
            network_.FirstNoNumber = "line " + std::to_string(row_) + ", \"" + Printable(field) + "\"";
        Note(field, value, place);
        return value / Units.LengthFactor;
    }

    // Behind the last field: what is left of the line is not read.
    void End() {
        if (!HoldsMore(rest_)) return;
        notes_.Count(NoteCode::ColumnsIgnored, row_, [this] {
            return "Fields behind those of the entry are not read: \"" + Printable(rest_) +
                   "\"; a name has no blanks in it";
        });
    }

private:
    void Note(std::string_view field, double value, const std::string& place) {
        double exact = 0;
        const auto text = [&] { return "The field \"" + Printable(field) + "\" in " + place; };
        if (TextToNumber(field, '.', exact)) {
            notes_.LookAtDigits(field, row_);
        } else if (field.empty()) {
            notes_.Count(NoteCode::EmptyCoordinate, row_,
                         [&] { return "The " + place + " is missing and counts as 0"; });
        } else if (!std::isfinite(value)) {
            notes_.Count(NoteCode::DigitsCut, row_,
                         [&] { return text() + " is larger than any number that can be kept"; });
        } else {
            const bool begins = value != 0 || field.find_first_of("0123456789") == 0;
            notes_.Count(begins ? NoteCode::FieldCut : NoteCode::NumberAsZero, row_, [&] {
                return text() + (begins ? " is read as " + PlainText(value) +
                                              ", as far as it is a number with a decimal point"
                                        : std::string(" is not a number and counts as 0"));
            });
        }
    }

    std::string_view rest_;
    std::int64_t row_;
    BundleRecord& network_;
    RowNotes& notes_;
    std::string scratch_;
};

// The lines of the points by their names; notes a name that is there already. Of several points of one name a
// distance is to the first.
class NameLines {
public:
    explicit NameLines(RowNotes& notes) : notes_(notes) {}
    void Add(const std::string& name, std::int64_t row) {
        const auto [there, isNew] = lines_.emplace(name, row);
        if (isNew) return;
        const std::int64_t first = there->second;
        notes_.Count(NoteCode::DuplicateName, first, [&] {
            return "The name \"" + Printable(name) + "\" stands in line " + std::to_string(first) +
                   " and in line " + std::to_string(row) + "; distances are to the first";
        });
    }

private:
    RowNotes& notes_;
    std::unordered_map<std::string, std::int64_t> lines_;
};

void TakePoint(Fields fields, std::size_t number, std::vector<std::string>& names, Matrix& xyz) {
    names[number] = fields.Text();
    for (int axis = 1; axis <= 3; ++axis)
        xyz(static_cast<int>(number), axis) =
            fields.Length(std::string(1, "wxyz"[axis]) + " of point \"" + Printable(names[number]) + "\"");
    fields.End();
}

// Notes the distances that are left out or cannot be meant.
//   rows   of each distance its line
void NoteDistances(const BundleRecord& network, const DistanceCheck& check,
                   const std::vector<std::int64_t>& rows, RowNotes& notes) {
    for (std::size_t k = 1; k < network.Net.DistanceValue.size(); ++k) {
        const DistanceFaults faults = check.Of(k);
        const auto count = [&](NoteCode code, const char* text) {
            notes.Count(code, rows[k], [&] { return "The distance from " + PairText(network, k) + text; });
        };
        if (faults.NotPositive)
            count(NoteCode::DistanceNotPositive, " is 0 or less, and takes part as it stands");
        if (faults.Swapped) {
            count(NoteCode::DistanceSwapped,
                  " names the object point before the station, and is left out of the adjustment");
        } else if (faults.Unknown) {
            count(NoteCode::DistanceUnknown,
                  " names a point that is not there, and is left out of the adjustment");
        } else if (faults.OnePlace) {
            count(NoteCode::DistanceOnePlace,
                  " is one between points at the same place, and is left out of the adjustment");
        }
    }
}

// Does a line that is passed over look like an entry of a section of points?
bool LooksLikePoint(std::string_view line) {
    std::string scratch;
    double value = 0;
    if (CutField(line, ' ', scratch).empty()) return false;
    for (int axis = 1; axis <= 3; ++axis) {
        const std::string_view field = CutField(line, ' ', scratch);
        if (!TextToNumber(field, '.', value) && !TextToNumber(field, ',', value)) return false;
    }
    return true;
}

// The same for the section of distances, where headings may be of two words and a number too: the names must
// be there.
bool LooksLikeDistance(std::string_view line, const DistanceCheck& check) {
    std::string scratch;
    const std::string from(CutField(line, ' ', scratch)), to(CutField(line, ' ', scratch));
    const std::string_view field = CutField(line, ' ', scratch);
    double value = 0;
    return (TextToNumber(field, '.', value) || TextToNumber(field, ',', value)) && check.AreNames(from, to);
}

// A line that is passed over, and looks like an entry.
struct SkippedLine {
    std::string Text;
    const char* Place = "";  // why it is not read
    std::int64_t Row = 0;
    bool IsDistance = false;
};
using SkippedLines = std::vector<SkippedLine>;

// Notes the lines that are lost entries: distances between points that are there, and points that a distance
// names, or a line of the stations. The others are remarks that look alike, "Date 2026 11 22".
void NoteSkipped(const BundleRecord& network, const SkippedLines& lines, RowNotes& notes) {
    std::unordered_set<std::string_view> named(network.StationName.begin(), network.StationName.end());
    for (const std::size_t end : {1U, 2U})
        named.insert(network.DistancePair[end].begin(), network.DistancePair[end].end());
    std::string scratch;
    for (const SkippedLine& line : lines) {
        std::string_view rest = line.Text;
        // Without a distance none is there to name it; and one that ends its section takes others with it.
        const bool lost = line.IsDistance || network.nDistances == 0 || line.Text.starts_with("END") ||
                          named.contains(CutField(rest, ' ', scratch));
        notes.Count(lost ? NoteCode::EntrySkipped : NoteCode::EmptyRow, line.Row, [&] {
            return "The line \"" + Printable(line.Text) +
                   "\" looks like an entry, and is not read: " + line.Place +
                   (lost ? "" : "; no distance names it, so it is taken as a remark");
        });
    }
}

// Counts what is wrong, with the first of them.
struct Objection {
    std::int64_t Count = 0;
    std::string First;

    void Add(const std::string& text) {
        if (++Count == 1) First = text;
    }
    // "3 distances name ...; the first is ..."
    void Tell(const std::string& one, const std::string& many, std::string& all) const {
        if (Count == 0) return;
        if (!all.empty()) all += kLineEnd;
        all += (Count == 1 ? "1 distance " + one : std::to_string(Count) + " distances " + many) +
               (Count == 1 ? ": " : ", the first: ") + First;
    }
};

}  // namespace

BundleRecord BündelInputFileEinlesen(const std::string& path) {
    const PointText file = LoadPointText(path);
    std::array<std::int64_t, 3> counts{};
    ForEachEntry(
        file,
        [&](std::size_t section, std::string_view, std::int64_t row) {
            if (++counts[section] > kSections[section].MostEntries)
                throw PlatformError{"Cannot read \"" + path + "\", line " + std::to_string(row) +
                                    ": the section \"" + kSections[section].Keyword + "\" has more than " +
                                    std::to_string(kSections[section].MostEntries) + " entries"};
        },
        [](std::size_t, std::string_view, std::int64_t, const char*) {});

    BundleRecord network;
    network.BundleFilePath = path;
    network.nStations = static_cast<std::int16_t>(counts[0]);
    network.nObjectPoints = static_cast<std::int16_t>(counts[1]);
    network.nDistances = static_cast<std::int32_t>(counts[2]);
    network.StationName.resize(static_cast<std::size_t>(counts[0]) + 1);
    network.Net.StationXYZ = Matrix(network.nStations, 3);
    network.ObjectName.resize(static_cast<std::size_t>(counts[1]) + 1);
    network.Net.ObjectXYZ = Matrix(network.nObjectPoints, 3);
    for (const std::size_t end : {1U, 2U})
        network.DistancePair[end].resize(static_cast<std::size_t>(counts[2]) + 1);
    network.Net.DistanceValue.resize(static_cast<std::size_t>(counts[2]) + 1);

    ForgetNotes();
    RowNotes notes(path, ' ', PointFields(true));
    std::array<NameLines, 2> nameLines{NameLines(notes), NameLines(notes)};
    std::array<std::size_t, 3> number{};
    std::vector<std::int64_t> distanceRows(static_cast<std::size_t>(counts[2]) + 1);
    std::optional<DistanceCheck> check;  // from the third section on, when the points are there
    std::string scratch;
    const auto take = [&](std::size_t section, std::string_view line, std::int64_t row) {
        Fields fields(DecodedLine(file, line, scratch), row, network, notes);
        const std::size_t k = ++number[section];
        if (section == 0) {
            TakePoint(fields, k, network.StationName, network.Net.StationXYZ);
            nameLines[section].Add(network.StationName[k], row);
        } else if (section == 1) {
            TakePoint(fields, k, network.ObjectName, network.Net.ObjectXYZ);
            nameLines[section].Add(network.ObjectName[k], row);
        } else {
            network.DistancePair[1][k] = fields.Text();
            network.DistancePair[2][k] = fields.Text();
            network.Net.DistanceValue[k] = fields.Length("distance from " + PairText(network, k));
            fields.End();
            distanceRows[k] = row;
        }
    };
    SkippedLines skipped;
    const auto pass = [&](std::size_t section, std::string_view line, std::int64_t row, const char* place) {
        if (section == 2 && !check) check.emplace(network);
        const std::string_view text = DecodedLine(file, line, scratch);
        if (section == 2 ? LooksLikeDistance(text, *check) : LooksLikePoint(text))
            skipped.push_back({std::string(text), place, row, section == 2});
    };
    ForEachEntry(file, take, pass);
    NoteSkipped(network, skipped, notes);
    NoteDistances(network, *check, distanceRows, notes);
    notes.Write();
    return network;
}

std::string BundleObjections(const BundleRecord& network) {
    const DistanceCheck check(network);
    Objection unknown, nothing, onePlace;
    for (std::size_t k = 1; k < network.Net.DistanceValue.size(); ++k) {
        const DistanceFaults faults = check.Of(k);
        if (faults.NotPositive) nothing.Add(PairText(network, k));
        if (faults.Unknown) unknown.Add(PairText(network, k));
        if (faults.OnePlace) onePlace.Add(PairText(network, k));
    }
    std::string text;
    if (network.nDistances == unknown.Count) text = kNoDistance;
    unknown.Tell("names a point that is not there and is left out",
                 "name points that are not there and are left out", text);
    onePlace.Tell("is one between points at the same place and is left out",
                  "are between points at the same place and are left out", text);
    nothing.Tell("is 0 or less", "are 0 or less", text);
    if (network.NoNumbers > 0) {
        if (!text.empty()) text += kLineEnd;
        text += network.NoNumbers == 1 ? "1 field of the file is no number with a decimal point: "
                                       : std::to_string(network.NoNumbers) +
                                             " fields of the file are no numbers with a decimal point, the "
                                             "first: ";
        text += network.FirstNoNumber;
    }
    return text;
}

}  // namespace corvinade::bundle
