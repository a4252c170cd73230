// How a text cloud writes its points.
#include "import/cloud_columns.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstddef>

#include "core/text.h"
#include "import/cloud_table.h"

namespace corvinade::import {

namespace {

constexpr std::size_t kMostFields = 64;
constexpr int kMostRows = 2000;

struct Word {
    std::string_view Text;
    PointColumn Means;
};

// In small letters.
constexpr std::array<Word, 45> kWords = {{
    {"x", PointColumn::X},
    {"e", PointColumn::X},
    {"east", PointColumn::X},
    {"easting", PointColumn::X},
    {"y", PointColumn::Y},
    {"north", PointColumn::Y},
    {"northing", PointColumn::Y},
    {"z", PointColumn::Z},
    {"h", PointColumn::Z},
    {"height", PointColumn::Z},
    {"elevation", PointColumn::Z},
    {"elev", PointColumn::Z},
    {"tx", PointColumn::X},
    {"ty", PointColumn::Y},
    {"tz", PointColumn::Z},
    {"name", PointColumn::Name},
    {"id", PointColumn::Name},
    {"pt", PointColumn::Name},
    {"point", PointColumn::Name},
    {"ptnr", PointColumn::Name},
    {"nr", PointColumn::Name},
    {"no", PointColumn::Name},
    {"number", PointColumn::Name},
    {"timestamp", PointColumn::Name},
    {"time", PointColumn::Name},
    {"t", PointColumn::Name},
    {"nx", PointColumn::NormalX},
    {"ny", PointColumn::NormalY},
    {"nz", PointColumn::NormalZ},
    {"normal_x", PointColumn::NormalX},
    {"normal_y", PointColumn::NormalY},
    {"normal_z", PointColumn::NormalZ},
    {"normalx", PointColumn::NormalX},
    {"normaly", PointColumn::NormalY},
    {"normalz", PointColumn::NormalZ},
    {"qx", PointColumn::TurnX},
    {"qy", PointColumn::TurnY},
    {"qz", PointColumn::TurnZ},
    {"qw", PointColumn::TurnW},
    {"mapx", PointColumn::OtherX},
    {"mapy", PointColumn::OtherY},
    {"sourcex", PointColumn::X},
    {"sourcey", PointColumn::Y},
    {"pixelx", PointColumn::X},
    {"pixely", PointColumn::Y},
}};

std::string Small(std::string_view text) {
    std::string small(text);
    for (char& c : small) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return small;
}

// "sx", "s", "SX": sigmas of the two systems of one file.
constexpr std::array<Word, 8> kSigmaWords = {{{"sx", PointColumn::SigmaX},
                                              {"sy", PointColumn::SigmaY},
                                              {"sz", PointColumn::SigmaZ},
                                              {"s", PointColumn::Sigma},
                                              {"SX", PointColumn::OtherSigmaX},
                                              {"SY", PointColumn::OtherSigmaY},
                                              {"SZ", PointColumn::OtherSigmaZ},
                                              {"S", PointColumn::OtherSigma}}};
PointColumn SigmaColumn(std::string_view word) {
    for (const Word& row : kSigmaWords)
        if (row.Text == word) return row.Means;
    return PointColumn::None;
}

constexpr std::array<std::string_view, 6> kUnits = {"mm", "cm", "m", "km", "in", "ft"};

// Takes a unit in brackets, or behind "_", off a word.
std::string TakeUnit(std::string& word) {
    const std::size_t bracket = word.find_first_of("[(");
    std::string unit;
    if (bracket != std::string::npos) {
        const std::size_t end = std::min(word.find_first_of("])", bracket), word.size());
        unit = Small(word.substr(bracket + 1, end - bracket - 1));
        word.erase(bracket);
    } else if (const std::size_t line = word.rfind('_'); line != std::string::npos) {
        unit = Small(word.substr(line + 1));
        if (std::find(kUnits.begin(), kUnits.end(), unit) == kUnits.end()) return "";
        word.erase(line);
    }
    while (!word.empty() && (word.back() == ' ' || word.back() == '\t')) word.pop_back();
    return std::find(kUnits.begin(), kUnits.end(), unit) == kUnits.end() ? "" : unit;
}

bool Has(const std::vector<PointColumn>& columns, PointColumn column) {
    return std::find(columns.begin(), columns.end(), column) != columns.end();
}

std::string_view BehindComment(std::string_view line) {
    const std::size_t begin = std::min(line.find_first_not_of(" \t#%!/"), line.size());
    return line.substr(begin);
}

std::vector<std::string> WordsOf(std::string_view line, char delimiter) {
    line = BehindComment(line);
    if (delimiter != '\0' && line.find(delimiter) == std::string_view::npos) delimiter = '\0';
    std::vector<std::string_view> fields;
    FieldsOf(line, delimiter, kMostFields, fields);
    std::vector<std::string> words;
    for (std::string_view field : fields) {
        while (!field.empty() && (field.back() == ' ' || field.back() == '\t')) field.remove_suffix(1);
        // "X [m]" between blanks.
        const bool isUnit = !field.empty() && (field.front() == '[' || field.front() == '(');
        if (isUnit && delimiter == '\0' && !words.empty()) {
            words.back() += field;
        } else {
            words.emplace_back(field);
        }
    }
    return words;
}

}  // namespace

PointColumn ColumnByWord(std::string_view word) {
    const std::string small = Small(word);
    const auto* const found =
        std::find_if(kWords.begin(), kWords.end(), [&small](const Word& row) { return row.Text == small; });
    return found == kWords.end() ? PointColumn::None : found->Means;
}

bool IsCommentLine(std::string_view line) {
    const std::size_t begin = line.find_first_not_of(" \t");
    if (begin == std::string_view::npos) return false;
    line.remove_prefix(begin);
    return line[0] == '#' || line[0] == '%' || line[0] == '!' || line.starts_with("//");
}

std::optional<CloudHeading> HeadingOf(std::string_view line, char delimiter) {
    std::vector<std::string> words = WordsOf(line, delimiter);
    CloudHeading heading;
    std::vector<std::string> units;
    units.reserve(words.size());
    for (std::string& word : words) units.push_back(TakeUnit(word));
    const auto stands = [&words](const char* word) {
        return std::find(words.begin(), words.end(), word) != words.end();
    };
    // "x,y,z,X,Y,Z": both systems.
    const bool both = stands("x") && stands("X");
    const bool hasEast = std::any_of(words.begin(), words.end(), [](const std::string& word) {
        const std::string small = Small(word);
        return small == "e" || small.starts_with("east");
    });
    for (const std::string& word : words) {
        PointColumn column = ColumnByWord(word);
        if (hasEast && Small(word) == "n") column = PointColumn::Y;
        if (both && (word == "X" || word == "Y" || word == "Z"))
            column = word == "X"   ? PointColumn::OtherX
                     : word == "Y" ? PointColumn::OtherY
                                   : PointColumn::OtherZ;
        if (both && column == PointColumn::None) column = SigmaColumn(word);
        if (column != PointColumn::None && Has(heading.Columns, column)) {
            // A second name is text; a second x is no heading that says where x stands.
            if (column >= PointColumn::X && column <= PointColumn::Z) return std::nullopt;
            column = PointColumn::None;
        }
        heading.Columns.push_back(column);
    }
    const bool ofMap = Has(heading.Columns, PointColumn::OtherX) && !both;
    heading.HasZ = !ofMap;
    for (std::size_t i = 0; ofMap && i < words.size(); ++i)
        if (Small(words[i]) == "enable") heading.Columns[i] = PointColumn::Enabled;
    if (!Has(heading.Columns, PointColumn::X) || !Has(heading.Columns, PointColumn::Y) ||
        (heading.HasZ && !Has(heading.Columns, PointColumn::Z)))
        return std::nullopt;
    for (std::size_t i = 0; i < units.size(); ++i) {
        const PointColumn column = heading.Columns[i];
        const bool ofStart = column >= PointColumn::X && column <= PointColumn::Z;
        const bool ofOther = !ofMap && column >= PointColumn::OtherX && column <= PointColumn::OtherZ;
        if (units[i].empty() || (!ofStart && !ofOther)) continue;
        if (!heading.Unit.empty() && heading.Unit != units[i])
            heading.Wrong = "its heading names the units " + heading.Unit + " and " + units[i];
        if (heading.Unit.empty()) heading.Unit = units[i];
    }
    return heading;
}

namespace {

// One way of reading a file, and how many of its first rows it makes points of.
struct Way {
    RowForm Form;
    CloudHeading Heading;  // of a file that has none: nothing
    std::int64_t HeadingLine = 0;
    int Rows = 0;
    std::string_view First;  // the first of these rows
};

bool HoldsPoint(const std::vector<std::string_view>& fields, const RowForm& form) {
    int numbers = 0;
    for (std::size_t i = 0; i < std::min(fields.size(), form.Columns.size()); ++i) {
        if (form.Columns[i] < PointColumn::X || form.Columns[i] > PointColumn::Z) continue;
        double value = 0;
        if (NumberOf(fields[i], form.Decimal, value) == NumberKind::None) return false;
        ++numbers;
    }
    return numbers == (form.HasZ ? 3 : 2);
}

void CountRows(const std::vector<std::string_view>& rows, Way& way) {
    std::vector<std::string_view> fields;
    for (const std::string_view row : rows) {
        FieldsOf(row, way.Form.Delimiter, way.Form.Columns.size(), fields);
        if (!HoldsPoint(fields, way.Form)) continue;
        if (way.Rows++ == 0) way.First = row;
    }
}

using Columns = std::vector<PointColumn>;
const Columns kPlain = {PointColumn::X, PointColumn::Y, PointColumn::Z};
const Columns kNamed = {PointColumn::Name, PointColumn::X, PointColumn::Y, PointColumn::Z};

// The columns of a file that neither its heading nor the user names, the best first.
std::vector<Columns> UsualColumns(CloudKind kind) {
    switch (kind) {
        case CloudKind::Tum:
            return {{PointColumn::Name, PointColumn::X, PointColumn::Y, PointColumn::Z, PointColumn::TurnX,
                     PointColumn::TurnY, PointColumn::TurnZ, PointColumn::TurnW}};
        case CloudKind::Xyz:
            return {kPlain, kNamed};
        case CloudKind::MapPoints:
            return {};
        default:
            return {kNamed, kPlain};
    }
}

// The numbers of a row with a comma between them could be half as many with a decimal comma.
void RefuseTwoReadings(const CloudTask& task, const Way& way) {
    if (way.Form.Delimiter != ',' || task.Wish.Delimiter || task.Wish.Decimal) return;
    std::vector<std::string_view> fields;
    double value = 0;
    FieldsOf(way.First, '\0', kMostFields, fields);
    std::size_t decimals = 0;
    for (std::string_view field : fields) {
        if (field.ends_with(',')) field.remove_suffix(1);
        if (field.find(',') != std::string_view::npos && NumberOf(field, ',', value) == NumberKind::Finite)
            ++decimals;
    }
    FieldsOf(way.First, ',', kMostFields, fields);
    const bool whole = std::all_of(fields.begin(), fields.end(), [&value](std::string_view field) {
        return field.find('.') == std::string_view::npos && NumberOf(field, '.', value) == NumberKind::Finite;
    });
    if (decimals < 3 && (!whole || fields.size() < 6 || fields.size() % 2 != 0)) return;
    task.In.Fail(
        "the row \"" + Printable(way.First) +
        "\" can be read with commas between its numbers or in them; --delimiter comma or --decimal , "
        "says which");
}

// What would become the name is a number with a fraction: x y z and a fourth value, as a rule.
void RefuseFractionAsName(const CloudTask& task, const Way& way) {
    std::vector<std::string_view> fields;
    FieldsOf(way.First, way.Form.Delimiter, 1, fields);
    double value = 0;
    if (fields.empty() || NumberOf(fields[0], way.Form.Decimal, value) == NumberKind::None ||
        fields[0].find(way.Form.Decimal) == std::string_view::npos)
        return;
    task.In.Fail("the name of its first point would be \"" + Printable(fields[0]) +
                 "\"; --columns says what its columns are, as in --columns x,y,z or --columns name,x,y,z");
}

// "Left 1 1.5 2.5 3.5": a word that comes again with another whole number behind it, and one number more than
// a point needs, may be a name with a blank.
void RefuseNamesWithBlank(const CloudTask& task, const std::vector<std::string_view>& rows,
                          const RowForm& form) {
    if (form.Delimiter != '\0' || form.Columns != kNamed) return;
    std::vector<std::string_view> names, fields;
    constexpr std::string_view kDigits = "0123456789";
    for (const std::string_view row : rows) {
        FieldsOf(row, form.Delimiter, kNamed.size() + 1, fields);
        if (!HoldsPoint(fields, form)) continue;
        if (fields.size() <= kNamed.size() || fields[0].find_first_of(kDigits) != std::string_view::npos ||
            fields[1].find_first_not_of(kDigits) != std::string_view::npos)
            return;
        names.push_back(fields[0]);
    }
    std::sort(names.begin(), names.end());
    if (std::adjacent_find(names.begin(), names.end()) != names.end())
        task.In.Fail("the name \"" + Printable(*std::adjacent_find(names.begin(), names.end())) +
                     "\" comes again with a whole number behind it and may be a part of a name with a "
                     "blank; --columns says what its fields are, as name,x,y,z,- or -,name,x,y,z");
}

// A row with more fields than its heading has words: which of them the heading leaves out is anybody's guess.
void RefuseShortHeading(const CloudTask& task, const Way& way) {
    std::vector<std::string_view> fields;
    FieldsOf(way.First, way.Form.Delimiter, kMostFields, fields);
    while (!fields.empty() && fields.back().find_first_not_of(" \t") == std::string_view::npos)
        fields.pop_back();
    if (fields.size() <= way.Form.Columns.size()) return;
    task.In.Fail("its heading has " + std::to_string(way.Form.Columns.size()) + " columns and the row \"" +
                 Printable(way.First) + "\" " + std::to_string(fields.size()) +
                 "; --columns says what they are");
}

// Spreadsheets whose decimal delimiter is the comma put quotes around their numbers where commas stand
// between the fields too.
bool HasQuotedCommas(const std::vector<std::string_view>& rows) {
    std::vector<std::string_view> fields;
    return std::any_of(rows.begin(), rows.end(), [&fields](std::string_view row) {
        FieldsOf(row, ',', kMostFields, fields);
        return std::any_of(fields.begin(), fields.end(), [](std::string_view field) {
            double value = 0;
            return field.find(',') != std::string_view::npos &&
                   NumberOf(field, ',', value) == NumberKind::Finite;
        });
    });
}

}  // namespace

FoundForm FindForm(const CloudTask& task, CloudKind kind, std::string_view head, bool isWhole) {
    const std::string_view all = head;
    std::vector<std::string_view> lines, rows;
    std::string_view line;
    for (int i = 0; i < kMostRows && CutLine(head, line); ++i) {
        if (head.empty() && !isWhole && !lines.empty()) break;  // the last one may go on behind the view
        lines.push_back(line);
        if (!IsCommentLine(line)) rows.push_back(line);
    }
    const CloudWish& wish = task.Wish;
    std::vector<char> delimiters = {';', '\t', ',', '|', '\0', ':'}, decimals = {'.', ','};
    if (wish.Delimiter) delimiters = {*wish.Delimiter == ' ' ? '\0' : *wish.Delimiter};
    if (wish.Decimal) decimals = {*wish.Decimal};
    const bool quotedCommas = HasQuotedCommas(rows);
    Way best;
    bool usual = false;
    for (const char delimiter : delimiters) {
        std::optional<CloudHeading> heading;
        std::int64_t number = 0, headingLine = 0;
        std::vector<std::string_view> fields;
        for (const std::string_view text : lines) {
            ++number;
            FieldsOf(text, delimiter, kMostFields, fields);
            double value = 0;
            const auto numbers = std::count_if(fields.begin(), fields.end(), [&](std::string_view field) {
                return NumberOf(field, '.', value) != NumberKind::None ||
                       NumberOf(field, ',', value) != NumberKind::None;
            });
            if (!IsCommentLine(text) && numbers >= 3) break;  // the rows begin
            if (auto found = HeadingOf(text, delimiter)) {
                heading = std::move(found);
                headingLine = number;
            }
        }
        std::vector<Columns> ways = heading ? std::vector<Columns>{heading->Columns} : UsualColumns(kind);
        if (!wish.Columns.empty()) ways = {wish.Columns};
        for (const Columns& columns : ways) {
            for (const char decimal : decimals) {
                if (decimal == delimiter && !quotedCommas) continue;
                const bool hasZ = !heading || heading->HasZ || !wish.Columns.empty();
                Way way;
                way.Form = {delimiter, decimal, columns, hasZ};
                if (heading) way.Heading = *heading;
                way.HeadingLine = headingLine;
                CountRows(rows, way);
                if (way.Rows <= best.Rows) continue;
                best = std::move(way);
                usual = !heading && wish.Columns.empty();
            }
        }
    }
    if (best.Rows > 0 && wish.Pairs && !Has(best.Form.Columns, PointColumn::OtherX))
        task.In.Fail(
            "its heading does not name the columns of both systems; --columns does, as in "
            "--columns name,x,y,z,X,Y,Z");
    const bool isTable = (kind == CloudKind::Text || kind == CloudKind::Xyz) && !wish.Pairs &&
                         !Has(best.Form.Columns, PointColumn::OtherX);
    const auto byTable = [&](bool headed) -> std::optional<FoundForm> {
        if (!isTable) return std::nullopt;
        const std::size_t length =
            isWhole || lines.empty()
                ? all.size()
                : static_cast<std::size_t>(lines.back().data() + lines.back().size() - all.data());
        std::optional<FoundForm> found = FormOfTable(task, kind, all.substr(0, length), headed);
        if (!found) return std::nullopt;
        Way way;
        way.Form = found->Form;
        if (!found->DecimalShown && best.Rows > 0) found->Form.Decimal = way.Form.Decimal = best.Form.Decimal;
        CountRows(rows, way);
        if (way.Rows == 0) return std::nullopt;
        return found;
    };
    if (best.Rows == 0) {
        if (std::optional<FoundForm> found = byTable(false)) return *found;
        task.In.Fail("none of its lines holds the numbers of a point" +
                     std::string(wish.Columns.empty() ? " (--columns names its columns)" : ""));
    }
    if (!usual && wish.Columns.empty()) RefuseShortHeading(task, best);
    if (usual || !wish.Columns.empty()) RefuseTwoReadings(task, best);
    if (usual && kind == CloudKind::Text && best.Form.Columns == kNamed) RefuseFractionAsName(task, best);
    std::optional<FoundForm> found = byTable(!usual && wish.Columns.empty());
    if (usual && found && found->HeadingLine == 0) RefuseNamesWithBlank(task, rows, found->Form);
    if (found) return *found;
    if (wish.Unit.empty() && !best.Heading.Wrong.empty())
        task.In.Fail(best.Heading.Wrong + " (--unit says which one all have)");
    return {best.Form, wish.Unit.empty() ? best.Heading.Unit : wish.Unit, best.HeadingLine, {}};
}

// --- What the user says -----------------------------------------------------------------------------------

std::optional<std::vector<PointColumn>> ColumnsFromText(std::string_view text, std::string& why) {
    static constexpr std::array<Word, 16> kNames = {{
        {"name", PointColumn::Name},
        {"t", PointColumn::Name},
        {"x", PointColumn::X},
        {"y", PointColumn::Y},
        {"z", PointColumn::Z},
        {"nx", PointColumn::NormalX},
        {"ny", PointColumn::NormalY},
        {"nz", PointColumn::NormalZ},
        {"qx", PointColumn::TurnX},
        {"qy", PointColumn::TurnY},
        {"qz", PointColumn::TurnZ},
        {"qw", PointColumn::TurnW},
        {"X", PointColumn::OtherX},
        {"Y", PointColumn::OtherY},
        {"Z", PointColumn::OtherZ},
        {"-", PointColumn::None},
    }};
    std::vector<std::string_view> words;
    FieldsOf(text, ',', kMostFields, words);
    std::vector<PointColumn> columns;
    for (std::string_view word : words) {
        while (!word.empty() && word.back() == ' ') word.remove_suffix(1);
        const auto* const found =
            std::find_if(kNames.begin(), kNames.end(), [word](const Word& row) { return row.Text == word; });
        const PointColumn sigma = SigmaColumn(word);
        if (found == kNames.end() && sigma == PointColumn::None) {
            why = "\"" + Printable(word) +
                  "\" is no column: name, x, y, z, X, Y, Z, nx, ny, nz, qx, qy, qz, qw, sx, sy, sz, s or -";
            return std::nullopt;
        }
        const PointColumn means = sigma != PointColumn::None ? sigma : found->Means;
        if (means != PointColumn::None && Has(columns, means)) {
            why = "\"" + Printable(word) + "\" stands twice";
            return std::nullopt;
        }
        columns.push_back(means);
    }
    const auto count = [&columns](PointColumn first, std::size_t n) {
        std::size_t sum = 0;
        for (std::size_t i = 0; i < n; ++i)
            sum += Has(columns, static_cast<PointColumn>(static_cast<std::size_t>(first) + i)) ? 1 : 0;
        return sum;
    };
    if (!Has(columns, PointColumn::X) || !Has(columns, PointColumn::Y) || !Has(columns, PointColumn::Z)) {
        why = "x, y and z are wanted among the columns";
    } else if (count(PointColumn::NormalX, 3) % 3 != 0) {
        why = "of nx, ny and nz all three are wanted";
    } else if (count(PointColumn::TurnX, 4) % 4 != 0) {
        why = "of qx, qy, qz and qw all four are wanted";
    } else if (count(PointColumn::OtherX, 3) % 3 != 0) {
        why = "of X, Y and Z all three are wanted";
    } else if (!Has(columns, PointColumn::OtherX) && count(PointColumn::OtherSigmaX, 4) > 0) {
        why = "SX, SY, SZ and S go with X, Y and Z";
    } else {
        // Of one system they are text.
        if (!Has(columns, PointColumn::OtherX))
            for (PointColumn& column : columns)
                if (column >= PointColumn::SigmaX) column = PointColumn::None;
        return columns;
    }
    return std::nullopt;
}

}  // namespace corvinade::import
