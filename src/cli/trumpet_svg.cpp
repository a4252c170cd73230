// The trumpet plot as a picture of its own.
#include "cli/trumpet_svg.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "cli/svg_element.h"
#include "core/job.h"
#include "core/text.h"

namespace {

constexpr std::int64_t kMostNamed = 2000;  // pairs; more of them are a cloud in which nobody finds one
constexpr int kWidth = 1100, kHeight = 700;
constexpr double kFineScale = 4;          // thinned so that nobody sees it
constexpr double kMostFine_pixels = 2e7;  // coarser in a picture larger than any screen

// Both palettes keep the points apart from grid and text.
constexpr const char* kStyle =
    "<style>text{font:13px 'DejaVu Sans',Arial,sans-serif;fill:#20262d}.ground{fill:#fff}"
    ".grid{stroke:#e3e6ea}.zero{stroke:#98a1ab}.frame{fill:none;stroke:#66717d}"
    ".point{fill:#2870bb}.points{fill:none;stroke:#2870bb;stroke-linecap:round}"
    "@media(prefers-color-scheme:dark){text{fill:#e4e7eb}.ground{fill:#1c1f23}.grid{stroke:#33383f}"
    ".zero{stroke:#757d87}.frame{stroke:#8b94a0}.point{fill:#6fb1f0}.points{stroke:#6fb1f0}}</style>\n";

std::string Line(double x1, double y1, double x2, double y2, const char* style) {
    return "<line class=\"" + std::string(style) + "\" x1=\"" + SvgNumber(x1) + "\" y1=\"" + SvgNumber(y1) +
           "\" x2=\"" + SvgNumber(x2) + "\" y2=\"" + SvgNumber(y2) + "\"/>\n";
}

std::string Text(double x, double y, const char* anchor, const std::string& text,
                 const std::string& more = "") {
    return "<text x=\"" + SvgNumber(x) + "\" y=\"" + SvgNumber(y) + "\" text-anchor=\"" + anchor + "\"" +
           more + ">" + EscapeMarkup(text) + "</text>\n";
}

std::string Axes(const TrumpetPlot& plot) {
    constexpr double kBeside = 8, kHalfLetter = 4.5;
    const TrumpetAxes& a = plot.Axes;
    const double left = plot.X(a.XLow), right = plot.X(a.XHigh), top = plot.Y(a.YHigh),
                 bottom = plot.Y(a.YLow);
    std::string svg;
    for (const TrumpetTick& tick : plot.XTicks) {
        const double x = plot.X(tick.Place);
        svg += Line(x, top, x, bottom, "grid") + Text(x, bottom + 20, "middle", tick.Text);
    }
    for (const TrumpetTick& tick : plot.YTicks) {
        const double y = plot.Y(tick.Place);
        svg += Line(left, y, right, y, "grid") + Text(left - kBeside, y + kHalfLetter, "end", tick.Text);
    }
    if (a.YLow < 0 && a.YHigh > 0) svg += Line(left, plot.Y(0), right, plot.Y(0), "zero");
    svg += "<rect class=\"frame\" x=\"" + SvgNumber(left) + "\" y=\"" + SvgNumber(top) + "\" width=\"" +
           SvgNumber(right - left) + "\" height=\"" + SvgNumber(bottom - top) + "\"/>\n";
    svg += Text(right, bottom + 42, "end", TrumpetXTitle());
    return svg + Text(left, top - 12, "start", TrumpetYTitle());
}

std::string NamedPoints(const DistancePoints& points, const TrumpetPlot& plot, const TrumpetRaster& raster) {
    const std::string radius = SvgNumber(MarkRadius(points.Pairs()));
    std::string svg;
    for (const TrumpetRaster::PairAt& pixel : raster.Pixels) {
        if (pixel.From == 0) continue;
        const TrumpetPair pair = PairOfPoints(points, pixel.From, pixel.To);
        svg += "<circle class=\"point\" cx=\"" + SvgNumber(plot.X(pair.ToDistance)) + "\" cy=\"" +
               SvgNumber(plot.Y(pair.DeltaS)) + "\" r=\"" + radius + "\"><title>" +
               EscapeMarkup(PairInWords(points, pixel.From, pixel.To)) + "</title></circle>\n";
    }
    return svg;
}

// One path of strokes with round ends: neighbours in a line of pixels are one stroke.
std::string CloudOfPoints(std::int64_t pairs, const TrumpetRaster& raster) {
    std::string svg = "<path class=\"points\" stroke-width=\"" + SvgNumber(2 * MarkRadius(pairs)) + "\" d=\"";
    for (int y = 0; y < raster.Height; ++y)
        for (int x = 0; x < raster.Width; ++x) {
            if (raster.At(x, y).From == 0) continue;
            const int begin = x;
            while (x + 1 < raster.Width && raster.At(x + 1, y).From != 0) ++x;
            svg += "M" + SvgNumber(raster.Left + (begin + 0.5) / raster.Scale) + " " +
                   SvgNumber(raster.Top + (y + 0.5) / raster.Scale) + "h" +
                   SvgNumber((x - begin) / raster.Scale);
        }
    return svg + "\"/>\n";
}

}  // namespace

std::string TrumpetTitle(const DistancePoints& points, bool withResult) {
    return "Differences of " + std::to_string(points.Pairs()) + " distances, " + Job.NameMCS +
           (withResult ? " after the transformation" : "") + " and " + Job.NameOCS;
}

std::string CheckTrumpetFile(const std::string& path) {
    return UpperAscii(path).ends_with(".SVG") ? "" : "\"" + Printable(path) + "\" does not end in .svg";
}

std::string TrumpetSvg(const DistancePoints& points, const std::string& title, const TrumpetPlot& plot) {
    const bool named = points.Pairs() <= kMostNamed;
    TrumpetPlot fine = plot;
    const double area = static_cast<double>(plot.Place.Width) * plot.Place.Height;
    fine.Place.Scale = std::min(named ? kFineScale : 1, std::sqrt(kMostFine_pixels / area));
    const TrumpetRaster raster = RasterOf(points, fine);
    const std::string width = std::to_string(plot.Place.Width), height = std::to_string(plot.Place.Height);
    const std::string size = "width=\"" + width + "\" height=\"" + height;
    return "<svg xmlns=\"http://www.w3.org/2000/svg\" " + size + "\" viewBox=\"0 0 " + width + " " + height +
           "\" role=\"img\" aria-label=\"" + EscapeMarkup(title) + "\">\n<title>" + EscapeMarkup(title) +
           "</title>\n" + kStyle + "<rect class=\"ground\" " + size + "\"/>\n" + Axes(plot) +
           (named ? NamedPoints(points, plot, raster) : CloudOfPoints(points.Pairs(), raster)) + "</svg>\n";
}

std::string TrumpetSvg(const DistancePoints& points, const std::string& title) {
    TrumpetRange range;
    RangeOfPairs(points, range);
    TrumpetPlace place{kWidth, kHeight, 90, 44, 24, 60};
    std::size_t longest = 0;
    for (const TrumpetTick& tick : PlotOf(range, place).YTicks) longest = std::max(longest, tick.Text.size());
    constexpr int kDigit_pixels = 9, kAir_pixels = 18;
    place.Left = std::max(60, static_cast<int>(longest) * kDigit_pixels + kAir_pixels);
    return TrumpetSvg(points, title, PlotOf(range, place));
}
