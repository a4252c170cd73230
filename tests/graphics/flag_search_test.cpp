// Where the flags of a picture stand that nobody has placed.
#include "graphics/flag_search.h"

#include <cmath>
#include <numeric>

#include "graphics/black_planes.h"
#include "graphics/flag_window.h"
#include "graphics/picture_flags.h"

using namespace corvinade;

namespace {

struct Frame {
    double Left, Top, Right, Bottom;
    bool Meets(const Frame& other) const {
        return Left < other.Right && other.Left < Right && Top < other.Bottom && other.Top < Bottom;
    }
};

class FlagSearch : public FlagWindow {
protected:
    // A plate of 20 by 14 pairs that fills the upper left of the picture; those at its right edge are off
    // most.
    static ScreenWindow& OpenPlate() {
        for (int i = 0; i < 20; ++i)
            for (int k = 0; k < 14; ++k)
                AddPair({60.0 + 20 * i, 60.0 + 20 * k, i / 10.0 + k / 200.0},
                        {60.0 + 20 * i, 60.0 + 20 * k, 0});
        SizeRest();
        Job.ViewAllOCS = kFalse;
        return OpenStraight();
    }
    static Frame FrameOf(const ScreenWindow& window, int flag) {
        const FlagRecord& record = RecordOf(window, flag);
        const FlagLabel& label = LabelOf(window, flag);
        return {static_cast<double>(record.Left), static_cast<double>(record.Top),
                static_cast<double>(record.Left + label.Width),
                static_cast<double>(record.Top + label.Height)};
    }
    static float Cell(int row) { return Scene.Points[kSceneDevZ][static_cast<std::size_t>(row)]; }
    static int PointsUnder(const Frame& frame) {
        int count = 0;
        for (int row = 1; row <= Scene.Ident; ++row) {
            const auto at = static_cast<std::size_t>(row);
            const Frame point{Scene.PixelX[at], Scene.PixelY[at], Scene.PixelX[at], Scene.PixelY[at]};
            count += frame.Meets(point) ? 1 : 0;
        }
        return count;
    }
};

TEST_F(FlagSearch, FlagsStandClearOfEachOtherOfThePointsAndOfWhatStandsAtTheEdges) {
    ScreenWindow& window = OpenPlate();
    Settings.ShowColorBar = kTrue;
    FlagWorstPairs(window, 8);
    Stelle_Grafik_dar(window);
    ASSERT_EQ(window.State.FlagCount, 8);
    const Frame colourBar{650, 0, 800, 600}, scales{0, 420, 460, 600};
    for (int flag = 1; flag <= 8; ++flag) {
        const Frame frame = FrameOf(window, flag);
        EXPECT_GE(frame.Left, 0) << flag;
        EXPECT_GE(frame.Top, 0) << flag;
        EXPECT_LE(frame.Bottom, 600) << flag;
        EXPECT_FALSE(frame.Meets(colourBar)) << flag;
        EXPECT_FALSE(frame.Meets(scales)) << flag;
        EXPECT_LE(PointsUnder(frame), 4) << flag << ": of 60 that a flag in the plate covers";
        for (int other = 1; other < flag; ++other)
            EXPECT_FALSE(frame.Meets(FrameOf(window, other))) << flag << " " << other;
    }
}

TEST_F(FlagSearch, AFlagThatIsAloneStandsBesideItsPoint) {
    AddPair({400, 300, 1}, {400, 300, 0});
    SizeRest();
    Job.ViewAllOCS = kFalse;
    ScreenWindow& window = OpenStraight();
    FlagWorstPairs(window, 1);
    const Frame frame = FrameOf(window, 1);
    EXPECT_EQ(PointsUnder(frame), 0);
    const double x = (frame.Left + frame.Right) / 2 - Scene.PixelX[1];
    const double y = (frame.Top + frame.Bottom) / 2 - Scene.PixelY[1];
    EXPECT_LT(std::hypot(x, y), 60) << "pixels; a flag of two rows is some 30 high";
}

TEST_F(FlagSearch, OfManyFlagsTheWorstHaveRoomAndNoneLiesOnAnother) {
    ScreenWindow& window = OpenPlate();
    ResizeScreenWindow(window, 1600, 1000);
    const int left = FlagWorstPairs(window, 200);
    const int flags = window.State.FlagCount;
    EXPECT_EQ(flags + left, 200);
    EXPECT_GT(flags, kMostSearchedFlags);
    EXPECT_GT(left, 0);
    for (int flag = 1; flag <= flags; ++flag) {
        const Frame frame = FrameOf(window, flag);
        EXPECT_LE(frame.Right, 1600) << flag;
        for (int other = 1; other < flag; ++other)
            EXPECT_FALSE(frame.Meets(FrameOf(window, other))) << flag << " " << other;
    }
    // The deviations grow with the number of the pair.
    for (int row = Scene.Ident; row > Scene.Ident - flags; --row) EXPECT_NE(FlagOfRow(window, row), 0) << row;
}

TEST_F(FlagSearch, PairsBehindABlackPlaneAreNotAmongTheWorst) {
    ScreenWindow& window = OpenPlate();
    Initialisieren_BlackPlane(window, true, false);
    // Depth is minus z, which is the deviation: the slab holds the lower half of them.
    window.State.TopDepth = -1;
    window.State.SlabThickness = 2;
    Stelle_Grafik_dar(window);
    FlagWorstPairs(window, 5);
    ASSERT_EQ(window.State.FlagCount, 5);
    for (int row = 1; row <= Scene.Ident; ++row) {
        if (FlagOfRow(window, row) == 0) continue;
        EXPECT_LE(Cell(row), 1.0F) << row;
        EXPECT_GT(Cell(row), 0.9F) << row;
    }
}

TEST_F(FlagSearch, WhatHasNoRoomIsLeftToTheSides) {
    ScreenWindow& window = OpenPlate();
    FlagRecord record;
    record.ShowPointNumber = kTrue;
    record.Size = 8;
    TakeAsTemplate(window, record);
    std::vector<int> rows(static_cast<std::size_t>(kMostSearchedFlags) + 1);
    std::iota(rows.begin(), rows.end(), 1);
    for (const int row : rows) AddFlag(window, row, -1, -1);
    const std::int16_t before = RecordOf(window, 1).Left;
    EXPECT_FALSE(PlaceBesidePoints(window, rows)) << "too many";
    window.Screen.Height = 50;
    rows.resize(20);
    EXPECT_FALSE(PlaceBesidePoints(window, rows)) << "no room";
    EXPECT_EQ(RecordOf(window, 1).Left, before);
}

}  // namespace
