// Fit, fixed views, zoom and the length of the vectors.
#include "graphics/views.h"

#include <cmath>

#include "cli/headless.h"
#include "graphics/drawing.h"
#include "graphics/graphics_fixture.h"
#include "graphics/view_values.h"

using namespace corvinade;

using GraphicsViews = GraphicsJob;

namespace {

constexpr double kPiOfFifteenDigits = 3.14159265358979;

// The picture point of a row, by the tables of the last paint.
Place3 PixelOfRow(int row) {
    const auto k = static_cast<std::size_t>(row);
    return {Scene.PixelX[k], Scene.PixelY[k], Scene.PixelZ[k]};
}

}  // namespace

TEST_F(GraphicsViews, FitsTheCloudToNineTenthsOfTheNarrowerSide) {
    AddPoints("A", {0, 0, 0}, {0, 0, 0});
    AddPoints("B", {1000, 200, 0}, {1000, 200, 0});
    ScreenWindow& window = OpenSized(500, 400);
    SetView(window, 0, 0, 0, 1, 0, 0);
    Anpassen(window);
    const double factor = 0.9 * std::min(500 / (1e-10 + 1000), 400 / (1e-10 + 200));
    EXPECT_FLOAT_EQ(window.State.BildFaktor, static_cast<float>(factor));
    Stelle_Grafik_dar(window);
    // As much room left as right, and above as below.
    EXPECT_NEAR(static_cast<double>(PixelOfRow(1).X + PixelOfRow(2).X), 500, 1e-3);
    EXPECT_NEAR(static_cast<double>(PixelOfRow(1).Y + PixelOfRow(2).Y), 400, 1e-3);
    EXPECT_NEAR(static_cast<double>(PixelOfRow(2).X - PixelOfRow(1).X), 450, 1e-3);
}

TEST_F(GraphicsViews, FitDoesNotPaintAndTheFitOfTheUserPaintsAndStores) {
    FivePoints();
    ScreenWindow& window = OpenScreenWindow();
    const std::uint64_t paints = window.PaintCount;
    const int steps = window.UndoCount;
    Anpassen(window);
    EXPECT_EQ(window.PaintCount, paints);
    EXPECT_EQ(window.UndoCount, steps);
    GrafikAnpassen(window);
    EXPECT_EQ(window.PaintCount, paints + 1);
    EXPECT_EQ(window.UndoCount, steps + 1);
}

TEST_F(GraphicsViews, FitsByItsOwnViewWhileAnotherWindowHasPaintedLast) {
    FivePoints();
    ScreenWindow& first = OpenSized(500, 400);
    SetView(first, 0.3, 0.4, 0.5, 1, 0, 0);
    GrafikAnpassen(first);
    const ScreenRecord fitted = first.State;
    ScreenWindow& second = OpenSized(300, 900);
    FrontView(second);
    Anpassen(first);
    EXPECT_EQ(first.State.BildFaktor, fitted.BildFaktor);
    EXPECT_EQ(first.State.BildOffsetX, fitted.BildOffsetX);
    EXPECT_EQ(first.State.BildOffsetY, fitted.BildOffsetY);
}

TEST_F(GraphicsViews, FitsPointsThatAllCoincide) {
    AddPoints("A", {1234, -50, 7}, {1234, -50, 7});
    AddPoints("B", {1234, -50, 7}, {1234, -50, 7});
    ScreenWindow& window = OpenSized(500, 400);
    SetView(window, 0, 0, 0, 1, 0, 0);
    GrafikAnpassen(window);
    EXPECT_FLOAT_EQ(window.State.BildFaktor, static_cast<float>(0.9 * 400 / 1e-10));
    // Pixels beyond 1e15 in 32 bits: the middle is hit as far as they go.
    EXPECT_TRUE(std::isfinite(PixelOfRow(1).X));
    EXPECT_TRUE(std::isfinite(PixelOfRow(1).Y));
    ZoomIn(window);
    ZoomOut(window);
    EXPECT_TRUE(std::isfinite(window.State.BildOffsetX));
}

TEST_F(GraphicsViews, FitOfNothingLeavesTheView) {
    ScreenWindow& window = OpenScreenWindow();
    window.State.BildFaktor = 3;
    window.State.BildOffsetX = 4;
    GrafikAnpassen(window);
    EXPECT_EQ(window.State.BildFaktor, 3.0F);
    EXPECT_EQ(window.State.BildOffsetX, 4.0F);
}

TEST_F(GraphicsViews, CenterBringsTheOriginOfTheViewToTheMiddleWhateverTheCloud) {
    AddPoints("A", {9000, 8000, 7000}, {9000, 8000, 7000});
    ScreenWindow& window = OpenSized(501, 400);
    SetView(window, 0.1, 0.2, 0.3, 2.5F, 77, 88);
    const int steps = window.UndoCount;
    Center(window);
    EXPECT_EQ(window.State.BildFaktor, 2.5F);
    EXPECT_EQ(window.State.BildOffsetX, 250.5F);
    EXPECT_EQ(window.State.BildOffsetY, 200.0F);
    EXPECT_EQ(window.UndoCount, steps + 1);
    // ViewPoints (0, 0) is the world point that the turn takes to (-200, 200).
    const Vec3 world = BildKS_to_WeltKS(window, 250.5, 200, 0);
    const Place3 turned = Turned(window, {world(1), world(2), world(3)});
    EXPECT_NEAR(static_cast<double>(turned.X + 200), 0, 1e-9);
    EXPECT_NEAR(static_cast<double>(200 - turned.Y), 0, 1e-9);
}

TEST_F(GraphicsViews, CenterKeepsTheBoxOfItsOwnViewWhileAnotherWindowHasPaintedLast) {
    FivePoints();
    ScreenWindow& first = OpenScreenWindow();
    const std::array<float, 6> fromAbove = first.ViewBox;
    FrontView(OpenScreenWindow());
    ASSERT_NE(Screens().Active->ViewBox, fromAbove);
    Center(first);
    EXPECT_EQ(first.ViewBox, fromAbove);
}

TEST_F(GraphicsViews, FixedViewsSetTheirAnglesAndLeaveTheRest) {
    FivePoints();
    ScreenWindow& window = OpenScreenWindow();
    struct Fixed {
        void (*Show)(ScreenWindow&);
        double A, B, C;
    };
    const double degree = 180 / kPiOfFifteenDigits;
    for (const Fixed& view :
         {Fixed{TopView, -kPiOfFifteenDigits, 0, 0}, Fixed{SideView, 4.712388980384685, 0, 0},
          Fixed{FrontView, 4.712388980384685, 4.712388980384685, 0},
          Fixed{IsoView, 210 / degree, -50 / degree, -50 / degree}}) {
        SetView(window, 1, 2, 3, 0.7F, 5, 6);
        const int steps = window.UndoCount;
        const std::uint64_t paints = window.PaintCount;
        view.Show(window);
        EXPECT_EQ(ViewAngle(window, 1), view.A);
        EXPECT_EQ(ViewAngle(window, 2), view.B);
        EXPECT_EQ(ViewAngle(window, 3), view.C);
        EXPECT_EQ(window.State.BildFaktor, 0.7F);
        EXPECT_EQ(window.State.BildOffsetX, 5.0F);
        EXPECT_EQ(window.State.BildOffsetY, 6.0F);
        EXPECT_EQ(window.UndoCount, steps + 1);
        EXPECT_EQ(window.PaintCount, paints + 1);
    }
}

TEST_F(GraphicsViews, FixedViewsLookAlongTheAxesOfTheWorld) {
    FivePoints();
    ScreenWindow& window = OpenScreenWindow();
    const auto expectAxes = [&window](const Vec3& right, const Vec3& down) {
        const Vec3 axes[] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
        for (int axis = 0; axis < 3; ++axis) {
            const PictureVector picture = pkt_drehen(window, axes[axis](1), axes[axis](2), axes[axis](3));
            EXPECT_NEAR(picture.U, right(axis + 1), 1e-12);
            EXPECT_NEAR(picture.V, down(axis + 1), 1e-12);
        }
    };
    TopView(window);  // x to the right, y up: the picture's v runs down
    expectAxes({1, 0, 0}, {0, -1, 0});
    SideView(window);  // x to the right, z up
    expectAxes({1, 0, 0}, {0, 0, -1});
    FrontView(window);  // y along the picture, z up
    expectAxes({0, 1, 0}, {0, 0, -1});
}

TEST_F(GraphicsViews, ZoomKeepsThePointUnderTheMouse) {
    FivePoints();
    ScreenWindow& window = OpenSized(640, 480);
    SetView(window, 0.3, 0.2, 0.1, 1.5F, 40, -30);
    window.Mouse.X = 123;
    window.Mouse.Y = 321;
    const Vec3 under = BildKS_to_WeltKS(window, 123, 321, 0);
    Screens().Wheel = true;
    ZoomIn(window);
    EXPECT_FALSE(Screens().Wheel);
    EXPECT_FLOAT_EQ(window.State.BildFaktor, static_cast<float>(1.5 / 0.7));
    Vec3 picture = WeltKS_to_BildKS(window, under);
    EXPECT_NEAR(picture(1), 123, 1e-3);
    EXPECT_NEAR(picture(2), 321, 1e-3);
    Screens().Wheel = true;
    ZoomOut(window);
    picture = WeltKS_to_BildKS(window, under);
    EXPECT_NEAR(picture(1), 123, 1e-3);
    EXPECT_NEAR(picture(2), 321, 1e-3);
    EXPECT_FLOAT_EQ(window.State.BildFaktor, 1.5F);
    EXPECT_NEAR(window.State.BildOffsetX, 40, 1e-3);
    EXPECT_NEAR(window.State.BildOffsetY, -30, 1e-3);
}

TEST_F(GraphicsViews, ZoomGoesAboutTheMiddleWithoutTheWheel) {
    FivePoints();
    ScreenWindow& window = OpenSized(641, 480);
    SetView(window, 0, 0, 0, 2, 40, -30);
    window.Mouse.X = 1;
    window.Mouse.Y = 2;
    const Vec3 middle = BildKS_to_WeltKS(window, 320.5, 240, 0);
    const int steps = window.UndoCount;
    ZoomOut(window);
    EXPECT_FLOAT_EQ(window.State.BildFaktor, 1.4F);
    const Vec3 picture = WeltKS_to_BildKS(window, middle);
    EXPECT_NEAR(picture(1), 320.5, 1e-3);
    EXPECT_NEAR(picture(2), 240, 1e-3);
    // By the formulas written out: the offsets for a factor 0.7 times as large.
    EXPECT_NEAR(window.State.BildOffsetX, -(320.5 - 40) * 0.7 + 320.5, 1e-4);
    EXPECT_NEAR(window.State.BildOffsetY, -(480 - 240 + 30) * 0.7 + 480 - 240, 1e-4);
    EXPECT_EQ(window.UndoCount, steps + 1);
}

TEST_F(GraphicsViews, ZoomStopsWhereNumbersEndAndComesBack) {
    FivePoints();
    ScreenWindow& window = OpenSized(640, 480);
    for (int i = 0; i < 300; ++i) ZoomIn(window);
    EXPECT_GT(window.State.BildFaktor, 1e13F);
    EXPECT_LT(window.State.BildFaktor, 1e15F);
    const float largest = window.State.BildFaktor;
    ZoomOut(window);
    EXPECT_LT(window.State.BildFaktor, largest);
    for (int i = 0; i < 600; ++i) ZoomOut(window);
    EXPECT_GT(window.State.BildFaktor, 0.0F);
    EXPECT_LT(window.State.BildFaktor, 1e-13F);
    const float smallest = window.State.BildFaktor;
    ZoomIn(window);
    EXPECT_GT(window.State.BildFaktor, smallest);
    EXPECT_TRUE(std::isfinite(window.State.BildOffsetX));
}

TEST_F(GraphicsViews, VectorsGrowAndShrinkByHalfAsMuchAgain) {
    FivePoints();
    ScreenWindow& window = OpenScreenWindow();
    window.State.Vec_Maßstab = 100;
    const int steps = window.UndoCount;
    const std::uint64_t paints = window.PaintCount;
    Vec_Maßstab_longer(window);
    EXPECT_EQ(window.State.Vec_Maßstab, 150.0F);
    Vec_Maßstab_shorter(window);
    Vec_Maßstab_shorter(window);
    EXPECT_FLOAT_EQ(window.State.Vec_Maßstab, static_cast<float>(100 / 1.5));
    EXPECT_EQ(window.UndoCount, steps + 3);
    EXPECT_EQ(window.PaintCount, paints + 3);
    EXPECT_TRUE(Messages().empty());
}

TEST_F(GraphicsViews, VectorsKeepTheirLengthWhenTheLimitIsTold) {
    FivePoints();
    ScreenWindow& window = OpenScreenWindow();
    Headless.Answers["message"] = {"OK", "OK"};
    window.State.Vec_Maßstab = 7e6F;
    Vec_Maßstab_longer(window);
    EXPECT_EQ(window.State.Vec_Maßstab, 7e6F);
    window.State.Vec_Maßstab = 1.4e-30F;
    Vec_Maßstab_shorter(window);
    EXPECT_EQ(window.State.Vec_Maßstab, 1.4e-30F);
    EXPECT_EQ(Messages(), (std::vector<std::string>{"Vectors can not be made longer",
                                                    "Vectors can not be made smaller"}));
}

TEST_F(GraphicsViews, VectorsBeyondALimitCanComeBack) {
    FivePoints();
    ScreenWindow& window = OpenScreenWindow();
    window.State.Vec_Maßstab = 2e10F;
    Vec_Maßstab_shorter(window);
    EXPECT_FLOAT_EQ(window.State.Vec_Maßstab, static_cast<float>(2e10 / 1.5));
    window.State.Vec_Maßstab = 1e-35F;
    Vec_Maßstab_longer(window);
    EXPECT_FLOAT_EQ(window.State.Vec_Maßstab, 1.5e-35F);
    EXPECT_TRUE(Messages().empty());
}

TEST_F(GraphicsViews, VectorsOfANewWindowAreSizedByTheBoxOnceThereIsAResult) {
    AddPoints("A", {0, 0, 0}, {3, 0, 4});
    AddPoints("B", {1000, 400, 0}, {1000, 400, 0});
    EXPECT_EQ(OpenScreenWindow().State.Vec_Maßstab, 400.0F);
    ::Run.TrafoValid = kTrue;
    // From above the box is 1000 by 400; the largest deviation is 5.
    EXPECT_FLOAT_EQ(OpenScreenWindow().State.Vec_Maßstab, static_cast<float>((1000 + 400) / 2.0 / 5 / 500));
}

TEST_F(GraphicsViews, VectorsOfANewWindowHaveALengthWhereTheBoxHasNone) {
    ::Run.TrafoValid = kTrue;
    EXPECT_EQ(OpenScreenWindow().State.Vec_Maßstab, 400.0F);  // no points
    AddPoints("A", {1, 1, 1}, {1, 1, 1});
    EXPECT_EQ(OpenScreenWindow().State.Vec_Maßstab, 400.0F);  // all at one place
}

TEST_F(GraphicsViews, ValuesThatNoWindowCanShowGoToTheNearestThatOneCan) {
    const float nan = std::nanf("");
    ScreenRecord view;
    view.BildFaktor = nan;
    view.BildOffsetX = view.BildOffsetY = nan;
    view.Vec_Maßstab = -3;
    view.BigNess = -7;
    view.AnzKlassenPos = 0;
    view.AnzKlassenNeg = 32767;
    view.Min = std::nan("");
    view.CS_Type = "POL";
    view.RotAngles = {1, 2, 3};
    view.ADis = -5;
    view.LineTable = {1, 2, 3};
    MakeViewUsable(view);
    EXPECT_EQ(view.BildFaktor, 1.0F);
    EXPECT_EQ(view.BildOffsetX, 0.0F);
    EXPECT_EQ(view.Vec_Maßstab, 400.0F);
    EXPECT_EQ(view.BigNess, 1);
    EXPECT_EQ(view.AnzKlassenPos, 1);
    EXPECT_EQ(view.AnzKlassenNeg, 100);
    EXPECT_EQ(view.Min, 0);
    EXPECT_EQ(view.CS_Type, "CART");
    EXPECT_EQ(view.RotAngles.size(), 6U);
    EXPECT_EQ(view.ADis, 0);
    EXPECT_TRUE(view.LineTable.empty());
}
