// The point file reader, compared character by character with its rules written out plainly.
#include <algorithm>
#include <random>
#include <regex>
#include <sstream>

#include "cli/headless.h"
#include "core/job.h"
#include "core/numbers.h"
#include "core/platform.h"
#include "core/text.h"
#include "import/point_file.h"
#include "import/point_file_checks.h"
#include "support/fixture.h"

using namespace corvinade;

namespace {

using Lines = std::vector<std::string>;

// --- The rules, step by step ------------------------------------------------------------------------------

std::string PlainField(std::string& line, char delimiter) {
    std::string field;
    const auto blank = [](char c) { return c == ' ' || c == '\t'; };
    while (!line.empty() && line.front() == delimiter) line.erase(0, 1);
    while (!line.empty() && blank(line.front())) line.erase(0, 1);
    while (field.empty() || (field.back() != delimiter && !blank(field.back()))) {
        if (line.empty()) return field;
        const char c = line.front();
        if (c != '\xFE' && c != '\xFF') field += c;  // single-byte text alone is used here
        line.erase(0, 1);
    }
    field.pop_back();
    return field;
}

// Rows of the same 3 or more fields between blanks, the coordinates whole or with a comma between digits.
bool IsBlankTable(const Lines& lines) {
    static const std::regex number("[+-]?[0-9]+(,[0-9]+)?([eE][+-]?[0-9]+)?");
    std::size_t columns = 0;
    for (const std::string& line : lines) {
        std::istringstream words(line);
        Lines fields;
        for (std::string word; words >> word;) fields.push_back(word);
        if (fields.empty()) continue;
        if (columns == 0) columns = fields.size();
        if (fields.size() != columns || columns < 3) return false;
        const std::size_t first = columns > 3 ? 1 : 0;
        for (std::size_t i = first; i < first + 3; ++i)
            if (!std::regex_match(fields[i], number)) return false;
    }
    return columns > 0;
}

void PlainDelimiter(const Lines& lines, char decimal, char& delimiter) {
    const std::string candidates = " ;:*#\t,";
    int count[8] = {};
    for (const std::string& line : lines)
        for (const char c : line)
            for (int i = 1; i <= 7; ++i) {
                if (i == 7 && decimal == ',') continue;
                if (c == candidates[static_cast<std::size_t>(i - 1)]) ++count[i];
            }
    int result = 0;
    for (int i = 1; i <= 6; ++i)
        if (count[i + 1] > count[i]) result = i + 1;
    if (result == 7) {
        // A table of numbers with decimal comma is delimited by what would win without the comma.
        int other = 0;
        for (int i = 1; i <= 5; ++i)
            if (count[i + 1] > count[i]) other = i + 1;
        bool table = other != 0;
        long columns = 0;
        const char sign = other == 0 ? ' ' : candidates[static_cast<std::size_t>(other - 1)];
        for (std::string line : lines) {
            if (line.empty()) continue;
            const long here = std::count(line.begin(), line.end(), sign) + 1;
            if (columns == 0) columns = here;
            table = table && here == columns && here >= 3;
            if (here > 3) PlainField(line, sign);
            for (int k = 0; k < 3; ++k) {
                std::string field = PlainField(line, sign);
                const bool dot = field.find('.') != std::string::npos;
                std::replace(field.begin(), field.end(), ',', '.');
                std::size_t end = 0;
                try {
                    std::stod(field, &end);
                } catch (const std::exception&) {
                    end = 0;
                }
                table = table && !dot && end != 0 && end == field.size();
            }
        }
        if (table && columns > 0) result = other;
        if (other == 0 && IsBlankTable(lines)) result = 1;
    }
    if (result != 0) delimiter = candidates[static_cast<std::size_t>(result - 1)];
}

struct PointOutcome {
    bool Failed = false;
    std::string Error;  // a platform error
    Lines Messages;
    std::string Delimiter, File;  // what the file holds afterwards
    std::vector<std::string> Name;
    std::vector<TaggedValue> X;
    std::vector<double> Z;

    bool operator==(const PointOutcome&) const = default;
};

std::ostream& operator<<(std::ostream& out, const PointOutcome& outcome) {
    out << (outcome.Failed ? "failed" : "good") << " [" << outcome.Delimiter << "] " << outcome.Error << "\n";
    for (const std::string& message : outcome.Messages) out << message << "\n";
    for (std::size_t i = 1; i < outcome.Name.size(); ++i)
        out << outcome.Name[i] << " " << outcome.X[i].value_or(-99) << " " << outcome.Z[i] << "\n";
    return out << outcome.File;
}

struct Surroundings {
    char Decimal = '.';
    bool RobotFileHasId = false, Yes = true;
    char Delimiter = '\0';
    std::string Path;
};

// Check_DecimalDelimiter; changes the lines as the file is changed.
void PlainDecimalCheck(Lines& lines, const Surroundings& at, char delimiter, PointOutcome& out) {
    const std::string file = "File: " + at.Path + "\r\n\r\n";
    int dots = 0, commas = 0, lastSum = 0, row = 0;
    for (std::string line : lines) {
        ++row;
        if (at.RobotFileHasId) PlainField(line, delimiter);
        for (int k = 0; k < 3; ++k) {
            const std::string field = PlainField(line, delimiter);
            dots += static_cast<int>(std::count(field.begin(), field.end(), '.'));
            commas += static_cast<int>(std::count(field.begin(), field.end(), ','));
        }
        if (dots + commas - lastSum > 3) {
            out.Failed = true;
            out.Messages.push_back(file + "To much DecimalDelimiter in Row " + std::to_string(row) +
                                   ". Please check and fix");
            return;
        }
        lastSum = dots + commas;
    }
    if (dots > 0 && commas > 0) {
        out.Failed = true;
        out.Messages.push_back(file + "Found both possible DecimalDelimiters \".\" and \",\" in \r\n\r\n" +
                               at.Path +
                               "\r\n\r\nOnly \".\" OR \",\" are allowed!\r\n\r\nView File and fix problem");
        return;
    }
    char found = '\0';
    if (dots > 0) found = '.';
    if (commas > 0) found = ',';
    if (dots + commas == 0 || found == at.Decimal) return;
    out.Messages.push_back(
        file + "Your Decimal Delimiter is different to your settings in your operating system, which is \"" +
        at.Decimal + "\"\r\n\r\nShould I change the " + found + " in your File to " + at.Decimal + " ?");
    if (!at.Yes) {
        out.Failed = true;
        return;
    }
    out.File.clear();
    for (std::string& line : lines) {
        std::replace(line.begin(), line.end(), found, at.Decimal);
        out.File += line + "\r\n";
    }
    out.File.resize(out.File.size() - 2);
}

// Reads start points from lines that CR LF ends.
PointOutcome PlainRead(Lines lines, const Surroundings& at) {
    PointOutcome out;
    for (const std::string& line : lines) out.File += line + "\r\n";
    char delimiter = at.Delimiter;
    PlainDelimiter(lines, at.Decimal, delimiter);
    if (delimiter == '\0') {
        out.Failed = true;
        out.Messages.push_back(CrLf("Couldn´t find any delimiter in file: \n\n\n" + at.Path +
                                    "\n\n\nallowed is ONLY: \n\nSpace ' '\nor Semicolon ';'\nor Colon ':'\n"
                                    "or Star '*'\nor Sharp '#'\nor Tab '   '\n"
                                    "or and Comma IF Decimal Delimiter is NOT comma ','"));
        return out;
    }
    out.Delimiter = delimiter;

    long lowest = 10000, highest = -10000;
    std::size_t badRow = 0;
    for (std::size_t row = 1; row <= lines.size(); ++row) {
        const std::string& line = lines[row - 1];
        if (line.empty()) continue;
        const long count = std::count(line.begin(), line.end(), delimiter);
        highest = std::max(highest, count);
        lowest = std::min(lowest, count);
        if (lowest != highest && badRow == 0) badRow = row;
    }
    if (badRow != 0) {
        out.Failed = true;
        out.Messages.push_back("File: " + at.Path + "\r\n\r\nIn Row " + std::to_string(badRow) +
                               " the number of columns has changed relativ to the rows before\r\n"
                               "Please diagnose and fix");
        return out;
    }
    const bool hasName = highest + 1 != 3;
    if (!hasName)
        out.Messages.push_back("File: " + at.Path +
                               "\r\n\r\nFile has only 3 columns; they will be interpreted as x, y, z; Point "
                               "Number will be Line Number of File!");
    PlainDecimalCheck(lines, at, delimiter, out);
    if (out.Failed) return out;

    std::size_t n = 0;
    for (const std::string& line : lines) n += line.empty() ? 0 : 1;
    if (n == 0) {
        out.Error = "Cannot read \"" + at.Path + "\": there is no point in it";
        return out;
    }
    out.Name.resize(n + 1);
    out.X.resize(n + 1);
    out.Z.resize(n + 1);
    std::size_t p = 0, e = 0;
    for (std::size_t row = 1; row <= lines.size(); ++row) {
        std::string line = lines[row - 1];
        if (line.size() < 2) {
            if (p >= n) break;
            out.Messages.push_back("Empty Row in File \r\n" + at.Path + "\r\n in line " +
                                   std::to_string(p + 1 + e) + " will be ignored");
            ++e;
            continue;
        }
        const std::string name = hasName ? PlainField(line, delimiter) : std::to_string(p + 1);
        ++p;
        out.Name[p] = name;
        for (int k = 0; k < 3; ++k) {
            std::string field = PlainField(line, delimiter);
            if (field.empty()) field = "0";
            double value = 0;
            if (!TextToNumber(field, at.Decimal, value)) {
                out.Error = "Cannot read \"" + at.Path + "\", line " + std::to_string(row) + ": \"" + field +
                            "\" is not a number";
                return out;
            }
            if (k == 0) out.X[p] = value;
            if (k == 2) out.Z[p] = value;
        }
    }
    return out;
}

// --- The comparison ---------------------------------------------------------------------------------------

class PointFileWording : public Program {
protected:
    PointOutcome Read(const Lines& lines, const Surroundings& at) {
        std::string content;
        for (const std::string& line : lines) content += line + "\r\n";
        Headless.Dialogs.clear();
        Headless.Decimal = at.Decimal;
        Headless.OnQuestion = [&](const DialogShown&) {
            return std::optional<std::string>(at.Yes ? "Yes" : "No");
        };
        ::Run.RobotFileHasId = ToFlag(at.RobotFileHasId);
        ::Run.ImportFailed = kFalse;
        ::Run.Delimiter = at.Delimiter == '\0' ? std::string() : std::string(1, at.Delimiter);
        Job = JobRecord{};
        Job.PathMCS = at.Path;
        Job.PathOCS = target_;
        PointOutcome out;
        Write("start.txt", content);
        Write("target.txt", "A*1*1*1*\r\n");
        bool started = false;
        try {
            Einlesen_Neu();
            started = !IsTrue(::Run.ImportFailed);
        } catch (const PlatformError& error) {
            out.Error = error.What;
        }
        out.Failed = IsTrue(::Run.ImportFailed);
        // A start file that is good lets the target file be read, whose delimiter is another one.
        if (!started && !::Run.Delimiter.empty()) out.Delimiter = ::Run.Delimiter;
        out.Messages = Messages();
        out.File = Contents(at.Path);
        if (Job.Start.Name.size() > 1) {
            out.Name = Job.Start.Name;
            out.X = Job.Start.X;
            out.Z = Job.Start.Z;
        }
        return out;
    }
    template <class Choice>
    const typename Choice::value_type& OneOf(const Choice& choice) {
        return choice[random_() % choice.size()];
    }
    std::string target_ = PathOf("target.txt");
    std::mt19937 random_{41};
};

TEST_F(PointFileWording, EveryFileIsReadAsTheRulesSay) {
    const std::string delimiters = ";:*#\t, ";
    const Lines names = {"P", "7", "A.1", "B,2", "x:y", "s*", "\xFFQ", ""};
    const Lines odd = {"", "x", "1e3", "-.5", "+2", "1.2.3.4.5", "1,2,3,4,5", "\xFE", " 4", "5 ", "6 7"};
    int good = 0, failed = 0, asked = 0, errors = 0, rows = 0;
    for (int round = 0; round < 6000; ++round) {
        Surroundings at;
        at.Path = PathOf("start.txt");
        at.Decimal = random_() % 2 == 0 ? '.' : ',';
        at.Yes = random_() % 3 != 0;
        at.RobotFileHasId = random_() % 4 == 0;
        at.Delimiter = random_() % 3 == 0 ? '\0' : delimiters[random_() % delimiters.size()];
        const char delimiter = delimiters[random_() % delimiters.size()];
        const char decimal = random_() % 3 == 0 ? ',' : '.';
        const unsigned columns = random_() % 8 == 0 ? random_() % 7 : 3 + random_() % 2;
        const unsigned oddness = random_() % 3 == 0 ? 12 : 1000;
        Lines lines;
        for (unsigned row = random_() % 6; row > 0; --row) {
            std::string line;
            for (unsigned c = 0; c < columns; ++c) {
                std::string field = std::to_string(random_() % 1000);
                if (random_() % 3 != 0) field += decimal + std::to_string(random_() % 100);
                if (c == 0 && columns != 3) field = random_() % 4 == 0 ? OneOf(names) : "P" + field;
                if (random_() % oddness == 0) field = OneOf(odd);
                line += (c == 0 ? "" : std::string(1, delimiter)) + field;
            }
            if (random_() % oddness == 0) line += delimiter;
            lines.push_back(line);
            if (random_() % 12 == 0) lines.push_back(random_() % 2 == 0 ? "" : "7");
        }
        while (random_() % 5 == 0) lines.emplace_back();

        PointOutcome expected = PlainRead(lines, at);
        const PointOutcome actual = Read(lines, at);
        if (!expected.Failed && expected.Error.empty()) {
            expected.Delimiter.clear();
            ++good;
        } else {
            if (expected.Delimiter.empty() && at.Delimiter != '\0') expected.Delimiter = at.Delimiter;
            ++(expected.Failed ? failed : errors);
        }
        for (const std::string& message : expected.Messages) {
            if (message.find("Should I change") != std::string::npos) ++asked;
            if (message.find("Empty Row") != std::string::npos) ++rows;
        }
        ASSERT_EQ(actual, expected) << "round " << round << ", delimiter " << at.Delimiter << ", decimal "
                                    << at.Decimal << (at.RobotFileHasId ? ", id" : "");
    }
    // Each way through the rules has been gone often enough.
    for (const int times : {good, failed, asked, errors, rows}) EXPECT_GT(times, 100);
}

TEST_F(PointFileWording, DecimalDelimitersAreCountedThroughTheWholeFile) {
    // Two thousand rows without any, and one of each kind far from the other.
    Lines lines(2000, "P\t1\t2\t3");
    lines[3] = "P\t1.5\t2\t3";
    Surroundings at;
    at.Path = PathOf("start.txt");
    EXPECT_FALSE(Read(lines, at).Failed);
    lines[1990] = "P\t1\t2,5\t3";
    const PointOutcome both = Read(lines, at);
    EXPECT_TRUE(both.Failed);
    ASSERT_EQ(both.Messages.size(), 1u);
    EXPECT_NE(both.Messages[0].find("Found both possible"), std::string::npos);
    // More than three in one row end the check there, though both kinds have been seen.
    lines[1991] = "P.,\t1,.\t2\t3";
    lines[1995] = lines[1991];
    EXPECT_EQ(Read(lines, at).Messages[0], "File: " + at.Path +
                                               "\r\n\r\nTo much DecimalDelimiter in Row 1992. Please check "
                                               "and fix");
}

TEST_F(PointFileWording, FieldsAreCutAsTheRulesSay) {
    const std::string letters = " \t;;;,ab1.\xFE\xFF";
    for (int round = 0; round < 3000; ++round) {
        std::string line(random_() % 12, ' ');
        for (char& c : line) c = letters[random_() % letters.size()];
        for (const char delimiter : {';', ' ', '\t', ','}) {
            std::string plain = line, decoded = DecodeText(line);
            std::int32_t expected = 0, columns = 0;
            AnzSpalten(decoded, columns, std::string(1, delimiter));
            while (!plain.empty()) {
                ASSERT_EQ(Zerpflück(decoded, delimiter), PlainField(plain, delimiter));
                ASSERT_EQ(decoded, DecodeText(plain));
                ++expected;
            }
            ASSERT_EQ(columns, expected);
        }
    }
}

}  // namespace
