// The lines between points of the line mode.
#pragma once

#include "graphics/screen_window.h"

// Rows that a line can join: its table holds 16-bit numbers.
inline constexpr int kLastLineRow = 32767;

int LineCount(const ScreenRecord& state);
int LineEnd(const ScreenRecord& state, int line, int end);  // row of end 1 or 2 of a line, from 1
void AddLine(ScreenRecord& state, int from, int to);
void RemoveLine(ScreenRecord& state, int line);
void DrawLines(ScreenWindow& window);  // with the rubber line to the mouse
