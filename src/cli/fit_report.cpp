// The result of a fit as a page to look at.
#include "cli/fit_report.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <sstream>

#include "analysis/report.h"
#include "cli/fit_output.h"
#include "cli/fit_parameters.h"
#include "cli/fit_picture.h"
#include "cli/fit_statistics.h"
#include "cli/svg_plots.h"
#include "core/controller.h"
#include "core/job.h"
#include "core/job_tolerance.h"
#include "core/notes.h"
#include "core/text.h"
#include "core/units.h"
#include "engine/adjustment.h"
#include "engine/calculation.h"
#include "engine/monte_carlo.h"
#include "engine/result_notes.h"
#include "paint/report_pdf.h"
#include "paint/svg_element.h"

namespace corvinade::cli {

namespace {

// Of more points the page shows the worst; the other outputs hold them all.
constexpr std::size_t kMostBars = 400;
constexpr std::size_t kMostRows = 500;

constexpr const char* kStyle = R"css(
@page { size: A4; margin: 16mm 14mm; }
:root { --ink: #1c2733; --quiet: #64707d; --line: #d7dde3; --blue: #2f6db3; --red: #c4322b; --paper: #ffffff; }
* { box-sizing: border-box; }
body { margin: 0 auto; padding: 28px 24px 40px; max-width: 820px; color: var(--ink); background: var(--paper);
  font: 14px/1.45 system-ui, "Segoe UI", "DejaVu Sans", Arial, sans-serif; }
h1 { margin: 0; font-size: 22px; font-weight: 650; }
h2 { margin: 30px 0 8px; font-size: 15px; font-weight: 650; }
p { margin: 4px 0; }
.quiet { color: var(--quiet); }
.alarm { color: var(--red); font-weight: 600; }
.cards { display: flex; flex-wrap: wrap; gap: 10px; margin: 18px 0 6px; }
.card { flex: 1 1 120px; border: 1px solid var(--line); border-radius: 6px; padding: 8px 12px; }
.card b { display: block; font-size: 20px; font-weight: 650; font-variant-numeric: tabular-nums; }
table { width: 100%; border-collapse: collapse; font-variant-numeric: tabular-nums; }
th { text-align: right; font-weight: 600; color: var(--quiet); border-bottom: 1px solid var(--ink); padding: 3px 8px; }
td { text-align: right; border-bottom: 1px solid var(--line); padding: 3px 8px; }
th:first-child, td:first-child { text-align: left; overflow-wrap: anywhere; }
tr.worst td { color: var(--red); font-weight: 650; }
td.beyond { color: #20242a; background: #ffa0a0; print-color-adjust: exact; -webkit-print-color-adjust: exact; }
td.unused { color: var(--quiet); font-style: italic; }
pre { font-size: 9.5px; line-height: 1.35; overflow-x: auto; }
thead { display: table-header-group; }
tr, svg, .card, .scene { break-inside: avoid; }
svg { display: block; width: 100%; height: auto; margin: 6px 0 10px; font-size: 11px; }
svg text { fill: var(--ink); }
svg .title { font-size: 12px; font-weight: 650; }
svg .tick, svg .name { fill: var(--quiet); font-size: 10px; }
svg .strong { fill: var(--red); font-weight: 650; }
svg .grid { stroke: var(--line); stroke-width: 1; }
svg .zero { stroke: var(--ink); stroke-width: 1; }
svg .bar { fill: var(--blue); stroke: var(--blue); }
svg .marked { fill: var(--red); stroke: var(--red); }
svg .unused { fill: none; stroke-dasharray: 2 2; }
.scene { border: 1px solid var(--line); border-radius: 6px; overflow: hidden; margin: 8px 0 6px; }
.scene svg, .scene img { display: block; width: 100%; height: auto; margin: 0; }
.scale { display: flex; align-items: center; gap: 8px; color: var(--quiet); font-size: 12px; }
.scale i { display: block; width: 18px; height: 12px; margin-right: -8px; print-color-adjust: exact;
  -webkit-print-color-adjust: exact; }
.scale i:last-of-type { margin-right: 0; }
.pairs { display: grid; grid-template-columns: 1fr 1fr; gap: 0 14px; }
.pairs svg { font-size: 15px; }
.pairs svg .title { font-size: 17px; }
.pairs svg .tick { font-size: 13px; }
@media print { body { padding: 0; max-width: none; font-size: 11px; } }
)css";

std::string Card(const std::string& label, const std::string& value) {
    return "<div class=\"card\"><b>" + EscapeMarkup(value) + "</b><span class=\"quiet\">" +
           EscapeMarkup(label) + "</span></div>\n";
}

std::string Cell(const std::string& text, const char* style = "") {
    const std::string attribute = *style == '\0' ? "" : std::string(" class=\"") + style + "\"";
    return "<td" + attribute + ">" + EscapeMarkup(text) + "</td>";
}

std::string Head(const std::vector<std::string>& titles) {
    std::string row = "<thead><tr>";
    for (const std::string& title : titles) row += "<th>" + EscapeMarkup(title) + "</th>";
    return row + "</tr></thead>\n";
}

const FitPoint* Worst(const std::vector<FitPoint>& points) {
    const auto worst =
        std::max_element(points.begin(), points.end(),
                         [](const FitPoint& a, const FitPoint& b) { return a.Deviation3D < b.Deviation3D; });
    return worst == points.end() ? nullptr : &*worst;
}

// The points with the largest deviations, in their own order.
std::vector<FitPoint> LargestOf(std::vector<FitPoint> points, std::size_t most) {
    if (points.size() <= most) return points;
    std::vector<double> sizes;
    sizes.reserve(points.size());
    for (const FitPoint& point : points) sizes.push_back(point.Deviation3D);
    std::nth_element(sizes.begin(), sizes.begin() + static_cast<std::ptrdiff_t>(most - 1), sizes.end(),
                     std::greater<>());
    const double limit = sizes[most - 1];
    std::erase_if(points, [limit](const FitPoint& point) { return point.Deviation3D < limit; });
    points.resize(std::min(points.size(), most));
    return points;
}

std::string Introduction(const FitOptions& options, const FitPoint* worst) {
    const auto& c = Calculation;
    std::string html =
        "<h1>Transformation of " + EscapeMarkup(StartSystem()) + " to " + EscapeMarkup(TargetSystem()) +
        "</h1>\n<p class=\"quiet\">Least-squares 3D transformation by Corvinade " + ProgramVersion() +
        "</p>\n<p>Start <b>" + EscapeMarkup(options.Start) + "</b>, " + std::to_string(Job.Start.Count()) +
        " points. Target <b>" + EscapeMarkup(options.Target) + "</b>, " + std::to_string(Job.Target.Count()) +
        " points. " + std::to_string(Job.Pairs()) + " identical points by " + EscapeMarkup(options.Match) +
        ", " + std::to_string(ObservationsInUse()) + " coordinates in use for " + std::to_string(c.nFloat) +
        " unknowns.</p>\n";
    if (!c.Converged) html += "<p class=\"alarm\">The iteration did not converge.</p>\n";
    html += "<div class=\"cards\">\n" + Card("s0, " + Job.LengthUnitName, ShownLength(c.s0)) +
            Card("mean error x", ShownLength(c.sx)) + Card("mean error y", ShownLength(c.sy)) +
            Card("mean error z", ShownLength(c.sz)) + Card("mean error xyz", ShownLength(c.SigmaXYZ));
    if (worst != nullptr)
        html += Card("largest deviation, " + std::string(worst->Name), ShownLength(worst->Deviation3D));
    html += "</div>\n";
    if (const ToleranceCheck check = CheckTolerance(); check.Word != Verdict::None)
        html += std::string(check.Word == Verdict::Fail ? "<p class=\"alarm\">" : "<p>") + "Tolerance " +
                EscapeMarkup(ToleranceInWords(check)) + ".</p>\n";
    return html;
}

std::string ParameterTable() {
    std::string html =
        "<h2>Parameters</h2>\n<table>" + Head({"", "value", "sigma", "significance", "unit"}) + "<tbody>\n";
    for (const ShownParameter& shown : ShownParameters())
        html += "<tr>" + Cell(shown.Name) + Cell(shown.Value) + Cell(shown.Sigma) + Cell(shown.Significance) +
                Cell(shown.Unit) + "</tr>\n";
    return html + "</tbody></table>\n";
}

std::string Plots(const std::vector<FitPoint>& all) {
    const std::vector<FitPoint> points = LargestOf(all, kMostBars);
    // What takes no part must not flatten the rest, so the axis is that of the coordinates in use.
    std::vector<double> used;
    double largest = 0;
    for (const FitPoint& point : all)
        for (int axis = 0; axis < 3; ++axis) {
            const double deviation = point.Deviation[axis] * Units.LengthFactor;
            if (!point.Used[axis] || !std::isfinite(deviation)) continue;
            used.push_back(deviation);
            largest = std::max(largest, std::fabs(deviation));
        }
    const double limit = RoundLimit(largest);
    std::string html =
        "<h2>Deviations</h2>\n<p class=\"quiet\">Transformed start minus target. The largest of each axis "
        "is red and named; dashed bars take no part in the fit, and a bar longer than the axis bears its value.</p>\n";
    if (points.size() < all.size())
        html += "<p class=\"quiet\">The bars show the " + std::to_string(points.size()) + " largest of " +
                std::to_string(all.size()) + " points.</p>\n";
    for (int axis = 0; axis < 3; ++axis) {
        const auto worst =
            std::max_element(points.begin(), points.end(), [axis](const auto& a, const auto& b) {
                return std::fabs(a.Deviation[axis]) < std::fabs(b.Deviation[axis]);
            });
        std::vector<Bar> bars;
        for (auto point = points.begin(); point != points.end(); ++point)
            bars.push_back({std::string(point->Name), point->Deviation[axis] * Units.LengthFactor,
                            point->Used[axis], point == worst});
        html += BarChart(std::string("d") + "xyz"[axis], bars, Job.LengthUnitName, limit) + "\n";
    }
    return html + Histogram("How often: deviations of all coordinates in use", used, Job.LengthUnitName) +
           "\n";
}

// How each parameter varied about its mean, as small pictures side by side.
std::string MonteCarloPlots(const FitOptions& options) {
    std::string html =
        "<h2>Monte Carlo</h2>\n<p class=\"quiet\">" + EscapeMarkup(NoiseInWords(options)) +
        ". Each picture shows how often a parameter was found how far from its mean; spread is the standard "
        "deviation of the runs, sigma what the deviations of the fit make of it.</p>\n<div "
        "class=\"pairs\">\n";
    const auto plot = [&html](const std::string& title, int array, double factor, const std::string& unit) {
        const std::span<const double> values = MonteCarloArray(array);
        const double mean = MeanOfArray(values);
        std::vector<double> differences;
        differences.reserve(values.size());
        for (const double value : values.subspan(1)) differences.push_back((value - mean) * factor);
        html += Histogram(title, differences, unit) + "\n";
    };
    for (const ShownParameter& p : ShownParameters())
        if (p.Floats)
            plot(
                p.Name + ": spread " + ShownAs(p.Is, SigmaOfArray(MonteCarloArray(p.Number))) +
                    (IsWithoutSigma(p.Number) ? std::string(", ") + kOpenSignificance : ", sigma " + p.Sigma),
                p.Number, FactorOf(p.Is), p.Unit);
    plot("mean error xyz: spread " + ShownLength(SigmaOfArray(MonteCarloArray(kSigmaXYZ))), kSigmaXYZ,
         Units.LengthFactor, Job.LengthUnitName);
    return html + "</div>\n";
}

std::string PointTable(const std::vector<FitPoint>& all, const FitPoint* worst) {
    const std::vector<FitPoint> points = LargestOf(all, kMostRows);
    std::string html = "<h2>Points</h2>\n";
    if (points.size() < all.size())
        html += "<p class=\"quiet\">The " + std::to_string(points.size()) + " largest of " +
                std::to_string(all.size()) + " deviations.</p>\n";
    const double tolerance = ToleranceOf(Job);
    html += "<table>" + Head({"point", "dx", "dy", "dz", "3D"}) + "<tbody>\n";
    for (const FitPoint& point : points) {
        const bool isWorst = worst != nullptr && point.Name == worst->Name;
        html += isWorst ? "<tr class=\"worst\">" : "<tr>";
        html += Cell(std::string(point.Name) + (isWorst ? " (largest)" : ""));
        for (int axis = 0; axis < 3; ++axis) {
            const std::string value = ShownLength(point.Deviation[axis]);
            html += !point.Used[axis]                           ? Cell("(" + value + ")", "unused")
                    : IsBeyond(point.Pair, axis + 1, tolerance) ? Cell(value, "beyond")
                                                                : Cell(value);
        }
        html += Cell(ShownLength(point.Deviation3D)) + "</tr>\n";
    }
    return html + "</tbody></table>\n<p class=\"quiet\">In brackets: not used in the fit. Lengths in " +
           EscapeMarkup(Job.LengthUnitName) + ".</p>\n";
}

// How far the result can be trusted, as the table of the command line has it; nothing where nothing can be
// said.
std::string StatisticsSection(const FitOptions& options, const FitStatistics& statistics) {
    if (!statistics.Of) return "";
    FitOptions all = options;
    all.Statistics = true;
    std::ostringstream text;
    WriteStatisticsTable(all, statistics, text, false, kMostRows);
    return "<h2>How far it can be trusted</h2>\n<pre>" + EscapeMarkup(text.str()) + "</pre>\n";
}

// What the program noticed; nothing where it noticed nothing.
std::string NotesTable() {
    if (Notes.List.empty()) return "";
    std::string html =
        "<h2>Notes</h2>\n<table>" + Head({"severity", "text", "file", "line", "count"}) + "<tbody>\n";
    for (const Note& note : Notes.List)
        html += "<tr>" + Cell(SeverityName(note.Weight), note.Weight == Severity::Warning ? "alarm" : "") +
                "<td style=\"text-align: left\">" + EscapeMarkup(note.Text) + "</td>" + Cell(note.File) +
                Cell(note.Line > 0 ? std::to_string(note.Line) : "") + Cell(std::to_string(note.Count)) +
                "</tr>\n";
    return html + "</tbody></table>\n";
}

}  // namespace

std::string FitReport(const FitOptions& options, const FitStatistics& statistics) {
    const std::vector<FitPoint> points = FitPoints();
    const FitPoint* worst = Worst(points);
    return "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
           "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n<title>" +
           EscapeMarkup(StartSystem() + " to " + TargetSystem()) + " - Corvinade</title>\n<style>" + kStyle +
           "</style>\n</head>\n<body>\n" + Introduction(options, worst) + ParameterTable() +
           FitPictureSection(options) + Plots(points) +
           (HasMonteCarlo(options) ? MonteCarloPlots(options) : "") + PointTable(points, worst) +
           StatisticsSection(options, statistics) + NotesTable() + "</body>\n</html>\n";
}

std::string ReportAs(const FitOptions& options, const FitStatistics& statistics) {
    const std::string path = UpperAscii(options.Report);
    if (path.ends_with(".PDF")) return ReportPdf(ReportOfJob({}));
    if (path.ends_with(".CSV")) return ReportCsv(ReportOfJob({}));
    return FitReport(options, statistics);
}

}  // namespace corvinade::cli
