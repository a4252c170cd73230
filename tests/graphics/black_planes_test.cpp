// The black planes: which points they hide, that they stay where they are in the object, and how the mouse
// moves them.
#include <array>
#include <functional>

#include "graphics/black_planes_window.h"
#include "graphics/graphics_refresh.h"
#include "graphics/recording_surface.h"
#include "graphics/view_undo.h"

using namespace corvinade;

namespace {

TEST_F(BlackPlanesTest, TheSettingTakesThePresentViewAsTheFrame) {
    ScreenWindow& window = OpenFive();
    SetViewAngles(window, 0.3, -0.4, 0.5);
    window.State.BildFaktor = 1.25F;
    window.State.BildOffsetX = 12.5F;
    window.State.BildOffsetY = -7.25F;
    window.State.TopDepth = 33;
    window.State.SlabThickness = 7;
    Initialisieren_BlackPlane(window, true, true);
    const ScreenRecord& state = window.State;
    EXPECT_EQ(state.BlackInitial, kTrue);
    EXPECT_EQ(state.BlackPlane, kTrue);
    EXPECT_EQ(state.BlackPlaneBorders, kTrue);
    EXPECT_EQ(state.SlabThickness, 100);
    EXPECT_EQ(state.TopDepth, 33);
    EXPECT_EQ(state.FrameFactor, 1.25);
    EXPECT_EQ(state.FrameOffsetX, 12.5F);
    EXPECT_EQ(state.FrameOffsetY, -7.25F);
    // Turned back by the frame's inverse, a turned point is where it was.
    const Mat3 M = ViewRotation(window);
    for (int row = 1; row <= 3; ++row)
        for (int column = 1; column <= 3; ++column) {
            double sum = 0;
            for (int k = 1; k <= 3; ++k) sum += state.FrameInverse(row, k) * M(k, column);
            EXPECT_NEAR(sum, row == column ? 1 : 0, 1e-11);
        }
    Initialisieren_BlackPlane(window, false, true);
    EXPECT_EQ(state.BlackInitial, kFalse);
    EXPECT_EQ(state.BlackPlane, kFalse);
    EXPECT_EQ(state.BlackPlaneBorders, kTrue);
}

TEST_F(BlackPlanesTest, AWindowBeginsWithoutPlanesAndWithAHundredPixels) {
    const ScreenWindow& window = OpenFive();
    EXPECT_EQ(window.State.BlackPlane, kFalse);
    EXPECT_EQ(window.State.BlackPlaneBorders, kFalse);
    EXPECT_EQ(window.State.BlackInitial, kFalse);
    EXPECT_EQ(window.State.SlabThickness, 100);
    EXPECT_EQ(window.State.TopDepth, 0);
}

TEST_F(BlackPlanesTest, APointOnTheFirstPlaneIsSeenAndOneOnTheSecondIsNot) {
    ScreenWindow& window = OpenDepths({-1, 0, 50, 99, 100, 101});
    SetPlanes(window, 0, 100);
    EXPECT_EQ(Seen(), (std::set<int>{2, 3, 4, 8, 9, 10}));
    EXPECT_GT(PlanesOf(window).First(3), PlanesOf(window).Second(3) - 100.5);
    EXPECT_NEAR(PlanesOf(window).Normal(3), -1, 1e-12) << "from the second plane to the first";
}

// Of a part in a plane of the axes, seen straight on: no point of it falls to the wrong side by rounding.
TEST_F(BlackPlanesTest, AFlatPartOnTheFirstPlaneIsSeenFromEverySideOfTheCell) {
    const auto place = [](int i) { return std::pair{1000.0 * (i % 7) - 2500, 700.0 * (i % 5) - 1300}; };
    const auto show = [&](const std::function<std::array<long double, 3>(double, double)>& point,
                          void (*look)(ScreenWindow&)) {
        CloseAllGraphicsWindows();
        Job = JobRecord{};
        for (int i = 0; i < 40; ++i) {
            const auto [a, b] = place(i);
            AddPair(point(a, b), point(a, b));
        }
        SizeRest();
        ++::Run.JobGeneration;
        ScreenWindow& window = OpenStraight();
        look(window);
        SetPlanes(window, 0, 100);
        return Seen().size();
    };
    using P = std::array<long double, 3>;
    EXPECT_EQ(show([](double a, double b) { return P{a, b, 0}; }, TopView), 80U);
    EXPECT_EQ(show([](double a, double b) { return P{0, a, b}; }, FrontView), 80U);
    EXPECT_EQ(show([](double a, double b) { return P{a, 0, b}; }, SideView), 80U);
    EXPECT_EQ(show([](double a, double b) { return P{a, b, 0}; }, LookStraight), 80U);
}

TEST_F(BlackPlanesTest, HiddenPointsAreNeitherPaintedNorNamedNorPicked) {
    const Recorded recorded;
    ScreenWindow& window = OpenDepths({-30, 30});
    Settings.ShowPointNames = kTrue;
    Settings.ShowColorBar = kFalse;
    SetPlanes(window, 0, 100);
    const auto [x1, y1] = PixelOfRow(1);
    const auto [x2, y2] = PixelOfRow(2);
    EXPECT_EQ(PixelAt(window, static_cast<int>(x1), static_cast<int>(y1)), PixelOf(window.BackColor));
    EXPECT_NE(PixelAt(window, static_cast<int>(x2), static_cast<int>(y2)), PixelOf(window.BackColor));
    int names = 0;
    for (const ScreenLabel& label : window.Labels) names += label.Text == ScenePointName(1) ? 1 : 0;
    EXPECT_EQ(names, 0);
    EXPECT_EQ(Search_Point_Index(window, x1, y1), 2) << "the nearest that is seen";
}

TEST_F(BlackPlanesTest, ThicknessZeroHidesEveryPoint) {
    ScreenWindow& window = OpenDepths({-20, 0, 20});
    for (const double top : {-20.0, 0.0, 20.0}) {
        SetPlanes(window, top, 0);
        EXPECT_EQ(Seen(), std::set<int>{}) << top;
        EXPECT_EQ(Search_Point_Index(window, 100, 100), 0);
    }
}

TEST_F(BlackPlanesTest, TurningZoomingAndPanningLeaveTheSeenPointsTheSame) {
    ScreenWindow& window = OpenCloud(4000);
    SetViewAngles(window, 0.4, 0.7, -1.1);
    window.State.BildFaktor = 1.7F;
    SetPlanes(window, -40, 90);
    const std::set<int> seen = Seen();
    EXPECT_GT(seen.size(), 200U);
    EXPECT_LT(seen.size(), 3000U);
    std::mt19937 random(11);
    const auto between = [&random](double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(random);
    };
    for (int turn = 0; turn < 60; ++turn) {
        SetViewAngles(window, between(-4, 4), between(-4, 4), between(-4, 4));
        window.State.BildFaktor = static_cast<float>(between(0.01, 30));
        window.State.BildOffsetX = static_cast<float>(between(-4000, 4000));
        window.State.BildOffsetY = static_cast<float>(between(-4000, 4000));
        Stelle_Grafik_dar(window);
        EXPECT_EQ(Seen(), seen) << turn;
    }
}

TEST_F(BlackPlanesTest, TheTestInTheWorldIsTheTestOfThePixelsAgainstThePlanesOfThePicture) {
    ScreenWindow& window = OpenCloud(3000);
    std::mt19937 random(13);
    const auto between = [&random](double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(random);
    };
    const auto look = [&] {
        SetViewAngles(window, between(-4, 4), between(-4, 4), between(-4, 4));
        window.State.BildFaktor = static_cast<float>(between(0.3, 3));
    };
    int unsure = 0, compared = 0;
    for (int round = 0; round < 40; ++round) {
        look();
        SetPlanes(window, between(-800, 800), between(5, 400));
        look();
        Stelle_Grafik_dar(window);
        std::set<int> near;
        const std::set<int> expected = SeenByPixels(window, 1e-2, near), seen = Seen();
        for (int row = 1; row <= Scene.Rows; ++row) {
            if (near.count(row) != 0) {
                ++unsure;
                continue;
            }
            ++compared;
            ASSERT_EQ(seen.count(row), expected.count(row)) << round << " " << row;
        }
    }
    EXPECT_LT(unsure, compared / 100);
}

TEST_F(BlackPlanesTest, SwitchingOffLetsAllPointsReturnAtTheNextPaint) {
    ScreenWindow& window = OpenCloud(500);
    SetPlanes(window, -10, 30);
    EXPECT_LT(Seen().size(), 600U);
    window.State.BlackPlane = kFalse;
    Stelle_Grafik_dar(window);
    EXPECT_EQ(Seen().size(), 1000U);
}

TEST_F(BlackPlanesTest, EachWindowHasPlanesOfItsOwn) {
    ScreenWindow& first = OpenDepths({-20, 20, 120});
    SetPlanes(first, 0, 100);
    EXPECT_TRUE(UserClick(Main.MenueGraphics));
    ScreenWindow& second = *Screens().Active;
    LookStraight(second);
    EXPECT_EQ(Seen().size(), 6U);
    Search_Point_Index(first, 1, 1);
    EXPECT_EQ(Seen(), (std::set<int>{2, 5})) << "the pick is made with the planes of its window";
    Search_Point_Index(second, 1, 1);
    EXPECT_EQ(Seen().size(), 6U);
    Stelle_Grafik_dar(first);
    EXPECT_EQ(Seen(), (std::set<int>{2, 5}));
    Stelle_Grafik_dar(second);
    EXPECT_EQ(Seen().size(), 6U);
}

TEST_F(BlackPlanesTest, APointThatIsNoNumberIsHidden) {
    ScreenWindow& window = OpenDepths({10, 20});
    Job.Transformed.X[1] = std::nan("");
    Grafik_Festlegen(window);
    SetPlanes(window, 0, 100);
    EXPECT_EQ(Seen(), (std::set<int>{2, 3, 4}));
}

TEST_F(BlackPlanesTest, APickedCentreOfRotationLeavesThePlanesWhereTheyAre) {
    ScreenWindow& window = OpenCloud(2000);
    SetViewAngles(window, 0.4, 0.7, -1.1);
    window.State.BildFaktor = 2;
    SetPlanes(window, -600, 80);
    StoreScreenPropertiesToRecord(window);
    const std::set<int> seen = Seen();
    ASSERT_GT(seen.size(), 100U);
    Scene.RotateAboutArmed = true;
    Scene.RotateAboutIndex = 17;
    Stelle_Grafik_dar(window);
    ASSERT_NE(Scene.RotCenter(1), 0);
    EXPECT_EQ(Seen(), seen);
    SetViewAngles(window, 1.4, 0.2, 0.3);
    Stelle_Grafik_dar(window);
    EXPECT_EQ(Seen(), seen);
    StoreScreenPropertiesToRecord(window);
    Rückgängig_Back(window);
    EXPECT_EQ(Seen(), seen) << "a step stored before";
}

// Whatever point is picked: those on the first plane stay on the side that is seen.
TEST_F(BlackPlanesTest, APickedCentreOfRotationLosesNoPointOfTheFirstPlane) {
    std::vector<double> depths(20, 0.0);
    for (int i = 1; i <= 12; ++i) depths.push_back(-0.1 * i * i - 3);
    for (int picked = 21; picked <= 32; ++picked) {
        CloseAllGraphicsWindows();
        Job = JobRecord{};
        Scene.RotCenter = Vec3{};
        ScreenWindow& window = OpenDepths(depths);
        window.State.BildFaktor = 1.37F;  // so that depths are no numbers of the scene
        SetPlanes(window, 0, 100);
        const std::set<int> seen = Seen();
        ASSERT_EQ(seen.size(), 40U);
        Scene.RotateAboutArmed = true;
        Scene.RotateAboutIndex = picked;
        Stelle_Grafik_dar(window);
        EXPECT_EQ(Seen(), seen) << picked;
        SetViewAngles(window, 0.3, -0.7, 1.1);
        Stelle_Grafik_dar(window);
        EXPECT_EQ(Seen(), seen) << picked;
        EXPECT_NEAR(window.State.SlabThickness, 100, 1e-3);
    }
}

// --- The frame --------------------------------------------------------------------------------------------

class BlackPlaneFrame : public BlackPlanesTest {
protected:
    Recorded recorded_;
    static std::vector<Operation> Edges(const ScreenWindow& window, std::int32_t colour) {
        return LinesOf(window, colour);
    }
};

TEST_F(BlackPlaneFrame, SeenAsItWasSetItIsTheEdgeOfThePicture) {
    ScreenWindow& window = OpenDepths({10, 20});
    window.State.TopDepth = 25;
    Initialisieren_BlackPlane(window, true, true);
    const BlackPlanes planes = PlanesOf(window);
    for (std::size_t corner = 0; corner < 8; ++corner) {
        EXPECT_NEAR(planes.Corners[corner](1), (corner & 1U) != 0 ? kWidth : 0, 1e-9) << corner;
        EXPECT_NEAR(planes.Corners[corner](2), (corner & 2U) != 0 ? kHeight : 0, 1e-9) << corner;
        EXPECT_NEAR(planes.Corners[corner](3), (corner & 4U) != 0 ? 125 : 25, 1e-9) << corner;
    }
}

TEST_F(BlackPlaneFrame, ItTurnsWithTheObject) {
    ScreenWindow& window = OpenDepths({10, 20});
    window.State.TopDepth = 25;
    Initialisieren_BlackPlane(window, true, true);
    // A right angle about the vertical of the screen: depth comes to lie along x.
    const double quarter = std::acos(0.0);
    SetViewAngles(window, 0, quarter, 0);
    const BlackPlanes planes = PlanesOf(window);
    // x' = x cos b - z sin b and z' = x sin b + z cos b, and a depth is minus z.
    for (std::size_t corner = 0; corner < 8; ++corner) {
        const double x = (corner & 1U) != 0 ? kWidth : 0, depth = (corner & 4U) != 0 ? 125 : 25;
        EXPECT_NEAR(planes.Corners[corner](1), depth, 1e-9) << corner;
        EXPECT_NEAR(planes.Corners[corner](2), (corner & 2U) != 0 ? kHeight : 0, 1e-9) << corner;
        EXPECT_NEAR(planes.Corners[corner](3), -x, 1e-9) << corner;
    }
    EXPECT_NEAR(planes.Normal(1), -1, 1e-12);
    EXPECT_NEAR(planes.Normal(2), 0, 1e-12);
    EXPECT_NEAR(planes.Normal(3), 0, 1e-12);
}

TEST_F(BlackPlaneFrame, TwelveEdgesAreDrawnBlackOnLightAndGreyOnDark) {
    ScreenWindow& window = OpenDepths({10, 20});
    Settings.ShowColorBar = kFalse;
    const auto edges = [&](std::int32_t background, std::int32_t colour, bool borders) {
        window.BackColor = background;
        RecordingOf(window).Operations.clear();
        Stelle_Grafik_dar(window);
        const std::size_t without = Edges(window, colour).size();
        Initialisieren_BlackPlane(window, true, borders);
        RecordingOf(window).Operations.clear();
        SetViewAngles(window, 0.2, 0.3, 0.1);
        Stelle_Grafik_dar(window);
        const auto lines = Edges(window, colour);
        for (const Operation& line : lines) EXPECT_EQ(line.Width, 1);
        Initialisieren_BlackPlane(window, false, false);
        return lines.size() - without;
    };
    EXPECT_EQ(edges(0xFFFFFF, QbColor(0), true), 12U);
    EXPECT_EQ(edges(0x000000, QbColor(7), true), 12U);
    EXPECT_EQ(edges(0xFFFFFF, QbColor(0), false), 0U);
}

TEST_F(BlackPlaneFrame, ItLiesBehindThePointsAndGoesWithThePlanes) {
    ScreenWindow& window = OpenDepths({10, 20});
    window.BackColor = 0xFFFFFF;
    Initialisieren_BlackPlane(window, true, true);
    window.State.BlackPlane = kFalse;
    RecordingOf(window).Operations.clear();
    Stelle_Grafik_dar(window);
    const std::size_t without = Edges(window, QbColor(0)).size();
    window.State.BlackPlane = kTrue;
    RecordingOf(window).Operations.clear();
    Stelle_Grafik_dar(window);
    EXPECT_EQ(Edges(window, QbColor(0)).size(), without + 12);
    const std::vector<Operation>& all = RecordingOf(window).Operations;
    ASSERT_GT(all.size(), 12U);
    EXPECT_EQ(all[0].Kind, Stroke::Clear);
    for (std::size_t i = 1; i <= 12; ++i) EXPECT_EQ(all[i].Kind, Stroke::Line) << i;
}

// --- The mouse --------------------------------------------------------------------------------------------

class PlaneDrags : public BlackPlanesTest {
protected:
    static void DragWith(ScreenWindow& window, const char* key, float dx, float dy) {
        ScreenPixel_KeyDown(window, key, false, false);
        Drag(window, At(400, 300, kLeftButton), At(400 + dx, 300 + dy, kLeftButton));
        ScreenPixel_KeyUp(window, key);
    }
};

TEST_F(PlaneDrags, WithTTheFirstPlaneIsMovedAndThePictureIsPaintedAtEachStep) {
    ScreenWindow& window = OpenDepths({10, 20});
    SetPlanes(window, 0, 100);
    for (const char* key : {"t", "T"}) {
        window.State.TopDepth = 0;
        ScreenPixel_KeyDown(window, key, false, false);
        ScreenPixel_MouseDown(window, At(400, 300, kLeftButton));
        const std::uint64_t paints = window.PaintCount;
        ScreenPixel_MouseMove(window, At(397, 298, kLeftButton));
        EXPECT_EQ(window.State.TopDepth, 5) << "seen as it was set, both signs are that of a positive number";
        ScreenPixel_MouseMove(window, At(407, 301, kLeftButton));
        EXPECT_EQ(window.State.TopDepth, 5 - 13);
        EXPECT_EQ(window.PaintCount, paints + 2);
        EXPECT_EQ(window.State.SlabThickness, 100);
        EXPECT_FALSE(window.Mouse.FrameVisible);
        ScreenPixel_KeyUp(window, key);
        // The button comes up after the key: this is no end of a zoom frame.
        ScreenPixel_MouseMove(window, At(500, 400, kLeftButton));
        ScreenPixel_MouseUp(window, At(500, 400, kLeftButton));
        EXPECT_EQ(window.State.BildFaktor, 1);
        EXPECT_EQ(window.State.TopDepth, 5 - 13);
    }
}

TEST_F(PlaneDrags, WithBTheThicknessIsChangedAndStopsAtZero) {
    ScreenWindow& window = OpenDepths({10, 20});
    SetPlanes(window, 7, 100);
    DragWith(window, "b", -10, -5);
    EXPECT_EQ(window.State.SlabThickness, 115);
    DragWith(window, "B", 40, 0);
    EXPECT_EQ(window.State.SlabThickness, 75);
    DragWith(window, "b", 300, 300);
    EXPECT_EQ(window.State.SlabThickness, 0);
    EXPECT_EQ(window.State.TopDepth, 7);
    EXPECT_TRUE(Seen().empty());
    DragWith(window, "b", -30, 0);
    EXPECT_EQ(window.State.SlabThickness, 30);
}

TEST_F(PlaneDrags, WithBothKeysBothAreChanged) {
    ScreenWindow& window = OpenDepths({10, 20});
    SetPlanes(window, 7, 100);
    ScreenPixel_KeyDown(window, "b", false, false);
    DragWith(window, "t", -10, -5);
    ScreenPixel_KeyUp(window, "b");
    EXPECT_EQ(window.State.TopDepth, 22);
    EXPECT_EQ(window.State.SlabThickness, 115);
}

TEST_F(PlaneDrags, AreStepsOfTheHistoryInTheFlagModeToo) {
    ScreenWindow& window = OpenDepths({10, 20});
    SetPlanes(window, 0, 100);
    StoreScreenPropertiesToRecord(window);
    window.State.FlagMode = kTrue;
    const int steps = window.UndoCount;
    DragWith(window, "t", -30, 0);
    EXPECT_EQ(window.UndoCount, steps + 1);
    Rückgängig_Back(window);
    EXPECT_EQ(window.State.TopDepth, 0);
    Rückgängig_Force(window);
    EXPECT_EQ(window.State.TopDepth, 30);
}

TEST_F(PlaneDrags, TheSignsFollowTheNormal) {
    ScreenWindow& window = OpenDepths({10, 20});
    SetPlanes(window, 0, 100);
    // The normal is -z of the setting's depth, so seen after a turn about y by b its x is minus sin b, and
    // after one about x by a its y is that of (0, sin a, ...).
    const auto moved = [&](double a, double b, float dx, float dy) {
        SetViewAngles(window, a, b, 0);
        window.State.TopDepth = 0;
        DragWith(window, "t", dx, dy);
        return window.State.TopDepth;
    };
    EXPECT_EQ(moved(0, 0.5, -10, 0), -10);
    EXPECT_EQ(moved(0, -0.5, -10, 0), 10);
    EXPECT_EQ(moved(0.5, 0, 0, -10), 10);
    EXPECT_EQ(moved(-0.5, 0, 0, -10), -10);
    EXPECT_EQ(moved(0.5, 0.5, -10, -4), -6);
}

TEST_F(PlaneDrags, WhatIsRoundingAloneIsNoDirection) {
    // Seen from above the sine of half a turn is 1.2e-16 and not 0.
    ScreenWindow& window = OpenDepths({10, 20});
    for (const double a : {0.0, 3.14159265358979, -3.14159265358979}) {
        SetViewAngles(window, a, 0, 0);
        SetPlanes(window, 0, 100);
        DragWith(window, "t", -3, 0);
        EXPECT_EQ(window.State.TopDepth, 3) << a;
        DragWith(window, "t", 0, -3);
        EXPECT_EQ(window.State.TopDepth, 6) << a;
    }
}

TEST_F(PlaneDrags, NothingMovesWhileThePlanesAreOff) {
    ScreenWindow& window = OpenDepths({10, 20});
    SetPlanes(window, 5, 100);
    window.State.BlackPlane = kFalse;
    DragWith(window, "t", -30, 0);
    DragWith(window, "b", -30, 0);
    EXPECT_EQ(window.State.TopDepth, 5);
    EXPECT_EQ(window.State.SlabThickness, 100);
}

TEST_F(PlaneDrags, ShiftAndCtrlTurnAndPanAllTheSame) {
    ScreenWindow& window = OpenDepths({10, 20});
    SetPlanes(window, 5, 100);
    ScreenPixel_KeyDown(window, "t", false, false);
    Drag(window, WithCtrl(At(400, 300, kLeftButton)), WithCtrl(At(410, 300, kLeftButton)));
    EXPECT_EQ(window.State.TopDepth, 5);
    EXPECT_EQ(window.State.BildOffsetX, -190);
}

TEST_F(PlaneDrags, TheWayBackLeadsThroughTheSteps) {
    ScreenWindow& window = OpenDepths({-20, 20, 60});
    SetPlanes(window, 0, 100);
    StoreScreenPropertiesToRecord(window);
    const std::set<int> seen = Seen();
    DragWith(window, "t", -30, 0);
    EXPECT_EQ(window.State.TopDepth, 30);
    EXPECT_NE(Seen(), seen);
    Rückgängig_Back(window);
    EXPECT_EQ(window.State.TopDepth, 0);
    EXPECT_EQ(Seen(), seen);
    Rückgängig_Force(window);
    EXPECT_EQ(window.State.TopDepth, 30);
}

}  // namespace
