// What the words of a heading name.
#include "import/table_heading.h"

#include <algorithm>
#include <array>
#include <cctype>

#include "core/text.h"
#include "core/units.h"
#include "import/table_cells.h"

namespace corvinade::import {

namespace {

struct UnitWord {
    const char* Word;
    int Unit;
};

constexpr std::array<TableUnit, 6> kUnits = {{{"mm", 1, 1},
                                              {"m", 1.0 / 1000, 1},
                                              {"in", 1 / 25.4, 1},
                                              {"ft", 1 / 304.8, 1},
                                              {"cm", 1, 10},
                                              {"km", 1, 1e6}}};

constexpr UnitWord kUnitWords[] = {
    {"mm", 0},        {"millimeter", 0}, {"millimeters", 0}, {"millimetre", 0}, {"millimetres", 0},
    {"m", 1},         {"meter", 1},      {"meters", 1},      {"metre", 1},      {"metres", 1},
    {"in", 2},        {"inch", 2},       {"inches", 2},      {"ft", 3},         {"foot", 3},
    {"feet", 3},      {"cm", 4},         {"centimeter", 4},  {"centimetre", 4}, {"km", 5},
    {"kilometer", 5}, {"kilometre", 5}};

// Lower case of the letters that headings have; umlauts by their two letters.
std::string Lower(std::string_view text) {
    std::string lower;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        const char next = i + 1 < text.size() ? text[i + 1] : '\0';
        if (c >= 'A' && c <= 'Z') {
            lower += static_cast<char>(c - 'A' + 'a');
        } else if (c == '\xC3' && (next == '\xB6' || next == '\x96')) {
            lower += "oe";
            ++i;
        } else if (c == '\xCF' && (next == '\x83' || next == '\x82')) {
            lower += "sigma";  // the Greek letter
            ++i;
        } else {
            lower += c;
        }
    }
    return lower;
}

// What stands between words. A minus and a line below are as good as a blank.
bool Parts(char c) {
    return c == ' ' || c == '_' || c == '-' || c == '.' || c == ':' || c == '/' || c == '*' || c == ',' ||
           c == '\t' || c == '\n' || c == '\r' || c == '"' || c == '=';
}

std::vector<std::string> WordsOf(std::string_view text) {
    std::vector<std::string> words(1);
    for (const char c : text) {
        if (!Parts(c)) {
            words.back() += c;
        } else if (!words.back().empty()) {
            words.emplace_back();
        }
    }
    if (words.back().empty()) words.pop_back();
    return words;
}

template <std::size_t N>
bool IsOneOf(const std::string& word, const std::array<const char*, N>& list) {
    return std::any_of(list.begin(), list.end(), [&word](const char* other) { return word == other; });
}

// Words that say nothing of which axis it is.
constexpr std::array<const char*, 13> kFillers = {
    "coord", "coords", "coordinate", "coordinates", "koordinate", "pos", "position",
    "wert",  "value",  "axis",       "achse",       "coordonnee", "val"};
constexpr std::array<const char*, 6> kX = {"x", "e", "ost", "ostwert", "rechts", "rechtswert"};
constexpr std::array<const char*, 5> kY = {"y", "nord", "nordwert", "hoch", "hochwert"};
constexpr std::array<const char*, 7> kZ = {"z", "h", "height", "elevation", "elev", "hoehe", "altitude"};
// An RMS or an uncertainty may be any multiple of it, and is not taken.
constexpr std::array<const char*, 5> kSigma = {"sigma", "std", "stddev", "stdev", "sd"};
constexpr std::array<const char*, 8> kName = {"name",      "label",       "pointname", "ptname",
                                              "punktname", "bezeichnung", "bez",       "nom"};
constexpr std::array<const char*, 6> kPoint = {"point", "pt", "pnt", "punkt", "pkt", "target"};
constexpr std::array<const char*, 12> kNumber = {"id",      "no",     "nr",          "num",
                                                 "number",  "nummer", "pointid",     "ptid",
                                                 "pointno", "ptnr",   "punktnummer", "pointnumber"};

// How well a column serves as the name: the best one is it.
int NameRank(const std::vector<std::string>& words) {
    int rank = 0;
    for (const std::string& given : words) {
        const std::string word = given.substr(0, std::max<std::size_t>(given.find('#'), 1));  // pt#
        if (IsOneOf(word, kName)) {
            rank = std::max(rank, 4);
        } else if (IsOneOf(word, kPoint)) {
            rank = std::max(rank, 3);
        } else if (IsOneOf(word, kNumber)) {
            rank = std::max(rank, 2);
        } else if (word == "#" || word == "n" || word == "p" || word == "station") {
            rank = std::max(rank, 1);
        } else {
            return 0;
        }
    }
    return rank;
}

enum class Axis : std::uint8_t { None, X, Y, Z, North };

Axis AxisOf(const std::string& word) {
    if (IsOneOf(word, kX) || word.starts_with("east")) return Axis::X;
    if (IsOneOf(word, kY) || word.starts_with("north")) return Axis::Y;
    if (IsOneOf(word, kZ)) return Axis::Z;
    return word == "n" ? Axis::North : Axis::None;
}

// A cell without its unit.
struct HeadingCell {
    std::vector<std::string> Words;
    std::string Unit;       // name of a unit
    std::string OtherUnit;  // what stands in brackets and is none
    TableRole Role = TableRole::Pass;
    bool North = false;
};

void CutUnit(std::string& text, HeadingCell& cell) {
    for (const char* pair : {"[]", "()", "{}", "<>"}) {
        const std::size_t open = text.find(pair[0]),
                          close = text.find(pair[1], open == std::string::npos ? 0 : open);
        if (open == std::string::npos || close == std::string::npos) continue;
        const std::string inside(TrimmedCell(text.substr(open + 1, close - open - 1)));
        text.erase(open, close - open + 1);
        if (const TableUnit* unit = TableUnitByWord(inside)) {
            cell.Unit = unit->Name;
        } else if (!inside.empty()) {
            cell.OtherUnit = inside;
        }
        return;
    }
}

TableRole SigmaOf(Axis axis) {
    switch (axis) {
        case Axis::X:
            return TableRole::SX;
        case Axis::Y:
        case Axis::North:
            return TableRole::SY;
        case Axis::Z:
            return TableRole::SZ;
        case Axis::None:
            break;
    }
    return TableRole::S;
}

// The role of a cell by its words: "x", "x coord", "sigma x", "sx", "sigmax".
TableRole RoleOf(const std::vector<std::string>& given, bool& north) {
    std::vector<std::string> words = given;
    std::erase_if(words, [](const std::string& word) { return IsOneOf(word, kFillers); });
    if (words.empty() || words.size() > 2) return TableRole::Pass;
    if (words.size() == 1) {
        const std::string& word = words[0];
        const Axis axis = AxisOf(word);
        if (axis == Axis::X) return TableRole::X;
        if (axis == Axis::Y) return TableRole::Y;
        if (axis == Axis::Z) return TableRole::Z;
        north = axis == Axis::North;
        if (word == "s" || IsOneOf(word, kSigma)) return TableRole::S;
        if (word.size() == 2 && word[0] == 's' && AxisOf(word.substr(1)) != Axis::None)
            return SigmaOf(AxisOf(word.substr(1)));
        if (word.ends_with("wert") && AxisOf(word.substr(0, 1)) != Axis::None && word.size() == 5)
            return word[0] == 'x'   ? TableRole::X
                   : word[0] == 'y' ? TableRole::Y
                   : word[0] == 'z' ? TableRole::Z
                                    : TableRole::Pass;
        for (const char* sigma : kSigma)
            if (word.starts_with(sigma) && AxisOf(word.substr(std::string_view(sigma).size())) != Axis::None)
                return SigmaOf(AxisOf(word.substr(std::string_view(sigma).size())));
        return TableRole::Pass;
    }
    const bool first = IsOneOf(words[0], kSigma) || words[0] == "s", second = IsOneOf(words[1], kSigma);
    if (first && AxisOf(words[1]) != Axis::None) return SigmaOf(AxisOf(words[1]));
    if (second && AxisOf(words[0]) != Axis::None) return SigmaOf(AxisOf(words[0]));
    return TableRole::Pass;
}

HeadingCell CellOf(std::string_view text) {
    HeadingCell cell;
    std::string lower = Lower(TrimmedCell(text));
    CutUnit(lower, cell);
    // A unit behind "_", "/" or a blank: x_mm.
    cell.Words = WordsOf(lower);
    cell.Role = RoleOf(cell.Words, cell.North);
    if (cell.Role == TableRole::Pass && !cell.North && cell.Words.size() > 1 && cell.Unit.empty())
        if (const TableUnit* unit = TableUnitByWord(cell.Words.back())) {
            std::vector<std::string> words(cell.Words.begin(), cell.Words.end() - 1);
            bool north = false;
            const TableRole role = RoleOf(words, north);
            if (role != TableRole::Pass || north) {
                cell.Words = std::move(words);
                cell.Role = role;
                cell.North = north;
                cell.Unit = unit->Name;
            }
        }
    return cell;
}

bool IsLength(TableRole role) {
    return role != TableRole::Pass && role != TableRole::Name;
}

void TakeUnits(const std::vector<HeadingCell>& cells, TableHeading& heading) {
    for (std::size_t i = 0; i < cells.size(); ++i) {
        const HeadingCell& cell = cells[i];
        if (!IsLength(heading.Columns[i])) continue;
        if (!cell.OtherUnit.empty() && cell.Unit.empty()) {
            heading.Wrong = "the unit \"" + Printable(cell.OtherUnit) +
                            "\" of the heading is unknown (--unit says which)";
        } else if (!cell.Unit.empty() && heading.Unit.empty()) {
            heading.Unit = cell.Unit;
        } else if (!cell.Unit.empty() && cell.Unit != heading.Unit) {
            heading.Wrong = "the heading names the units " + heading.Unit + " and " + cell.Unit +
                            " (--unit says which one all have)";
        }
    }
}

}  // namespace

const TableUnit* TableUnitByWord(std::string_view word) {
    const std::string lower = Lower(TrimmedCell(word));
    for (const UnitWord& unit : kUnitWords)
        if (lower == unit.Word) return &kUnits[static_cast<std::size_t>(unit.Unit)];
    return nullptr;
}

TableHeading HeadingOf(const std::vector<std::string>& texts, bool ownUnit) {
    TableHeading heading;
    std::vector<HeadingCell> cells;
    cells.reserve(texts.size());
    for (const std::string& text : texts) cells.push_back(CellOf(text));
    const bool east = std::any_of(cells.begin(), cells.end(),
                                  [](const HeadingCell& cell) { return cell.Role == TableRole::X; });
    const bool hasY = std::any_of(cells.begin(), cells.end(),
                                  [](const HeadingCell& cell) { return cell.Role == TableRole::Y; });
    int best = 0;
    std::size_t name = 0;
    std::array<int, kTableRoles> counts{};
    for (std::size_t i = 0; i < cells.size(); ++i) {
        HeadingCell& cell = cells[i];
        // An n beside an e is the way north; else it numbers the points.
        if (cell.North && east && !hasY) cell.Role = TableRole::Y;
        if (cell.Role == TableRole::Pass) {
            const int rank = NameRank(cell.Words);
            if (rank > best) {
                best = rank;
                name = i;
            }
            if (rank == 0)
                for (const std::string& word : cell.Words)
                    heading.Mentions = heading.Mentions || AxisOf(word) != Axis::None;
        }
        heading.Columns.push_back(cell.Role);
        ++counts[static_cast<std::size_t>(cell.Role)];
    }
    if (best > 0) heading.Columns[name] = TableRole::Name;
    for (std::size_t role = static_cast<std::size_t>(TableRole::X); role < counts.size(); ++role) {
        if (counts[role] > 0 && role <= static_cast<std::size_t>(TableRole::Z)) ++heading.Axes;
        if (counts[role] > 1 && heading.Wrong.empty())
            heading.Wrong = std::string("the heading names ") + TableRoleName(static_cast<TableRole>(role)) +
                            " " + std::to_string(counts[role]) + " times (--columns says which one it is)";
    }
    if (!ownUnit && heading.Axes == 3) TakeUnits(cells, heading);
    return heading;
}

bool UnitsOfRow(const std::vector<std::string>& texts, const std::vector<TableRole>& columns,
                TableHeading& heading) {
    std::vector<HeadingCell> cells;
    int units = 0;
    for (const std::string& text : texts) {
        HeadingCell cell;
        std::string lower = Lower(TrimmedCell(text));
        if (!lower.empty() && lower != "-") {
            CutUnit(lower, cell);
            if (const TableUnit* unit = TableUnitByWord(lower)) cell.Unit = unit->Name;
            const bool brackets = !cell.Unit.empty() || !cell.OtherUnit.empty();
            if (!brackets || (!TrimmedCell(lower).empty() && TableUnitByWord(lower) == nullptr)) return false;
            ++units;
        }
        cells.push_back(std::move(cell));
    }
    if (units == 0) return false;
    TableHeading found;
    found.Columns = columns;
    found.Columns.resize(std::max(columns.size(), cells.size()), TableRole::Pass);
    TakeUnits(cells, found);
    if (!found.Wrong.empty()) heading.Wrong = found.Wrong;
    if (!found.Unit.empty()) heading.Unit = found.Unit;
    return true;
}

std::vector<std::string> WithBrackets(const std::vector<std::string>& words) {
    std::vector<std::string> cells;
    for (const std::string& word : words) {
        const bool bracket = !word.empty() && (word.front() == '[' || word.front() == '(');
        if (bracket && !cells.empty()) {
            cells.back() += " " + word;
        } else {
            cells.push_back(word);
        }
    }
    return cells;
}

}  // namespace corvinade::import
