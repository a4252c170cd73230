// Colours, bar and fit of the pictures as the desktop begins with them.
#include <algorithm>
#include <cmath>

#include "core/changes.h"
#include "core/desktop_defaults.h"
#include "core/job_tolerance.h"
#include "core/platform.h"
#include "graphics/drawing.h"
#include "graphics/flags.h"
#include "graphics/form_color_bar.h"
#include "graphics/graphics_fixture.h"
#include "graphics/graphics_refresh.h"
#include "graphics/point_loop.h"
#include "graphics/recording_surface.h"
#include "graphics/tolerance.h"

using namespace corvinade;

namespace {

constexpr Colour kGreen = 255 << 8;

class DesktopLook : public GraphicsJob {
protected:
    DesktopLook() {
        for (const DesktopDefault& row : AllDesktopDefaults()) DesktopDefaults.*row.Place = true;
        Settings.ShowColorBar = kTrue;
    }
    static Control& C(const char* name) {
        Control* control = FindControl(FormColorBar_Entry, name);
        EXPECT_NE(control, nullptr) << name;
        static Control none;
        return control != nullptr ? *control : none;
    }
    static ScreenWindow& OpenWithDialog() {
        ScreenWindow& window = OpenSized(800, 600);
        ShowWindow("FormColorBar");
        UserSetValue(C("CheckAutoApply"), 1);
        return window;
    }
    static Colour ColourOfRow(ScreenWindow& window, int row) {
        Stelle_Grafik_dar(window);
        return static_cast<Colour>(Cell(row, kSceneColour));
    }
    static const ScreenLabel& LabelOf(const ScreenWindow& window, const std::string& text) {
        for (const ScreenLabel& label : window.Labels)
            if (label.Text == text) return label;
        ADD_FAILURE() << "no label " << text;
        static const ScreenLabel kNone;
        return kNone;
    }
    static void TakeOut(int pair) {
        for (int axis = 0; axis < 3; ++axis) Job.UseFlags[static_cast<std::size_t>(3 * pair - axis)] = 0;
        RunHandler([] { Changed(What::Use); });
    }
};

}  // namespace

// The sizes are sqrt 5, -sqrt 4.25 and 3: C, with 3 mm along x, is the largest of both signs.
TEST_F(DesktopLook, ASignedComponentHasLimitsThatAreAlikeOnBothSides) {
    FivePoints();
    const ScreenWindow& window = OpenWithDialog();
    EXPECT_EQ(C("LabelLimits").Text, "");
    UserSetValue(C("ColorY"), 1);
    EXPECT_DOUBLE_EQ(window.State.Max, 3);
    EXPECT_DOUBLE_EQ(window.State.Min, -3);
    EXPECT_EQ(C("TextUntereGrenze").Text, "-3.00");
    EXPECT_EQ(C("LabelLimits").Text, "Alike on both sides: the component has a sign");
    UserSetValue(C("ColorABS"), 1);
    EXPECT_DOUBLE_EQ(window.State.Min, 0);
    EXPECT_EQ(C("LabelLimits").Text, "");
}

// Each deviation along z in turn; the view of another run brings a lower limit of 0.
TEST_F(DesktopLook, NoNegativeDeviationIsGreenOrRed) {
    for (int i = 0; i < 40; ++i)
        AddPoints("P" + std::to_string(i), {10.0 * i, 0, 0.05 * (i - 19.5)}, {10.0 * i, 0, 0});
    ScreenWindow& window = OpenSized(800, 600);
    window.State.ColorBased = "z";
    window.State.Max = 1;
    for (const double lower : {0.0, 0.01, 5.0}) {
        window.State.Min = lower;
        for (int row = 1; row <= 40; ++row) {
            const Colour colour = ColourOfRow(window, row);
            const int red = colour & 255, blue = colour >> 16 & 255;
            const double z = 0.05 * (row - 20.5);
            EXPECT_EQ(red, z < 0 ? 0 : red) << row;
            EXPECT_EQ(blue, z > 0 ? 0 : blue) << row;
            EXPECT_GE(blue, z < -0.2 ? 1 : 0) << row;
        }
    }
}

TEST_F(DesktopLook, ALowerLimitAboveZeroIsRefusedForASignedComponentAndSaidToBe) {
    FivePoints();
    const ScreenWindow& window = OpenWithDialog();
    UserSetValue(C("ColorX"), 1);
    const double before = window.State.Min;
    ASSERT_LT(before, 0);
    UserSetText(C("TextUntereGrenze"), "0.01");
    EXPECT_EQ(window.State.Min, before);
    EXPECT_NE(C("LabelLimits").Text.find("Not taken"), std::string::npos);
    UserClick(C("BtnApply"));
    UserSetText(C("TextUntereGrenze"), "-0.5");
    EXPECT_EQ(window.State.Min, -0.5);
    EXPECT_EQ(C("LabelLimits").Text, "");
}

TEST_F(DesktopLook, SetMinimumTakesNoLimitAboveZero) {
    AddPoints("A", {0, 0, 0.01}, {0, 0, 0});
    AddPoints("B", {100, 0, 0.04}, {100, 0, 0});
    const ScreenWindow& window = OpenWithDialog();
    UserSetValue(C("ColorZ"), 1);
    EXPECT_DOUBLE_EQ(window.State.Max, 0.04);
    UserClick(C("BtnSetMinAsTol"));
    EXPECT_DOUBLE_EQ(window.State.Min, -0.04);
    EXPECT_EQ(C("LabelLimits").Text, "Not taken: no point in use is below 0");
}

// A micrometre is 0 in two decimals; the limits are it all the same.
TEST_F(DesktopLook, LimitsOfSmallDeviationsDoNotVanish) {
    AddPoints("A", {0, 0, 0.00123}, {0, 0, 0});
    AddPoints("B", {100, 0, -0.0004}, {100, 0, 0});
    const ScreenWindow& window = OpenWithDialog();
    UserSetValue(C("ColorZ"), 1);
    EXPECT_NEAR(window.State.Max, 0.0013, 1e-12);
    EXPECT_EQ(window.State.Min, -window.State.Max);
}

TEST_F(DesktopLook, LimitsComeFromThePointsInUse) {
    FivePoints();
    TakeOut(3);
    const ScreenWindow& window = OpenWithDialog();
    EXPECT_NEAR(window.State.Max, std::sqrt(5.0), 1e-6);
    UserSetValue(C("ColorY"), 1);
    EXPECT_DOUBLE_EQ(window.State.Max, 2.24);
}

TEST_F(DesktopLook, PointsWithoutADeviationInTheFitAreGrey) {
    FivePoints();
    ScreenWindow& window = OpenSized(800, 600);
    const Colour grey = ColourOfRow(window, 7);  // S, then T
    EXPECT_EQ(ColourOfRow(window, 8), grey);
    EXPECT_EQ(grey & 255, grey >> 8 & 255);
    EXPECT_EQ(grey & 255, grey >> 16 & 255);
    EXPECT_NE(ColourOfRow(window, 2), grey);
    TakeOut(2);
    EXPECT_EQ(ColourOfRow(window, 2), grey);
    EXPECT_EQ(ColourOfRow(window, 5), grey);  // its target
    EXPECT_NE(ColourOfRow(window, 3), grey);

    DesktopDefaults.NeutralColor = false;
    UpdateAllGraphicsWindows();
    EXPECT_EQ(ColourOfRow(window, 7), kGreen);
}

// 800 by 600: the bar begins at 725, its ends are at 500 and 100, and the middle between them is zero.
TEST_F(DesktopLook, TheBarShowsZeroUnitAndComponentAndEachEndItsLimit) {
    FivePoints();
    ScreenWindow& window = OpenWithDialog();
    UserSetValue(C("ColorY"), 1);
    UserSetText(C("TextUntereGrenze"), "-1.5");
    const ScreenLabel &upper = LabelOf(window, "3.00"), &lower = LabelOf(window, "-1.50");
    const ScreenLabel& zero = LabelOf(window, "0");
    EXPECT_NEAR(upper.Y, 100 - 7.5, 1);
    EXPECT_NEAR(lower.Y, 500 - 7.5, 1);
    EXPECT_NEAR(zero.Y, 300 - 7.5, 1);
    LabelOf(window, "ve.xyz");
    LabelOf(window, "sign of ve.y");
    LabelOf(window, "[millimeter]");
    for (const ScreenLabel* label : {&upper, &lower, &zero}) {
        EXPECT_LT(label->X + 7 * static_cast<double>(label->Text.size()), 725) << label->Text;
        EXPECT_GE(label->X, ColorBarLeft(window)) << label->Text;
    }
    // One component alone needs no word about its sign.
    UserSetValue(C("showX"), 0);
    UserSetValue(C("showZ"), 0);
    LabelOf(window, "ve.y");
    const auto saysSign = [](const ScreenLabel& label) { return label.Text.starts_with("sign"); };
    EXPECT_TRUE(std::none_of(window.Labels.begin(), window.Labels.end(), saysSign));
}

// Zero stands at 300, the limits 3 and -3 at 100 and 500: half of them is in the middle of each side.
TEST_F(DesktopLook, TheToleranceIsMarkedOnBothSidesOfTheBar) {
    const Recorded recorded;
    FivePoints();
    ScreenWindow& window = OpenWithDialog();
    UserSetValue(C("ColorY"), 1);
    const auto marks = [&window] {
        RecordingOf(window).Operations.clear();
        Stelle_Grafik_dar(window);
        std::vector<float> heights;
        for (const Operation& line : OperationsOf(window, Stroke::Line))
            if (line.Width == 2 && line.X1 > 700 && line.Y1 == line.Y2) heights.push_back(line.Y1);
        return heights;
    };
    EXPECT_EQ(marks(), std::vector<float>());
    PutTolerance(1.5, Job);
    EXPECT_EQ(marks(), (std::vector<float>{200, 400}));
    PutTolerance(5, Job);
    EXPECT_EQ(marks(), std::vector<float>()) << "it lies beyond the limits";
}

TEST_F(DesktopLook, TheColourDialogHasNoBoxThatDoesNothing) {
    FivePoints();
    OpenWithDialog();
    EXPECT_FALSE(C("CheckSynch").Visible);
    EXPECT_FALSE(C("CheckLegend").Visible);
}

TEST_F(DesktopLook, TheBarOfALengthBeginsAtZero) {
    FivePoints();
    ScreenWindow& window = OpenSized(800, 600);
    Stelle_Grafik_dar(window);
    EXPECT_NEAR(LabelOf(window, "0").Y, 500 - 7.5, 1);
    EXPECT_NEAR(LabelOf(window, "3.00").Y, 100 - 7.5, 1);
    EXPECT_TRUE(std::none_of(window.Labels.begin(), window.Labels.end(),
                             [](const ScreenLabel& label) { return label.Text == "0.00"; }));
}

TEST_F(DesktopLook, FitLeavesRoomForTheBar) {
    AscendingDeviations(30);
    ScreenWindow& window = OpenSized(800, 600);
    UserClick(Main.MenüAnsichtAnpassen);
    Stelle_Grafik_dar(window);
    for (int row = 1; row <= Scene.Rows; ++row) {
        const float x = Scene.PixelX[static_cast<std::size_t>(row)];
        EXPECT_GT(x, 0);
        EXPECT_LT(x, ColorBarLeft(window)) << row;
    }
    Settings.ShowColorBar = kFalse;  // then the whole picture is there for them
    UserClick(Main.MenüAnsichtAnpassen);
    Stelle_Grafik_dar(window);
    EXPECT_GT(*std::max_element(Scene.PixelX.begin() + 1, Scene.PixelX.end()), 725);
}

// The far end of a row of points is as large as the user lets points be, up to three pixels.
TEST_F(DesktopLook, NoPointIsOnePixelAndTheWorstIsOnTop) {
    const Recorded recorded;
    Job.ViewAllOCS = kFalse;
    Settings.ShowPointsBigger = kTrue;
    Settings.ShowColorBar = kFalse;
    AddPoints("Worst", {0, 0, -500}, {0, 9, -500});
    AddPoints("Far", {300, 0, 500}, {300, 1, 500});
    AddPoints("Before", {1, 0, 0}, {1, 2, 0});  // nearly hides the worst one
    ScreenWindow& window = OpenSized(800, 600);
    for (const double turn : {0.0, kTopViewAngle}) {  // either one is the farther
        SetView(window, turn, 0, 0, 1, 0, 0);
        Stelle_Grafik_dar(window);
        for (int row = 1; row <= 3; ++row) {
            const auto k = static_cast<std::size_t>(row);
            const int x = static_cast<int>(std::lround(Scene.PixelX[k]));
            const int y = static_cast<int>(std::lround(Scene.PixelY[k]));
            const int r = row == 1 ? 2 : 1;
            if (row == 3) continue;
            for (const int step : {-r, 0, r})
                EXPECT_EQ(PixelAt(window, x + step, y + step),
                          PixelOf(static_cast<Colour>(Cell(row, kSceneColour))))
                    << row << " " << step;
        }
    }
}

TEST_F(DesktopLook, TheWorstPointInUseIsKnown) {
    AscendingDeviations(30);
    ScreenWindow& window = OpenSized(800, 600);
    Stelle_Grafik_dar(window);
    EXPECT_EQ(Tolerance.Worst, 30);
    TakeOut(30);
    EXPECT_EQ(Tolerance.Worst, 29);
}

// A flag in the colour of its point's class, with black letters as it begins.
TEST_F(DesktopLook, DarkLettersOfFlagsAreWhiteOnRedAndBlueAlone) {
    ScreenWindow& window = OpenSized(800, 600);
    FlagRecord record = NewFlagRecord(window);
    record.ShowTolCol = kTrue;
    record.Forecolor = 0;
    FlagLabel label;
    const auto letters = [&](Colour ground, bool desktop) {
        DesktopDefaults.FlagLetters = desktop;
        label.ClassColour = ground;
        return FlagLetterColour(record, label, kFlagName, kFlagName);
    };
    constexpr Colour kRed = 255, kBlue = 255 << 16, kYellow = 255 | 255 << 8, kWhite = 0xffffff;
    for (const Colour ground : {kRed, kBlue}) EXPECT_EQ(letters(ground, true), kWhite) << ground;
    for (const Colour ground : {kGreen, kYellow, kWhite}) EXPECT_EQ(letters(ground, true), 0) << ground;
    EXPECT_EQ(letters(kBlue, false), 0) << "scripts find what was chosen";
    record.Forecolor = kYellow;
    EXPECT_EQ(letters(kBlue, true), kYellow) << "light letters stay as they were chosen";
}
