// Notes on the rows of a text file.
#include "import/row_notes.h"

#include <algorithm>
#include <functional>
#include <limits>
#include <unordered_set>

#include "core/lost_digits.h"
#include "core/numbers.h"
#include "core/platform.h"
#include "core/run.h"
#include "core/text.h"
#include "import/point_file.h"
#include "import/point_file_checks.h"
#include "import/point_text.h"

namespace corvinade::import {

namespace {

std::string Quoted(std::string_view text) {
    return "\"" + Printable(text) + "\"";
}

// Cuts the next word off, between blanks and tabs.
std::string_view CutWord(std::string_view& text) {
    const std::size_t begin = std::min(text.find_first_not_of(" \t"), text.size());
    const std::size_t end = std::min(text.find_first_of(" \t", begin), text.size());
    const std::string_view word = text.substr(begin, end - begin);
    text.remove_prefix(end);
    return word;
}

std::size_t CountWords(std::string_view text) {
    std::size_t count = 0;
    while (!CutWord(text).empty()) ++count;
    return count;
}

std::string_view Trimmed(std::string_view text) {
    const std::size_t begin = std::min(text.find_first_not_of(" \t"), text.size());
    text.remove_prefix(begin);
    return text.substr(0, text.find_last_not_of(" \t") + 1);
}

// Is there a number at the start of a text, behind its sign?
bool BeginsWithNumber(std::string_view text) {
    std::size_t at = text.starts_with('+') || text.starts_with('-') ? 1 : 0;
    if (at < text.size() && text[at] == '.') ++at;
    return at < text.size() && text[at] >= '0' && text[at] <= '9';
}

int AsInt(std::int64_t value) {
    return static_cast<int>(std::min<std::int64_t>(value, std::numeric_limits<int>::max()));
}

}  // namespace

FieldNames PointFields(bool hasName) {
    return hasName ? FieldNames{"name", "x", "y", "z"} : FieldNames{"x", "y", "z"};
}

std::string TooLarge(std::string_view field, std::string_view place) {
    return Quoted(field) + " in " + std::string(place) + " is larger than any number that can be kept";
}

RowNotes::RowNotes(std::string path, char delimiter, FieldNames fields)
    : path_(std::move(path)),
      delimiter_(delimiter == ' ' ? '\0' : delimiter),
      fields_(std::move(fields)),
      hasName_(std::string_view(fields_.front()) == "name") {}

void RowNotes::Look(std::string_view line, std::int64_t row) {
    const std::size_t size = fields_.size();
    const auto ignored = [&](std::string_view what) {
        Count(NoteCode::ColumnsIgnored, row, [&] {
            return "Fields behind " + std::string(fields_.back()) + " are not read: " + Quoted(Trimmed(what));
        });
        if (delimiter_ == ',' && CommasOfThousands(line, size, hasName_) && thousands_++ == 0)
            firstThousands_ = row;
    };
    if (delimiter_ == '\0') {
        std::string_view rest = line;
        for (std::size_t i = 0; i < size; ++i) CutWord(rest);
        if (HoldsMore(rest)) ignored(rest);
        return;
    }
    std::size_t taken = 0;
    bool gap = false, split = false;
    for (std::size_t at = 0; at <= line.size();) {
        const std::size_t end = std::min(line.find(delimiter_, at), line.size());
        const std::string_view cell = Trimmed(line.substr(at, end - at));
        const std::string_view rest = line.substr(at);
        at = end + 1;
        if (cell.empty()) {
            gap = true;
            continue;
        }
        if (taken >= size) {
            if (!split) ignored(rest);
            break;
        }
        if (gap)
            Count(NoteCode::DelimitersSideBySide, row, [&] {
                return "Delimiters stand side by side and count as one: " + Quoted(cell) + " is taken as " +
                       fields_[taken];
            });
        gap = false;
        const std::size_t words = CountWords(cell);
        if (words > 1) {
            split = true;
            if (taken == 0 && words >= size) {
                Count(NoteCode::FieldSplit, row, [&] {
                    return "The line " + Quoted(Trimmed(line)) + " is divided at its blanks, since no " +
                           Quoted(std::string_view(&delimiter_, 1)) + " stands between its fields";
                });
                std::string_view behind = cell;
                for (std::size_t i = 0; i < size; ++i) CutWord(behind);
                if (HoldsMore(behind)) ignored(behind);
            } else if (taken == 0 && hasName_) {
                Count(NoteCode::NameCut, row, [&] {
                    return "The name " + Quoted(cell) + " ends at its blank, and what follows is taken as " +
                           fields_[1];
                });
            } else if (taken + 1 == size) {
                Count(NoteCode::FieldCut, row, [&] {
                    return "What stands behind the first blank of " + Quoted(cell) + " in " + fields_[taken] +
                           " is not read";
                });
            } else {
                Count(NoteCode::FieldSplit, row, [&] {
                    return "The field " + Quoted(cell) + " is divided by its blank: " + fields_[taken] +
                           " is the first part, " + fields_[taken + 1] + " the second";
                });
            }
        }
        taken += words;
    }
}

void RowNotes::LookAtDigits(std::string_view field, std::int64_t row) {
    std::string lost = LostDigits(field);
    if (!lost.empty()) Count(NoteCode::DigitsCut, row, [&] { return std::move(lost); });
}

void RowNotes::LookAtPlainValue(std::string_view field, std::string_view place, std::int64_t row) {
    const auto start = [&] { return "The field " + Quoted(field) + " in " + std::string(place); };
    double whole = 0;
    if (field.empty()) {
        Count(NoteCode::EmptyCoordinate, row,
              [&] { return "The " + std::string(place) + " is empty and counts as 0"; });
    } else if (TextToNumber(field, '.', whole)) {
        LookAtDigits(field, row);
    } else if (BeginsWithNumber(field)) {
        Count(NoteCode::FieldCut, row, [&] {
            return start() + " is read as " + PlainText(Val(field)) + ", as far as it is a number";
        });
    } else {
        Count(NoteCode::NumberAsZero, row, [&] { return start() + " is not a number and counts as 0"; });
    }
}

bool IsMark(std::string_view rest) {
    const std::string_view mark = Trimmed(rest);
    return mark == kMarkOfFixedPoint || mark == kMarkOfOpenPoint;
}

bool RowNotes::TakeMark(std::string_view rest, std::string_view name, std::int64_t row) {
    if (!IsMark(rest)) return false;
    if (Trimmed(rest) == kMarkOfOpenPoint)
        Count(NoteCode::NetworkOpen, row, [&] {
            return "Point " + Quoted(name) +
                   " is marked as one that the distances of its network do not determine; its coordinates are "
                   "arbitrary";
        });
    return true;
}

namespace {

bool AreDigits(std::string_view text) {
    return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

constexpr std::size_t kGroup = 3;  // digits between two commas of thousands

// May a group of thousands follow? "-1", "12", "345".
bool BeginsThousands(std::string_view cell) {
    if (cell.starts_with('+') || cell.starts_with('-')) cell.remove_prefix(1);
    return AreDigits(cell) && cell.size() <= kGroup && cell.front() != '0';
}

bool IsGroup(std::string_view cell) {
    const std::size_t point = std::min(cell.find('.'), cell.size());
    return point == kGroup && AreDigits(cell.substr(0, point)) &&
           (point + 1 >= cell.size() || AreDigits(cell.substr(point + 1)));
}

}  // namespace

const char* const kCommasOfThousands =
    "The commas of a number like \"1,000.5\" part it in two fields: all rows have more fields than are read, "
    "and commas of thousands would explain it";

bool CommasOfThousands(std::string_view line, std::size_t wanted, bool hasName) {
    std::size_t cells = 0, groups = 0;
    bool open = false;  // the cell before may be the beginning of a number that goes on behind the comma
    for (std::size_t at = 0; at <= line.size();) {
        const std::size_t end = std::min(line.find(',', at), line.size());
        const std::string_view cell = Trimmed(line.substr(at, end - at));
        at = end + 1;
        if (cell.empty()) {
            open = false;
            continue;
        }
        const bool group = open && IsGroup(cell);
        if (group) ++groups;
        open = (!hasName || cells > 0) &&
               (group ? cell.find('.') == std::string_view::npos : BeginsThousands(cell));
        ++cells;
    }
    return cells > wanted && groups >= cells - wanted;
}

void RowNotes::Write() {
    const bool changes = slots_[static_cast<std::size_t>(NoteCode::ColumnsChanged)].Count > 0;
    if (!changes && thousands_ > 0 &&
        thousands_ == slots_[static_cast<std::size_t>(NoteCode::ColumnsIgnored)].Count)
        AddNote(NoteCode::ColumnsChanged, kCommasOfThousands, path_, AsInt(firstThousands_),
                AsInt(thousands_));
    thousands_ = 0;
    for (std::size_t code = 0; code < slots_.size(); ++code) {
        Slot& slot = slots_[code];
        if (slot.Count > 0)
            AddNote(static_cast<NoteCode>(code), std::move(slot.Text), path_, AsInt(slot.Row),
                    AsInt(slot.Count));
        slot = Slot{};
    }
}

std::array<int, 2> LinesOfName(const std::string& path, std::string_view name) {
    std::array<int, 2> found{};
    std::size_t count = 0;
    try {
        const PointText file = LoadPointText(path);
        std::string delimiter = Run.Delimiter;
        FindTrennzeichen(file, delimiter);
        LineWalk lines(file);
        std::string_view line;
        std::string decoded, scratch;
        while (count < found.size() && lines.Next(line)) {
            std::string_view rest = DecodedLine(file, line, decoded);
            if (CutField(rest, DelimiterCharacter(delimiter), scratch) == name)
                found[count++] = AsInt(lines.Row);
        }
    } catch (const PlatformError&) {  // it has gone meanwhile
        return {};
    }
    return found;
}

namespace {

bool IsNoted(const std::string& path) {
    return std::any_of(Notes.List.begin(), Notes.List.end(), [&path](const Note& note) {
        return note.Code == NoteCode::DuplicateName && note.File == path;
    });
}

void NoteTwice(const std::string& path, std::string_view name, std::int64_t first, std::int64_t second,
               std::int64_t count) {
    AddNote(NoteCode::DuplicateName,
            "The name " + Quoted(name) + " stands in line " + std::to_string(first) + " and in line " +
                std::to_string(second),
            path, AsInt(first), AsInt(count));
}

}  // namespace

void NoteDoubleName(const std::string& path, std::string_view name) {
    if (IsNoted(path)) return;
    const std::array<int, 2> lines = LinesOfName(path, name);
    if (lines[1] == 0) return;
    NoteTwice(path, name, lines[0], lines[1], 1);
}

void NoteDoubleNames(const std::string& path, std::span<const std::string> names) {
    std::unordered_set<std::string_view> seen;
    std::string_view again;
    std::int64_t count = 0;
    for (std::size_t i = 1; i < names.size(); ++i) {
        if (names[i].empty() || seen.insert(names[i]).second) continue;
        if (count++ == 0) again = names[i];
    }
    if (count == 0) return;
    const std::array<int, 2> lines = LinesOfName(path, again);
    if (lines[1] > 0) NoteTwice(path, again, lines[0], lines[1], count);
}

namespace {

// Gives each line's name to `take`, which goes on with true.
template <class Take>
void WalkNames(const PointText& file, char delimiter, Take take) {
    LineWalk lines(file);
    std::string_view line;
    std::string scratch;
    while (lines.Next(line)) {
        const std::string_view name = CutField(line, delimiter, scratch);
        if (!name.empty() && !take(name, lines.Row)) return;
    }
}

// Files of any length come through here, as a rule with names in some order or without a double: names that
// grow from line to line need no memory, and others that of a number each.
bool MayHoldDoubles(const PointText& file, char delimiter) {
    bool grows = true;
    std::string last;
    WalkNames(file, delimiter, [&](std::string_view name, std::int64_t) {
        grows = name.size() > last.size() || (name.size() == last.size() && name > last);
        last = name;
        return grows;
    });
    if (grows) return false;
    std::vector<std::size_t> hashes;
    WalkNames(file, delimiter, [&](std::string_view name, std::int64_t) {
        hashes.push_back(std::hash<std::string_view>()(name));
        return true;
    });
    std::sort(hashes.begin(), hashes.end());
    return std::adjacent_find(hashes.begin(), hashes.end()) != hashes.end();
}

}  // namespace

void NoteDoubleNames(const PointText& file, char delimiter) {
    if (!MayHoldDoubles(file, delimiter)) return;
    NamesSeen seen;
    WalkNames(file, delimiter, [&](std::string_view name, std::int64_t row) {
        seen.Add(std::string(name), name, row);
        return true;
    });
    seen.Write(file.Path);
}

void NamesSeen::Add(const std::string& key, std::string_view name, std::int64_t row) {
    if (key.empty()) return;
    const auto [place, isNew] = rows_.emplace(key, row);
    if (isNew || count_++ > 0) return;
    again_ = name;
    lines_ = {place->second, row};
}

void NamesSeen::Write(const std::string& path) const {
    if (count_ > 0) NoteTwice(path, again_, lines_[0], lines_[1], count_);
}

}  // namespace corvinade::import
