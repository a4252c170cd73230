// The table reader: kinds of texts that people have, and what is made of each.
#include "import/table_heading.h"
#include "import/tables_as_text.h"

namespace {

using TableReader = Program;

struct Kind {
    const char* What;
    std::string Text;
    std::string Points;
};

const std::string kTwo = "A 1.5 -2 3, B 4 5 6.25";

const Kind kKinds[] = {
    {"semicolons", "A;1.5;-2;3\nB;4;5;6.25\n", kTwo},
    {"commas", "A,1.5,-2,3\nB,4,5,6.25\n", kTwo},
    {"tabs", "A\t1.5\t-2\t3\nB\t4\t5\t6.25\n", kTwo},
    {"colons", "A:1.5:-2:3\nB:4:5:6.25\n", kTwo},
    {"pipes", "A|1.5|-2|3\nB|4|5|6.25\n", kTwo},
    {"stars", "A*1.5*-2*3\nB*4*5*6.25\n", kTwo},
    {"sharps", "A#1.5#-2#3\nB#4#5#6.25\n", kTwo},
    {"one blank", "A 1.5 -2 3\nB 4 5 6.25\n", kTwo},
    {"many blanks", "A   1.5  -2     3\n B   4   5   6.25  \n", kTwo},
    {"aligned columns", "A       1.5   -2.0    3.00\nB       4.0    5.0    6.25\n", kTwo},
    {"aligned columns, names with blanks", "Hole 1    1.5   -2.0    3.00\nHole 12   4.0    5.0    6.25\n",
     "Hole 1 1.5 -2 3, Hole 12 4 5 6.25"},
    {"blanks and tabs", "A \t1.5\t -2 3\nB 4\t5\t\t6.25\n", kTwo},
    {"no line end at the end", "A;1.5;-2;3\nB;4;5;6.25", kTwo},
    {"CR LF", "A;1.5;-2;3\r\nB;4;5;6.25\r\n", kTwo},
    {"CR", "A;1.5;-2;3\rB;4;5;6.25\r", kTwo},
    {"UTF-8 with mark",
     "\xEF\xBB\xBF"
     "A;1.5;-2;3\nB;4;5;6.25\n",
     kTwo},
    {"UTF-8 names", "L\xC3\xA4nge;1;2;3\n", "L\xC3\xA4nge 1 2 3"},
    {"Windows-1252 names", "L\xE4nge;1;2;3\n", "L\xC3\xA4nge 1 2 3"},
    {"UTF-16 little", Wide("Name\tX\tY\tZ\r\nA\t1.5\t-2\t3\r\nB\t4\t5\t6.25\r\n"), kTwo},
    {"UTF-16 big", Wide("A\t1.5\t-2\t3\r\nB\t4\t5\t6.25\r\n", true), kTwo},
    {"decimal commas, semicolons", "A;1,5;-2;3\nB;4;5;6,25\n", kTwo},
    {"decimal commas, blanks", "A 1,5 -2 3\nB 4 5 6,25\n", kTwo},
    {"decimal commas, tabs", "A\t1,5\t-2\t3\nB\t4\t5\t6,25\n", kTwo},
    {"decimal commas in quotes", "A,\"1,5\",-2,3\nB,4,5,\"6,25\"\n", kTwo},
    {"no names", "1.5;-2;3\n4;5;6.25\n", "1 1.5 -2 3, 2 4 5 6.25"},
    {"blanks beside the fields", "A ; 1.5 ;-2 ; 3 \nB  ;  4;5 ;6.25\n", kTwo},
    {"names padded with blanks", "A    ;1.5;-2;3\nB    ;4;5;6.25\n", kTwo},
    {"a comma and a blank", "A, 1.5, -2, 3\nB, 4, 5, 6.25\n", kTwo},
    {"names with blanks", "Hole 1;1;2;3\nHole 2;4;5;6\n", "Hole 1 1 2 3, Hole 2 4 5 6"},
    {"quotes", "\"A\";\"1.5\";\"-2\";\"3\"\n\"B\";4;5;6.25\n", kTwo},
    {"a delimiter in quotes", "\"A;1\";1;2;3\n", "A;1 1 2 3"},
    {"doubled quotes", "\"1\"\" bore\";1;2;3\n", "1\" bore 1 2 3"},
    {"quotes of one stroke", "'A', 1.5, -2, 3\n'B', 4, 5, 6.25\n", kTwo},
    {"quotes between blanks", "\"Hole 1\" 1 2 3\n\"Hole 2\" 4 5 6\n", "Hole 1 1 2 3, Hole 2 4 5 6"},
    {"a heading", "Name;X;Y;Z\nA;1.5;-2;3\nB;4;5;6.25\n", kTwo},
    {"a heading in another order", "z,name,y,x\n3,A,-2,1.5\n6.25,B,5,4\n", kTwo},
    {"a heading without name", "x y z\n1.5 -2 3\n4 5 6.25\n", "1 1.5 -2 3, 2 4 5 6.25"},
    {"intensity named by a heading", "x y z intensity\n1.5 -2 3 100\n4 5 6.25 200\n",
     "1 1.5 -2 3, 2 4 5 6.25"},
    {"east, north, height", "Point ID,Easting,Northing,Height\nA,1.5,-2,3\nB,4,5,6.25\n", kTwo},
    {"north before east", "Pt;N;E;H\nA;-2;1.5;3\nB;5;4;6.25\n", kTwo},
    {"German headings", "Punktnummer;Rechtswert;Hochwert;H\xC3\xB6he\nA;1,5;-2;3\nB;4;5;6,25\n", kTwo},
    {"units in brackets", "Name;X [m];Y [m];Z [m]\nA;0.0015;-0.002;0.003\nB;0.004;0.005;0.00625\n", kTwo},
    {"units behind a line", "id,x_cm,y_cm,z_cm\nA,0.15,-0.2,0.3\nB,0.4,0.5,0.625\n", kTwo},
    {"units in a row of their own",
     "Name;X;Y;Z\n;[m];[m];[m]\nA;0.0015;-0.002;0.003\nB;0.004;0.005;0.00625\n", kTwo},
    {"units between blanks", "name x [m] y [m] z [m]\nA 0.0015 -0.002 0.003\nB 0.004 0.005 0.00625\n", kTwo},
    {"titles above the heading",
     "Report 7 of 2020-01-02\nOperator: Smith\n\nName;X;Y;Z;dev\nA;1.5;-2;3;0.1\nB;4;5;6.25;0\n", kTwo},
    {"comments", "# made by hand\nA;1.5;-2;3\n// one more\n% and\n! again\nB;4;5;6.25\n", kTwo},
    {"the heading is a comment", "//X Y Z R G B\n1.5 -2 3 255 0 0\n4 5 6.25 0 255 0\n",
     "1 1.5 -2 3, 2 4 5 6.25"},
    {"a comment with sharps", "# name, z, y, x\nA, 3, -2, 1.5\nB, 6.25, 5, 4\n", kTwo},
    {"sep=", "sep=,\nName,X,Y,Z\nA,1.5,-2,3\nB,4,5,6.25\n", kTwo},
    {"rows of a spreadsheet without anything", "A;1.5;-2;3;;\nB;4;5;6.25;;\n;;;;;\n;;;;;\n", kTwo},
    {"a remark in some rows", "A;1.5;-2;3\nB;4;5;6.25\n", kTwo},
    {"empty lines between", "A;1.5;-2;3\n\n\nB;4;5;6.25\n\n", kTwo},
    {"exponents and signs", "A;1.5E0;-20e-1;+3\nB;4.;5;.625e1\n", kTwo},
    {"a drawn table",
     "| Name | X | Y | Z |\n|------|---|---|---|\n| A | 1.5 | -2 | 3 |\n| B | 4 | 5 | 6.25 |\n", kTwo},
    {"a ruled heading",
     "Name      X      Y      Z\n----   ----   ----   ----\nA       1.5     -2      3\nB       4       5   6.25\n",
     kTwo},
    {"sigmas", "name,x,y,z,sx,sy,sz\nA,1.5,-2,3,.1,.2,.3\nB,4,5,6.25,.1,.2,.3\n", kTwo},
    {"a line end in a heading's cell", "Name,\"X\n[mm]\",\"Y\n[mm]\",\"Z\n[mm]\"\nA,1.5,-2,3\nB,4,5,6.25\n",
     kTwo},
    {"quotes in a heading alone", "\"Name\",\"X\",\"Y\",\"Z\"\nA,1.5,-2,3\nB,4,5,6.25\n", kTwo},
    {"comma as decimal shown late", "A;1;2;3\nB;4;5;6,25\n", "A 1 2 3, B 4 5 6.25"},
};

const Kind kRefused[] = {
    {"no number", "A;1;2;3\nB;4;12;5x\n",
     "line 2, column 4: \"5x\" is not a number (--skip-bad passes it over)"},
    {"a text for a number", "A;1;2;3\nB;oops;5;6\n",
     "line 2, column 2: \"oops\" is not a number (--skip-bad passes it over)"},
    {"nan", "A;1;2;3\nB;nan;5;6\n", "line 2, column 2: \"nan\" is not a number (--skip-bad passes it over)"},
    {"a missing coordinate", "A;1;2;3\nB;4;5\n",
     "line 2, column 4: the z is missing (--skip-bad passes it over)"},
    {"an empty coordinate", "A;1;2;3\nB;;5;6\n",
     "line 2, column 2: the x is missing (--skip-bad passes it over)"},
    {"a name that is missing", "A;1;2;3\n;4;5;6\n",
     "line 2, column 1: the name is missing (--skip-bad passes it over)"},
    {"a cell too many", "A;1;2;3\nB;4;5;6;7\n",
     "line 2, column 5: \"7\" is one cell too many: line 1 has 4 cells, this one 5 (--skip-bad passes it over)"},
    {"equal names", "Name;X;Y;Z\nA;1;2;3\nB;4;5;6\nA;7;8;9\n",
     "line 4, column 1: the name \"A\" stands in line 2 too, and in line 4 again; names have to differ (--columns "
     "says which column they are in)"},
    {"points and commas", "A;1.5;2;3\nB;1,5;2;3\n",
     "line 2, column 2: \"1,5\" is not a number (--skip-bad passes it over)"},
    {"points of thousands", "A;1.234,5;2;3\nB;4;5;6\n",
     "line 1, column 2: \"1.234,5\" is not a number: numbers are written without separators of thousands (--skip-bad passes it over)"},
    {"apostrophes of thousands", "A;1'234.5;2;3\nB;4;5;6\n",
     "line 1, column 2: \"1'234.5\" is not a number: numbers are written without separators of thousands (--skip-bad passes it over)"},
    {"blanks of thousands", "A;-12 234 567,25;2;3\nB;4;5;6\n",
     "line 1, column 2: \"-12 234 567,25\" is not a number: numbers are written without separators of thousands (--skip-bad passes it over)"},
    {"groups of two", "A;1;2;3\nB;1.23.4;5;6\n",
     "line 2, column 2: \"1.23.4\" is not a number (--skip-bad passes it over)"},
    {"a date", "A;1;2;3\nB;2024.12.24;5;6\n",
     "line 2, column 2: \"2024.12.24\" is not a number (--skip-bad passes it over)"},
    {"one comma for both", "P1,1,5,2,5,3,5\nP2,4,5,6,5,7,5\n",
     "line 1: \"P1,1,5,2,5,3,5\" can be read in two ways: with commas between its fields (name P1, x 1, y 5, z 2), which "
     "--decimal . or --delimiter comma says, or with commas as decimal delimiters too (name P1, x 1,5, y 2,5, z 3,5), "
     "which --decimal , says"},
    {"a heading with two x", "name;x;y;z;x\nA;1;2;3;4\n",
     "line 1: the heading names x 2 times (--columns says which one it is)"},
    {"a heading with two sigmas of x", "name;x;y;z;sx;sy;std x\nA;1;2;3;.1;.2;.3\n",
     "line 1: the heading names sx 2 times (--columns says which one it is)"},
    {"a heading with two sigmas", "name;x;y;z;s;sigma\nA;1;2;3;.1;.2\n",
     "line 1: the heading names s 2 times (--columns says which one it is)"},
    {"a heading without z", "id,x,y\n1,5.5,6.5\n",
     "line 1: the heading does not name all of x, y and z (--columns says what the columns are)"},
    {"a heading without z over names", "Name,X,Y\nA,0,0\nB,1000,0\nC,0,1000\n",
     "line 1: the heading does not name all of x, y and z (--columns says what the columns are)"},
    {"nominal and actual", "name;x nom;y nom;z nom;x act;y act;z act\nA;1;2;3;1;2;3\n",
     "line 1: the heading does not name all of x, y and z (--columns says what the columns are)"},
    {"units that differ", "name;x [m];y [mm];z [m]\nA;1;2;3\n",
     "line 1: the heading names the units m and mm (--unit says which one all have)"},
    {"an unknown unit", "name;x [furlong];y;z\nA;1;2;3\n",
     "line 1: the unit \"furlong\" of the heading is unknown (--unit says which)"},
    {"intensity without heading", "1.5234 2.5 3.5 100\n4.5234 5.5 6.5 200\n",
     "line 1: column 1: the number \"1.5234\" would be the name of a point; where it is x, --columns x,y,z says so, and "
     "where it is the name --columns name,x,y,z"},
    {"names with a blank, between blanks", "Left 1 1.5 2.5 3.5\nRight 2 4.5 5.5 6.5\n",
     "line 1: \"Left 1 1.5 2.5 3.5\" may have a name with a blank; --columns says what its fields are, as name,x,y,z,- or "
     "-,name,x,y,z"},
    {"a value missing between blanks", "A 1.5 2.5 3.5 0.1\nB 4.5 5.5 0.1\n",
     "line 2: it has 4 cells, and line 1 has 5: a value may be missing (--skip-bad passes it over)"},
    {"nothing", "", "there is no point in it"},
    {"comments alone", "# nothing\n", "there is no point in it"},
    {"prose", "Dear Sir,\nhow are you?\n",
     "line 1: \"Dear Sir,\" begins no table of points with x, y and z (--columns, --delimiter, --decimal, --skip)"},
    {"a number too large", "A;1;2;3\nB;1e400;5;6\n",
     "line 2, column 2: \"1e400\" is not a number (--skip-bad passes it over)"},
    {"a quote without end", "A;1;2;3\nB;\"4;5;6\n",
     "line 2, column 2: \"\"4\" is not a number; a quote has no end (--skip-bad passes it over)"},
    {"commas of thousands", "P1,1,000.5,2,000.5,300\nP2,4,100.5,1,020.5,250\n",
     "line 1: The commas of a number like \"1,000.5\" part it in two fields: all rows have more fields than are read, "
     "and commas of thousands would explain it; write them without, or say with --columns what the fields are"},
    {"a sigma below 0", "name,x,y,z,s\nA,1,2,3,-1\n",
     "line 2, column 5: \"-1\" is a sigma below 0 (--skip-bad passes it over)"},
};

}  // namespace

TEST_F(TableReader, ReadsTheKindsOfTextThatPeopleHave) {
    for (const Kind& kind : kKinds) EXPECT_EQ(PointsAsText(kind.Text), kind.Points) << kind.What;
}

TEST_F(TableReader, ARowThatOnlyTheOtherDecimalDelimiterReadsIsNoHeading) {
    for (const char* const text : {"1,5;2,5;3,5\n100;2;4\n50;80;9\n", "1,5\t2,5\t3,5\n100\t2\t4\n50\t80\t9\n",
                                   "1,5 2,5 3,5\n100 2 4\n50 80 9\n"}) {
        const TableResult table = ReadTable(text, "f", {});
        EXPECT_EQ(table.Form.HeadingLines, 0) << text;
        EXPECT_EQ(table.Form.Decimal, ',') << text;
        EXPECT_EQ(table.Points.Count(), 3) << text;
        EXPECT_TRUE(table.Notes.empty()) << text;
    }
    EXPECT_NE(ReadTable("1,5;2,5;3,5\n100.5;2;4\n50;80;9\n", "f", {}).Refusal.Text, "");
    // With columns that are given it is none either.
    TableOptions given;
    ASSERT_EQ(TakeTableColumns("name,x,y,z", given.Columns), "");
    for (const char gap : {';', '\t', ':', '|', ' '}) {
        std::string text = "A;1,5;2,5;3,5\nB;100;2;4\nC;50;80;9\n";
        std::replace(text.begin(), text.end(), ';', gap);
        EXPECT_EQ(PointsAsText(text, given), "A 1.5 2.5 3.5, B 100 2 4, C 50 80 9") << text;
        given.Decimal = '.';
        EXPECT_NE(ReadTable(text, "f", given).Refusal.Text.find("line 1, column 2: \"1,5\""),
                  std::string::npos)
            << text;
        given.Decimal = '\0';
    }
}

TEST_F(TableReader, AHeadingThatCallsNothingANameIsToldWhereWordsStandInFront) {
    const auto notes = [](const std::string& heading, const char* first) {
        const TableResult table = ReadTable(heading + ",X,Y,Z\n" + first + ",1,2,3\nB7,4,5,6\n", "f", {});
        return table.Notes.empty() ? table.Points.Name[1] : table.Notes.front().Text;
    };
    for (const char* const heading : {"Pt#", "Bez.", "P", "Station", "Pt_Name"})
        EXPECT_EQ(notes(heading, "A7"), "A7") << heading;
    EXPECT_NE(notes("Mark", "A7").find("The column \"Mark\" is not read"), std::string::npos);
    EXPECT_EQ(notes("Time", "9.5"), "1");
}

// Whole numbers have no comma of their own, so rows may have fewer fields.
TEST_F(TableReader, CommasThatMayBeBothAreRefusedWhereSomeNumbersAreWhole) {
    for (const char* const text : {"P1,1,5,2,5,3,5\nP2,1,2,3\nP3,4,8,6\n", "P1,1,5,2,5,3,5\nP2,4,5,2,3\n"}) {
        const TableRefusal refusal = ReadTable(text, "f", {}).Refusal;
        EXPECT_TRUE(refusal.TwoWays) << text << refusal.Text;
        EXPECT_NE(refusal.Text.find("--decimal"), std::string::npos) << refusal.Text;
    }
    // A fraction with a point settles it.
    EXPECT_FALSE(ReadTable("P1,1,5,2,5,3,5\nP2,1.5,2,3\n", "f", {}).Refusal.Refused());
}

TEST_F(TableReader, NotesWhatItDecides) {
    const auto notes = [](const std::string& text, const TableOptions& options = {}) {
        const TableResult table = ReadTable(text, "f", options);
        std::string codes = table.Refusal.Text;
        for (const Note& note : table.Notes)
            codes += std::string(NoteKindOf(note.Code).Name) + " " + std::to_string(note.Line) + " " +
                     std::to_string(note.Count) + ";";
        return codes;
    };
    EXPECT_EQ(notes("Name;X;Y;Z;dev\nA;1;2;3;4\nB;4;5;6;7\n"), "");
    EXPECT_EQ(notes("A;1,125;2;3\nB;4;5,250;6\n"), "decimal-taken 1 1;");
    EXPECT_EQ(notes("A;1,125;2;3\nB;4;5,25;6\n"), "");
    EXPECT_EQ(notes("A;0,125;2;3\nB;4;5,250;6\n"), "") << "no number of thousands begins with 0";
    EXPECT_EQ(notes("A;0;1.000;2\nB;12.500;6;500\n"), "decimal-taken 1 1;");
    EXPECT_EQ(notes("A;0;1.000;2\nB;12.5;6;500\n"), "") << "no number of thousands has two digits behind";
    EXPECT_EQ(notes("A;0;1.000;2\nB;0.500;6;500\n"), "") << "no number of thousands begins with 0";
    EXPECT_EQ(notes("A;1.000;1.000;2.000\nB;12.500;6.000;500.000\n"), "")
        << "three digits behind every number";
    EXPECT_EQ(notes("A;1;2;3\n\n;;;\nB;4;5;6\n\n\n"), "empty-row 2 1;");
    EXPECT_EQ(notes("# a remark\nA;1;2;3\n#B;4;5;6\n# C;4;5;6\n"), "commented-points 3 2;");
    EXPECT_EQ(notes("Nom du lieu;Gauche;Droite;Haut\nA;1;2;3\n"), "heading-unknown 1 1;");
    EXPECT_EQ(notes("A;1;2;3;0.1\nB;4;5;6;0.2\n"), "columns-ignored 1 2;");
    EXPECT_EQ(notes("A;1;2;3;determined\nB;4;5;6;open\n"), "network-open 2 1;");
    EXPECT_EQ(notes("1.5 2 3 100\n2.5 5 6 200\n"), "name-is-number 1 1;");
    EXPECT_EQ(notes("A;1;2;1e-400\n"), "digits-cut 1 1;");
    TableOptions options;
    options.SkipBad = true;
    EXPECT_EQ(notes("A;1;2;3\nB;x;5;6\nC;4;5\n", options), "lines-skipped 2 2;");
    options.DoubleNames = true;
    EXPECT_EQ(notes("name;x;y;z\nA;1;2;3\nB;1;2;3\nA;4;5;6\n", options), "duplicate-name 2 1;");
}

TEST_F(TableReader, KeepsSigmasAndWhatElseStandsInARow) {
    TableOptions options;
    options.KeepRest = true;
    const TableResult table =
        ReadTable("name,x [m],y [m],z [m],s,colour,remark\nA,1,2,3,0.001,red,\"a, b\"\nB,4,5,6,0.002,blue,\n",
                  "f", options);
    ASSERT_EQ(table.Points.Count(), 2) << table.Refusal.Text;
    EXPECT_EQ(table.SX, (std::vector<double>{0, 1, 2}));
    EXPECT_EQ(table.SY, table.SX);
    EXPECT_EQ(table.SZ, table.SX);
    EXPECT_EQ(table.Rest, (std::vector<std::string>{"", "red\ta, b", "blue"}));
    EXPECT_EQ(*table.Points.X[2], 4000);
    const TableResult axes = ReadTable("x,y,z,sigma_x,sy\n1,2,3,.5,.25\n", "f", {});
    EXPECT_EQ(axes.SX[1], 0.5);
    EXPECT_EQ(axes.SY[1], 0.25);
    EXPECT_EQ(axes.SZ[1], 0);
}

TEST_F(TableReader, TakesWhatTheUserSays) {
    TableOptions options;
    EXPECT_EQ(TakeTableColumns("-, name,z,y,x", options.Columns), "");
    EXPECT_EQ(PointsAsText("0;A;3;-2;1.5\n0;B;6.25;5;4\n", options), kTwo);
    options = {};
    options.Skip = 2;
    EXPECT_EQ(PointsAsText("1;2;3\n4;5;6\nA;1.5;-2;3\nB;4;5;6.25\n", options), kTwo);
    options = {};
    options.Comment = "~";
    EXPECT_EQ(PointsAsText("~ no\nA;1.5;-2;3\n#B;4;5;6.25\n", options), "A 1.5 -2 3, #B 4 5 6.25");
    options = {};
    options.Delimiter = ',';
    EXPECT_EQ(PointsAsText("P1,1,5,2,5,3,5\n", options), "P1 1 5 2");
    options = {};
    options.Decimal = ',';
    EXPECT_EQ(PointsAsText("P1,1,5,2,5,3,5\n", options), "P1 1.5 2.5 3.5");
    EXPECT_EQ(PointsAsText("P1, 1,5, 2,5, 3,5\n", options), "P1 1.5 2.5 3.5");
    options = {};
    options.Unit = "cm";
    EXPECT_EQ(PointsAsText("n;x [m];y [furlong];z\nA;1;2;3\n", options), "A 10 20 30")
        << "what the user says goes before";
    options = {};
    options.FirstIsX = true;
    EXPECT_EQ(PointsAsText("1.5123 -2 3 100 7\n4 5 6.25 200 8\n", options), "1 1.5123 -2 3, 2 4 5 6.25");
    EXPECT_EQ(PointsAsText("A 1.5 -2 3\nB 4 5 6.25\n", options), kTwo);
    options = {};
    options.Encoding = TableEncoding::Utf16Le;
    EXPECT_EQ(PointsAsText(Wide("A;1.5;-2;3\r\nB;4;5;6.25").substr(2), options), kTwo);
    options.Encoding = TableEncoding::Windows1252;
    EXPECT_EQ(PointsAsText("\xC3\xA4;1;2;3\n", options), "\xC3\x83\xC2\xA4 1 2 3");
    options.Encoding = TableEncoding::Utf8;
    EXPECT_EQ(PointsAsText("\xE4;1;2;3\n", options),
              "refused: it is no UTF-8 (--encoding windows-1252, or utf-16le, utf-16be)");
    EXPECT_EQ(
        PointsAsText(Wide("A;1;2;3").substr(2)),
        "refused: it is no text, it holds characters of code 0; a 16-bit text without a mark is named with "
        "--encoding utf-16le");
}

TEST_F(TableReader, RefusesWhatItCannotReadForCertain) {
    for (const Kind& kind : kRefused) {
        EXPECT_EQ(PointsAsText(kind.Text), "refused: " + kind.Points) << kind.What;
    }
}
