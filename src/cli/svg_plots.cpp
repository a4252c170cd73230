// Plots as SVG text.
#include "cli/svg_plots.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numeric>

#include "paint/svg_element.h"

namespace corvinade::cli {

namespace {

constexpr double kWidth = 720, kHeight = 190, kLeft = 64, kRight = 10, kTop = 26, kBottom = 24;

// A number at an axis, with as many digits as it takes.
std::string Tick(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.4g", value == 0 ? 0.0 : value);
    return text;
}

void Text(std::string& svg, double x, double y, const std::string& text, const char* style,
          const char* anchor = "start") {
    SvgElement(svg, "text")
        .Fixed("x", x)
        .Fixed("y", y)
        .Word("class", style)
        .Word("text-anchor", anchor)
        .Holds(text);
}

void Line(std::string& svg, double x1, double y1, double x2, double y2, const char* style) {
    SvgElement(svg, "line")
        .Fixed("x1", x1)
        .Fixed("y1", y1)
        .Fixed("x2", x2)
        .Fixed("y2", y2)
        .Word("class", style)
        .Empty();
}

void Rectangle(std::string& svg, double x, double y, double width, double height, const std::string& style,
               const std::string& tip) {
    SvgElement(svg, "rect")
        .Fixed("x", x)
        .Fixed("y", y)
        .Fixed("width", width)
        .Fixed("height", height)
        .Word("class", style)
        .HoldsTitle(tip);
}

std::string Begin(const std::string& title) {
    std::string svg;
    SvgElement root(svg, "svg");
    root.Word("viewBox", "0 0 " + SvgFixed(kWidth) + " " + SvgFixed(kHeight))
        .Word("role", "img")
        .Text("aria-label", title)
        .Opens();
    Text(svg, kLeft, 16, title, "title");
    return svg;
}

}  // namespace

double RoundLimit(double value) {
    if (!(value > 0) || !std::isfinite(value)) return 1;
    const double power = std::pow(10.0, std::floor(std::log10(value)));
    for (const double step : {1.0, 2.0, 5.0, 10.0})
        if (value <= step * power) return step * power;
    return 10 * power;
}

std::string BarChart(const std::string& title, const std::vector<Bar>& bars, const std::string& unit,
                     double limit) {
    const double width = kWidth - kLeft - kRight;
    const double middle = (kTop + kHeight - kBottom) / 2;
    const double half = (kHeight - kTop - kBottom) / 2;
    std::string svg = Begin(title);
    for (const double share : {-1.0, -0.5, 0.0, 0.5, 1.0}) {
        const double y = middle - share * half;
        Line(svg, kLeft, y, kWidth - kRight, y, share == 0 ? "zero" : "grid");
        Text(svg, kLeft - 6, y + 3.5, Tick(share * limit), "tick", "end");
    }
    Text(svg, kLeft - 6, 16, unit, "tick", "end");
    const double step = width / static_cast<double>(std::max<std::size_t>(bars.size(), 1));
    const bool nameAll = step >= 22;
    for (std::size_t i = 0; i < bars.size(); ++i) {
        const Bar& bar = bars[i];
        const double share = std::clamp(std::isfinite(bar.Value) ? bar.Value / limit : 0, -1.0, 1.0);
        const double x = kLeft + step * (static_cast<double>(i) + 0.15);
        const double top = share >= 0 ? middle - share * half : middle;
        const std::string style = std::string(bar.Marked ? "marked" : "bar") + (bar.Used ? "" : " unused");
        Rectangle(svg, x, top, std::max(step * 0.7, 0.6), std::max(std::fabs(share) * half, 0.6), style,
                  bar.Name + ": " + Tick(bar.Value) + " " + unit + (bar.Used ? "" : ", not used"));
        const double centre = x + step * 0.35;
        // A bar beyond the axis is cut, and says how long it would be.
        if (std::isfinite(bar.Value) && std::fabs(bar.Value) > limit)
            Text(svg, x + step * 0.75 + 3, share > 0 ? kTop + 10 : kHeight - kBottom - 4, Tick(bar.Value),
                 "name strong");
        if (nameAll || bar.Marked)
            Text(svg, centre, kHeight - 8, bar.Name, bar.Marked ? "name strong" : "name", "middle");
    }
    return svg + "</svg>";
}

std::string Histogram(const std::string& title, const std::vector<double>& values, const std::string& unit) {
    if (values.empty()) return "";
    const auto [least, most] = std::minmax_element(values.begin(), values.end());
    const double limit = RoundLimit(std::max(std::fabs(*least), std::fabs(*most)));
    const auto classes = static_cast<std::size_t>(
        std::clamp(2 * std::floor(std::sqrt(static_cast<double>(values.size())) / 2) + 1, 5.0, 41.0));
    std::vector<int> counts(classes);
    for (const double value : values) {
        const double place = (value / limit + 1) / 2 * static_cast<double>(classes);
        ++counts[std::min(static_cast<std::size_t>(std::max(place, 0.0)), classes - 1)];
    }
    const int highest = *std::max_element(counts.begin(), counts.end());
    const double width = kWidth - kLeft - kRight, height = kHeight - kTop - kBottom;
    const double step = width / static_cast<double>(classes);
    std::string svg = Begin(title);
    for (const int tick : {0, highest}) {
        const double y = kTop + height * (1 - static_cast<double>(tick) / highest);
        Line(svg, kLeft, y, kWidth - kRight, y, tick == 0 ? "zero" : "grid");
        Text(svg, kLeft - 6, y + 3.5, std::to_string(tick), "tick", "end");
    }
    Text(svg, kLeft - 6, 16, "count", "tick", "end");
    for (std::size_t i = 0; i < classes; ++i) {
        const double bar = height * counts[i] / highest;
        const double from = -limit + 2 * limit * static_cast<double>(i) / static_cast<double>(classes);
        const double to = from + 2 * limit / static_cast<double>(classes);
        Rectangle(svg, kLeft + step * static_cast<double>(i) + 1, kTop + height - bar, step - 2, bar, "bar",
                  Tick(from) + " to " + Tick(to) + " " + unit + ": " + std::to_string(counts[i]));
    }
    for (const double share : {-1.0, -0.5, 0.0, 0.5, 1.0})
        Text(svg, kLeft + width * (share + 1) / 2, kHeight - 8,
             Tick(share * limit) + (share == 1 ? " " + unit : ""), "tick", share == 1 ? "end" : "middle");
    return svg + "</svg>";
}

}  // namespace corvinade::cli
