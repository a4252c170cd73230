// From world to picture: against three plane turns done one after the other, and back.
#include "graphics/projection.h"

#include <algorithm>
#include <cmath>

#include "core/form_main.h"
#include "graphics/drawing.h"
#include "graphics/graphics_fixture.h"

using namespace corvinade;

using GraphicsProjection = GraphicsJob;

namespace {

struct ViewCase {
    double A, B, C;
    float Factor, X, Y;
};
constexpr double kHalfTurn = 3.14159265358979323846;
constexpr ViewCase kViews[] = {
    {0, 0, 0, 1, 0, 0},
    {-kHalfTurn, 0, 0, 0.5F, 30, -40},
    {kHalfTurn / 2, 0, 0, 2, 100, 200},
    {0, kHalfTurn / 2, 0, 2, 100, 200},
    {0, 0, -kHalfTurn / 2, 2, 100, 200},
    {1.5 * kHalfTurn, 1.5 * kHalfTurn, 0, 0.01F, 1, 2},
    {0.3, -0.4, 0.7, 1.7F, -250, 90.5F},
    {3.6, -0.87, -0.87, 400, 1e5F, -1e5F},
    {-100, 55, 1000, 1, 0, 0},
};

float Pixel(const std::vector<float>& table, int row) {
    return table[static_cast<std::size_t>(row)];
}

}  // namespace

TEST_F(GraphicsProjection, TurnsShiftsAndScalesEveryPoint) {
    FivePoints();
    ScreenWindow& window = OpenSized(640, 480);
    Scene.RotCenter = {5, -6, 7};
    for (const ViewCase& view : kViews) {
        SetView(window, view.A, view.B, view.C, view.Factor, view.X, view.Y);
        rechne_PixelCloud(window);
        Rechne_pixel(window);
        for (int row = 1; row <= Scene.Rows; ++row) {
            const Place3 p = {Cell(row, kSceneX) - 5.0L, Cell(row, kSceneY) + 6.0L,
                              Cell(row, kSceneZ) - 7.0L};
            const Place3 turned = Turned(window, p), picture = Pictured(window, p);
            EXPECT_NEAR(ViewPoint(row, 1), static_cast<double>(turned.X + 200), 1e-4);
            EXPECT_NEAR(ViewPoint(row, 2), static_cast<double>(200 - turned.Y), 1e-4);
            EXPECT_NEAR(ViewPoint(row, 3), static_cast<double>(-turned.Z), 1e-4);
            const double error = 4e-5 * view.Factor + 1e-2 * std::abs(view.X) / 1e5 + 1e-4;
            EXPECT_NEAR(Pixel(Scene.PixelX, row), static_cast<double>(picture.X), error);
            EXPECT_NEAR(Pixel(Scene.PixelY, row), static_cast<double>(picture.Y), error);
            EXPECT_NEAR(Pixel(Scene.PixelZ, row), static_cast<double>(picture.Z), error);
        }
    }
}

TEST_F(GraphicsProjection, PutsTheCentreOfRotationToTheConstantPlaceWhenNothingIsTurned) {
    AddPoints("A", {11, 22, 33}, {11, 22, 33});
    ScreenWindow& window = OpenSized(300, 200);
    Scene.RotCenter = {11, 22, 33};
    SetView(window, 0, 0, 0, 0.5F, 7, 9);
    rechne_PixelCloud(window);
    Rechne_pixel(window);
    EXPECT_EQ(ViewPoint(1, 1), 200.0F);
    EXPECT_EQ(ViewPoint(1, 2), 200.0F);
    EXPECT_EQ(ViewPoint(1, 3), 0.0F);
    EXPECT_EQ(Pixel(Scene.PixelX, 1), 200 * 0.5F + 7);
    EXPECT_EQ(Pixel(Scene.PixelY, 1), 200 - 200 * 0.5F - 9);
}

TEST_F(GraphicsProjection, GivesTheBoxOfAllRowsPlottedOrNot) {
    FivePoints();
    Job.ViewAllonlyOCS = kFalse;
    ScreenWindow& window = OpenScreenWindow();
    SetView(window, 0, 0, 0, 1, 0, 0);
    rechne_PixelCloud(window);
    const std::array<float, 6> box = {200 - 10, 200 + 101, 200 - 202, 200 + 50, -60, 30};
    EXPECT_EQ(window.ViewBox, box);
}

TEST_F(GraphicsProjection, LeavesTheBoundsOfAnEmptyTableAtTheirBegin) {
    ScreenWindow& window = OpenScreenWindow();
    Max_Min(window);
    const std::array<float, 6> box = {1e10F, -1e10F, 1e10F, -1e10F, 1e10F, -1e10F};
    EXPECT_EQ(window.ViewBox, box);
    const WorldBounds world = MaxMinGlobalSys();
    for (const double high : {world.xmax, world.ymax, world.zmax}) EXPECT_EQ(high, -1e10);
    for (const double low : {world.xmin, world.ymin, world.zmin}) EXPECT_EQ(low, 1e10);
}

TEST_F(GraphicsProjection, FindsTheBoxWhereverTheOutermostPointStands) {
    // More rows than a block of the loop, and a rest behind its last whole group of lanes.
    constexpr int kPairs = 1100;
    for (int i = 1; i <= kPairs; ++i) AddPoints("P", {0, 0, 0}, {0, 0, 0});
    ScreenWindow& window = OpenScreenWindow();
    for (const int row : {1, 2, 15, 16, 17, 1023, 1024, 1025, 2 * kPairs - 1, 2 * kPairs}) {
        SetView(window, 0, 0, 0, 1, 0, 0);
        std::vector<float>& x = Scene.Points[kSceneX];
        x[static_cast<std::size_t>(row)] = 55;
        rechne_PixelCloud(window);
        EXPECT_EQ(window.ViewBox[0], 200.0F) << row;
        EXPECT_EQ(window.ViewBox[1], 255.0F) << row;
        x[static_cast<std::size_t>(row)] = -55;
        rechne_PixelCloud(window);
        EXPECT_EQ(window.ViewBox[0], 145.0F) << row;
        EXPECT_EQ(window.ViewBox[1], 200.0F) << row;
        x[static_cast<std::size_t>(row)] = 0;
    }
}

TEST_F(GraphicsProjection, OnePassGivesTheNumbersOfTurningAndScalingOneAfterTheOther) {
    for (int i = 1; i <= 1300; ++i) {
        const double t = 0.1 * i;
        AddPoints("P", {900 * std::sin(t), 700 * std::cos(1.7 * t), 3 * t}, {900 * std::sin(t), 2 * t, -t});
    }
    ScreenWindow& window = OpenSized(640, 480);
    SetView(window, 0.3, -0.4, 0.7, 1.7F, -250, 90.5F);
    window.State.VectorMode = kTrue;
    RechneCloudAndPixels(window);
    const SceneRecord once = Scene;
    const std::array<float, 6> box = window.ViewBox;
    for (auto* tables : {&Scene.View[1], &Scene.View[2], &Scene.View[3], &Scene.Vectors[1], &Scene.Vectors[2],
                         &Scene.PixelX, &Scene.PixelY, &Scene.PixelZ, &Scene.VecPixelX, &Scene.VecPixelY})
        tables->clear();
    rechne_PixelCloud(window);
    Rechne_pixel(window);
    EXPECT_EQ(window.ViewBox, box);
    EXPECT_EQ(Scene.View, once.View);
    EXPECT_EQ(Scene.Vectors, once.Vectors);
    EXPECT_EQ(Scene.PixelX, once.PixelX);
    EXPECT_EQ(Scene.PixelY, once.PixelY);
    EXPECT_EQ(Scene.PixelZ, once.PixelZ);
    EXPECT_EQ(Scene.VecPixelX, once.VecPixelX);
    EXPECT_EQ(Scene.VecPixelY, once.VecPixelY);
}

TEST_F(GraphicsProjection, BoundsTheStartPointsOfTheJobInWorldCoordinates) {
    FivePoints();
    Job.Transformed.X[1] = 5000;  // not the transformed ones
    const WorldBounds world = MaxMinGlobalSys();
    EXPECT_EQ(world.xmax, 100);
    EXPECT_EQ(world.xmin, -10);
    EXPECT_EQ(world.ymax, 200);
    EXPECT_EQ(world.ymin, 0);
    EXPECT_EQ(world.zmax, 50);
    EXPECT_EQ(world.zmin, -30);
}

TEST_F(GraphicsProjection, TakesOnePointToThePictureAndBack) {
    AddPoints("A", {0, 0, 0}, {0, 0, 0});
    ScreenWindow& window = OpenSized(640, 480);
    for (const ViewCase& view : kViews) {
        SetView(window, view.A, view.B, view.C, view.Factor, view.X, view.Y);
        for (const Place3& p : {Place3{0, 0, 0}, Place3{1500, -20, 3}, Place3{-7, 900, 1e4L}}) {
            const Vec3 world(static_cast<double>(p.X), static_cast<double>(p.Y), static_cast<double>(p.Z));
            const Vec3 picture = WeltKS_to_BildKS(window, world);
            const Place3 expected = Pictured(window, p);
            const double size = 1e-10 * (1 + std::abs(view.X)) + 1e-9 * view.Factor;
            EXPECT_NEAR(picture(1), static_cast<double>(expected.X), size);
            EXPECT_NEAR(picture(2), static_cast<double>(expected.Y), size);
            EXPECT_NEAR(picture(3), static_cast<double>(expected.Z), size);
            const Vec3 back = BildKS_to_WeltKS(window, picture(1), picture(2), picture(3));
            for (int axis = 1; axis <= 3; ++axis) EXPECT_NEAR(back(axis), world(axis), 1e-5);
        }
    }
}

TEST_F(GraphicsProjection, TakesPicturePointsToTheWorldAndBack) {
    AddPoints("A", {0, 0, 0}, {0, 0, 0});
    ScreenWindow& window = OpenSized(640, 480);
    Scene.RotCenter = {1000, 2000, 3000};  // is not added back
    for (const ViewCase& view : kViews) {
        SetView(window, view.A, view.B, view.C, view.Factor, view.X, view.Y);
        const Vec3 world = BildKS_to_WeltKS(window, 320, 240, 12);
        const Vec3 picture = WeltKS_to_BildKS(window, world);
        EXPECT_NEAR(picture(1), 320, 1e-6);
        EXPECT_NEAR(picture(2), 240, 1e-6);
        EXPECT_NEAR(picture(3), 12, 1e-6);
    }
}

TEST_F(GraphicsProjection, TurnsAVectorWithoutShiftOrScale) {
    AddPoints("A", {0, 0, 0}, {0, 0, 0});
    ScreenWindow& window = OpenSized(640, 480);
    for (const ViewCase& view : kViews) {
        SetView(window, view.A, view.B, view.C, view.Factor, view.X, view.Y);
        const Place3 turned = Turned(window, {3, -4, 12});
        const PictureVector vector = pkt_drehen(window, 3, -4, 12);
        EXPECT_NEAR(vector.U, static_cast<double>(turned.X), 1e-12);
        EXPECT_NEAR(vector.V, static_cast<double>(turned.Y), 1e-12);
    }
}

TEST_F(GraphicsProjection, TurnsTheDeviationsOnlyWhereVectorsAreShown) {
    FivePoints();
    ScreenWindow& window = OpenSized(640, 480);
    SetView(window, 0.3, -0.4, 0.7, 1.7F, 10, 20);
    window.State.Vec_Maßstab = 50;
    Stelle_Grafik_dar(window);
    EXPECT_EQ(Pixel(Scene.VecPixelX, 1), 0.0F);
    for (const bool analyse : {false, true}) {
        window.State.VectorMode = ToFlag(!analyse);
        window.AnalyseMode = analyse;
        for (const Flag along : {kTrue, kFalse}) {
            Settings.DevVecDirection = along;
            Stelle_Grafik_dar(window);
            const long double sign = along == kTrue ? 50 : -50;  // pixels per mm, whatever the zoom
            const std::array<Place3, 3> deviations = {Place3{-1, 2, 0}, Place3{0, -2, 0.5L}, Place3{3, 0, 0}};
            for (int row = 1; row <= 3; ++row) {
                const Place3 turned = Turned(window, deviations[static_cast<std::size_t>(row - 1)]);
                EXPECT_NEAR(Pixel(Scene.VecPixelX, row), static_cast<double>(sign * turned.X), 1e-4);
                EXPECT_NEAR(Pixel(Scene.VecPixelY, row), static_cast<double>(sign * turned.Y), 1e-4);
            }
        }
        window.AnalyseMode = false;
    }
}

TEST_F(GraphicsProjection, LeavesComponentsOutOfVectorsThatTheFitDoesNotUse) {
    FivePoints();
    Job.UseFlags[2] = 0;  // y of the first point
    ScreenWindow& window = OpenSized(640, 480);
    SetView(window, 0, 0, 0, 1, 0, 0);
    window.State.VectorMode = kTrue;
    window.State.Vec_Maßstab = 10;
    window.State.ShowOnlyUsedComponent = kTrue;
    Settings.DevVecDirection = kTrue;
    Stelle_Grafik_dar(window);
    EXPECT_FLOAT_EQ(Pixel(Scene.VecPixelX, 1), -10.0F);
    EXPECT_FLOAT_EQ(Pixel(Scene.VecPixelY, 1), 0.0F);
    EXPECT_FLOAT_EQ(Pixel(Scene.VecPixelY, 2), -20.0F);
    window.State.ShowOnlyUsedComponent = kFalse;
    Stelle_Grafik_dar(window);
    EXPECT_FLOAT_EQ(Pixel(Scene.VecPixelY, 1), 20.0F);
}

TEST_F(GraphicsProjection, ADeviationAlongAnAxisPointsToTheOtherEndOfThePair) {
    // The vector of the picture leads from the start point towards its target when it is drawn against the
    // deviation; that holds for both axes of the picture and needs both sign changes of the pixels.
    AddPoints("A", {10, 20, 0}, {13, 26, 0});
    ScreenWindow& window = OpenSized(640, 480);
    Settings.DevVecDirection = kFalse;
    SetView(window, 0.2, 0.4, 0.1, 2, 0, 0);
    window.State.VectorMode = kTrue;
    window.State.Vec_Maßstab = 2;  // as many pixels to the millimetre as the picture
    Stelle_Grafik_dar(window);
    EXPECT_NEAR(Pixel(Scene.PixelX, 1) + Pixel(Scene.VecPixelX, 1), Pixel(Scene.PixelX, 2), 1e-3);
    EXPECT_NEAR(Pixel(Scene.PixelY, 1) + Pixel(Scene.VecPixelY, 1), Pixel(Scene.PixelY, 2), 1e-3);
}

TEST_F(GraphicsProjection, AnArmedCentreOfRotationIsTakenOnceAndTheViewCentred) {
    FivePoints();
    ScreenWindow& window = OpenSized(600, 400);
    SetView(window, 0, 0, 0, 2, 11, 22);
    rechne_PixelCloud(window);
    const std::array<float, 6> before = window.ViewBox;
    Scene.RotateAboutArmed = true;
    Scene.RotateAboutIndex = 2;
    Main.MenüGlobalRotateAbout.Checked = true;
    rechne_PixelCloud(window);
    EXPECT_FALSE(Scene.RotateAboutArmed);
    EXPECT_EQ(Scene.RotCenter(1), 0);
    EXPECT_EQ(Scene.RotCenter(2), 200);
    EXPECT_EQ(Scene.RotCenter(3), 10);
    EXPECT_EQ(ViewPoint(2, 1), 200.0F);
    EXPECT_EQ(ViewPoint(2, 2), 200.0F);
    // By the box as it was before: its middle comes to the middle of the picture.
    const double x = -(before[0] * 2 - (600 - (before[1] - before[0]) * 2) / 2);
    const double y = -(before[2] * 2 - (400 - (before[3] - before[2]) * 2) / 2);
    EXPECT_FLOAT_EQ(window.State.BildOffsetX, static_cast<float>(x));
    EXPECT_FLOAT_EQ(window.State.BildOffsetY, static_cast<float>(y));
    window.State.BildOffsetX = 5;
    rechne_PixelCloud(window);
    EXPECT_EQ(window.State.BildOffsetX, 5);
}

TEST_F(GraphicsProjection, AnArmedCentreTakesTheBoxOfItsOwnWindow) {
    FivePoints();
    ScreenWindow& first = OpenSized(600, 400);
    SetView(first, 0, 0, 0, 2, 11, 22);
    Stelle_Grafik_dar(first);
    const std::array<float, 6> box = first.ViewBox;
    ScreenWindow& second = OpenSized(200, 200);
    SideView(second);
    Scene.RotateAboutArmed = true;
    Scene.RotateAboutIndex = 1;
    Stelle_Grafik_dar(first);
    EXPECT_FLOAT_EQ(first.State.BildOffsetX, 300 - (box[0] + box[1]));
    EXPECT_FLOAT_EQ(first.State.BildOffsetY, 200 - (box[2] + box[3]));
}

TEST_F(GraphicsProjection, AnArmedCentreWaitsForItsPointAndIgnoresOneThatIsGone) {
    FivePoints();
    ScreenWindow& window = OpenScreenWindow();
    Scene.RotateAboutArmed = true;
    for (const int row : {0, -1, 9, 1000000}) {
        Scene.RotateAboutIndex = row;
        Stelle_Grafik_dar(window);
        EXPECT_TRUE(Scene.RotateAboutArmed);
        EXPECT_EQ(Scene.RotCenter(1), 0);
    }
}

TEST_F(GraphicsProjection, WorksInAPictureOfOnePixelAndForCoordinatesOfAMillionKilometres) {
    AddPoints("A", {1e12, -1e12, 1e12}, {1e12, 1e12, -1e12});
    AddPoints("B", {-1e12, 0, 0}, {1, 1, 1});
    ScreenWindow& window = OpenSized(1, 1);
    IsoView(window);
    GrafikAnpassen(window);
    ASSERT_TRUE(std::isfinite(window.State.BildFaktor));
    for (int row = 1; row <= Scene.Rows; ++row) {
        EXPECT_NEAR(Pixel(Scene.PixelX, row), 0.5, 0.5);
        EXPECT_NEAR(Pixel(Scene.PixelY, row), 0.5, 0.5);
    }
}
