// The window with the chart of one column of the main sheet.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "analysis/chart.h"
#include "core/rooms.h"
#include "core/window.h"

namespace corvinade::analysis {

struct FormGrafik {
    WindowState Window{.Caption = "Graph Data"};

    Control Chart;

    // What the chart shows; a line with a marker for each point, the value axis from Min to Max.
    std::string Title = "Datas Graph", ValueTitle = "[dev.]", CategoryTitle;
    std::vector<ChartPoint> Points;
    double Min = 0, Max = 0;     // both 0: nothing to show
    std::uint64_t Fillings = 0;  // counts them, for who paints

    static void Form_Escape();
};
extern FormGrafik GrafikWindow;
extern const WindowEntry FormGrafik_Entry;

// Shows array[first] to array[last] in the chart and opens its window where it is not open. Values that no
// axis can hold give a message, and the window stays empty. Require: first and last are in the array, or
// last is before first.
void Grafik(std::span<const ChartPoint> array, int first, int last);

void MenuEditGraphData_Click();  // the entry of the main window: the column of the main sheet's selection

void Grafik_Failed();  // the message that the chart cannot be shown; the window stays empty

}  // namespace corvinade::analysis
