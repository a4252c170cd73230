// The lines between points of the line mode.
#include "graphics/lines.h"

#include "graphics/input_window.h"
#include "graphics/view_undo.h"

using namespace corvinade;

class Lines : public InputWindow {
protected:
    using Ends = std::vector<std::pair<int, int>>;
    static ScreenWindow& OpenInLineMode() {
        ScreenWindow& window = OpenFive();
        window.State.LineMode = kTrue;
        return window;
    }
    static Ends LinesOf(const ScreenWindow& window) {
        Ends ends;
        for (int line = 1; line <= LineCount(window.State); ++line)
            ends.emplace_back(LineEnd(window.State, line, 1), LineEnd(window.State, line, 2));
        return ends;
    }
    static constexpr const char* kNotFound = "Poblem while searching actual Line\r\n";
};

TEST_F(Lines, TheTableHasTwoRowsAndAColumnThatHoldsNothing) {
    ScreenRecord state;
    EXPECT_EQ(LineCount(state), 0);
    AddLine(state, 3, 32767);
    AddLine(state, 5, 4);
    EXPECT_EQ(state.LineTable, (std::vector<std::int16_t>{0, 0, 3, 32767, 5, 4}));
    EXPECT_EQ(LineCount(state), 2);
    EXPECT_EQ(LineEnd(state, 2, 1), 5);
    RemoveLine(state, 1);
    EXPECT_EQ(state.LineTable, (std::vector<std::int16_t>{0, 0, 5, 4}));
    RemoveLine(state, 1);
    EXPECT_EQ(LineCount(state), 0);
}

TEST_F(Lines, ClicksBuildAChainOfLines) {
    ScreenWindow& window = OpenInLineMode();
    window.SetLine = true;
    ClickAt(window, 100, 100);
    EXPECT_EQ(window.State.LineStartRow, 1);
    EXPECT_EQ(LinesOf(window), Ends{});
    ClickAt(window, 300, 100);
    ClickAt(window, 140, 300);  // the target point of the third pair
    ClickAt(window, 700, 500);
    EXPECT_EQ(LinesOf(window), (Ends{{1, 2}, {2, 3}, {3, 8}}));
    EXPECT_EQ(window.State.LineStartRow, 8);
    EXPECT_EQ(Scene.ActualPointName, "T");  // a click picks there, too
}

TEST_F(Lines, AreSetAndDeletedInTheFlagModeTooWhichLeavesTheActualPointAlone) {
    ScreenWindow& window = OpenInLineMode();
    window.State.FlagMode = kTrue;
    window.SetLine = true;
    ClickAt(window, 100, 100);
    ClickAt(window, 300, 100);
    EXPECT_EQ(LinesOf(window), (Ends{{1, 2}}));
    EXPECT_EQ(Scene.ActualPointName, "");
    window.SetLine = false;
    window.DeleteLine = true;
    Move(window, 300, 100);
    ClickAt(window, 300, 100);
    EXPECT_EQ(LinesOf(window), Ends{});
}

TEST_F(Lines, EachLineIsAStepOfTheViewsHistory) {
    ScreenWindow& window = OpenInLineMode();
    window.SetLine = true;
    ClickAt(window, 100, 100);
    ClickAt(window, 300, 100);
    EXPECT_EQ(window.UndoRing[static_cast<std::size_t>(window.UndoIndex)].LineTable, window.State.LineTable);
    Rückgängig_Back(window);
    EXPECT_EQ(LinesOf(window), Ends{});
}

TEST_F(Lines, WithoutLineModeOrSetLineAClickSetsNone) {
    ScreenWindow& window = OpenFive();
    window.SetLine = true;
    ClickAt(window, 100, 100);
    window.SetLine = false;
    window.State.LineMode = kTrue;
    ClickAt(window, 300, 100);
    EXPECT_EQ(window.State.LineStartRow, 0);
    EXPECT_EQ(LinesOf(window), Ends{});
}

TEST_F(Lines, ASecondClickOnTheSamePointSetsNoLine) {
    ScreenWindow& window = OpenInLineMode();
    window.SetLine = true;
    ClickAt(window, 100, 100);
    ClickAt(window, 100, 100);
    EXPECT_EQ(LinesOf(window), Ends{});
    EXPECT_EQ(window.State.LineStartRow, 1);
}

TEST_F(Lines, ALineThatIsBeingSetFollowsTheMouse) {
    ScreenWindow& window = OpenInLineMode();
    window.SetLine = true;
    std::uint64_t painted = window.PaintCount;
    Move(window, 200, 200);
    EXPECT_EQ(window.PaintCount, painted);
    ClickAt(window, 100, 100);
    painted = window.PaintCount;
    Move(window, 210, 200);
    EXPECT_EQ(window.PaintCount, painted + 1);
}

TEST_F(Lines, TheFirstLineThatEndsAtThePointUnderTheMouseIsSelected) {
    ScreenWindow& window = OpenInLineMode();
    AddLine(window.State, 1, 2);
    AddLine(window.State, 2, 3);
    window.DeleteLine = true;
    Move(window, 300, 100);
    EXPECT_EQ(window.State.SelectedLine, 1);
    const std::uint64_t painted = window.PaintCount;
    Move(window, 301, 100);
    EXPECT_EQ(window.PaintCount, painted);
    Move(window, 100, 300);
    EXPECT_EQ(window.State.SelectedLine, 2);
    EXPECT_EQ(window.PaintCount, painted + 1);
    EXPECT_EQ(Messages(), Texts{});
}

TEST_F(Lines, AClickRemovesTheSelectedLine) {
    ScreenWindow& window = OpenInLineMode();
    AddLine(window.State, 1, 2);
    AddLine(window.State, 2, 3);
    AddLine(window.State, 3, 7);
    window.DeleteLine = true;
    Move(window, 100, 300);
    ClickAt(window, 100, 300);
    EXPECT_EQ(LinesOf(window), (Ends{{1, 2}, {3, 7}}));
    EXPECT_EQ(window.State.SelectedLine, 0);
    ClickAt(window, 100, 300);  // nothing is selected until the mouse moves
    EXPECT_EQ(LinesOf(window), (Ends{{1, 2}, {3, 7}}));
}

TEST_F(Lines, ASearchThatFailsIsToldOnce) {
    ScreenWindow& window = OpenInLineMode();
    AddLine(window.State, 1, 2);
    window.State.SelectedLine = 1;
    window.DeleteLine = true;
    Move(window, 500, 500);
    EXPECT_EQ(Messages(), Texts{kNotFound});
    EXPECT_EQ(window.State.SelectedLine, 0);
    Move(window, 501, 500);
    EXPECT_EQ(Messages(), Texts{kNotFound});
}

TEST_F(Lines, WithoutLinesTheSearchFails) {
    ScreenWindow& window = OpenInLineMode();
    window.DeleteLine = true;
    Move(window, 100, 100);
    EXPECT_EQ(Messages(), Texts{kNotFound});
    ClickAt(window, 100, 100);
    EXPECT_EQ(LinesOf(window), Ends{});
}

TEST_F(Lines, APointBeyondTheLastRowOfTheTableIsRefused) {
    for (int i = 1; i <= 5; ++i) AddPair({10.0 * i, 10, 0}, {10.0 * i, 10, 0});
    for (int i = 0; i < kLastLineRow - 10; ++i) AddStart("s" + std::to_string(i), 400, 400, 0);
    AddStart("beyond", 700, 500, 0);
    AddStart("far", 700, 100, 0);
    SizeRest();
    ScreenWindow& window = OpenStraight();
    ASSERT_EQ(Scene.Rows, kLastLineRow + 2);
    window.State.LineMode = kTrue;
    window.SetLine = true;
    ClickAt(window, 700, 500);
    EXPECT_EQ(window.State.LineStartRow, 0);
    EXPECT_EQ(LastMessage(),
              "A line can only join points of the first 32767 rows of the picture; \"beyond\" stands in row "
              "32768.");
    ClickAt(window, 10, 10);
    ClickAt(window, 700, 100);
    EXPECT_EQ(Messages().size(), 2U);
    EXPECT_EQ(LinesOf(window), Ends{});
    EXPECT_EQ(window.State.LineStartRow, 1);  // the chain goes on from where it was
}

TEST_F(Lines, AViewThatWasSavedForMorePointsKeepsItsLines) {
    ScreenWindow& window = OpenInLineMode();
    AddLine(window.State, 1, 30000);
    window.State.LineStartRow = 25000;
    window.SetLine = window.DeleteLine = true;
    Move(window, 100, 100);
    ClickAt(window, 300, 100);
    EXPECT_EQ(LinesOf(window), (Ends{{1, 30000}, {25000, 2}}));
}
