// The picture of a window on its way to the clipboard.
#include "cli/headless.h"
#include "core/platform.h"
#include "graphics/drawing_job.h"
#include "paint/picture.h"

using namespace corvinade;

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

TEST_F(PictureToClipboard, StandsThereWithoutItsMargins) {
    FillJob({{20, 30, 0, 0, 0, 0}});
    Job.ViewAllOCS = kFalse;
    Headless.Clipboard = "a text of before";
    ScreenWindow& window = OpenAndPaint(FlatView());
    std::vector<std::uint32_t> painted;  // what the window shows last before the picture leaves it
    Headless.OnYield = [&] {
        painted.clear();
        for (int row = 0; row < 600; ++row)
            for (int column = 0; column < 800; ++column) painted.push_back(PixelAt(window, column, row));
    };
    MenüGraphicsPrint_Command();
    EXPECT_TRUE(Messages().empty());
    EXPECT_EQ(Headless.Clipboard, "");
    const ClipboardImage& picture = Headless.ClipboardPicture;
    ASSERT_EQ(picture.Width, 795);
    ASSERT_EQ(picture.Height, 595);
    ASSERT_EQ(picture.Pixels.size(), 795U * 595);
    std::size_t different = 0;
    for (std::size_t row = 0; row < 595; ++row)
        for (std::size_t column = 0; column < 795; ++column)
            different += picture.Pixels[row * 795 + column] != painted[(row + 3) * 800 + column + 3];
    EXPECT_EQ(different, 0U);
    EXPECT_EQ(picture.Pixels[0], 0xffffffffU);
    // The point of pixel (120, 130).
    EXPECT_EQ(picture.Pixels[127 * 795 + 117], PixelOf(static_cast<Colour>(Scene.Points[kSceneColour][1])));
}

TEST_F(PictureToClipboard, CarriesTheStampThatTheWindowDoesNotKeep) {
    FillSurface = FillSurfaceWithPicture;
    FillJob({{20, 30, 0, 0, 0, 0}});
    ScreenWindow& window = OpenScreenWindow();
    FlatView().GiveTo(window);
    window.BackColor = QbColor(15);
    Stelle_Grafik_dar(window);
    const std::size_t labels = window.Labels.size();
    MenüGraphicsPrint_Command();
    const ClipboardImage& picture = Headless.ClipboardPicture;
    ASSERT_EQ(picture.Width, 795);
    // Its letters stand from (5, 5) on, which is (2, 2) without the margin, and are no higher than 20.
    int written = 0, kept = 0;
    for (int row = 2; row < 22; ++row)
        for (int column = 2; column < 300; ++column) {
            const std::size_t place = static_cast<std::size_t>(row) * 795 + static_cast<std::size_t>(column);
            written += picture.Pixels[place] != 0xffffffffU ? 1 : 0;
            kept += PixelAt(window, column + 3, row + 3) != 0xffffffffU ? 1 : 0;
        }
    EXPECT_GT(written, 200);
    EXPECT_EQ(kept, 0);
    EXPECT_EQ(window.Labels.size(), labels);
}

TEST_F(PictureToClipboard, ASmallWindowIsHandedOverAsFarAsItIsMoreThanMargin) {
    FillJob({});
    for (const auto& [side, expected] : {std::pair{1, 1}, {5, 5}, {6, 1}, {20, 15}}) {
        ScreenWindow& window = OpenAndPaint(FlatView());
        ResizeScreenWindow(window, side, side);
        Headless.ClipboardPicture = ClipboardImage{};
        MenüGraphicsPrint_Command();
        EXPECT_EQ(Headless.ClipboardPicture.Width, expected) << side;
        EXPECT_EQ(Headless.ClipboardPicture.Height, expected) << side;
        CloseScreenWindow(window);
    }
    EXPECT_TRUE(Messages().empty());
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
