// The shape file and the report on its interpolation.
#include <limits>
#include <tuple>

#include "core/notes.h"
#include "import/robot_files.h"
#include "paraboloid/shape_job.h"

using namespace corvinade;

namespace {

class ShapeFile : public ShapeJob {
protected:
    ShapeFile() {
        ::Run.Delimiter = "";
        Job.ParaboloidShape = Matrix();
    }
    void Read(const std::string& content) {
        path_ = Write("shape.txt", content);
        ::Run.ImportFailed = kFalse;
        EinlesenParaboloidData({path_});
    }
    static std::vector<std::array<double, 2>> Rows() {
        std::vector<std::array<double, 2>> rows;
        for (int row = 1; row <= Job.ParaboloidShape.Rows; ++row)
            rows.push_back({Job.ParaboloidShape(row, 1), Job.ParaboloidShape(row, 2)});
        return rows;
    }
    // What is noted of the shape: code, line, count.
    static std::vector<std::tuple<std::string, int, int>> Noted() {
        std::vector<std::tuple<std::string, int, int>> noted;
        for (const Note& note : Notes.List) {
            EXPECT_EQ(note.Weight, Severity::Warning);
            noted.emplace_back(NoteKindOf(note.Code).Name, note.Line, note.Count);
        }
        return noted;
    }
    std::string path_;
};

using NoteList = std::vector<std::tuple<std::string, int, int>>;
using Profile = std::vector<std::array<double, 2>>;

const std::string kReportHead = CrLf(
    "Due to using discret Points in the nominal file, Corvinade ist interpolating beetween this points.\n"
    "To analyze how much error this causes, Corvinade does some test cacluations; for details see the "
    "Corvinade Manual:\n"
    "Chapter Paraboloid Option\n\n");

std::string Report(const std::string& biggest, const std::string& quarter, const std::string& average,
                   const std::string& unit = "millimeter") {
    return kReportHead +
           CrLf("Biggest delta1 is " + biggest + " " + unit + "\n" +
                "Accuracy of Interpolation based on the Shape Definition is approx. 1/4 of delta1 and is at "
                "the worst position better than  " +
                quarter + " " + unit + "\n" +
                "The average interpolation accuracy (average delta1) for the whole shape is " + average +
                " " + unit);
}

}  // namespace

TEST_F(ShapeFile, GivesRadiusAndHeightByRow) {
    Read("0;0\n10;1\n20;4\n30;9\n");
    EXPECT_EQ(Rows(), (Profile{{0, 0}, {10, 1}, {20, 4}, {30, 9}}));
    EXPECT_EQ(Job.ParaboloidShape(0, 0), 0);
    EXPECT_EQ(Job.ParaboloidShape(2, 0), 0);
    EXPECT_EQ(Job.ParaboloidShape(0, 1), 0);
    EXPECT_EQ(ParaboloidRun.ParaboloidFile, path_);
    EXPECT_FALSE(IsTrue(::Run.ImportFailed));
}

TEST_F(ShapeFile, LosesTheSignOfItsHeights) {
    Read("0;0\n10;-1\n20;-4\n");
    EXPECT_EQ(Rows(), (Profile{{0, 0}, {10, 1}, {20, 4}}));
}

TEST_F(ShapeFile, IsInTheChosenUnitOfLength) {
    Job.LengthUnitName = "meter";
    RhoFestlegung();
    Read("0;0\n0.01;0.001\n0.02;0.004\n0.03;0.009\n0.04;0.016\n");
    EXPECT_DOUBLE_EQ(Job.ParaboloidShape(3, 1), 20);
    EXPECT_DOUBLE_EQ(Job.ParaboloidShape(3, 2), 4);
    // One row is tested: (16 - 4) / 2 + 4 - 9 = 1 mm.
    EXPECT_EQ(LastMessage(), Report("0.001000", "0.000250", "0.000063", "meter"));
}

TEST_F(ShapeFile, ThatIsMissingIsSaid) {
    EinlesenParaboloidData({PathOf("none.txt")});
    EXPECT_EQ(Messages(), std::vector<std::string>{"File " + PathOf("none.txt") + " not found"});
    EXPECT_TRUE(IsTrue(::Run.ImportFailed));
    EXPECT_FALSE(ShapeServes(Job.ParaboloidShape));
}

TEST_F(ShapeFile, ReportsTheDifferenceFromTheChordOfTheNeighbours) {
    // z = r^2 / 100 in steps of 10: each chord over two steps lies 1 above the point between.
    Read("0;0\n10;1\n20;4\n30;9\n40;16\n50;25\n");
    // Rows 5 and 6: twice a quarter, over 6 - 1 rows.
    EXPECT_EQ(Messages(), std::vector<std::string>{Report("1.000000", "0.250000", "0.100000")});
    EXPECT_EQ(ParaboloidRun.ShapeTest, (Column{0, 0, 0, 0, 0, 1, 1}));
}

TEST_F(ShapeFile, ReportsTheBiggestDifference) {
    // Row 5: chord (10, 1) to (40, 20) at 20 is 7.333..., less 4. Row 6: (20, 4) to (50, 21) at 40.
    Read("0;0\n5;0.5\n10;1\n20;4\n40;20\n50;27\n");
    EXPECT_NEAR(ParaboloidRun.ShapeTest[5], 1 + 19.0 * 10 / 30 - 4, 1e-12);
    EXPECT_NEAR(ParaboloidRun.ShapeTest[6], 4 + 23.0 * 20 / 30 - 20, 1e-12);
    EXPECT_EQ(LastMessage(), Report("3.333333", "0.833333", "0.133333"));
}

TEST_F(ShapeFile, OfADomeReportsHowFarDeltaGoesBelowZero) {
    // z = 100 - r^2 / 100: each chord lies 1 below the point between.
    Read("0;100\n10;99\n20;96\n30;91\n40;84\n");
    EXPECT_EQ(LastMessage(), Report("-1.000000", "-0.250000", "-0.062500"));
    Read("0;100\n10;99\n20;96\n30;91\n40;84\n50;71\n");  // its last row lies 2 lower
    EXPECT_EQ(LastMessage(),
              Report("-1.000000", "-0.250000", "-0.200000") +
                  CrLf("\nWhere the shape bends downwards delta1 is down to -3.000000 millimeter"));
}

TEST_F(ShapeFile, WithFewerThanFiveRowsIsReportedWithoutFigures) {
    Read("0;0\n10;1\n20;4\n30;9\n");
    EXPECT_EQ(LastMessage(), kReportHead + "The shape has 4 rows; the test needs at least 5.");
}

TEST_F(ShapeFile, IgnoresAPointThatStandsTwice) {
    Read("0;0\n10;1\n10;1\n20;4\n30;9\n40;16\n");
    EXPECT_EQ(Rows(), (Profile{{0, 0}, {10, 1}, {20, 4}, {30, 9}, {40, 16}}));
    EXPECT_EQ(Messages(), (std::vector<std::string>{
                              CrLf("1 double Points in File\n" + path_ + "\n...and will ignore them"),
                              Report("1.000000", "0.250000", "0.062500")}));
}

TEST_F(ShapeFile, CountsAPointThatStandsThreeTimesTwice) {
    Read("0;0\n10;1\n10;1\n10;-1\n20;4\n30;9\n40;16\n");
    EXPECT_EQ(Rows().size(), 5u);
    EXPECT_EQ(Messages()[0].substr(0, 8), "2 double");
}

TEST_F(ShapeFile, KeepsPointsOfOneRadiusAtTwoHeightsAndSaysSo) {
    Read("0;0\n10;1\n20;4\n30;9\n30;10\n30;11\n40;16\n50;25\n");
    EXPECT_EQ(Rows().size(), 8u);
    ASSERT_EQ(Messages().size(), 2u);
    EXPECT_NE(Messages()[0].find("line 5 has the radius 30 behind the radius 30"), std::string::npos)
        << Messages()[0];
    // Rows 5 and 7 have finite differences of their own; row 6 has none, since rows 4 and 6 have one radius.
    EXPECT_EQ(ParaboloidRun.ShapeTest[6], 0);
    EXPECT_EQ(LastMessage().find("inf"), std::string::npos);
    EXPECT_EQ(LastMessage().find("nan"), std::string::npos);
}

TEST_F(ShapeFile, ThatIsNotSortedNamesItsFirstBadLineAndIsReadAsItStands) {
    Read("0;0\n10;1\n30;9\n\n20;4\n40;16\n15;1\n");
    EXPECT_EQ(Rows(), (Profile{{0, 0}, {10, 1}, {30, 9}, {20, 4}, {40, 16}, {15, 1}}));
    ASSERT_EQ(Messages().size(), 2u);
    EXPECT_NE(
        Messages()[0].find("not sorted by rising radius: line 5 has the radius 20 behind the radius 30"),
        std::string::npos)
        << Messages()[0];
}

TEST_F(ShapeFile, MayHaveDecimalCommas) {
    Headless.Answers["message"].push_back("Yes");
    Read("0,5;0,1\r\n10,5;1,1\r\n20,5;4,2\r\n");
    EXPECT_EQ(Rows(), (Profile{{0.5, 0.1}, {10.5, 1.1}, {20.5, 4.2}}));
    EXPECT_EQ(Contents(path_), "0.5;0.1\r\n10.5;1.1\r\n20.5;4.2");
}

TEST_F(ShapeFile, MayHaveDecimalCommasBetweenBlanks) {
    Headless.Answers["message"].push_back("Yes");
    Read("0,5 0,1\n10,5 1,1\n20,5 4,2\n");
    EXPECT_EQ(Rows(), (Profile{{0.5, 0.1}, {10.5, 1.1}, {20.5, 4.2}}));
}

TEST_F(ShapeFile, WithTheOtherDecimalDelimiterIsLeftOnNo) {
    Headless.Answers["message"].push_back("No");
    Read("0,5;0,1\n10,5;1,1\n20,5;4,2\n");
    EXPECT_TRUE(IsTrue(::Run.ImportFailed));
    EXPECT_FALSE(ShapeServes(Job.ParaboloidShape));
    EXPECT_EQ(Contents(path_), "0,5;0,1\n10,5;1,1\n20,5;4,2\n");
}

TEST_F(ShapeFile, MayHaveCommasBetweenItsFields) {
    Read("0,0\n10,1\n20,4\n");
    EXPECT_EQ(Rows(), (Profile{{0, 0}, {10, 1}, {20, 4}}));
}

TEST_F(ShapeFile, OnASystemWithDecimalCommaHasCommas) {
    Headless.Decimal = ',';
    Read("0;0\n10,5;1,25\n20;4\n");
    EXPECT_EQ(Rows(), (Profile{{0, 0}, {10.5, 1.25}, {20, 4}}));
}

TEST_F(ShapeFile, IsReadAfterARobotFileLikeAnyOther) {
    ::Run.RobotFileHasId = kTrue;
    Headless.Answers["message"].push_back("Yes");
    Read("0,5;0\n10,5;1\n20,5;4\n");
    EXPECT_EQ(Rows(), (Profile{{0.5, 0}, {10.5, 1}, {20.5, 4}}));
    EXPECT_TRUE(IsTrue(::Run.RobotFileHasId));
}

TEST_F(ShapeFile, WithoutADelimiterIsRefused) {
    Read("10\n20\n");
    EXPECT_TRUE(IsTrue(::Run.ImportFailed));
    EXPECT_NE(LastMessage().find("find any delimiter in file"), std::string::npos);
}

TEST_F(ShapeFile, WithAChangingNumberOfColumnsIsRefused) {
    Read("0;0\n10;1\n20;4;7\n");
    EXPECT_TRUE(IsTrue(::Run.ImportFailed));
    EXPECT_NE(LastMessage().find("In Row 3 the number of columns has changed"), std::string::npos);
    EXPECT_FALSE(ShapeServes(Job.ParaboloidShape));
}

TEST_F(ShapeFile, WithAWordForANumberNamesLineAndWord) {
    EXPECT_EQ(ErrorOf([this] { Read("0;0\n10;one\n20;4\n"); }),
              "Cannot read \"" + PathOf("shape.txt") + "\", line 2: \"one\" is not a number");
    EXPECT_EQ(ErrorOf([this] { Read("0;0\n10;\n20;4\n"); }),
              "Cannot read \"" + PathOf("shape.txt") + "\", line 2: \"\" is not a number");
    EXPECT_FALSE(ShapeServes(Job.ParaboloidShape));
    // What its unit makes too large: 1e308 m are 1e311 mm.
    Job.LengthUnitName = "meter";
    RhoFestlegung();
    EXPECT_EQ(ErrorOf([this] { Read("0;0\n1e308;1\n20;4\n"); }),
              "Cannot read \"" + PathOf("shape.txt") + "\", line 2: \"1e308\" is not a number");
}

TEST_F(ShapeFile, WithOnePointIsRefused) {
    Read("10;1\n10;1\n");
    EXPECT_TRUE(IsTrue(::Run.ImportFailed));
    EXPECT_NE(LastMessage().find("A shape needs at least 2 different rows."), std::string::npos);
}

TEST_F(ShapeFile, ThatIsEmptyOrNoTextIsRefused) {
    Read("");
    EXPECT_TRUE(IsTrue(::Run.ImportFailed));
    EXPECT_NE(ErrorOf([this] { Read(std::string("\0\1\2\0\0\0;7", 8)); }), "");
    EXPECT_FALSE(ShapeServes(Job.ParaboloidShape));
}

TEST_F(ShapeFile, DoesNotKeepTheShapeOfTheFileBefore) {
    Read("0;0\n10;1\n20;4\n");
    EinlesenParaboloidData({PathOf("none.txt")});
    EXPECT_FALSE(ShapeServes(Job.ParaboloidShape));
}

// --- Notes ------------------------------------------------------------------------------------------------

TEST_F(ShapeFile, ThatIsAsItShouldBeHasNoNote) {
    Read("0;0\n10;1\n10;1\n20;4\n30;4\n40;-0\n");
    EXPECT_EQ(Noted(), NoteList{});
}

TEST_F(ShapeFile, NotesHeightsThatLoseTheirSign) {
    Read("0;0\n10;-1\n20;4\n30;-9.5\n");
    EXPECT_EQ(Noted(), (NoteList{{"height-sign", 2, 2}}));
    EXPECT_EQ(Notes.List[0].Text, "The height \"-1\" is below 0, and is taken without its sign");
    EXPECT_EQ(Notes.List[0].File, path_);
    EXPECT_EQ(Job.ParaboloidShape(2, 2), 1) << "so it is";
}

TEST_F(ShapeFile, SaysNothingOfRoundingAtTheAxis) {
    Read("0;0\n0.001;-0.0000001\n10;0.1\n20;0.4\n30;0.9\n");
    EXPECT_EQ(Noted(), NoteList{});
    Read("-0.0001;0\n10;0.1\n20;0.4\n30;0.9\n40;1.6\n");
    EXPECT_EQ(Noted(), NoteList{});
    EXPECT_EQ(Job.ParaboloidShape(1, 1), -0.0001);
    // Beside a table of such sizes it is none.
    Notes.List.clear();
    Read("0;0\n0.001;-0.0000001\n0.002;0.0000004\n");
    EXPECT_EQ(Noted(), (NoteList{{"height-sign", 2, 1}}));
    Notes.List.clear();
    Read("-0.0001;0\n0.001;0.0001\n0.002;0.0004\n");
    EXPECT_EQ(Noted(), (NoteList{{"radius-negative", 1, 1}}));
}

TEST_F(ShapeFile, NotesRadiiBelow0) {
    Read("-20;4\n-10;1\n0;0\n10;1\n20;4\n");
    EXPECT_EQ(Noted(), (NoteList{{"radius-negative", 1, 2}}));
    EXPECT_EQ(
        Notes.List[0].Text,
        "The radius \"-20\" is below 0; its row is kept, and points near the axis may be put onto a wrong "
        "place of the shape");
    EXPECT_EQ(Job.ParaboloidShape(1, 1), -20) << "so it is";
}

TEST_F(ShapeFile, NotesRadiiThatDoNotRise) {
    Read("0;0\n10;1\n30;9\n20;4\n40;16\n15;1\n");
    EXPECT_EQ(Noted(), (NoteList{{"shape-unsorted", 4, 2}}));
    EXPECT_EQ(
        Notes.List[0].Text,
        "The radius 20 stands behind the radius 30, though rows must rise; points near this row may be put "
        "onto a wrong place of the shape");
}

TEST_F(ShapeFile, NotesTwoHeightsAtOneRadius) {
    Read("0;0\n10;1\n10;1\n30;9\n30;10\n30;11\n40;16\n");
    EXPECT_EQ(Noted(), (NoteList{{"radius-twice", 5, 2}}));
    EXPECT_EQ(
        Notes.List[0].Text,
        "The radius 30 has two heights, 9 and 10; both rows are kept, and points there may be put onto a "
        "wrong place of the shape");
}
