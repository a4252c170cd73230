// Plain point files through the table reader, against the told reader bit by bit; and texts that are damaged.
#include <array>
#include <bit>
#include <cmath>
#include <fstream>
#include <functional>
#include <random>

#include "cli/headless.h"
#include "core/job.h"
#include "core/run.h"
#include "import/point_file.h"
#include "import/tables_as_text.h"
#include "support/memory_use.h"

namespace {

using PlainTables = Program;

class PlainFile {
public:
    explicit PlainFile(std::uint32_t seed) : random_(seed) {
        const char delimiter = ";:*#\t,"[Up(6)];
        const bool named = Up(4) > 0;
        const std::string end = std::array<const char*, 3>{"\n", "\r\n", "\r"}[Up(3)];
        const std::size_t rows = 1 + Up(12);
        if (Up(10) == 0) Text = "\xEF\xBB\xBF";
        for (std::size_t row = 0; row < rows; ++row) {
            if (named) Text += Name(row) + delimiter;
            for (int axis = 0; axis < 3; ++axis)
                Text += (axis > 0 ? std::string(1, delimiter) : "") + Number();
            if (row + 1 < rows || Up(3) > 0) Text += end;
        }
    }
    std::string Text;

private:
    std::size_t Up(std::size_t end) { return random_() % end; }
    std::string Digits(std::size_t count) {
        std::string digits;
        for (std::size_t i = 0; i < count; ++i) digits += static_cast<char>('0' + Up(10));
        return digits;
    }
    std::string Number() {
        std::string number = Up(2) == 0 ? "-" : "";
        const std::size_t whole = Up(10), places = Up(7);
        number += Digits(whole);
        if (places > 0 || whole == 0) number += "." + Digits(places + (whole == 0 ? 1 : 0));
        if (Up(40) == 0) number += "12345678";  // more than 15 digits, as a rule
        return Up(60) == 0 && number.find('.') == std::string::npos ? number + "." : number;
    }
    std::string Name(std::size_t row) {
        constexpr std::string_view kLetters = "ABCXYZabcxyz0123456789_-";
        std::string name = Up(20) == 0 ? "\xC3\xA4" : Up(40) == 0 ? "\xE4" : "";
        for (std::size_t i = Up(20); i > 0; --i) name += kLetters[Up(kLetters.size())];
        return name + std::to_string(row);
    }
    std::mt19937 random_;
};

bool SameBits(double a, double b) {
    return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

}  // namespace

TEST_F(PlainTables, GiveTheBitsOfTheToldReader) {
    const std::string path = PathOf("plain.txt");
    Reading how;
    how.Decimal = '.';
    int plain = 0;
    const int kFiles = UnderSanitizers() ? 3000 : 100000;
    for (int i = 0; i < kFiles; ++i) {
        const std::string text = PlainFile(static_cast<std::uint32_t>(i)).Text;
        std::ofstream(path, std::ios::binary) << text;
        Run.Delimiter.clear();
        Run.ImportFailed = kFalse;
        Headless.Dialogs.clear();
        Einlesen_Neu({path, path, true, how});
        ASSERT_FALSE(IsTrue(Run.ImportFailed)) << text << LastMessage();
        const TableResult table = ReadTable(text, path, {});
        ASSERT_EQ(table.Refusal.Text, "") << text;
        ASSERT_EQ(table.Points.Count(), Job.Start.Count()) << text;
        plain += table.Plain ? 1 : 0;
        for (std::size_t p = 1; p <= static_cast<std::size_t>(Job.Start.Count()); ++p) {
            ASSERT_EQ(table.Points.Name[p], Job.Start.Name[p]) << text;
            ASSERT_TRUE(SameBits(*table.Points.X[p], *Job.Start.X[p])) << text;
            ASSERT_TRUE(SameBits(*table.Points.Y[p], *Job.Start.Y[p])) << text;
            ASSERT_TRUE(SameBits(table.Points.Z[p], Job.Start.Z[p])) << text;
        }
    }
    EXPECT_GT(plain, kFiles / 2) << "those without many digits or letters beyond ASCII are known as plain";
    Headless.Dialogs.clear();
}

// Whatever a text is, it is read as finite points or refused with a reason.
TEST_F(PlainTables, DamagedTextsAreReadOrRefused) {
    const std::array<std::string, 5> texts = {
        "Name;X [m];Y [m];Z [m];s\r\n\"A;1\";1,5;2;3;0,1\r\nB;4;5;6;0\r\n;;;;\r\n",
        "# name x y z\nA 1 2 3\nB  4 5 6.5\n// end\n", "sep=,\n\"P \"\"1\"\"\",1,2,3\nP2,4,5,6\n",
        "| A | 1 | 2 | 3 |\n|---|---|---|---|\n| B | 4 | 5 | 6 |\n", Wide("A\t1,5\t2\t3\r\nB\t4\t5\t6\r\n")};
    constexpr std::string_view kOdd("\0\"',;|\t \n\r#%/\\-.eE0\xFF\xC3\xFE[]", 25);
    std::mt19937 random(7);
    const int kFiles = UnderSanitizers() ? 3000 : 30000;
    int read = 0, refused = 0;
    for (int i = 0; i < kFiles; ++i) {
        std::string text = texts[random() % texts.size()];
        for (std::size_t changes = 1 + random() % 6; changes > 0 && !text.empty(); --changes) {
            const std::size_t at = random() % text.size();
            const char odd = kOdd[random() % kOdd.size()];
            switch (random() % 4) {
                case 0:
                    text[at] = odd;
                    break;
                case 1:
                    text.insert(at, 1, odd);
                    break;
                case 2:
                    text.erase(at, 1 + random() % 5);
                    break;
                default:
                    text.resize(at);
                    break;
            }
        }
        TableOptions options;
        options.SkipBad = random() % 4 == 0;
        options.KeepRest = random() % 2 == 0;
        options.FirstIsX = random() % 4 == 0;
        options.DoubleNames = random() % 4 == 0;
        if (random() % 8 == 0) options.Delimiter = ";, \t|"[random() % 5];
        if (random() % 8 == 0) options.Decimal = ".,"[random() % 2];
        if (random() % 8 == 0) TakeTableColumns("name,x,y,z", options.Columns);
        const TableResult table = ReadTable(text, "f", options);
        ++(table.Refusal.Refused() ? refused : read);
        if (table.Refusal.Refused()) {
            ASSERT_EQ(table.Points.Count(), 0);
            ASSERT_TRUE(table.Refusal.Text.starts_with("Cannot read \"f\"")) << table.Refusal.Text;
            continue;
        }
        ASSERT_GT(table.Points.Count(), 0);
        for (std::size_t p = 1; p <= static_cast<std::size_t>(table.Points.Count()); ++p) {
            ASSERT_FALSE(table.Points.Name[p].empty()) << text;
            ASSERT_TRUE(std::isfinite(*table.Points.X[p]) && std::isfinite(table.Points.Z[p])) << text;
        }
    }
    EXPECT_GT(read, kFiles / 30);
    EXPECT_GT(refused, kFiles / 30);
}

// --- Memory -----------------------------------------------------------------------------------------------

namespace {

constexpr int kRows = 200'000;

// Bytes a point that the reading of so many rows takes at most, each with a name, three numbers and a comment
// line between every thousandth and the next.
double BytesOfAPoint(const std::function<int(int)>& numberOf) {
    std::string text = "Name;X;Y;Z\n";
    for (int i = 0; i < kRows; ++i) {
        const std::string number = std::to_string(numberOf(i));
        text += "P" + number + ";" + number + ".5;-" + number + ".25;7\n";
        if (i % 1000 == 999) text += "# a thousand more\n";
    }
    const MemoryUse memory;
    const TableResult table = ReadTable(text, "t.csv", {});
    EXPECT_EQ(table.Points.Count(), kRows) << table.Refusal.Text;
    return static_cast<double>(memory.Peak()) / kRows;
}

constexpr double kKeptBytes = sizeof(std::string) + 2 * sizeof(TaggedValue) + sizeof(double);

}  // namespace

TEST_F(PlainTables, NamesInOrderNeedNoMemoryBesideThePoints) {
    EXPECT_LE(BytesOfAPoint([](int i) { return i; }), 1.01 * kKeptBytes);
}

TEST_F(PlainTables, NamesWithoutOrderNeedHardlyMore) {
    EXPECT_LE(BytesOfAPoint([](int i) { return kRows - 1 - i; }), 1.01 * (kKeptBytes + 1.2));
}

TEST_F(PlainTables, TwoNamesAreFoundAmongManyWithoutOrder) {
    std::string text = "Name;X;Y;Z\n";
    for (int i = 0; i < 30'000; ++i)
        text += "P" + std::to_string(i == 29'000 || i == 25'000 ? 17 : 30'000 - i) + ";1;2;3\n";
    const TableResult table = ReadTable(text, "t.csv", {});
    EXPECT_EQ(table.Refusal.Line, 29'002);
    EXPECT_NE(table.Refusal.Text.find("\"P17\" stands in line 25002 too"), std::string::npos)
        << table.Refusal.Text;
    TableOptions both;
    both.DoubleNames = true;
    const TableResult taken = ReadTable(text, "t.csv", both);
    ASSERT_EQ(taken.Notes.size(), 1U);
    EXPECT_EQ(taken.Notes[0].Count, 2);
}

TEST_F(PlainTables, TwoNamesAreToldByTheirLinesBehindCommentsAndEmptyRows) {
    const std::string text = "Name;X;Y;Z\n\nB;1;2;3\n# one\n# two\nA;4;5;6\n\nC;1;1;1\nD;2;2;2\nA;7;8;9\n";
    const TableResult table = ReadTable(text, "t.csv", {});
    EXPECT_EQ(table.Refusal.Line, 10);
    EXPECT_NE(table.Refusal.Text.find("stands in line 6 too, and in line 10 again"), std::string::npos)
        << table.Refusal.Text;
}
