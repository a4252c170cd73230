// What the keys do on the picture.
#include "graphics/input_window.h"

using namespace corvinade;

class Keys : public InputWindow {
protected:
    static constexpr double kStep = 6.28318530717958 / 4 / 10;
    using Three = std::array<double, 3>;
};

TEST_F(Keys, WithShiftTheyTurnByAFortiethOfATurn) {
    const struct {
        const char* Key;
        Three Turn;
    } rows[] = {{"r", {0, 0, -1}}, {"R", {0, 0, -1}},    {"l", {0, 0, 1}},     {"L", {0, 0, 1}},
                {"Up", {1, 0, 0}}, {"Down", {-1, 0, 0}}, {"Left", {0, -1, 0}}, {"Right", {0, 1, 0}}};
    ScreenWindow& window = OpenFive();
    for (const auto& row : rows) {
        SetViewAngles(window, 0.1, 0.2, 0.3);
        const std::uint64_t painted = window.PaintCount;
        window.UndoCount = 1;
        PressWithShift(window, row.Key);
        const Three angles = Angles(window);
        EXPECT_DOUBLE_EQ(angles[0], 0.1 + row.Turn[0] * kStep) << row.Key;
        EXPECT_DOUBLE_EQ(angles[1], 0.2 + row.Turn[1] * kStep) << row.Key;
        EXPECT_DOUBLE_EQ(angles[2], 0.3 + row.Turn[2] * kStep) << row.Key;
        EXPECT_EQ(window.PaintCount, painted + 1) << row.Key;
        EXPECT_EQ(window.UndoCount, 2) << row.Key;
        EXPECT_EQ(window.State.BildOffsetX, -200) << row.Key;
        EXPECT_EQ(window.State.BildOffsetY, 400) << row.Key;
    }
}

TEST_F(Keys, ArrowsAloneMoveThePictureByAFortieth) {
    const struct {
        const char* Key;
        float X, Y;
    } rows[] = {{"Up", 0, 15}, {"Down", 0, -15}, {"Left", -20, 0}, {"Right", 20, 0}};
    ScreenWindow& window = OpenFive();
    for (const auto& row : rows) {
        LookStraight(window);
        const std::uint64_t painted = window.PaintCount;
        window.UndoCount = 1;
        Press(window, row.Key);
        EXPECT_EQ(window.State.BildOffsetX, -200 + row.X) << row.Key;
        EXPECT_EQ(window.State.BildOffsetY, 400 + row.Y) << row.Key;
        EXPECT_EQ(Angles(window), (Three{0, 0, 0})) << row.Key;
        EXPECT_EQ(window.PaintCount, painted + 1) << row.Key;
        EXPECT_EQ(window.UndoCount, 2) << row.Key;
    }
}

TEST_F(Keys, LettersWithoutShiftDoNothing) {
    ScreenWindow& window = OpenFive();
    const std::uint64_t painted = window.PaintCount;
    for (const char* key : {"r", "R", "l", "L", "x", "", "Pause", "F1"}) Press(window, key);
    EXPECT_EQ(Angles(window), (Three{0, 0, 0}));
    EXPECT_EQ(window.PaintCount, painted);
}

TEST_F(Keys, ShiftAndCtrlCountAsLongAsTheyAreHeld) {
    ScreenWindow& window = OpenFive();
    ScreenPixel_KeyDown(window, "Shift", true, false);
    EXPECT_TRUE(Screens().RotateKey);
    ScreenPixel_KeyUp(window, "Shift");
    EXPECT_FALSE(Screens().RotateKey);
    ScreenPixel_KeyDown(window, "Ctrl", false, true);
    EXPECT_TRUE(Screens().PanKey);
    ScreenPixel_KeyDown(window, "t", false, true);
    ScreenPixel_KeyDown(window, "B", false, true);
    EXPECT_TRUE(window.Mouse.KeyT);
    EXPECT_TRUE(window.Mouse.KeyB);
    ScreenPixel_KeyUp(window, "t");  // clears them all
    EXPECT_FALSE(Screens().PanKey);
    EXPECT_FALSE(window.Mouse.KeyT);
    EXPECT_FALSE(window.Mouse.KeyB);
}

TEST_F(Keys, MinusZoomsOutAboutTheMiddle) {
    ScreenWindow& window = OpenFive();
    Move(window, 100, 100);
    window.UndoCount = 1;
    Press(window, "KP_Subtract");
    EXPECT_FLOAT_EQ(window.State.BildFaktor, 0.7F);
    EXPECT_NEAR(window.State.BildOffsetX, -(400 + 200) * 0.7 + 400, 1e-3);
    EXPECT_NEAR(window.State.BildOffsetY, -(600 - 300 - 400) * 0.7 + 600 - 300, 1e-3);
    EXPECT_EQ(window.UndoCount, 2);
}

TEST_F(Keys, PlusZoomsInAboutTheMouse) {
    ScreenWindow& window = OpenFive();
    Move(window, 300, 100);
    window.UndoCount = 1;
    Press(window, "KP_Add");
    EXPECT_FLOAT_EQ(window.State.BildFaktor, static_cast<float>(1 / 0.7));
    EXPECT_NEAR(PixelOfRow(2).first, 300, 1e-3);
    EXPECT_NEAR(PixelOfRow(2).second, 100, 1e-3);
    EXPECT_EQ(window.UndoCount, 2);
}

TEST_F(Keys, PlusEndsAtAThousandPixelsAMillimetre) {
    ScreenWindow& window = OpenFive();
    window.State.BildFaktor = 690;
    Press(window, "KP_Add");
    EXPECT_FLOAT_EQ(window.State.BildFaktor, static_cast<float>(690 / 0.7));
    Press(window, "KP_Add");
    EXPECT_EQ(window.State.BildFaktor, 1000);
    Press(window, "KP_Add");
    EXPECT_EQ(window.State.BildFaktor, 1000);
}
