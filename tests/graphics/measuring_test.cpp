// The distance of two points, the menu of a picture, and the white background.
#include "graphics/measuring.h"

#include "core/settings.h"
#include "graphics/flag_window.h"

using namespace corvinade;

namespace {

class Measuring : public FlagWindow {
protected:
    static void ClickRow(ScreenWindow& window, int row) {
        PixelsForWindow(window);
        const auto [x, y] = PixelOfRow(row);
        ClickAt(window, x, y);
    }
    static void RightClick(ScreenWindow& window, bool shift) {
        MouseEvent press = At(10, 10, kRightButton);
        press.Shift = shift;
        ScreenPixel_MouseDown(window, press);
        ScreenPixel_MouseUp(window, press);
    }
};

}  // namespace

TEST_F(Measuring, TheSecondClickTellsTheDistanceAndItsParts) {
    ScreenWindow& window = OpenFive();
    UserClick(Main.MenuGraphicsDistance);
    EXPECT_TRUE(Main.MenuGraphicsDistance.Checked);
    ClickRow(window, 1);
    EXPECT_EQ(MeasuredText(window), "");
    ClickRow(window, 2);
    // From (100, 100, 5) to (300, 100, 6): the root of 200^2 + 1 is 200.0025.
    const std::string names = ScenePointName(1) + " to " + ScenePointName(2);
    EXPECT_EQ(MeasuredText(window), names + ": 200.002 millimeter (dx 200.000, dy 0.000, dz 1.000)");
    EXPECT_EQ(Main.StatusBar_1.Text, MeasuredText(window));
    const auto label = std::ranges::find(window.Labels, "200.002 millimeter", &ScreenLabel::Text);
    EXPECT_NE(label, window.Labels.end());
}

TEST_F(Measuring, AThirdClickBeginsAnew) {
    ScreenWindow& window = OpenFive();
    UserClick(Main.MenuGraphicsDistance);
    ClickRow(window, 1);
    ClickRow(window, 2);
    ClickRow(window, 3);
    EXPECT_EQ(MeasuredText(window), "");
    ClickRow(window, 1);
    // From (100, 300, 7) to (100, 100, 5).
    EXPECT_NE(MeasuredText(window).find(": 200.010 millimeter (dx 0.000, dy -200.000, dz -2.000)"),
              std::string::npos);
}

TEST_F(Measuring, APointThatIsMeasuredGetsNoFlagAndTheModeEndsWithItsLine) {
    ScreenWindow& window = OpenInFlagMode();
    UserClick(Main.MenuGraphicsDistance);
    ClickRow(window, 1);
    ClickRow(window, 2);
    EXPECT_EQ(window.State.FlagCount, 0);
    UserClick(Main.MenuGraphicsDistance);
    EXPECT_FALSE(Main.MenuGraphicsDistance.Checked);
    EXPECT_EQ(MeasuredText(window), "");
    ClickRow(window, 1);
    EXPECT_EQ(window.State.FlagCount, 1);
}

TEST_F(Measuring, TheMenuOfThePictureComesWithShiftAndTheRightButtonAloneZooms) {
    ScreenWindow& window = OpenFive();
    const float before = window.State.BildFaktor;
    RightClick(window, true);
    EXPECT_EQ(Main.MenuPicture.Value, 1);
    EXPECT_EQ(window.State.BildFaktor, before);
    RightClick(window, false);
    EXPECT_EQ(Main.MenuPicture.Value, 0);
    EXPECT_NE(window.State.BildFaktor, before);
}

TEST_F(Measuring, TheWhiteBackgroundIsThatOfAllWindowsAndOfTheNextOnes) {
    ScreenWindow& first = OpenFive();
    ScreenWindow& second = OpenScreenWindow();
    UserClick(Main.MenuGraphicsWhite);
    for (const ScreenWindow* window : {&first, &second}) EXPECT_EQ(window->BackColor, 0xffffff);
    EXPECT_TRUE(Main.MenuGraphicsWhite.Checked);
    EXPECT_EQ(OpenScreenWindow().BackColor, 0xffffff);
    UserClick(Main.MenuGraphicsWhite);
    EXPECT_EQ(first.BackColor, 0);
    EXPECT_EQ(Settings.ScreenBackColor, 0);
    EXPECT_FALSE(Main.MenuGraphicsWhite.Checked);
}
