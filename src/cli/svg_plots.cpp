// Plots as SVG text.
#include "cli/svg_plots.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numeric>
#include <string_view>

#include "core/text.h"

namespace {

constexpr double kWidth = 720, kHeight = 190, kLeft = 64, kRight = 10, kTop = 26, kBottom = 24;

// A coordinate of the drawing; the page is no place for the decimal delimiter of the locale.
std::string At(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.2f", value);
    for (char& c : text)
        if (c == ',') c = '.';
    return text;
}

// A number at an axis, with as many digits as it takes.
std::string Tick(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.4g", value == 0 ? 0.0 : value);
    return text;
}

std::string Text(double x, double y, const std::string& text, const std::string& style,
                 const char* anchor = "start") {
    return "<text x=\"" + At(x) + "\" y=\"" + At(y) + "\" class=\"" + style + "\" text-anchor=\"" + anchor +
           "\">" + EscapeMarkup(text) + "</text>";
}

std::string Line(double x1, double y1, double x2, double y2, const std::string& style) {
    return "<line x1=\"" + At(x1) + "\" y1=\"" + At(y1) + "\" x2=\"" + At(x2) + "\" y2=\"" + At(y2) +
           "\" class=\"" + style + "\"/>";
}

std::string Rectangle(double x, double y, double width, double height, const std::string& style,
                      const std::string& tip) {
    return "<rect x=\"" + At(x) + "\" y=\"" + At(y) + "\" width=\"" + At(width) + "\" height=\"" +
           At(height) + "\" class=\"" + style + "\"><title>" + EscapeMarkup(tip) + "</title></rect>";
}

std::string Begin(const std::string& title) {
    return "<svg viewBox=\"0 0 " + At(kWidth) + " " + At(kHeight) + "\" role=\"img\" aria-label=\"" +
           EscapeMarkup(title) + "\">" + Text(kLeft, 16, title, "title");
}

}  // namespace

std::string SvgNumber(double value) {
    std::string number = At(value);
    number.erase(number.find_last_not_of('0') + 1);
    if (number.back() == '.') number.pop_back();
    return number == "-0" ? "0" : number;
}

std::string EscapeMarkup(const std::string& text) {
    std::string result;
    std::uint32_t code = 0;
    for (std::string_view rest = text; !rest.empty();) {
        const std::size_t length = Utf8Character(rest, code);
        // Control characters and what is no character have no place in a page.
        const bool shown = length != 0 && code >= 0x20 && (code & 0xfffe) != 0xfffe;
        const char c = rest.front();
        if (!shown)
            result += '?';
        else if (c == '&')
            result += "&amp;";
        else if (c == '<')
            result += "&lt;";
        else if (c == '>')
            result += "&gt;";
        else if (c == '"')
            result += "&quot;";
        else if (c == '\'')
            result += "&#39;";
        else
            result += rest.substr(0, length);
        rest.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return result;
}

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
        svg += Line(kLeft, y, kWidth - kRight, y, share == 0 ? "zero" : "grid");
        svg += Text(kLeft - 6, y + 3.5, Tick(share * limit), "tick", "end");
    }
    svg += Text(kLeft - 6, 16, unit, "tick", "end");
    const double step = width / static_cast<double>(std::max<std::size_t>(bars.size(), 1));
    const bool nameAll = step >= 22;
    for (std::size_t i = 0; i < bars.size(); ++i) {
        const Bar& bar = bars[i];
        const double share = std::clamp(std::isfinite(bar.Value) ? bar.Value / limit : 0, -1.0, 1.0);
        const double x = kLeft + step * (static_cast<double>(i) + 0.15);
        const double top = share >= 0 ? middle - share * half : middle;
        const std::string style = std::string(bar.Marked ? "marked" : "bar") + (bar.Used ? "" : " unused");
        svg += Rectangle(x, top, std::max(step * 0.7, 0.6), std::max(std::fabs(share) * half, 0.6), style,
                         bar.Name + ": " + Tick(bar.Value) + " " + unit + (bar.Used ? "" : ", not used"));
        const double centre = x + step * 0.35;
        // A bar beyond the axis is cut, and says how long it would be.
        if (std::isfinite(bar.Value) && std::fabs(bar.Value) > limit)
            svg += Text(x + step * 0.75 + 3, share > 0 ? kTop + 10 : kHeight - kBottom - 4, Tick(bar.Value),
                        "name strong");
        if (nameAll || bar.Marked)
            svg += Text(centre, kHeight - 8, bar.Name, bar.Marked ? "name strong" : "name", "middle");
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
        svg += Line(kLeft, y, kWidth - kRight, y, tick == 0 ? "zero" : "grid");
        svg += Text(kLeft - 6, y + 3.5, std::to_string(tick), "tick", "end");
    }
    svg += Text(kLeft - 6, 16, "count", "tick", "end");
    for (std::size_t i = 0; i < classes; ++i) {
        const double bar = height * counts[i] / highest;
        const double from = -limit + 2 * limit * static_cast<double>(i) / static_cast<double>(classes);
        const double to = from + 2 * limit / static_cast<double>(classes);
        svg += Rectangle(kLeft + step * static_cast<double>(i) + 1, kTop + height - bar, step - 2, bar, "bar",
                         Tick(from) + " to " + Tick(to) + " " + unit + ": " + std::to_string(counts[i]));
    }
    for (const double share : {-1.0, -0.5, 0.0, 0.5, 1.0})
        svg +=
            Text(kLeft + width * (share + 1) / 2, kHeight - 8,
                 Tick(share * limit) + (share == 1 ? " " + unit : ""), "tick", share == 1 ? "end" : "middle");
    return svg + "</svg>";
}
