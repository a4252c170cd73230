// The lines between points of the line mode.
#pragma once

#include "core/rooms.h"
#include "graphics/screen_window.h"

namespace corvinade::graphics {

// Rows that a line can join: its table holds 16-bit numbers.
inline constexpr int kLastLineRow = 32767;

int LineCount(const ScreenRecord& state);
int LineEnd(const ScreenRecord& state, int line, int end);  // row of end 1 or 2 of a line, from 1
void AddLine(ScreenRecord& state, int from, int to);
void RemoveLine(ScreenRecord& state, int line);
// What a mouse move over a row, 0 = none, does in the line mode: the line to the mouse follows, or the first
// line that ends at the row is selected. May show a message.
void LinesUnderMouse(ScreenWindow& window, int row);
// What a click on a row does in the line mode: it goes on with the chain of lines, or removes the selected
// line. The last thing that a handler does: may show a message, during which the window can be closed.
void LinesClicked(ScreenWindow& window, int row);
void DrawLines(ScreenWindow& window);  // with the rubber line to the mouse

}  // namespace corvinade::graphics
