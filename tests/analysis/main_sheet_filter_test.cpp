// What the main sheet shows of the points, and its column of 3D deviations.
#include <cmath>

#include "analysis/main_sheet_job.h"
#include "core/changes.h"
#include "core/desktop_defaults.h"
#include "core/job_tolerance.h"

using namespace corvinade;

namespace {

class MainSheetFilter : public MainSheetJob {
protected:
    static Control& Filter() { return MainSheetWindow.ComboFilter; }
    static void Choose(SheetFilter filter) { UserSetIndex(Filter(), static_cast<int>(filter)); }
    static Texts Names() { return Col(kColPointID); }
    static void TakeOut(int pair, int axis) {
        Job.UseFlags[static_cast<std::size_t>(3 * (pair - 1) + axis)] = 0;
        RunHandler([] { Changed(What::Use); });
    }
};

}  // namespace

TEST_F(MainSheetFilter, BeginsWithAllPoints) {
    FivePoints();
    Open();
    EXPECT_EQ(Filter().Index, 0);
    EXPECT_EQ(Filter().Text, "All points");
    EXPECT_EQ(Names(), (Texts{"P1", "P2", "P3", "S", "T"}));
    EXPECT_EQ(MainSheetWindow.LabelFilter.Text, "");
}

TEST_F(MainSheetFilter, LeavesThePointsWithoutAPartner) {
    FivePoints();
    Open();
    Choose(SheetFilter::WithoutPartner);
    EXPECT_EQ(Names(), (Texts{"S", "T"}));
    EXPECT_EQ(MainSheetWindow.LabelFilter.Text, "2 of 5 points");
    EXPECT_EQ(Colour(1, 0), kYellow);
    EXPECT_EQ(Colour(2, 0), kOrange);
    Choose(SheetFilter::All);
    EXPECT_EQ(Names().size(), 5U);
}

TEST_F(MainSheetFilter, FollowsWhatIsInUse) {
    FivePoints();
    Open();
    Choose(SheetFilter::NotInUse);
    EXPECT_EQ(Names(), Texts{});
    EXPECT_EQ(MainSheetWindow.LabelFilter.Text, "0 of 5 points");
    TakeOut(2, 3);
    EXPECT_EQ(Names(), Texts{"P2"});
}

// The deviations are (-1, 2, 0), (0, -2, 0.5) and (3, 0, 0).
TEST_F(MainSheetFilter, FollowsTheTolerance) {
    FivePoints();
    Open();
    Choose(SheetFilter::OverTolerance);
    EXPECT_EQ(Names(), Texts{});
    EXPECT_NE(MainSheetWindow.LabelFilter.Text.find("no tolerance"), std::string::npos);
    PutTolerance(2, Job);
    RunHandler([] { Changed(What::Coordinates); });
    EXPECT_EQ(Names(), Texts{"P3"});
    PutTolerance(1.5, Job);
    RunHandler([] { Changed(What::Coordinates); });
    EXPECT_EQ(Names(), (Texts{"P1", "P2", "P3"}));
    TakeOut(2, 2);
    EXPECT_EQ(Names(), (Texts{"P1", "P3"})) << "what is out of use is not beyond";
}

TEST_F(MainSheetFilter, SortedRowsStaySortedAndPointsAreFoundInThem) {
    FivePoints();
    Open();
    Click(0, 7);  // dev.x: -1, 0, 3
    Click(0, 7);
    PutTolerance(1.5, Job);
    Choose(SheetFilter::OverTolerance);
    EXPECT_EQ(Names(), (Texts{"P3", "P2", "P1"}));
    EXPECT_EQ(MainSheet_LineOf(1), 3);
    EXPECT_EQ(MainSheet_LineOf(4), 0) << "S is filtered out";
    Select({1, 0, 1, 0});
    EXPECT_EQ(MainSheet_Pair(), 3);
    Select({1, 0, 3, 0});
    Key("Ctrl+C");
    EXPECT_EQ(Headless.Clipboard, "P3\r\nP2\r\nP1");
}

TEST_F(MainSheetFilter, ScriptsFindTheColumnsThatTheyKnow) {
    FivePoints();
    Open();
    EXPECT_EQ(Cells().Cols, kMainSheetCols);
}

// sqrt(1 + 4), sqrt(4 + 0.25) and 3.
TEST_F(MainSheetFilter, PeopleHaveAColumnOfThe3DDeviationWithABar) {
    DesktopDefaults.SheetDeviation = true;
    FivePoints();
    Open();
    ASSERT_EQ(Cells().Cols, kMainSheetCols + 1);
    EXPECT_EQ(Cell(0, kColDeviation3D), "dev.3D");
    EXPECT_EQ(Col(kColDeviation3D), (Texts{"2.236", "2.062", "3.000", "", ""}));
    EXPECT_NEAR(CellBar(Cells(), 1, kColDeviation3D), std::sqrt(5.0) / 3, 1e-12);
    EXPECT_EQ(CellBar(Cells(), 3, kColDeviation3D), 1);
    EXPECT_EQ(CellBar(Cells(), 4, kColDeviation3D), 0);
    EXPECT_EQ(CellBar(Cells(), 1, 7), 0);
    EXPECT_EQ(PlaceOfCol(Cells(), kColDeviation3D), 10) << "behind its components";
    EXPECT_TRUE(IsHiddenCol(Cells(), kColNumber));
    Click(0, kColDeviation3D);
    EXPECT_EQ(Names().front(), "P2");
    // Beside an outlier that is out of use the others would have no bars to see.
    for (int axis = 1; axis <= 3; ++axis) TakeOut(3, axis);
    EXPECT_NEAR(CellBar(Cells(), 1, kColDeviation3D), std::sqrt(4.25 / 5), 1e-12);
    EXPECT_EQ(CellBar(Cells(), 3, kColDeviation3D), 1);
}
