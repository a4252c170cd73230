// The trumpet plot as SVG.
#include "paint/trumpet_svg.h"

#include <algorithm>
#include <cmath>
#include <span>

#include "graphics/trumpet_paint.h"
#include "paint/svg_element.h"

namespace corvinade::paint {

namespace {

constexpr double kFineScale = 4;          // thinned so that nobody sees it
constexpr double kMostFine_pixels = 2e7;  // coarser in a picture larger than any screen

// Both palettes keep the points apart from grid and text.
constexpr const char* kStyle =
    "<style>text{font:13px 'DejaVu Sans',Arial,sans-serif;fill:#20262d}.ground{fill:#fff}"
    ".grid{stroke:#e3e6ea}.zero{stroke:#98a1ab}.frame{fill:none;stroke:#66717d}"
    ".point{fill:#2870bb}.points{fill:none;stroke:#2870bb;stroke-linecap:round}"
    "@media(prefers-color-scheme:dark){text{fill:#e4e7eb}.ground{fill:#1c1f23}.grid{stroke:#33383f}"
    ".zero{stroke:#757d87}.frame{stroke:#8b94a0}.point{fill:#6fb1f0}.points{stroke:#6fb1f0}}</style>\n";

// What the plot is painted in is its reader's choice, so a colour is the number of a class of the style; the
// style gives the letters, too.
enum Ink : Colour { kGround, kText, kGrid, kZero, kFrame, kPoint };
constexpr const char* kClass[] = {"ground", "", "grid", "zero", "frame", "point"};

struct Sheet {
    std::string Svg;
    bool PathOpen = false;  // of rows of points: all that follow each other are one path
};

std::string& SvgOf(Surface& screen) {
    Sheet& sheet = *static_cast<Sheet*>(screen.Own);
    if (sheet.PathOpen) EndPath(sheet.Svg);
    sheet.PathOpen = false;
    return sheet.Svg;
}

void Clear(Surface& screen, Colour ground) {
    std::string& svg = SvgOf(screen);
    svg.clear();
    SvgElement(svg, "rect")
        .Word("class", kClass[ground])
        .Number("width", screen.Width)
        .Number("height", screen.Height)
        .Empty("\n");
}

void Rule(Surface& screen, double x1, double y1, double x2, double y2, Colour colour) {
    SvgElement(SvgOf(screen), "line")
        .Word("class", kClass[colour])
        .Number("x1", x1)
        .Number("y1", y1)
        .Number("x2", x2)
        .Number("y2", y2)
        .Empty("\n");
}

void Frame(Surface& screen, double left, double top, double right, double bottom, Colour colour) {
    SvgElement(SvgOf(screen), "rect")
        .Word("class", kClass[colour])
        .Number("x", left)
        .Number("y", top)
        .Number("width", right - left)
        .Number("height", bottom - top)
        .Empty("\n");
}

void LineText(Surface& screen, double x, double y, TextAnchor anchor, const std::string& text,
              Colour /*colour*/, const TextFont& /*font*/) {
    constexpr const char* kAnchor[] = {"start", "middle", "end"};
    SvgElement(SvgOf(screen), "text")
        .Number("x", x)
        .Number("y", y)
        .Word("text-anchor", kAnchor[static_cast<int>(anchor)])
        .Holds(text, "\n");
}

void Spot(Surface& screen, double x, double y, double radius, Colour colour, const std::string& words) {
    SvgElement(SvgOf(screen), "circle")
        .Word("class", kClass[colour])
        .Number("cx", x)
        .Number("cy", y)
        .Number("r", radius)
        .HoldsTitle(words, "\n");
}

// Strokes with round ends.
void Spots(Surface& screen, std::span<const SpotRow> rows, double radius, Colour colour) {
    Sheet& sheet = *static_cast<Sheet*>(screen.Own);
    std::string& svg = sheet.Svg;
    if (!sheet.PathOpen)
        SvgElement(svg, "path")
            .Word("class", std::string(kClass[colour]) + "s")
            .Number("stroke-width", 2 * radius)
            .BeginsPath();
    sheet.PathOpen = true;
    for (const SpotRow& row : rows) {
        svg += 'M';
        svg += SvgNumber(row.X);
        svg += ' ';
        svg += SvgNumber(row.Y);
        svg += 'h';
        svg += SvgNumber(row.Length);
    }
}

}  // namespace

std::string TrumpetSvg(const DistancePoints& points, const std::string& title, const TrumpetPlot& plot,
                       bool notAllPairs) {
    const bool named = points.Pairs() <= kMostTrumpetSpots;
    TrumpetPlot fine = plot;
    const double area = static_cast<double>(plot.Place.Width) * plot.Place.Height;
    fine.Place.Scale = std::min(named ? kFineScale : 1, std::sqrt(kMostFine_pixels / area));
    const TrumpetRaster raster = RasterOf(points, fine);
    Sheet sheet;
    Surface screen;
    screen.Width = plot.Place.Width;
    screen.Height = plot.Place.Height;
    screen.Clear = Clear;
    screen.Rule = Rule;
    screen.Frame = Frame;
    screen.LineText = LineText;
    screen.Spot = Spot;
    screen.Spots = Spots;
    screen.Own = &sheet;
    TrumpetLook look;
    look.Colours = {kGround, kText, kGrid, kZero, kFrame, kPoint};
    look.NamePairs = true;
    look.NotAllPairs = notAllPairs;
    PaintTrumpet(screen, points, plot, raster, look);
    std::string svg;
    BeginSvg(svg, screen.Width, screen.Height, title);
    return svg + kStyle + SvgOf(screen) + "</svg>\n";
}

}  // namespace corvinade::paint
