// What the words of a heading say that few files have, and values that a unit makes too large.
#include "core/files.h"
#include "core/platform.h"
#include "import/point_file.h"
#include "import/table_reader.h"
#include "support/fixture.h"

using namespace corvinade;

using HeadingWords = Program;

TEST_F(HeadingWords, GermanHeadingsNameTheAxesInOneWord) {
    const TableResult table = ReadTable("Name;Xwert;Ywert;Zwert\nA;1;2;3\nB;4;5;6\n", "f", {});
    ASSERT_EQ(table.Points.Count(), 2) << table.Refusal.Text;
    EXPECT_EQ(table.Points.Name[2], "B");
    EXPECT_EQ(table.Points.X[2].value_or(0), 4);
    EXPECT_EQ(table.Points.Y[2].value_or(0), 5);
    EXPECT_EQ(table.Points.Z[2], 6);
    // The order is that of the heading.
    const TableResult turned = ReadTable("Name;Zwert;Xwert;Ywert\nA;1;2;3\n", "f", {});
    ASSERT_EQ(turned.Points.Count(), 1) << turned.Refusal.Text;
    EXPECT_EQ(turned.Points.Z[1], 1);
    EXPECT_EQ(turned.Points.X[1].value_or(0), 2);
    EXPECT_EQ(turned.Points.Y[1].value_or(0), 3);
}

TEST_F(HeadingWords, SigmasAreNamedInFrontOfTheirAxisAndBehindIt) {
    for (const char* const heading :
         {"SX;SY;SZ", "sigmaX;sigmaY;sigmaZ", "StdX;StdY;StdZ", "sigma x;sigma y;sigma z",
          "x sigma;y sigma;z sigma", "sd_x;sd_y;sd_z", "sigma E;sigma Y;sigma h"}) {
        const TableResult table =
            ReadTable(std::string("Name;X;Y;Z;") + heading + "\nA;1;2;3;0.1;0.2;0.3\n", "f", {});
        ASSERT_EQ(table.Points.Count(), 1) << heading << ": " << table.Refusal.Text;
        EXPECT_EQ(table.SX, (std::vector<double>{0, 0.1})) << heading;
        EXPECT_EQ(table.SY, (std::vector<double>{0, 0.2})) << heading;
        EXPECT_EQ(table.SZ, (std::vector<double>{0, 0.3})) << heading;
    }
}

TEST_F(HeadingWords, AValueThatItsUnitMakesTooLargeIsRefusedWithItsPlace) {
    // 1.7e308 m are 1.7e311 mm.
    for (int axis = 0; axis < 3; ++axis) {
        std::string row = "B;1;1;1\n";
        row.replace(static_cast<std::size_t>(2 + 2 * axis), 1, "1.7e308");
        TableOptions metres;
        metres.Unit = "m";
        const std::string text = ReadTable("A;1;2;3\n" + row, "f", metres).Refusal.Text;
        EXPECT_NE(text.find("line 2, column " + std::to_string(axis + 2)), std::string::npos) << text;
        EXPECT_NE(text.find("\"1.7e308\" is larger than any number that can be kept"), std::string::npos)
            << text;
    }
}

// The old file keeps its name with ".$" until the new one stands; where neither can be, its place is told.
TEST_F(HeadingWords, ARewritingThatFailsPutsTheOldFileBackOrTellsWhereItIs) {
    const std::vector<std::string> names = {"", "A"};
    const std::vector<TaggedValue> x = {{}, 1.0}, y = {{}, 2.0};
    const std::vector<double> z = {0, 3};
    for (const bool back : {true, false}) {
        const std::string path = Write("a.txt", "old\n");
        int renames = 0;
        FileFaults.Refuse = [&](const std::string& operation, const std::string&) {
            if (operation == "create") return std::string("No space left on device");
            // The second one is the way back.
            return std::string(operation == "rename" && ++renames == 2 && !back ? "Input/output error" : "");
        };
        std::string told;
        try {
            RewritePointFile(path, names, x, y, z, '.');
        } catch (const PlatformError& error) {
            told = error.What;
        }
        FileFaults.Refuse = nullptr;
        EXPECT_NE(told.find("No space left on device"), std::string::npos) << told;
        if (back) {
            EXPECT_EQ(told.find("the old file is now"), std::string::npos) << told;
            EXPECT_EQ(Contents(path), "old\n");
        } else {
            EXPECT_NE(told.find("; the old file is now \"" + path + ".$\""), std::string::npos) << told;
            EXPECT_EQ(Contents(path + ".$"), "old\n");
        }
    }
}
