// How flags are drawn: leader lines, the table, what lies on what.
#include <algorithm>
#include <cstdint>

#include "graphics/drawing_job.h"
#include "graphics/flags.h"

using namespace corvinade;

class FlagLayer : public Drawing {
protected:
    static constexpr Colour kLeader = 100 << 8 | 100 << 16;

    // Two pairs, the first with a flag at (300, 200), on a picture that FlatView shows.
    static ScreenWindow& OpenWithFlag() {
        FillJob({{10, 20, 0, 1, 0, 0}, {400, 300, 0, 0, 2, 0}});
        ScreenWindow& window = Open(FlatView());
        Stelle_Grafik_dar(window);
        AddFlag(window, 1, 300, 200);
        Paint(window);
        return window;
    }
    static std::vector<Operation> TextsOf(const ScreenWindow& window) {
        return OperationsOf(window, Stroke::Text);
    }
};

TEST_F(FlagLayer, TheLeaderLineGoesFromThePointToTheMiddleOfTheFlag) {
    ScreenWindow& window = OpenWithFlag();
    const FlagLabel& label = window.FlagLabels[1];
    const auto lines = LinesOf(window, kLeader);
    ASSERT_EQ(lines.size(), 1U);
    const auto [x, y] = FlatView().Pixel(11, 20, 0, 600);
    ExpectLine(lines[0], x, y, 300 + label.Width / 2, 200 + label.Height / 2);
}

TEST_F(FlagLayer, AHiddenFlagHasNeitherLineNorTable) {
    ScreenWindow& window = OpenWithFlag();
    Job.ViewAllMCS = kFalse;
    Grafik_Festlegen(window);
    Paint(window);
    EXPECT_TRUE(LinesOf(window, kLeader).empty());
    EXPECT_TRUE(TextsOf(window).empty());
}

TEST_F(FlagLayer, APointOutOfToleranceThatIsNotPaintedKeepsItsFlag) {
    ScreenWindow& window = OpenWithFlag();
    window.State.AusserhalbTol = kTrue;
    window.State.OuterColor = window.BackColor;
    window.State.Max = 0.1;
    window.State.Min = -0.1;
    Paint(window);
    EXPECT_EQ(Scene.Paint[1], 0U);
    EXPECT_EQ(LinesOf(window, kLeader).size(), 1U);
}

TEST_F(FlagLayer, AFlaggedPointOutsideTheWindowStillHasItsFlag) {
    ScreenWindow& window = OpenWithFlag();
    window.State.Flags[1].WithinScreen = kFalse;
    window.State.BildOffsetX -= 3000;
    Paint(window);
    EXPECT_EQ(LinesOf(window, kLeader).size(), 1U);
}

TEST_F(FlagLayer, TheTextsStandInTheirCellsInTheColourOfTheFont) {
    ScreenWindow& window = OpenWithFlag();
    window.State.Flags[1].Forecolor = 0x112233;
    Paint(window);
    const auto texts = TextsOf(window);
    const auto name =
        std::find_if(texts.begin(), texts.end(), [](const Operation& text) { return text.Text == "P1"; });
    ASSERT_NE(name, texts.end());
    EXPECT_EQ(name->Colour1, 0x112233);
    EXPECT_GE(name->X1, 300);
    EXPECT_GE(name->Y1, 200);
    EXPECT_LT(name->X1, 300 + window.FlagLabels[1].Width);
    for (const char* text : {"Actual", "Nominal", "Dev.", "use", "x", "Theta", "3D Dev."})
        EXPECT_TRUE(std::any_of(texts.begin(), texts.end(), [text](const Operation& one) {
            return one.Text == text;
        })) << text;
}

TEST_F(FlagLayer, GridLinesAreBlackWithTheSwitchAndGoneWithoutIt) {
    ScreenWindow& window = OpenWithFlag();
    window.State.ActiveFlag = 0;
    window.State.Flags[1].ShowTolCol = kFalse;
    Paint(window);
    EXPECT_EQ(PixelAt(window, 300, 210), PixelOf(QbColor(0)));
    EXPECT_EQ(PixelAt(window, 301, 201), PixelOf(QbColor(15)));
    window.State.Flags[1].ShowGrid = kFalse;
    Paint(window);
    EXPECT_EQ(PixelAt(window, 300, 210), PixelOf(QbColor(15)));
}

TEST_F(FlagLayer, FlagsLieOnTopOfEverythingDrawnBefore) {
    ScreenWindow& window = OpenWithFlag();
    const auto& all = RecordingOf(window).Operations;
    std::size_t lastLine = 0, firstText = all.size();
    for (std::size_t i = 0; i < all.size(); ++i) {
        if (all[i].Kind == Stroke::Line) lastLine = i;
        if (all[i].Kind == Stroke::Text) firstText = std::min(firstText, i);
    }
    EXPECT_LT(lastLine, firstText);
    EXPECT_EQ(all.back().Kind, Stroke::Refresh);
}

TEST_F(FlagLayer, NamesDoNotShineThroughAFlag) {
    Settings.ShowPointNames = kTrue;
    ScreenWindow& window = OpenWithFlag();
    window.State.Flags[1].Left = 90;
    window.State.Flags[1].Top = 100;
    Paint(window);
    ASSERT_NE(FindLabel(window, "P1"), nullptr);
    EXPECT_FALSE(FindLabel(window, "P1")->Visible);
    EXPECT_TRUE(FindLabel(window, "P2")->Visible);
}

TEST_F(FlagLayer, TheScalesDoNotShineThroughAFlag) {
    ScreenWindow& window = OpenWithFlag();
    window.State.VectorMode = kTrue;
    window.State.Vec_Maßstab = 1;
    Paint(window);
    ASSERT_TRUE(window.LabelScale.Visible);
    ASSERT_TRUE(window.LabelVectorScale.Visible);
    FlagOf(window, 1).Left = static_cast<std::int16_t>(window.LabelScale.X - 5);
    FlagOf(window, 1).Top = static_cast<std::int16_t>(window.LabelScale.Y - 2);
    Paint(window);
    EXPECT_FALSE(window.LabelScale.Visible);
    FlagOf(window, 1).Top = static_cast<std::int16_t>(window.LabelVectorScale.Y - 2);
    Paint(window);
    EXPECT_FALSE(window.LabelVectorScale.Visible);
    FlagOf(window, 1).Top = 0;
    Paint(window);
    EXPECT_TRUE(window.LabelScale.Visible);
    EXPECT_TRUE(window.LabelVectorScale.Visible);
}

TEST_F(FlagLayer, AWindowWithoutFlagsDrawsNoneOfIt) {
    FillJob({{10, 20, 0, 1, 0, 0}});
    ScreenWindow& window = OpenAndPaint(FlatView());
    EXPECT_TRUE(TextsOf(window).empty());
    EXPECT_TRUE(LinesOf(window, kLeader).empty());
}
