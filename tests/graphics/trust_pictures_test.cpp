// Ellipsoids of the points, and colours by test and by accuracy. Four pairs whose deviations have means of 0
// are fitted by a shift: everything follows by hand.
#include <algorithm>
#include <cmath>

#include "cli/headless.h"
#include "core/controller.h"
#include "core/numbers.h"
#include "core/settings.h"
#include "core/units.h"
#include "engine/calculation_window.h"
#include "graphics/drawing_job.h"
#include "graphics/ellipsoids.h"
#include "graphics/form_color_bar.h"
#include "graphics/form_graphics_options.h"
#include "graphics/graphics_refresh.h"
#include "graphics/point_trust.h"
#include "graphics/tolerance.h"

using namespace corvinade;

namespace {

constexpr double kErrors[4][3] = {{0.1, 0.2, 0.3}, {-0.1, 0.2, 0.1}, {0.3, -0.2, -0.1}, {-0.3, -0.2, -0.3}};

double S0() {
    double sum = 0;
    for (const auto& point : kErrors)
        for (const double error : point) sum += error * error;
    return std::sqrt(sum / 9);
}

class TrustPictures : public Drawing {
protected:
    TrustPictures() {
        ShowWindow("FormMain");
        ::Run.SettingsFilePath = PathOf("settings.ini");
        IniDateiAnlegen();
        IniLesen();
        const double places[4][2] = {{20, 30}, {220, 30}, {20, 230}, {220, 230}};
        std::vector<Pair> pairs;
        for (std::size_t i = 0; i < 4; ++i)
            pairs.push_back({places[i][0], places[i][1], 0, kErrors[i][0], kErrors[i][1], kErrors[i][2]});
        FillJob(pairs);
        Job.LengthUnitName = "millimeter";
        Job.AngleUnitName = "degree";
        RhoFestlegung();
        Job.ParamText.fill(kNotUsed);
        for (const std::size_t k : {kTraX, kTraY, kTraZ}) Job.ParamText[k] = kFloat;
    }
    ~TrustPictures() override { CloseAllGraphicsWindows(); }

    static void Calculate() {
        Dispatch([] { myButtonCalculate(); });
    }
    static std::vector<Operation> Outlines(ScreenWindow& window) {
        Paint(window);
        std::vector<Operation> lines = OperationsOf(window, Stroke::Line);
        std::erase_if(lines, [](const Operation& line) { return line.Colour1 != Rgb(230, 120, 20); });
        return lines;
    }
};

}  // namespace

TEST_F(TrustPictures, EllipsoidsAreOffUntilAskedFor) {
    Calculate();
    ScreenWindow& window = Open(FlatView());
    EXPECT_TRUE(Outlines(window).empty());
    EXPECT_FALSE(PointTrust.Known) << "nothing is worked out for pictures that do not show it";
}

// A shift is equally accurate in all directions: each ellipsoid is a sphere of sigma s0 / 2, times the root
// of 3 F(3, 9), times their own factor.
TEST_F(TrustPictures, EllipsoidsHaveTheSizeOfTheirConfidence) {
    Calculate();
    StoreEllipsoidSettings(true, 30);
    const TestView view = {0.4, -0.7, 1.1, 2, 120, 90};
    ScreenWindow& window = Open(view);
    const double radius = 30 * std::sqrt(3 * 3.8625) * S0() / 2 * view.F;  // F of 0.95 by the tables
    const std::vector<Operation> lines = Outlines(window);
    constexpr std::size_t kOfEach = 36 + 3;
    ASSERT_EQ(lines.size(), 4 * kOfEach);
    for (std::size_t i = 0; i < 4; ++i) {
        const Vec3 p = TransformedPoint(static_cast<int>(i) + 1);
        const auto centre = view.Pixel(p(1), p(2), p(3), 600);
        for (std::size_t k = 0; k < 36; ++k) {
            const Operation& line = lines[i * kOfEach + k];
            EXPECT_NEAR(std::hypot(line.X1 - centre[0], line.Y1 - centre[1]), radius, 2e-3 * radius);
        }
    }
    StoreEllipsoidSettings(true, 60);
    const std::vector<Operation> doubled = Outlines(window);
    EXPECT_NEAR(doubled[0].X1 - doubled[0].X2, 2 * (lines[0].X1 - lines[0].X2), 2e-2);
    // Points that are not seen have none, and a job that has not been calculated.
    Scene.Points[kScenePlotted][1] = 0;
    RecordingOf(window).Operations.clear();
    DrawEllipsoids(window);
    EXPECT_EQ(OperationsOf(window, Stroke::Line).size(), 3 * kOfEach);
    ++Run.JobGeneration;
    EXPECT_TRUE(Outlines(window).empty());
}

TEST_F(TrustPictures, TheSwitchesStandInTheGraphicsSettings) {
    Calculate();
    ScreenWindow& window = Open(FlatView());
    ShowWindow("FormGraphicsOptions");
    FormGraphicsOptions& d = GraphicsOptionsWindow;
    EXPECT_EQ(d.CheckShowEllipsoids.Value, 0);
    Headless.Decimal = ',';
    UserSetValue(d.CheckShowEllipsoids, 1);
    UserSetText(d.TextEllipsoidFactor, "20,5");
    UserClick(d.BtnApply);
    Headless.Decimal.reset();
    EXPECT_FALSE(Outlines(window).empty());
    const std::string file = Contents(::Run.SettingsFilePath);
    EXPECT_NE(file.find("ShowEllipsoids=True"), std::string::npos);
    EXPECT_NE(file.find("EllipsoidFactor=20.5"), std::string::npos) << file;
    // They are there again with the next start.
    Ellipsoids = EllipsoidsRecord{};
    EXPECT_TRUE(EllipsoidSettings().Show);
    EXPECT_EQ(EllipsoidSettings().Factor, 20.5);
    for (const char* wrong : {"0", "-3", "abc", ""}) {
        UserSetText(d.TextEllipsoidFactor, wrong);
        UserClick(d.BtnApply);
        EXPECT_EQ(EllipsoidSettings().Factor, 20.5) << wrong;
        EXPECT_NE(d.TextEllipsoidFactor.BackColor, kSystemColour) << wrong;
    }
}

TEST_F(TrustPictures, PointsAreColouredByTheirStandardisedResidual) {
    Calculate();
    ScreenWindow& window = Open(FlatView());
    window.State.AnzKlassenPos = 10;
    window.State.Max = 1;
    ShowWindow("FormColorBar");
    FormColorBar& d = ColorBarWindow;
    UserSetValue(d.ColorStandardized, 1);
    UserClick(d.BtnApply);
    EXPECT_EQ(window.State.ColorBased, "w");
    // Student's t of 8, 0.0005 above: 5.041; Pope's tau of it.
    const double limit = 3 * 5.0413 / std::sqrt(8 + 5.0413 * 5.0413);
    EXPECT_NEAR(window.State.Max, limit, 1e-3);
    EXPECT_EQ(window.State.Min, 0);
    EXPECT_EQ(d.LabelUnit1.Text, "");
    for (int i = 1; i <= 4; ++i) {
        double largest = 0;
        for (const double error : kErrors[i - 1]) largest = std::max(largest, std::fabs(error));
        const double w = largest / (S0() * std::sqrt(0.75));
        EXPECT_NEAR(TrustOfPair("w", i), w, 1e-9);
        EXPECT_EQ(Scene.Points[kSceneClass][static_cast<std::size_t>(i)], std::floor(10 * w / limit + 1));
    }
    // The size of the deviation stays what it is for all others who read it.
    EXPECT_NEAR(Scene.Points[kSceneSize][4], std::sqrt(0.09 + 0.04 + 0.09), 1e-6);
    // Whatever the unit of length.
    Job.LengthUnitName = "meter";
    RhoFestlegung();
    FormColorBar::SetFormtoVars();
    EXPECT_NEAR(Val(d.TextObereGrenze.Text), limit, 1e-3);
    // Back to deviations: the limits are taken from these.
    UserSetValue(d.ColorABS, 1);
    UserClick(d.BtnApply);
    EXPECT_EQ(window.State.ColorBased, "");
    EXPECT_NEAR(window.State.Max, 0.46, 1e-9);  // of 0.469, two decimals down
    EXPECT_EQ(d.LabelUnit1.Text, "meter");
}

TEST_F(TrustPictures, PointsAreColouredByTheirAccuracy) {
    ScreenWindow& window = Open(FlatView());
    window.State.AnzKlassenPos = 10;
    window.State.ColorBased = "a";
    window.State.Max = 1;
    // Without a calculation none is known, and the colour is that of no deviation.
    Paint(window);
    for (std::size_t i = 1; i <= 4; ++i) EXPECT_EQ(Scene.Points[kSceneClass][i], 0);
    Calculate();
    const double accuracy = std::sqrt(3.0) * S0() / 2;
    window.State.Max = 4 * accuracy;
    Paint(window);
    for (int i = 1; i <= 4; ++i) {
        EXPECT_NEAR(TrustOfPair("a", i), accuracy, 1e-9);
        EXPECT_EQ(Scene.Points[kSceneClass][static_cast<std::size_t>(i)], 3);  // a quarter of ten classes
    }
    EXPECT_NEAR(TrustLimit("a"), accuracy, 1e-3 * accuracy);
}
