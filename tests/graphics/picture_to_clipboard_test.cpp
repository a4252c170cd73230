// The picture of a window on its way to the clipboard.
#include "cli/headless.h"
#include "core/platform.h"
#include "graphics/drawing_job.h"

using PictureToClipboard = Drawing;

namespace {

std::vector<std::string> TextsOf(const ScreenWindow& window) {
    std::vector<std::string> texts;
    for (const Operation& operation : OperationsOf(window, Stroke::Text)) texts.push_back(operation.Text);
    return texts;
}

}  // namespace

TEST_F(PictureToClipboard, IsPaintedOnWhiteWithoutStatusBarAndThenAsBefore) {
    FillJob({{20, 30, 0, 0, 0, 0}});
    ScreenWindow& window = OpenAndPaint(FlatView());
    window.BackColor = 0x102030;
    Paint(window);
    const std::vector<std::uint32_t> before = RecordingOf(window).Memory;
    RecordingOf(window).Operations.clear();
    int waits = 0;
    Headless.OnYield = [&] {
        ++waits;
        EXPECT_FALSE(window.StatusBarVisible);
        EXPECT_EQ(window.BackColor, QbColor(15));
        EXPECT_EQ(PixelAt(window, 400, 300), 0xffffffffU);
    };
    const double clock = Headless.Clock;
    MenüGraphicsPrint_Command();
    EXPECT_EQ(waits, 2);
    EXPECT_NEAR(Headless.Clock - clock, 0.04, 1e-9);
    EXPECT_TRUE(window.StatusBarVisible);
    EXPECT_EQ(window.BackColor, 0x102030);
    EXPECT_EQ(RecordingOf(window).Memory, before);
    const std::vector<Operation> clears = OperationsOf(window, Stroke::Clear);
    ASSERT_EQ(clears.size(), 2U);
    EXPECT_EQ(clears[0].Colour1, QbColor(15));
    EXPECT_EQ(clears[1].Colour1, 0x102030);
}

TEST_F(PictureToClipboard, HasAllLabelsAndTheStampWrittenIntoIt) {
    FillJob({{20, 30, 0, 0, 0, 0, "corner"}});
    Job.ViewAllOCS = kFalse;
    Settings.ShowPointNames = kTrue;
    ScreenWindow& window = OpenAndPaint(FlatView());
    RecordingOf(window).Operations.clear();
    MenüGraphicsPrint_Command();
    const std::vector<std::string> texts = TextsOf(window);
    ASSERT_EQ(texts.size(), 3U);
    EXPECT_EQ(texts[0], "corner");
    EXPECT_EQ(texts[1], "calculated with https://corvinade.example");
    EXPECT_EQ(texts[2].substr(0, 6), "Scale ");
    const std::vector<Operation> written = OperationsOf(window, Stroke::Text);
    EXPECT_EQ(written[0].Colour1, QbColor(0));
    EXPECT_EQ(written[0].X1, 125);
    EXPECT_EQ(written[0].Y1, 135);
    EXPECT_EQ(written[1].Colour1, QbColor(0));
    EXPECT_EQ(FindLabel(window, texts[1]), nullptr);  // gone again
}

TEST_F(PictureToClipboard, ARefusalIsToldAndEverythingIsAsBefore) {
    FillJob({{20, 30, 0, 0, 0, 0}});
    ScreenWindow& window = OpenAndPaint(FlatView());
    Headless.ClipboardRefuses = true;
    const Colour back = window.BackColor;
    MenüGraphicsPrint_Command();
    EXPECT_EQ(Messages(), std::vector<std::string>{kClipboardRefused});
    EXPECT_EQ(window.BackColor, back);
    EXPECT_TRUE(window.StatusBarVisible);
}

TEST_F(PictureToClipboard, AnErrorDuringTheWaitLeavesTheWindowAsItWas) {
    FillJob({{20, 30, 0, 0, 0, 0}});
    ScreenWindow& window = OpenAndPaint(FlatView());
    const Colour back = window.BackColor;
    Headless.OnYield = [] { throw PlatformError{"gone wrong"}; };
    EXPECT_EQ(ErrorOf(MenüGraphicsPrint_Command), "gone wrong");
    EXPECT_EQ(window.BackColor, back);
    EXPECT_TRUE(window.StatusBarVisible);
    EXPECT_EQ(PixelAt(window, 400, 300), PixelOf(back));
}

TEST_F(PictureToClipboard, AWindowThatClosesMeanwhileEndsIt) {
    FillJob({{20, 30, 0, 0, 0, 0}});
    for (const int wait : {1, 2}) {
        ScreenWindow& window = OpenAndPaint(FlatView());
        int waits = 0;
        Headless.OnYield = [&] {
            if (++waits == wait) CloseScreenWindow(window);
        };
        MenüGraphicsPrint_Command();
        EXPECT_TRUE(Screens().Open.empty());
        EXPECT_EQ(waits, wait);
    }
    EXPECT_TRUE(Messages().empty());
}

TEST_F(PictureToClipboard, WithoutAWindowNothingHappens) {
    MenüGraphicsPrint_Command();
    EXPECT_TRUE(Messages().empty());
}

TEST_F(PictureToClipboard, AWindowSmallerThanItsMarginsIsNoReasonToStop) {
    FillJob({});
    ScreenWindow& window = OpenAndPaint(FlatView());
    Headless.ClipboardRefuses = true;
    ResizeScreenWindow(window, 1, 1);
    MenüGraphicsPrint_Command();
    EXPECT_EQ(window.Screen.Width, 1);
}
