// The chart of a column of the main sheet in the automation.
#include "cli/automate_chart.h"

#include <nlohmann/json.hpp>

#include "analysis/form_grafik.h"

namespace corvinade::cli {

using nlohmann::json;

bool IsChartPlace(std::string_view at) {
    return at == "FormGrafik.Chart";
}

void AddChart(json& state) {
    const FormGrafik& chart = GrafikWindow;
    state["title"] = chart.Title;
    state["valueTitle"] = chart.ValueTitle;
    state["categoryTitle"] = chart.CategoryTitle;
    state["min"] = chart.Min;
    state["max"] = chart.Max;
    json points = json::array();
    for (const ChartPoint& point : chart.Points) points.push_back({point.Index, point.Value});
    state["points"] = std::move(points);
}

}  // namespace corvinade::cli
