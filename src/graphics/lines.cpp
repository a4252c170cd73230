// The table of lines of a view, and what mouse moves and clicks do to it.
#include "graphics/lines.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>

#include "core/platform.h"
#include "core/text.h"
#include "fit/require.h"
#include "graphics/drawing.h"
#include "graphics/scene.h"
#include "graphics/view_undo.h"

namespace corvinade::graphics {

namespace {

// Place of end 1 of a line in the table, whose columns begin with one that holds nothing.
std::size_t PlaceOf(int line) {
    return 2 * static_cast<std::size_t>(line);
}

// The first line that has the row as one of its ends, 0 = none.
int LineAt(const ScreenRecord& state, int row) {
    for (int line = 1; line <= LineCount(state); ++line)
        if (LineEnd(state, line, 1) == row || LineEnd(state, line, 2) == row) return line;
    return 0;
}

bool InLineMode(const ScreenWindow& window) {
    return IsTrue(window.State.LineMode);
}

// False when the row has a number that no line can hold.
bool ContinueChain(ScreenRecord& state, int row) {
    if (row > kLastLineRow) return false;
    if (state.LineStartRow >= 1 && state.LineStartRow <= kLastLineRow && state.LineStartRow != row)
        AddLine(state, state.LineStartRow, row);
    state.LineStartRow = row;
    return true;
}

}  // namespace

int LineCount(const ScreenRecord& state) {
    return std::max(0, static_cast<int>(state.LineTable.size() / 2) - 1);
}

int LineEnd(const ScreenRecord& state, int line, int end) {
    Require(line >= 1 && line <= LineCount(state) && (end == 1 || end == 2));
    return state.LineTable[PlaceOf(line) + static_cast<std::size_t>(end - 1)];
}

void AddLine(ScreenRecord& state, int from, int to) {
    Require(from >= 1 && from <= kLastLineRow && to >= 1 && to <= kLastLineRow);
    if (state.LineTable.empty()) state.LineTable.resize(2);
    state.LineTable.push_back(static_cast<std::int16_t>(from));
    state.LineTable.push_back(static_cast<std::int16_t>(to));
    state.LineTableShape.clear();
}

void RemoveLine(ScreenRecord& state, int line) {
    Require(line >= 1 && line <= LineCount(state));
    const auto place = state.LineTable.begin() + static_cast<std::ptrdiff_t>(PlaceOf(line));
    state.LineTable.erase(place, place + 2);
    state.LineTableShape.clear();
}

// The line that is being set ends at the mouse, so each move draws it anew. Where no line ends at the point
// the user is told once: the box would come back at every move.
void LinesUnderMouse(ScreenWindow& window, int row) {
    ScreenRecord& state = window.State;
    if (!InLineMode(window)) return;
    if (window.SetLine && state.LineStartRow != 0) Stelle_Grafik_dar(window);
    if (!window.DeleteLine) return;
    const int line = LineAt(state, row);
    if (line != state.SelectedLine) {
        state.SelectedLine = line;
        Stelle_Grafik_dar(window);
    }
    if (line != 0 || window.LineSearchTold) return;
    window.LineSearchTold = true;
    ShowMessage(std::string("Poblem while searching actual Line") + kLineEnd);
}

void LinesClicked(ScreenWindow& window, int row) {
    ScreenRecord& state = window.State;
    if (!InLineMode(window)) return;
    bool refused = false;
    if (window.SetLine && row != 0)
        refused = !ContinueChain(state, row);
    else if (window.DeleteLine && state.SelectedLine >= 1 && state.SelectedLine <= LineCount(state))
        RemoveLine(state, std::exchange(state.SelectedLine, 0));
    else
        return;
    Stelle_Grafik_dar(window);
    StoreScreenPropertiesToRecord(window);
    if (refused)
        ShowMessage("A line can only join points of the first " + std::to_string(kLastLineRow) +
                    " rows of the picture; \"" + ScenePointName(row) + "\" stands in row " +
                    std::to_string(row) + ".");
}

}  // namespace corvinade::graphics
