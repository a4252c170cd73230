// The checks on a point file as a whole: delimiter, columns, decimal delimiter.
#include "import/point_file_checks.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <vector>

#include "core/notes.h"
#include "core/numbers.h"
#include "core/platform.h"
#include "core/run.h"
#include "core/text.h"
#include "import/long_import.h"

namespace corvinade::import {

namespace {

const std::string kBreak = kLineEnd;

// The candidates, indices 1 to 7; the comma comes last.
constexpr std::array<char, 8> kCandidates = {'\0', ' ', ';', ':', '*', '#', '\t', ','};
constexpr std::size_t kComma = 7;

void Fail(const std::string& message) {
    Run.ImportFailed = kTrue;
    ShowMessage(message);
}

std::string InFile(const std::string& path) {
    return "File: " + path + kBreak + kBreak;
}
std::string InFile(const PointText& file) {
    return InFile(file.Path);
}

// The delimiter by the rule of neighbours: the last candidate that occurs more often than the one
// before it. 0 = none. Candidates from `end` on are left out.
std::size_t LastRise(const std::array<std::int64_t, 8>& counts, std::size_t end) {
    std::size_t result = 0;
    for (std::size_t i = 1; i + 1 < end; ++i)
        if (counts[i + 1] > counts[i]) result = i + 1;
    return result;
}

// Numbers in a row.
int NumbersOf(FileRows rows) {
    return rows == FileRows::Shape ? 2 : 3;
}

// Fields in front of the numbers of a row.
int NamesOf(FileRows rows, std::int64_t columns) {
    return rows == FileRows::Points && columns > 3 ? 1 : 0;
}

// With this delimiter, is every line that holds anything a row of the same number of columns, which are
// enough, and are its coordinates numbers with decimal comma? Then the commas of the file delimit nothing.
bool IsTableWithDecimalComma(const PointText& file, FileRows rows, char delimiter) {
    LineWalk lines(file);
    std::string_view line;
    std::string decoded, scratch;
    std::int64_t columns = 0;
    double value = 0;
    while (lines.Next(line)) {
        if (line.empty()) continue;
        const std::int64_t here = CountByte(line, delimiter) + 1;
        if (columns == 0) columns = here;
        if (here != columns || columns < NumbersOf(rows)) return false;
        std::string_view rest = DecodedLine(file, line, decoded);
        if (NamesOf(rows, columns) > 0) CutField(rest, delimiter, scratch);
        for (int field = 0; field < NumbersOf(rows); ++field)
            if (!TextToNumber(CutField(rest, delimiter, scratch), ',', value)) return false;
    }
    return columns > 0;
}

// The same for blanks and tabs between the fields. Here every comma must stand between two digits: in
// "A, 1, 2, 3" it delimits.
bool IsBlankTableWithDecimalComma(const PointText& file, FileRows rows) {
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    const auto isNumber = [&](std::string_view field) {
        for (std::size_t i = 0; i < field.size(); ++i) {
            if (field[i] != ',') continue;
            if (i == 0 || i + 1 == field.size() || !isDigit(field[i - 1]) || !isDigit(field[i + 1]))
                return false;
        }
        double value = 0;
        return TextToNumber(field, ',', value);
    };
    LineWalk lines(file);
    std::string_view line;
    std::string decoded, scratch;
    std::size_t columns = 0;
    std::vector<std::string> fields;
    while (lines.Next(line)) {
        std::string_view rest = DecodedLine(file, line, decoded);
        fields.clear();
        while (fields.size() <= 5) {
            fields.emplace_back(CutField(rest, '\0', scratch));
            if (fields.back().empty()) break;
        }
        fields.pop_back();  // what ended the loop: nothing, or a field beyond all that are read
        if (fields.empty()) continue;
        if (columns == 0) columns = fields.size();
        const auto numbers = static_cast<std::size_t>(NumbersOf(rows));
        if (fields.size() != columns || columns < numbers) return false;
        const auto first = static_cast<std::size_t>(NamesOf(rows, static_cast<std::int64_t>(columns)));
        for (std::size_t i = first; i < first + numbers; ++i)
            if (!isNumber(fields[i])) return false;
    }
    return columns > 0;
}

// What stands as decimal delimiter where the file has only one of the two; the point where it has both.
char DecimalMark(const PointText& file) {
    return file.Text.find('.') == std::string_view::npos ? ',' : '.';
}

// FindTrennzeichen; false where the file shows no delimiter.
bool FindDelimiter(const PointText& file, std::string& delimiter, FileRows rows, const Reading& how);

}  // namespace

std::string OnlyThreeColumns(const std::string& path) {
    return InFile(path) +
           "File has only 3 columns; they will be interpreted as x, y, z; Point Number will be Line Number of "
           "File!";
}

void DezTrennzeichenIstKomma(Flag& isComma) {
    isComma = ToFlag(PlainText(1.1)[1] == ',');
}

void FindTrennzeichen(const PointText& file, std::string& delimiter, FileRows rows, const Reading& how) {
    FindDelimiter(file, delimiter, rows, how);
}

namespace {

bool FindDelimiter(const PointText& file, std::string& delimiter, FileRows rows, const Reading& how) {
    std::array<std::int64_t, 8> counts{};
    // Block by block, so that seven counts read the memory once.
    constexpr std::size_t kBlock = 1 << 14;
    const std::size_t end = how.Decimal == ',' ? kComma : kComma + 1;
    for (std::size_t at = 0; at < file.Text.size(); at += kBlock)
        for (std::size_t i = 1; i < end; ++i)
            counts[i] += CountByte(file.Text.substr(at, kBlock), kCandidates[i]);

    std::size_t result = LastRise(counts, counts.size());
    if (result == kComma) {
        const std::size_t other = LastRise(counts, kComma);
        if (other != 0 && IsTableWithDecimalComma(file, rows, kCandidates[other])) result = other;
        // Without this, "A 1,5 2,5 3,5" would be read as 1, 5 and 2 without a word.
        if (other == 0 && IsBlankTableWithDecimalComma(file, rows)) result = 1;
    }
    if (result != 0) delimiter = std::string(1, kCandidates[result]);
    return result != 0;
}

}  // namespace

void Diverse_Checks(PointText& file, std::int64_t& columns, const std::string& delimiter,
                    std::int64_t& firstBadRow) {
    if (!file.LoneReturns) {
        const LineCensus& census = CensusOf(file, DelimiterCharacter(delimiter), DecimalMark(file));
        columns = census.MostDelimiters + 1;
        firstBadRow = census.FirstOther;
        return;
    }
    std::int64_t lowest = 10000, highest = -10000;
    firstBadRow = 0;
    const char sign = DelimiterCharacter(delimiter);
    LineWalk lines(file);
    std::string_view line;
    while (lines.Next(line)) {
        if (line.empty()) continue;
        const std::int64_t count = CountByte(line, sign);
        lowest = std::min(lowest, count);
        highest = std::max(highest, count);
        if (lowest != highest && firstBadRow == 0) firstBadRow = lines.Row;
    }
    columns = highest + 1;
}

void Check_DecimalDelimiter(PointText& file, const std::string& delimiter, const Reading& how) {
    const char system = how.Decimal;
    const char sign = DelimiterCharacter(delimiter);

    // What a character means, so that the loop over all fields tests each once.
    enum : unsigned char { kEnds = 1, kDot = 2, kCommaSign = 4 };
    std::array<unsigned char, 256> meaning{};
    meaning['.'] = kDot;
    meaning[','] = kCommaSign;
    meaning[' '] = meaning['\t'] = kEnds;
    if (sign != '\0') meaning[static_cast<unsigned char>(sign)] = kEnds;

    const int fields = IsTrue(Run.RobotFileHasId) ? 4 : 3;
    std::int64_t dots = 0, commas = 0, lastSum = 0;
    const char mark = DecimalMark(file);
    const bool fileHasCommas = sign != ',' && file.Text.find(',') != std::string_view::npos;
    // Where no line has more than three of the one that there is, its first occurrence tells all.
    const bool firstTellsAll = !file.LoneReturns && (mark == ',' ? fileHasCommas : !fileHasCommas) &&
                               CensusOf(file, sign, mark).MostMarks <= 3;
    LineWalk lines(file);
    std::string_view line;
    while (lines.Next(line)) {
        // What counts is whether there are dots, whether there are commas, and whether a line has more
        // than three of them. Most lines cannot change anything of that.
        const std::int64_t dotsInLine = CountByte(line, '.');
        const std::int64_t commasInLine = fileHasCommas ? CountByte(line, ',') : 0;
        const bool news = (dots == 0 && dotsInLine > 0) || (commas == 0 && commasInLine > 0);
        if (!news && dotsInLine + commasInLine <= 3) continue;
        const char* at = line.data();
        const char* const end = at + line.size();
        for (int field = 0; field < fields; ++field) {
            while (at != end && *at == sign && sign != '\0') ++at;
            while (at != end && (*at == ' ' || *at == '\t')) ++at;
            unsigned dotsHere = 0, commasHere = 0;
            for (; at != end; ++at) {
                const unsigned what = meaning[static_cast<unsigned char>(*at)];
                if ((what & kEnds) != 0) break;
                dotsHere += what & kDot;
                commasHere += what & kCommaSign;
            }
            if (at != end) ++at;
            if (fields == 4 && field == 0) continue;  // a name in front is no coordinate
            dots += dotsHere / kDot;
            commas += commasHere / kCommaSign;
        }
        if (dots + commas - lastSum > 3) {
            Fail(InFile(file) + "To much DecimalDelimiter in Row " + std::to_string(lines.Row) +
                 ". Please check and fix");
            return;
        }
        lastSum = dots + commas;
        if (firstTellsAll && lastSum > 0) break;
    }

    if (dots > 0 && commas > 0) {
        Fail(InFile(file) + "Found both possible DecimalDelimiters \".\" and \",\" in " + kBreak + kBreak +
             file.Path + kBreak + kBreak + "Only \".\" OR \",\" are allowed!" + kBreak + kBreak +
             "View File and fix problem");
        return;
    }
    const char found = commas > 0 ? ',' : '.';
    if (dots + commas == 0 || found == system) return;
    const std::string question = InFile(file) +
                                 "Your Decimal Delimiter is different to your settings in your operating "
                                 "system, which is \"" +
                                 system + "\"" + kBreak + kBreak + "Should I change the " + found +
                                 " in your File to " + system + " ?";
    if (!how.YesNo(question, "Country Settings; issue with . and ,")) {
        Run.ImportFailed = kTrue;
        return;
    }
    // The user may have looked into the file, and changed it, before the answer.
    file = LoadPointText(file.Path);
    std::string content(file.Text);
    std::replace(content.begin(), content.end(), found, system);
    if (content.ends_with('\n')) {
        content.pop_back();
        if (content.ends_with('\r')) content.pop_back();
    } else if (content.ends_with('\r')) {
        content.pop_back();
    }
    ReplacePointText(file, std::move(content));
    WriteFile(file.Path, file.Changed);
}

bool CheckColumns(PointText& file, FileRows rows, std::string& delimiter, std::int64_t& columns,
                  const Reading& how) {
    if (!FindDelimiter(file, delimiter, rows, how) && !delimiter.empty())
        AddNote(
            NoteCode::OldDelimiter,
            "The file shows no delimiter; it is read with that of before, \"" + Printable(delimiter) + "\"",
            file.Path);
    if (delimiter.empty()) {
        const std::string gap = kBreak + kBreak + kBreak;
        Fail("Couldn´t find any delimiter in file: " + gap + file.Path + gap + "allowed is ONLY: " + kBreak +
             kBreak + "Space ' '" + kBreak + "or Semicolon ';'" + kBreak + "or Colon ':'" + kBreak +
             "or Star '*'" + kBreak + "or Sharp '#'" + kBreak + "or Tab '   '" + kBreak +
             "or and Comma IF Decimal Delimiter is NOT comma ','");
        return false;
    }
    if (!ImportGoesOn(kShareOfChecks / 3)) return false;
    std::int64_t badRow = 0;
    Diverse_Checks(file, columns, delimiter, badRow);
    if (!ImportGoesOn(kShareOfChecks * 2 / 3)) return false;
    if (badRow != 0) {
        Fail(InFile(file) + "In Row " + std::to_string(badRow) +
             " the number of columns has changed relativ to the rows before" + kBreak +
             "Please diagnose and fix");
        return false;
    }
    return true;
}

void ASCII_FileCheck(PointText& file, Flag& hasName, std::string& delimiter, const Reading& how) {
    std::int64_t columns = 0;
    if (!CheckColumns(file, FileRows::Points, delimiter, columns, how)) return;
    if (columns == 3) ShowMessage(OnlyThreeColumns(file.Path));
    hasName = ToFlag(columns != 3);
    Check_DecimalDelimiter(file, delimiter, how);
}

void AnzZeilen(const PointText& file, std::int64_t& count) {
    count = CountFilledLines(file.Text);
}

// --- The same by path -------------------------------------------------------------------------------------

void ASCII_FileCheck(const std::string& path, Flag& hasName, std::string& delimiter) {
    PointText file = LoadPointText(path);
    ASCII_FileCheck(file, hasName, delimiter);
}
void FindTrennzeichen(const std::string& path, std::string& delimiter) {
    FindTrennzeichen(LoadPointText(path), delimiter);
}
void Diverse_Checks(const std::string& path, std::int64_t& columns, const std::string& delimiter,
                    std::int64_t& firstBadRow) {
    PointText file = LoadPointText(path);
    Diverse_Checks(file, columns, delimiter, firstBadRow);
}
void Check_DecimalDelimiter(const std::string& path, const std::string& delimiter) {
    PointText file = LoadPointText(path);
    Check_DecimalDelimiter(file, delimiter);
}
void AnzZeilen(const std::string& path, std::int64_t& count) {
    AnzZeilen(LoadPointText(path), count);
}

}  // namespace corvinade::import
