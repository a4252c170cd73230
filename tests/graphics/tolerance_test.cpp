// Shown deviation, class and colour of the pairs.
#include "graphics/tolerance.h"

#include <cmath>
#include <limits>
#include <tuple>

#include "core/form_main.h"
#include "core/units.h"
#include "graphics/drawing.h"
#include "graphics/graphics_fixture.h"
#include "graphics/graphics_refresh.h"

using namespace corvinade;

using GraphicsTolerance = GraphicsJob;

namespace {

constexpr Colour kRed = 255, kGreen = 255 << 8, kBlue = 255 << 16, kWhite = 0xFFFFFF;

int GreenOf(Colour colour) {
    return colour >> 8 & 255;
}

void Show(ScreenWindow& window, bool x, bool y, bool z, const char* system, const char* based = "") {
    window.State.showVeX = ToFlag(x);
    window.State.showVeY = ToFlag(y);
    window.State.showVeZ = ToFlag(z);
    window.State.CS_Type = system;
    window.State.ColorBased = based;
    Transform_dev_to_klasse(window);
}
Vec3 ShownVector(int row) {
    const auto k = static_cast<std::size_t>(row);
    return {Scene.Points[kSceneVecX][k], Scene.Points[kSceneVecY][k], Scene.Points[kSceneVecZ][k]};
}
float SizeOf(int row) {
    return Scene.Points[kSceneSize][static_cast<std::size_t>(row)];
}

// One pair whose shown size is `size` (x alone is shown), and its class by limits and numbers of classes.
float ClassOfSize(ScreenWindow& window, double size) {
    Job.Transformed.X[1] = size;
    Grafik_Festlegen(window);
    Transform_dev_to_klasse(window);
    return Scene.Points[kSceneClass][1];
}
ScreenWindow& SignedWindow(double min, double max, int neg, int pos) {
    Screens().NewWidth = Screens().NewHeight = 100;
    ScreenWindow& window = OpenScreenWindow();
    window.State.ColorBased = "x";
    window.State.Min = min;
    window.State.Max = max;
    window.State.AnzKlassenNeg = static_cast<std::int16_t>(neg);
    window.State.AnzKlassenPos = static_cast<std::int16_t>(pos);
    return window;
}

}  // namespace

TEST_F(GraphicsTolerance, ShowsTheChosenCartesianComponents) {
    AddPoints("A", {13, 26, 5}, {10, 30, -7});  // (3, -4, 12), 13 long
    ScreenWindow& window = OpenScreenWindow();
    for (int mask = 0; mask < 8; ++mask) {
        const bool x = (mask & 1) != 0, y = (mask & 2) != 0, z = (mask & 4) != 0;
        Show(window, x, y, z, "CART");
        const Vec3 shown = ShownVector(1);
        EXPECT_EQ(shown(1), x ? 3 : 0);
        EXPECT_EQ(shown(2), y ? -4 : 0);
        EXPECT_EQ(shown(3), z ? 12 : 0);
        const double length = std::sqrt((x ? 9.0 : 0) + (y ? 16 : 0) + (z ? 144 : 0));
        // With all of them off the length is shown and the vectors vanish.
        EXPECT_FLOAT_EQ(SizeOf(1), mask == 0 ? 13.0F : static_cast<float>(length));
    }
}

TEST_F(GraphicsTolerance, ShowsCylinderComponentsOfAPairGivenInCylinderCoordinates) {
    for (const double degrees : {0.0, 30.0, 90.0, 135.0, 179.0, -45.0, -90.0, -179.0}) {
        const double phi = degrees * kPi / 180, turn = 0.001, radius = 1000, outwards = 0.5, up = -0.25;
        const double turned = phi + turn;
        Job = JobRecord{};
        AddPoints("A",
                  {(radius + outwards) * std::cos(turned), (radius + outwards) * std::sin(turned), 70 + up},
                  {radius * std::cos(phi), radius * std::sin(phi), 70});
        ++::Run.JobGeneration;
        ScreenWindow& window = OpenScreenWindow();
        Show(window, true, false, false, "CYL");
        EXPECT_NEAR(SizeOf(1), outwards, 1e-6) << degrees;
        EXPECT_NEAR(ShownVector(1)(1), outwards * std::cos(turned), 1e-6);
        EXPECT_NEAR(ShownVector(1)(2), outwards * std::sin(turned), 1e-6);
        Show(window, false, true, false, "CYL");  // an arc of the target's radius
        EXPECT_NEAR(SizeOf(1), turn * radius, 1e-6) << degrees;
        EXPECT_NEAR(ShownVector(1)(1), -turn * radius * std::sin(turned), 1e-6);
        EXPECT_NEAR(ShownVector(1)(2), turn * radius * std::cos(turned), 1e-6);
        Show(window, false, false, true, "CYL");
        EXPECT_NEAR(ShownVector(1)(3), up, 1e-6);
        Show(window, true, true, true, "CYL");
        EXPECT_NEAR(SizeOf(1), std::sqrt(0.25 + 1 + 0.0625), 1e-6) << degrees;
    }
}

TEST_F(GraphicsTolerance, ShowsSphereComponentsOfAPairGivenInSphereCoordinates) {
    const double turn = 0.0004, tilt = -0.0006, radius = 500, outwards = 0.3;
    for (const double phiDegrees : {10.0, 120.0, 180.0, -100.0})
        for (const double thetaDegrees : {20.0, 90.0, 150.0}) {
            const double phi = phiDegrees * kPi / 180, theta = thetaDegrees * kPi / 180;
            const auto place = [](double r, double t, double p) {
                return Vec3(r * std::sin(t) * std::cos(p), r * std::sin(t) * std::sin(p), r * std::cos(t));
            };
            Job = JobRecord{};
            AddPoints("A", place(radius + outwards, theta + tilt, phi + turn), place(radius, theta, phi));
            ++::Run.JobGeneration;
            ScreenWindow& window = OpenScreenWindow();
            Show(window, true, false, false, "SPH", "x");
            EXPECT_NEAR(SizeOf(1), outwards, 2e-6);
            Show(window, false, true, false, "SPH", "y");
            EXPECT_NEAR(SizeOf(1), turn * radius * std::sin(theta), 2e-6);
            Show(window, false, false, true, "SPH", "z");
            EXPECT_NEAR(SizeOf(1), tilt * radius, 2e-6);
            // The three parts add up to the whole deviation, to the second order of the small angles.
            Show(window, true, true, true, "SPH");
            const Vec3 shown = ShownVector(1);
            for (const auto& [axis, column] : {std::pair{1, kSceneDevX}, {2, kSceneDevY}, {3, kSceneDevZ}}) {
                Grafik_Festlegen(window);
                EXPECT_NEAR(shown(axis), Cell(1, column), 1e-3);
            }
        }
}

TEST_F(GraphicsTolerance, ShowsSphereComponentsOnTheAxisItself) {
    for (const double z : {300.0, -300.0}) {
        Job = JobRecord{};
        AddPoints("A", {0, 0, z * 1.01}, {0, 0, z});
        AddPoints("B", {0, 0, z}, {0.1, 0, z});
        ++::Run.JobGeneration;
        ScreenWindow& window = OpenScreenWindow();
        Show(window, true, true, true, "SPH");
        EXPECT_NEAR(ShownVector(1)(3), z * 0.01, 1e-5);
        EXPECT_NEAR(SizeOf(1), 3, 1e-5);
        EXPECT_NEAR(SizeOf(2), 0.1, 1e-4);
    }
}

TEST_F(GraphicsTolerance, BringsAzimuthsToOneBranchBehindTheOrigin) {
    AddPoints("A", {-1000, 0.5, 0}, {-1000, -0.5, 0});
    AddPoints("B", {-1000, -0.5, 0}, {-1000, 0.5, 0});
    ScreenWindow& window = OpenScreenWindow();
    Show(window, false, true, false, "CYL", "y");
    EXPECT_NEAR(SizeOf(1), -1, 1e-4);  // turned backwards: the azimuth falls from below to above the axis
    EXPECT_NEAR(SizeOf(2), 1, 1e-4);
}

TEST_F(GraphicsTolerance, TakesTheSignOfTheChosenComponentWhetherItIsShownOrNot) {
    AddPoints("A", {13, 26, 5}, {10, 30, 5});  // (3, -4, 0)
    ScreenWindow& window = OpenScreenWindow();
    for (const auto& [based, sign] : {std::pair{"", 1}, {"x", 1}, {"y", -1}, {"z", 1}}) {
        Show(window, true, true, true, "CART", based);
        EXPECT_EQ(SizeOf(1), static_cast<float>(5 * sign)) << based;
        Show(window, true, false, false, "CART", based);
        EXPECT_EQ(SizeOf(1), static_cast<float>(3 * sign)) << based;
    }
}

TEST_F(GraphicsTolerance, ClassesAboveZeroBeginWithOneAndEndBeyondTheLast) {
    AddPoints("A", {0, 0, 0}, {0, 0, 0});
    ScreenWindow& window = SignedWindow(0, 1, 10, 10);
    EXPECT_EQ(ClassOfSize(window, 0.05), 1.0F);
    EXPECT_EQ(ClassOfSize(window, 0), 1.0F);  // no deviation at all is in the first class
    EXPECT_EQ(ClassOfSize(window, 1e-12), 1.0F);
    EXPECT_EQ(ClassOfSize(window, 0.55), 6.0F);
    EXPECT_EQ(ClassOfSize(window, 0.999), 10.0F);
    EXPECT_EQ(ClassOfSize(window, 1.0), 11.0F);
    EXPECT_EQ(static_cast<Colour>(Cell(1, kSceneColour)), kRed);
    EXPECT_FLOAT_EQ(ClassOfSize(window, 1e20), 1e21F);
    EXPECT_EQ(static_cast<Colour>(Cell(1, kSceneColour)), kRed);
}

TEST_F(GraphicsTolerance, ClassesBelowZeroCountDownFromZero) {
    AddPoints("A", {0, 0, 0}, {0, 0, 0});
    ScreenWindow& window = SignedWindow(-1, 1, 10, 10);
    EXPECT_EQ(ClassOfSize(window, -0.05), -1.0F);  // Int(-0.5)
    EXPECT_EQ(ClassOfSize(window, -0.55), -6.0F);
    EXPECT_EQ(ClassOfSize(window, -2), -20.0F);
    EXPECT_EQ(static_cast<Colour>(Cell(1, kSceneColour)), kBlue);
}

TEST_F(GraphicsTolerance, APositiveLowerLimitTurnsNegativeDeviationsIntoPositiveClasses) {
    AddPoints("A", {0, 0, 0}, {0, 0, 0});
    ScreenWindow& window = SignedWindow(1, 1, 10, 10);
    EXPECT_EQ(ClassOfSize(window, -0.55), 5.0F);
}

TEST_F(GraphicsTolerance, ALimitOfZeroGivesClassZeroAndGreenOnItsSide) {
    AddPoints("A", {0, 0, 0}, {0, 0, 0});
    ScreenWindow& window = SignedWindow(-1, 0, 10, 10);
    EXPECT_EQ(ClassOfSize(window, 3), 0.0F);
    EXPECT_EQ(static_cast<Colour>(Cell(1, kSceneColour)), kGreen);
    window.State.Min = 0;
    window.State.Max = 1;
    EXPECT_EQ(ClassOfSize(window, -3), 0.0F);
}

TEST_F(GraphicsTolerance, TakesLimitsThatAreBothZeroFromTheData) {
    AddPoints("A", {1.239, 0, 0}, {0, 0, 0});
    AddPoints("B", {-0.561, 0, 0}, {0, 0, 0});
    ScreenWindow& window = SignedWindow(0, 0, 10, 10);
    Transform_dev_to_klasse(window);
    EXPECT_EQ(window.State.Max, 1.23);
    EXPECT_EQ(window.State.Min, -0.57);
}

TEST_F(GraphicsTolerance, LimitsStayZeroWithoutPairsOrWithoutDeviations) {
    ScreenWindow& window = SignedWindow(0, 0, 10, 10);
    Stelle_Grafik_dar(window);
    EXPECT_EQ(window.State.Max, 0);
    EXPECT_EQ(window.State.Min, 0);
    AddPoints("A", {5, 5, 5}, {5, 5, 5});
    Grafik_Festlegen(window);
    Stelle_Grafik_dar(window);
    EXPECT_EQ(window.State.Max, 0);
    // Once there is a deviation the next paint finds it.
    Job.Transformed.X[1] = 7;
    Grafik_Festlegen(window);
    Stelle_Grafik_dar(window);
    EXPECT_EQ(window.State.Max, 2);
}

TEST_F(GraphicsTolerance, LimitsOfAWindowThatFollowsTheDataChangeWithThem) {
    AddPoints("A", {1.239, 0, 0}, {0, 0, 0});
    AddPoints("B", {-0.561, 0, 0}, {0, 0, 0});
    ScreenWindow& window = SignedWindow(-9, 9, 10, 10);
    Stelle_Grafik_dar(window);
    EXPECT_EQ(window.State.Max, 9);
    window.SetMinMaxOnChange = true;
    Job.Transformed.X[1] = 2.5;
    DrawResultInGraphicsWindows();
    EXPECT_EQ(window.State.Max, 2.5);
    EXPECT_EQ(window.State.Min, -0.57);
    Job.Transformed.X[1] = -3.0;
    DrawResultInGraphicsWindows();
    EXPECT_EQ(window.State.Max, -0.57);
    EXPECT_EQ(window.State.Min, -3);
}

TEST_F(GraphicsTolerance, LimitsThatFollowTheDataAreWholeHundredthsOfTheLengthUnit) {
    AddPoints("A", {1239, 0, 0}, {0, 0, 0});
    AddPoints("B", {561, 0, 0}, {0, 0, 0});
    Job.UseFlags[2] = 0;
    Job.LengthUnitName = "meter";
    RhoFestlegung();
    ScreenWindow& window = SignedWindow(0, 1, 10, 10);
    window.SetMinMaxOnChange = true;
    DrawResultInGraphicsWindows();
    EXPECT_DOUBLE_EQ(window.State.Max, 1230);
    EXPECT_DOUBLE_EQ(window.State.Min, 560);
    // Of pairs that the fit uses as a whole alone, where only their components are shown.
    window.State.ShowOnlyUsedComponent = kTrue;
    DrawResultInGraphicsWindows();
    EXPECT_DOUBLE_EQ(window.State.Max, 560);
}

TEST_F(GraphicsTolerance, TheScaleRunsThroughItsFixedColours) {
    AddPoints("A", {0, 0, 0}, {0, 0, 0});
    ScreenWindow& window = SignedWindow(-1, 1, 4, 4);
    EXPECT_EQ(ClassColour(window, 0), kGreen);
    EXPECT_EQ(ClassColour(window, -4), Rgb(0, 0, 255));
    EXPECT_EQ(ClassColour(window, -3), Rgb(0, 84, 255));  // 0.25 * 335 = 83.75
    EXPECT_EQ(ClassColour(window, -2), Rgb(0, 155, 255));
    EXPECT_EQ(ClassColour(window, -1), Rgb(0, 205, 128));  // 127.5
    EXPECT_EQ(ClassColour(window, 1), Rgb(128, 205, 0));
    EXPECT_EQ(ClassColour(window, 2), Rgb(255, 155, 0));
    EXPECT_EQ(ClassColour(window, 3), Rgb(255, 84, 0));
    EXPECT_EQ(ClassColour(window, 4), Rgb(255, 0, 0));
    EXPECT_EQ(ClassColour(window, 5), kRed);
    EXPECT_EQ(ClassColour(window, -5), kBlue);
}

TEST_F(GraphicsTolerance, TheHalvesOfTheScaleDoNotJoin) {
    AddPoints("A", {0, 0, 0}, {0, 0, 0});
    ScreenWindow& window = SignedWindow(-1, 1, 100, 100);
    // At a half the inner branch gives 155; the outer one runs towards 167.5, whole number 168.
    EXPECT_EQ(GreenOf(ClassColour(window, -50)), 155);
    const int outer = GreenOf(ClassColour(window, -51)), next = GreenOf(ClassColour(window, -52));
    EXPECT_EQ(outer, 164);  // 0.49 * 335 = 164.15
    EXPECT_EQ(next, 161);   // 0.48 * 335 = 160.8
    EXPECT_EQ(std::lround(0.5 * 335), 168);
}

TEST_F(GraphicsTolerance, OneClassAloneIsRed) {
    AddPoints("A", {0, 0, 0}, {0, 0, 0});
    ScreenWindow& window = SignedWindow(-1, 1, 1, 1);
    EXPECT_EQ(ClassOfSize(window, 0.3), 1.0F);
    EXPECT_EQ(static_cast<Colour>(Cell(1, kSceneColour)), kRed);
    EXPECT_EQ(ClassColour(window, -1), kBlue);
}

TEST_F(GraphicsTolerance, PointsOutOfToleranceTakeTheirOwnColourWhereWanted) {
    AddPoints("A", {0, 0, 0}, {0, 0, 0});
    ScreenWindow& window = SignedWindow(-1, 1, 10, 10);
    window.State.OuterColor = Rgb(1, 2, 3);
    EXPECT_EQ(ClassColour(window, 11), kRed);
    window.State.AusserhalbTol = kTrue;
    EXPECT_EQ(ClassColour(window, 11), Rgb(1, 2, 3));
    EXPECT_EQ(ClassColour(window, -11), Rgb(1, 2, 3));
    EXPECT_EQ(ClassColour(window, 10), kRed);
    ClassOfSize(window, 5);
    EXPECT_EQ(static_cast<Colour>(Cell(1, kSceneColour)), Rgb(1, 2, 3));
    ClassOfSize(window, 0.5);
    EXPECT_NE(static_cast<Colour>(Cell(1, kSceneColour)), Rgb(1, 2, 3));
}

TEST_F(GraphicsTolerance, TwoColoursReplaceAllOthersOnlyWithTheColourBarOfTheMenu) {
    AddPoints("A", {0, 0, 0}, {0, 0, 0});
    ScreenWindow& window = SignedWindow(-1, 1, 10, 10);
    window.State.BinärModus = kTrue;
    window.State.AusserhalbTol = kTrue;
    window.State.OuterColor = Rgb(1, 2, 3);
    EXPECT_EQ(ClassColour(window, 11), Rgb(1, 2, 3));
    Main.MenüAnsichtToleranzenColorbar.Checked = true;
    for (const int even : {0, 2, 10, 12}) EXPECT_EQ(ClassColour(window, even), kGreen) << even;
    for (const int odd : {1, 9, 11, 4001}) EXPECT_EQ(ClassColour(window, odd), kWhite) << odd;
    for (const int even : {-2, -10, -12}) EXPECT_EQ(ClassColour(window, even), kWhite) << even;
    for (const int odd : {-1, -9, -11}) EXPECT_EQ(ClassColour(window, odd), kGreen) << odd;
    ClassOfSize(window, 1.05);  // class 11
    EXPECT_EQ(static_cast<Colour>(Cell(1, kSceneColour)), kWhite);
    ClassOfSize(window, 1.15);
    EXPECT_EQ(static_cast<Colour>(Cell(1, kSceneColour)), kGreen);
}

TEST_F(GraphicsTolerance, EveryRowHasAColourPointsWithoutAPartnerThatOfClassZero) {
    FivePoints();
    OpenScreenWindow();
    for (int row = 4; row <= Scene.Rows; ++row)
        EXPECT_EQ(static_cast<Colour>(Cell(row, kSceneColour)), kGreen);
}

TEST_F(GraphicsTolerance, TheBarHasARowForEachClass) {
    AddPoints("A", {0, 0, 0}, {0, 0, 0});
    ScreenWindow& window = SignedWindow(-1, 1, 4, 7);
    Transform_dev_to_klasse(window);
    ASSERT_EQ(Tolerance.Negative.Class.size(), 5U);
    ASSERT_EQ(Tolerance.Positive.Class.size(), 8U);
    for (int k = 1; k <= 4; ++k) {
        EXPECT_EQ(Tolerance.Negative.Class[static_cast<std::size_t>(k)], static_cast<float>(k - 4));
        EXPECT_EQ(static_cast<Colour>(Tolerance.Negative.Colour[static_cast<std::size_t>(k)]),
                  ClassColour(window, k - 4));
    }
    for (int k = 1; k <= 7; ++k) {
        EXPECT_EQ(Tolerance.Positive.Class[static_cast<std::size_t>(k)], static_cast<float>(k));
        EXPECT_EQ(static_cast<Colour>(Tolerance.Positive.Colour[static_cast<std::size_t>(k)]),
                  ClassColour(window, k));
    }
}

TEST_F(GraphicsTolerance, ColoursFollowEverySettingAtTheNextPaint) {
    AddPoints("A", {0.8, 0, 0}, {0, 0, 0});
    ScreenWindow& window = SignedWindow(-1, 1, 10, 10);
    const auto colour = [&window] {
        Stelle_Grafik_dar(window);
        return static_cast<Colour>(Cell(1, kSceneColour));
    };
    const Colour ofClassNine = colour();
    EXPECT_EQ(ofClassNine, Rgb(255, 34, 0));  // 0.1 * 335 = 33.5
    window.State.Max = 0.5;
    EXPECT_EQ(colour(), kRed);
    window.State.AusserhalbTol = kTrue;
    window.State.OuterColor = 7;
    EXPECT_EQ(colour(), 7);
    window.State.OuterColor = 8;
    EXPECT_EQ(colour(), 8);
    window.State.Max = 1;
    EXPECT_EQ(colour(), ofClassNine);
    window.State.AnzKlassenPos = 1;
    EXPECT_EQ(colour(), kRed);
    window.State.BinärModus = kTrue;
    Main.MenüAnsichtToleranzenColorbar.Checked = true;
    EXPECT_EQ(colour(), kWhite);
}

TEST_F(GraphicsTolerance, ASizeThatIsNoNumberHasClassZeroAndNoSayInTheLimits) {
    AddPoints("A", {std::numeric_limits<double>::quiet_NaN(), 0, 0}, {0, 0, 0});
    AddPoints("B", {2, 0, 0}, {0, 0, 0});
    ScreenWindow& window = SignedWindow(0, 0, 10, 10);
    Transform_dev_to_klasse(window);
    EXPECT_EQ(window.State.Max, 2);
    EXPECT_EQ(Cell(1, kSceneClass), 0.0F);
    Main.MenüAnsichtToleranzenColorbar.Checked = true;
    window.State.BinärModus = kTrue;
    Transform_dev_to_klasse(window);
    EXPECT_EQ(static_cast<Colour>(Cell(1, kSceneColour)), kGreen);
}
