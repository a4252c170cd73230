// The analyse mode: points that run along their vectors, while anything may happen under the loop.
#include "graphics/analyse_mode.h"

#include <algorithm>
#include <cstddef>

#include "engine/calculation_window.h"
#include "graphics/black_planes.h"
#include "graphics/graphics_refresh.h"
#include "graphics/input_window.h"

using namespace corvinade;

namespace {

// A picture in memory, and what was drawn on it beside the points.
struct Canvas {
    std::vector<std::uint32_t> Pixels;
    int Clears = 0, Refreshes = 0;
    bool Painting = false;
    std::vector<float> Progress;  // lengths of the lines from (0, 0) to the right in light green
};
Canvas canvas;

void Fill(Surface& surface) {
    canvas.Pixels.assign(static_cast<std::size_t>(surface.Width) * static_cast<std::size_t>(surface.Height),
                         0);
    surface.Pixels = canvas.Pixels.data();
    surface.PixelWidth = surface.Width;
    surface.PixelHeight = surface.Height;
    surface.Stride = surface.Width;
    surface.Clear = [](Surface&, Colour background) {
        ++canvas.Clears;
        for (std::uint32_t& pixel : canvas.Pixels) pixel = PixelOf(background);
    };
    surface.Line = [](Surface&, float x1, float y1, float x2, float y2, Colour colour, int width) {
        // A paint draws axes, the red one first; seen from its tip one of them may be a point at (0, 0).
        if (colour == QbColor(12)) canvas.Painting = true;
        if (!canvas.Painting && x1 == 0 && y1 == 0 && y2 == 0 && colour == QbColor(10) && width == 1)
            canvas.Progress.push_back(x2);
    };
    surface.Refresh = [](Surface&) {
        ++canvas.Refreshes;
        canvas.Painting = false;
    };
}

}  // namespace

class AnalyseMode : public InputWindow {
protected:
    AnalyseMode() { canvas = Canvas{}; }

    static ScreenWindow& OpenOnCanvas() {
        FillSurface = Fill;
        ScreenWindow& window = OpenFive();
        window.State.Vec_Maßstab = 1;
        window.State.BigNess = 1;
        Stelle_Grafik_dar(window);
        return window;
    }
    // Runs the mode; `work` is done at each yield with its number, from 1. After `rounds` of them it is
    // turned off.
    static void RunFor(int rounds, const std::function<void(int)>& work = nullptr) {
        int round = 0;
        Headless.OnYield = [&round, rounds, work] {
            const int now = ++round;
            if (work) work(now);
            if (now == rounds) UserClick(Main.MenüAnsichtAnalyseModeActive);
        };
        UserClick(Main.MenüAnsichtAnalyseModeActive);
        Headless.OnYield = nullptr;
        EXPECT_EQ(round, rounds);
    }
    static bool Painted(int x, int y) {
        return canvas.Pixels[static_cast<std::size_t>(y) * kWidth + static_cast<std::size_t>(x)] !=
               PixelOf(0);
    }
};

TEST_F(AnalyseMode, ItGoesToTheEndAndBackInTenSteps) {
    OpenOnCanvas();
    RunFor(24);
    const std::vector<float> expected = {10, 20, 30, 40, 50, 60, 70, 80, 90, 100, 90, 80,
                                         70, 60, 50, 40, 30, 20, 10, 0,  10, 20,  30};
    ASSERT_EQ(canvas.Progress.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) EXPECT_NEAR(canvas.Progress[i], expected[i], 1e-4) << i;
}

TEST_F(AnalyseMode, ThePictureIsClearedAtBothEndsOfTheWay) {
    OpenOnCanvas();
    std::vector<int> clears;
    const int before = canvas.Clears;
    RunFor(23, [&](int) { clears.push_back(canvas.Clears - before); });
    // Seen at each yield: before the first step, behind the tenth and behind the twentieth.
    std::vector<int> expected = {0};
    expected.insert(expected.end(), 10, 1);
    expected.insert(expected.end(), 10, 2);
    expected.insert(expected.end(), 2, 3);
    EXPECT_EQ(clears, expected);
}

TEST_F(AnalyseMode, PointsRunAlongTheirVectors) {
    // Start minus target is -40 in x: the vector of the first pair leads from (100, 100) to (60, 100).
    ScreenWindow& window = OpenOnCanvas();
    Job.ViewAllOCS = kFalse;
    UpdateAllGraphicsWindows();
    RunFor(12, [&](int round) {
        for (int k = 1; k <= 10; ++k) {
            const bool reached = k < round;
            if (round <= 11) {
                EXPECT_EQ(Painted(100 - 4 * k, 100), reached) << round << " " << k;
            }
        }
        if (round == 11) {
            EXPECT_TRUE(Painted(260, 100) && Painted(60, 300));
        }
        if (round >= 2) {
            EXPECT_FALSE(Painted(500, 500));  // no pair: it has no vector
        }
    });
    EXPECT_TRUE(Painted(100, 100));  // the picture as it was
    EXPECT_FALSE(Painted(60, 100));
    EXPECT_EQ(window.State.Vec_Maßstab, 1);
}

TEST_F(AnalyseMode, CorrectionsRunTheOtherWay) {
    OpenOnCanvas();
    Settings.DevVecDirection = kFalse;
    Job.ViewAllOCS = kFalse;
    UpdateAllGraphicsWindows();
    RunFor(7, [&](int round) {
        if (round == 6) {
            EXPECT_TRUE(Painted(120, 100));
        }
        if (round == 6) {
            EXPECT_FALSE(Painted(80, 100));
        }
    });
}

TEST_F(AnalyseMode, PointsThatABlackPlaneHidesStayHidden) {
    // The depths of the three start points are -5, -6 and -7; the slab holds the first alone.
    ScreenWindow& window = OpenOnCanvas();
    Job.ViewAllOCS = kFalse;
    UpdateAllGraphicsWindows();
    Initialisieren_BlackPlane(window, true, false);
    window.State.TopDepth = -5.5F;
    window.State.SlabThickness = 3;
    Stelle_Grafik_dar(window);
    RunFor(12, [&](int round) {
        if (round != 11) return;
        EXPECT_TRUE(Painted(60, 100));
        EXPECT_FALSE(Painted(260, 100));
        EXPECT_FALSE(Painted(60, 300));
    });
}

TEST_F(AnalyseMode, KeptPointsLeaveTheirTrace) {
    OpenOnCanvas();
    UserClick(Main.MenüAnsichtAnalyseKeepPoints);
    EXPECT_TRUE(Main.MenüAnsichtAnalyseKeepPoints.Checked);
    const int before = canvas.Clears;
    RunFor(30, [&](int round) {
        if (round > 12) {
            EXPECT_TRUE(Painted(80, 100) && Painted(100, 100));
        }
        EXPECT_EQ(canvas.Clears, before);
    });
    EXPECT_EQ(canvas.Clears, before + 1);  // by the paint at the end
    UserClick(Main.MenüAnsichtAnalyseKeepPoints);
    EXPECT_FALSE(Main.MenüAnsichtAnalyseKeepPoints.Checked);
}

TEST_F(AnalyseMode, PausePausesAndContinues) {
    ScreenWindow& window = OpenOnCanvas();
    RunFor(9, [&](int round) {
        if (round == 3 || round == 6) Press(window, "Pause");
        EXPECT_EQ(window.AnalysePaused, round >= 3 && round < 6);
    });
    const std::vector<float> expected = {10, 20, 20, 20, 20, 30, 40, 50};
    ASSERT_EQ(canvas.Progress.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) EXPECT_NEAR(canvas.Progress[i], expected[i], 1e-4) << i;
    EXPECT_FALSE(window.AnalysePaused);
}

TEST_F(AnalyseMode, EscEndsIt) {
    ScreenWindow& window = OpenOnCanvas();
    for (const char* key : {"Esc", "Escape"}) {
        int rounds = 0;
        Headless.OnYield = [&] {
            if (++rounds == 4) Press(window, key);
            if (rounds == 20) CloseAllGraphicsWindows();
        };
        UserClick(Main.MenüAnsichtAnalyseModeActive);
        Headless.OnYield = nullptr;
        ASSERT_EQ(rounds, 4) << key;
        const std::uint64_t painted = window.PaintCount;
        Press(window, key);  // of no meaning without the mode
        EXPECT_EQ(window.PaintCount, painted) << key;
    }
}

TEST_F(AnalyseMode, TheButtonIsPressedWhileItRunsAndEndsItThen) {
    ScreenWindow& window = OpenOnCanvas();
    int rounds = 0;
    Headless.OnYield = [&] {
        EXPECT_TRUE(window.AnalyseMode);
        EXPECT_EQ(Main.ToolbarGraphics_AnalyseMode.Value, 1);
        EXPECT_TRUE(Main.MenüAnsichtAnalyseModeActive.Checked);
        if (++rounds == 3) UserClick(Main.ToolbarGraphics_AnalyseMode);
    };
    const std::uint64_t painted = window.PaintCount;
    UserClick(Main.ToolbarGraphics_AnalyseMode);
    EXPECT_EQ(rounds, 3);
    EXPECT_FALSE(window.AnalyseMode);
    EXPECT_EQ(Main.ToolbarGraphics_AnalyseMode.Value, 0);
    EXPECT_FALSE(Main.MenüAnsichtAnalyseModeActive.Checked);
    EXPECT_EQ(window.PaintCount, painted + 1);
}

TEST_F(AnalyseMode, MoreAndLessChangeTheVectorsWhileItRuns) {
    ScreenWindow& window = OpenOnCanvas();
    Job.ViewAllOCS = kFalse;
    UpdateAllGraphicsWindows();
    RunFor(11, [&](int round) {
        if (round == 1) UserClick(Main.MenüAnsichtAnalyseModeMore);
        if (round == 11) {
            EXPECT_TRUE(Painted(40, 100));  // 60 pixels
        }
    });
    EXPECT_FLOAT_EQ(window.State.Vec_Maßstab, 1.5F);
    UserClick(Main.MenüAnsichtAnalyseModeLess);
    EXPECT_FLOAT_EQ(window.State.Vec_Maßstab, 1);
    window.State.Vec_Maßstab = 1e7F;
    UserClick(Main.MenüAnsichtAnalyseModeMore);
    EXPECT_EQ(LastMessage(), "Vectors can not be made longer");
    EXPECT_EQ(window.State.Vec_Maßstab, 1e7F);
    window.State.Vec_Maßstab = 1e-30F;
    UserClick(Main.MenüAnsichtAnalyseModeLess);
    EXPECT_EQ(LastMessage(), "Vectors can not be made smaller");
    EXPECT_EQ(window.State.Vec_Maßstab, 1e-30F);
}

TEST_F(AnalyseMode, ItNeedsNoVectorMode) {
    ScreenWindow& window = OpenOnCanvas();
    EXPECT_FALSE(IsTrue(window.State.VectorMode));
    RunFor(2);
    EXPECT_EQ(Scene.VecPixelX[1], -40);
}

// --- What happens meanwhile -------------------------------------------------------------------------------

TEST_F(AnalyseMode, AWindowClosedInsideTheLoopEndsIt) {
    ScreenWindow& window = OpenOnCanvas();
    int rounds = 0;
    Headless.OnYield = [&] {
        if (++rounds == 3) CloseScreenWindow(window);
    };
    EXPECT_TRUE(UserClick(Main.MenüAnsichtAnalyseModeActive));
    EXPECT_EQ(rounds, 3);
    EXPECT_TRUE(Screens().Open.empty());
    EXPECT_EQ(Main.ToolbarGraphics_AnalyseMode.Value, 0);
    EXPECT_FALSE(Main.MenüAnsichtAnalyseModeActive.Checked);
}

TEST_F(AnalyseMode, ANewWindowIsNotTakenForTheOneThatWasClosed) {
    ScreenWindow& window = OpenOnCanvas();
    int rounds = 0;
    Headless.OnYield = [&] {
        if (++rounds != 2) return;
        CloseScreenWindow(window);
        OpenScreenWindow().AnalyseMode = true;
    };
    UserClick(Main.MenüAnsichtAnalyseModeActive);
    EXPECT_EQ(rounds, 2);
    EXPECT_EQ(Screens().Open.size(), 1U);
}

TEST_F(AnalyseMode, TheEndOfTheProgramEndsIt) {
    OpenOnCanvas();
    Run.JobDirty = kFalse;
    int rounds = 0;
    Headless.OnYield = [&] {
        if (++rounds == 2) UserClick(Main.MenuFileExit);
    };
    UserClick(Main.MenüAnsichtAnalyseModeActive);
    EXPECT_EQ(rounds, 2);
    EXPECT_FALSE(IsLoaded("FormMain"));
}

TEST_F(AnalyseMode, OtherPointsEndIt) {
    ScreenWindow& window = OpenOnCanvas();
    int rounds = 0;
    Headless.OnYield = [&] {
        if (++rounds != 2) return;
        MCS_OCS();
    };
    UserClick(Main.MenüAnsichtAnalyseModeActive);
    EXPECT_EQ(rounds, 2);
    EXPECT_FALSE(window.AnalyseMode);
    EXPECT_EQ(Scene.JobGeneration, Run.JobGeneration);  // painted from the new points
}

TEST_F(AnalyseMode, ACalculationInsideTheLoopShowsItsResultAndTheLoopGoesOn) {
    ScreenWindow& window = OpenOnCanvas();
    int rounds = 0, roundsAfterwards = 0;
    bool calculating = false;
    Headless.OnYield = [&] {
        if (calculating) return;  // a yield of the calculation
        if (++rounds == 2) {
            calculating = true;
            myButtonCalculate();
            calculating = false;
        }
        if (IsTrue(::Run.TrafoValid) && ++roundsAfterwards == 4) UserClick(Main.MenüAnsichtAnalyseModeActive);
    };
    UserClick(Main.MenüAnsichtAnalyseModeActive);
    EXPECT_EQ(rounds, 5);
    EXPECT_EQ(canvas.Progress.size(), 4U);
    // The result carries all start points 40 mm on; their plane leans by 1 mm in 200.
    EXPECT_NEAR(Scene.Points[kSceneX][1], 140, 0.01);
    EXPECT_FALSE(window.AnalyseMode);
}

TEST_F(AnalyseMode, TurnedOffAndOnAgainInOneYieldItGoesOn) {
    ScreenWindow& window = OpenOnCanvas();
    RunFor(8, [&](int round) {
        if (round != 4) return;
        UserClick(Main.MenüAnsichtAnalyseModeActive);
        UserClick(Main.MenüAnsichtAnalyseModeActive);
        EXPECT_TRUE(window.AnalyseMode);
    });
    EXPECT_FALSE(window.AnalyseMode);
    EXPECT_FALSE(window.AnalyseLoop);
}

TEST_F(AnalyseMode, MouseAndKeysWorkOnTheRunningPicture) {
    ScreenWindow& window = OpenOnCanvas();
    RunFor(40, [&](int round) {
        switch (round % 8) {
            case 0:
                return Drag(window, WithShift(At(100, 100, kLeftButton)),
                            WithShift(At(140, 90, kLeftButton)));
            case 1:
                return Drag(window, WithCtrl(At(100, 100, kLeftButton)), WithCtrl(At(140, 90, kLeftButton)));
            case 2:
                return Drag(window, At(10, 10, kLeftButton), At(700, 500, kLeftButton));
            case 3:
                return ScreenPixel_Wheel(window, At(50, 60), -120);
            case 4:
                return ClickAt(window, 200, 200);
            case 5:
                return Press(window, "Left");
            case 6:
                return ResizeScreenWindow(window, 400 + round, 300);
            default:
                return Move(window, 40, 50);
        }
    });
    EXPECT_FALSE(window.AnalyseMode);
}

TEST_F(AnalyseMode, TwoWindowsRunOneInsideTheOther) {
    ScreenWindow& first = OpenFive();
    ScreenWindow& second = OpenScreenWindow();
    ActivateScreenWindow(first);
    int rounds = 0;
    Headless.OnYield = [&] {
        const int now = ++rounds;
        if (now == 2) {
            ActivateScreenWindow(second);
            EXPECT_FALSE(Main.MenüAnsichtAnalyseModeActive.Checked);
            UserClick(Main.MenüAnsichtAnalyseModeActive);
        }
        if (now == 5) {
            EXPECT_TRUE(first.AnalyseMode && second.AnalyseMode);
            UserClick(Main.MenüAnsichtAnalyseModeActive);  // the second one's
        }
        if (now == 8) {
            EXPECT_TRUE(first.AnalyseMode);
            EXPECT_FALSE(second.AnalyseMode);
            ActivateScreenWindow(first);
            UserClick(Main.MenüAnsichtAnalyseModeActive);
        }
    };
    UserClick(Main.MenüAnsichtAnalyseModeActive);
    EXPECT_EQ(rounds, 8);
}

TEST_F(AnalyseMode, AJobWithoutPairsRunsAnEmptyPicture) {
    Run.JobDataValid = kTrue;
    ScreenWindow& window = OpenStraight();
    RunFor(25);
    EXPECT_FALSE(window.AnalyseMode);
}

TEST_F(AnalyseMode, LargeSquaresOfManyPointsDoNotKeepTheLoop) {
    for (int i = 0; i < 20000; ++i) AddPair({400, 300, 0}, {401, 300, 0});
    SizeRest();
    FillSurface = Fill;
    ScreenWindow& window = OpenStraight();
    window.State.BigNess = 500;
    RunFor(3);
    EXPECT_FALSE(window.AnalyseMode);
}

// With the lines that they stand at; where the points are kept, the picture is, too.
TEST_F(AnalyseMode, TextsGoWithThePictureAndComeBackBehindIt) {
    Settings.ShowCoordinateSystemLabels = kTrue;
    ScreenWindow& window = OpenOnCanvas();
    const auto visible = [&window] {
        return std::count_if(window.Labels.begin(), window.Labels.end(),
                             [](const ScreenLabel& label) { return label.Visible; });
    };
    const auto before = visible();
    ASSERT_GT(before, 0);
    std::vector<std::ptrdiff_t> seen;
    RunFor(3, [&](int) { seen.push_back(visible()); });
    EXPECT_EQ(seen, (std::vector<std::ptrdiff_t>{before, 0, 0}));
    EXPECT_EQ(visible(), before);
    Main.MenüAnsichtAnalyseKeepPoints.Checked = true;
    seen.clear();
    RunFor(3, [&](int) { seen.push_back(visible()); });
    EXPECT_EQ(seen, (std::vector<std::ptrdiff_t>{before, before, before}));
}
