// Names that stand twice, empty rows, columns named twice, and single points that are none.
#include "core/notes.h"
#include "import/cloud_bytes.h"
#include "import/point_text.h"
#include "import/row_notes.h"
#include "import/table_reader.h"

using namespace corvinade;

class NamesTwice : public Program {
protected:
    struct Row {
        std::vector<std::string> Names;
        std::string Text;
        int Count;
    };
    const std::vector<Row> rows_ = {
        {{"A", "B", "C"}, "", 0},
        {{"A", "B", "A"}, "The name \"A\" stands in line 1 and in line 3", 1},
        {{"AB", "B", "AB"}, "The name \"AB\" stands in line 1 and in line 3", 1},
        {{"B", "AA", "B"}, "The name \"B\" stands in line 1 and in line 3", 1},
        {{"A", "A"}, "The name \"A\" stands in line 1 and in line 2", 1},
        {{"A", "B", "B", "A", "B"}, "The name \"B\" stands in line 2 and in line 3", 3},
    };
    static void ExpectNoted(const Row& row) {
        if (row.Count == 0) {
            EXPECT_TRUE(Notes.List.empty());
            return;
        }
        ASSERT_EQ(Notes.List.size(), 1U) << row.Text;
        EXPECT_EQ(Notes.List[0].Code, NoteCode::DuplicateName);
        EXPECT_EQ(Notes.List[0].Text, row.Text);
        EXPECT_EQ(Notes.List[0].Count, row.Count);
    }
};

TEST_F(NamesTwice, AreNotedWithTheLinesOfTheFirst) {
    for (const Row& row : rows_) {
        std::string text;
        std::vector<std::string> names = {""};
        for (const std::string& name : row.Names) {
            text += name + ";1;2;3\n";
            names.push_back(name);
        }
        const std::string path = Write("points.txt", text);
        Notes.List.clear();
        NoteDoubleNames(LoadPointText(path), ';');
        ExpectNoted(row);
        Notes.List.clear();
        NoteDoubleNames(path, names);
        ExpectNoted(row);
    }
    Notes.List.clear();
}

TEST(RowsWithoutAPoint, AreCountedOnceEach) {
    for (const auto& [text, count, line] :
         std::vector<std::tuple<std::string, int, int>>{{"A;1;2;3\n\nB;4;5;6\nC;7;8;9\nD;1;1;1\n", 1, 2},
                                                        {"A;1;2;3\nB;4;5;6\n\nC;7;8;9\n\nD;1;1;1\n", 2, 3},
                                                        {"A;1;2;3\nB;4;5;6\n\n", 0, 0}}) {
        const TableResult table = ReadTable(text, "f", {});
        int noted = 0;
        for (const Note& note : table.Notes)
            if (note.Text == "A row without a point is passed over") {
                noted = note.Count;
                EXPECT_EQ(note.Line, line) << text;
            }
        EXPECT_EQ(noted, count) << text;
    }
}

TEST(ColumnsOfClouds, ASecondNameIsTextAndASecondXNoHeading) {
    const CloudRun run = ReadThrough("name;name;x;y;z\nA;B;1;2;3\nC;D;4;5;6\n", "a.csv");
    ASSERT_EQ(run.Points.size(), 2U) << run.Error;
    EXPECT_EQ(run.Points[0].Name, "A");
    EXPECT_EQ(run.Points[1].At, (std::array<double, 3>{4, 5, 6}));
}

TEST(ColumnsOfClouds, UnitsOfAHeadingStandInBracketsOrBehindALine) {
    for (const auto& [heading, unit] :
         std::vector<std::array<std::string, 2>>{{"name x[mm] y[mm] z[mm]", "mm"},
                                                 {"name x(m) y(m) z(m)", "m"},
                                                 {"name x[cm] y[cm] z[cm]", "cm"},
                                                 {"name x_in y_in z_in", "in"},
                                                 {"name x y z", ""}}) {
        for (const std::string mark : {"", "# ", "//"}) {
            const CloudRun run = ReadThrough(mark + heading + "\nA 1 2 3\nB 4 5 6\n", "a.xyz");
            ASSERT_EQ(run.Points.size(), 2U) << mark << heading << run.Error;
            EXPECT_EQ(run.Points[1].At, (std::array<double, 3>{4, 5, 6}));
            EXPECT_EQ(run.Facts.Unit, unit) << mark << heading;
        }
    }
}

TEST(PointsThatAreNone, OneAloneIsNotedToo) {
    const CloudRun run = Carried("A;1;2;3\nB;nan;2;3\n", "a.csv");
    const std::vector<Note> notes = NotesOfCloud(run.Facts, "a.csv", true);
    ASSERT_EQ(notes.size(), 1U) << run.Error;
    EXPECT_EQ(notes[0].Text, "Points whose coordinates are no finite numbers stay as they are");
    EXPECT_EQ(notes[0].Line, 2);
    EXPECT_EQ(notes[0].Count, 1);
}
