// A graphics window on a small job whose flags are looked at.
#pragma once

#include "graphics/flags.h"
#include "graphics/input_window.h"
#include "graphics/view_undo.h"

using namespace corvinade;

class FlagWindow : public InputWindow {
protected:
    // Five points (see OpenFive) in the flag mode, with the mouse still outside.
    static ScreenWindow& OpenInFlagMode() {
        ScreenWindow& window = OpenFive();
        UserClick(Main.MenüGlobalFlagsMode);
        return window;
    }
    // A flag on a row by a click on its pixel.
    static int FlagOn(ScreenWindow& window, int row) {
        PixelsForWindow(window);
        const auto [x, y] = PixelOfRow(row);
        ClickAt(window, x, y);
        return window.State.FlagCount;
    }
    static const FlagLabel& LabelOf(const ScreenWindow& window, int flag) {
        return window.FlagLabels.at(static_cast<std::size_t>(flag));
    }
    static const FlagRecord& RecordOf(const ScreenWindow& window, int flag) {
        return window.State.Flags.at(static_cast<std::size_t>(flag));
    }
    static std::string TextOf(const ScreenWindow& window, int flag, FlagRow row, FlagColumn column) {
        return LabelOf(window, flag).Text[row][column];
    }
    // The middle of a cell, pixels.
    static std::pair<float, float> CellPlace(const ScreenWindow& window, int flag, FlagRow row,
                                             FlagColumn column) {
        const FlagLabel& label = LabelOf(window, flag);
        const auto columns = FlagColumnEdges(label);
        const auto rows = FlagRowEdges(label);
        return {
            static_cast<float>(RecordOf(window, flag).Left) + (columns[column] + columns[column + 1U]) / 2,
            static_cast<float>(RecordOf(window, flag).Top) + (rows[row] + rows[row + 1U]) / 2};
    }
    static void DblClickCell(ScreenWindow& window, int flag, FlagRow row, FlagColumn column) {
        const auto [x, y] = CellPlace(window, flag, row, column);
        ClickAt(window, x, y);
        ScreenPixel_DblClick(window, At(x, y, kLeftButton));
    }
};
