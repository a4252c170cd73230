// Many flags at once: start positions, cells, a full picture.
#include "graphics/flag_placing.h"

#include <algorithm>
#include <cmath>
#include <set>

#include "graphics/flag_window.h"

using namespace corvinade;

class FlagPlacingAll : public FlagWindow {
protected:
    // New flags show their number alone, so that many fit.
    static void TakeSmallFlags(ScreenWindow& window, float size = 8) {
        FlagRecord small;
        small.ShowPointNumber = kTrue;
        small.Size = size;
        TakeAsTemplate(window, small);
    }
    static FlagPlacing All(FlagPlacement placement, bool onGrid) {
        FlagPlacing placing;
        placing.Placement = placement;
        placing.OnGrid = onGrid;
        placing.PutAll = true;
        return placing;
    }
    static std::pair<int, int> PlaceOf(const ScreenWindow& window, int row) {
        const FlagRecord& record = RecordOf(window, FlagOfRow(window, row));
        return {record.Left, record.Top};
    }
};

TEST_F(FlagPlacingAll, EveryShownRowGetsAFlagAndTheModeIsOn) {
    ScreenWindow& window = OpenFive();
    TakeSmallFlags(window);
    Job.ViewAllOCS = kFalse;
    Grafik_Festlegen(window);
    FlagPutAll(window, All(FlagPlacement::Close, true));
    EXPECT_EQ(window.State.FlagCount, 5);  // three start points, S and T
    for (const int row : {1, 2, 3, 7, 8}) EXPECT_NE(FlagOfRow(window, row), 0);
    EXPECT_TRUE(IsTrue(window.State.FlagMode));
    EXPECT_TRUE(Main.MenüGlobalFlagsMode.Checked);
    EXPECT_TRUE(LabelOf(window, 1).Visible);
}

TEST_F(FlagPlacingAll, OnlyEveryNthRowWhereThatIsAskedFor) {
    ScreenWindow& window = OpenFive();
    TakeSmallFlags(window);
    FlagPlacing placing = All(FlagPlacement::Close, true);
    placing.Every = 3;
    FlagPutAll(window, placing);
    EXPECT_EQ(window.State.FlagCount, 3);
    for (const int row : {1, 4, 7}) EXPECT_NE(FlagOfRow(window, row), 0);
}

TEST_F(FlagPlacingAll, WithoutPutAllTheFlagsThatThereAreAreMoved) {
    ScreenWindow& window = OpenFive();
    TakeSmallFlags(window);
    AddFlag(window, 2, 700, 500);
    FlagPlacing placing = All(FlagPlacement::Close, false);
    placing.PutAll = false;
    FlagPutAll(window, placing);
    EXPECT_EQ(window.State.FlagCount, 1);
    EXPECT_EQ(PlaceOf(window, 2), (std::pair{300, 100}));
    EXPECT_FALSE(IsTrue(window.State.FlagMode));
}

TEST_F(FlagPlacingAll, CloseAndRadialByOneLeaveTheFlagOnThePoint) {
    ScreenWindow& window = OpenFive();
    TakeSmallFlags(window);
    for (const FlagPlacement placement : {FlagPlacement::Close, FlagPlacement::Radial}) {
        AlleLöschen(window);
        FlagPutAll(window, All(placement, false));
        EXPECT_EQ(PlaceOf(window, 1), (std::pair{100, 100}));
        EXPECT_EQ(PlaceOf(window, 7), (std::pair{500, 500}));
    }
}

TEST_F(FlagPlacingAll, RadialMovesAwayFromTheMiddleOfTheShownPoints) {
    ScreenWindow& window = OpenFive();
    TakeSmallFlags(window);
    Job.ViewAllOCS = Job.ViewAllonlyOCS = kFalse;
    Grafik_Festlegen(window);
    FlagPlacing placing = All(FlagPlacement::Radial, false);
    placing.Factor = 1.2;
    FlagPutAll(window, placing);
    // Rows 1, 2, 3, 7: the middle of (100, 100), (300, 100), (100, 300), (500, 500) is (250, 250).
    EXPECT_EQ(PlaceOf(window, 1), (std::pair{70, 70}));
    EXPECT_EQ(PlaceOf(window, 2), (std::pair{310, 70}));
    EXPECT_EQ(PlaceOf(window, 3), (std::pair{70, 310}));
    EXPECT_EQ(PlaceOf(window, 7), (std::pair{550, 550}));
}

TEST_F(FlagPlacingAll, BorderIsWhereTheRayThroughThePointLeavesThePicture) {
    ScreenWindow& window = OpenFive();
    TakeSmallFlags(window);
    Job.ViewAllOCS = Job.ViewAllonlyOCS = kFalse;
    Grafik_Festlegen(window);
    FlagPutAll(window, All(FlagPlacement::Border, false));
    // From (250, 250) in a picture of 785 by 590.
    EXPECT_EQ(PlaceOf(window, 1), (std::pair{0, 0}));
    EXPECT_EQ(PlaceOf(window, 2), (std::pair{333, 0}));  // 250 + 50 * 250 / 150
    EXPECT_EQ(PlaceOf(window, 3), (std::pair{0, 333}));
    EXPECT_EQ(PlaceOf(window, 7), (std::pair{590, 590}));
}

TEST_F(FlagPlacingAll, ARayAlongAnAxisMeetsTheEdgeStraightOn) {
    AddPair({100, 300, 0}, {100, 300, 0});
    AddPair({500, 300, 0}, {500, 300, 0});
    SizeRest();
    Job.ViewAllOCS = kFalse;
    ScreenWindow& window = OpenStraight();
    TakeSmallFlags(window);
    FlagPutAll(window, All(FlagPlacement::Border, false));
    EXPECT_EQ(PlaceOf(window, 1), (std::pair{0, 300}));
    EXPECT_EQ(PlaceOf(window, 2), (std::pair{785, 300}));
}

TEST_F(FlagPlacingAll, AtTheNearestSideTheFlagsAreStackedAlongIt) {
    AddPair({30, 310, 0}, {0, 0, 0});
    AddPair({20, 300, 0}, {0, 0, 0});
    AddPair({750, 300, 0}, {0, 0, 0});
    AddPair({400, 30, 0}, {0, 0, 0});
    AddPair({400, 570, 0}, {0, 0, 0});
    SizeRest();
    Job.ViewAllOCS = kFalse;
    ScreenWindow& window = OpenStraight();
    TakeSmallFlags(window);
    FlagPutAll(window, All(FlagPlacement::Side, true));
    const auto [leftA, topA] = PlaceOf(window, 2);
    const auto [leftB, topB] = PlaceOf(window, 1);
    EXPECT_EQ(leftA, 0);
    EXPECT_EQ(leftB, 0);
    EXPECT_EQ(topA, 0) << "the upper point's flag is the upper one";
    EXPECT_NEAR(topB, LabelOf(window, 1).Height, 1);
    EXPECT_GT(PlaceOf(window, 3).first, 600);
    EXPECT_EQ(PlaceOf(window, 3).second, 0);
    EXPECT_EQ(PlaceOf(window, 4).second, 0);
    EXPECT_GT(PlaceOf(window, 5).second, 500);
}

TEST_F(FlagPlacingAll, OffTheGridTheFlagsOfASideStandWhollyInThePicture) {
    AddPair({750, 300, 0}, {0, 0, 0});
    AddPair({400, 570, 0}, {0, 0, 0});
    SizeRest();
    Job.ViewAllOCS = kFalse;
    ScreenWindow& window = OpenStraight();
    TakeSmallFlags(window);
    FlagPutAll(window, All(FlagPlacement::Side, false));
    // The picture for flags is 785 by 590.
    EXPECT_NEAR(PlaceOf(window, 1).first + LabelOf(window, FlagOfRow(window, 1)).Width, 785, 1);
    EXPECT_EQ(PlaceOf(window, 1).second, 0);
    EXPECT_EQ(PlaceOf(window, 2).first, 0);
    EXPECT_NEAR(PlaceOf(window, 2).second + LabelOf(window, FlagOfRow(window, 2)).Height, 590, 1);
}

TEST_F(FlagPlacingAll, OnTheGridEachFlagHasACellOfItsOwn) {
    for (int i = 0; i < 40; ++i) AddStart("s" + std::to_string(10 + i), 400 + i, 300, 0);
    SizeRest();
    ScreenWindow& window = OpenStraight();
    TakeSmallFlags(window);
    FlagPutAll(window, All(FlagPlacement::Close, true));
    ASSERT_EQ(window.State.FlagCount, 40);
    const double width = LabelOf(window, 1).Width, height = LabelOf(window, 1).Height;
    std::set<std::pair<int, int>> cells;
    for (int flag = 1; flag <= 40; ++flag) {
        const double column = RecordOf(window, flag).Left / width, row = RecordOf(window, flag).Top / height;
        EXPECT_NEAR(column, std::round(column), 0.51 / width);
        EXPECT_NEAR(row, std::round(row), 0.51 / height);
        cells.emplace(static_cast<int>(std::round(column)), static_cast<int>(std::round(row)));
    }
    EXPECT_EQ(cells.size(), 40U);
    // The first one has the cell of its place, its neighbours are near.
    EXPECT_EQ(static_cast<int>(std::round(RecordOf(window, 1).Left / width)),
              static_cast<int>(std::floor(400 / width)));
    for (int flag = 1; flag <= 40; ++flag) EXPECT_LT(std::abs(RecordOf(window, flag).Left - 400), 6 * width);
}

TEST_F(FlagPlacingAll, WithoutAnActiveFlagNoneCoversAnother) {
    for (const char* name : {"a", "a much longer name", "bb", "another long name", "c"})
        AddStart(name, 400, 300, 0);
    SizeRest();
    ScreenWindow& window = OpenStraight();
    TakeSmallFlags(window);
    FlagPutAll(window, All(FlagPlacement::Close, true));
    ASSERT_EQ(window.State.FlagCount, 5);
    for (int one = 1; one <= 5; ++one)
        for (int other = 1; other < one; ++other) {
            const FlagRecord &a = RecordOf(window, one), &b = RecordOf(window, other);
            const bool beside =
                static_cast<float>(a.Left) + LabelOf(window, one).Width <= static_cast<float>(b.Left) + 1 ||
                static_cast<float>(b.Left) + LabelOf(window, other).Width <= static_cast<float>(a.Left) + 1;
            EXPECT_TRUE(a.Top != b.Top || beside) << one << " " << other;
        }
}

TEST_F(FlagPlacingAll, OffTheGridOnlyCollisionsMoveAFlag) {
    AddStart("s1", 400, 300, 0);
    AddStart("s2", 400, 300, 0);
    SizeRest();
    ScreenWindow& window = OpenStraight();
    TakeSmallFlags(window);
    FlagPutAll(window, All(FlagPlacement::Close, false));
    EXPECT_EQ(PlaceOf(window, 1), (std::pair{400, 300}));
    EXPECT_NE(PlaceOf(window, 2), (std::pair{400, 300}));
}

TEST_F(FlagPlacingAll, AFullPictureLeavesTheFlagsPlacedSoFar) {
    for (int i = 0; i < 60; ++i) AddStart("s" + std::to_string(10 + i), 10.0 * i, 300, 0);
    SizeRest();
    ScreenWindow& window = OpenStraight();
    TakeSmallFlags(window, 72);
    FlagPutAll(window, All(FlagPlacement::Close, true));
    EXPECT_EQ(LastMessage(), "screen is full, make more views for your flags");
    const FlagLabel& label = LabelOf(window, 1);
    const int cells = static_cast<int>(std::floor(785 / label.Width) * std::floor(590 / label.Height));
    EXPECT_EQ(window.State.FlagCount, cells);
}

TEST_F(FlagPlacingAll, HiddenPointsGetNoneAndAJobWithoutPointsIsLeft) {
    ScreenWindow& window = OpenFive();
    Job.ViewAllMCS = Job.ViewAllOCS = Job.ViewAllonlyMCS = Job.ViewAllonlyOCS = kFalse;
    Grafik_Festlegen(window);
    FlagPutAll(window, All(FlagPlacement::Border, true));
    EXPECT_EQ(window.State.FlagCount, 0);
    EXPECT_TRUE(Messages().empty());
}
