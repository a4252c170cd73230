// The picture of the trumpet plot on a surface.
#include "graphics/trumpet_paint.h"

#include <string>
#include <vector>

namespace corvinade::graphics {

namespace {

constexpr double kBeside = 8;     // pixels between the frame and its numbers
constexpr double kBetween = 7;    // between the numbers and the title below them
constexpr double kAboveTop = 12;  // from the frame to the base of the letters of the title above it

void PaintAxes(Surface& screen, const TrumpetPlot& plot, const TrumpetLook& look) {
    const TrumpetColours& colours = look.Colours;
    const TrumpetLetters& letters = look.Letters;
    const auto text = [&](double x, double y, TextAnchor anchor, const std::string& words) {
        screen.LineText(screen, x, y, anchor, words, colours.Text, letters.Font);
    };
    const TrumpetAxes& a = plot.Axes;
    const double left = plot.X(a.XLow), right = plot.X(a.XHigh);
    const double top = plot.Y(a.YHigh), bottom = plot.Y(a.YLow);
    const double numbers = bottom + kBeside + letters.Ascent;
    // From the middle of a line down to the base of its letters.
    const double halfLetter = letters.Ascent - letters.Height / 2;
    for (const TrumpetTick& tick : plot.XTicks) {
        const double x = plot.X(tick.Place);
        screen.Rule(screen, x, top, x, bottom, colours.Grid);
        text(x, numbers, TextAnchor::Middle, tick.Text);
    }
    for (const TrumpetTick& tick : plot.YTicks) {
        const double y = plot.Y(tick.Place);
        screen.Rule(screen, left, y, right, y, colours.Grid);
        text(left - kBeside, y + halfLetter, TextAnchor::End, tick.Text);
    }
    if (a.YLow < 0 && a.YHigh > 0) screen.Rule(screen, left, plot.Y(0), right, plot.Y(0), colours.Zero);
    screen.Frame(screen, left, top, right, bottom, colours.Frame);
    text(right, numbers + letters.Height + kBetween, TextAnchor::End, TrumpetXTitle());
    text(left, top - kAboveTop, TextAnchor::Start,
         TrumpetYTitle() + (look.NotAllPairs ? "   (cancelled: not all pairs)" : ""));
}

void PaintSpots(Surface& screen, const DistancePoints& points, const TrumpetPlot& plot,
                const TrumpetRaster& raster, const TrumpetLook& look) {
    const double radius = MarkRadius(points.Pairs());
    for (const TrumpetRaster::PairAt& pixel : raster.Pixels) {
        if (pixel.From == 0 || pixel.To > points.Count()) continue;
        const TrumpetPair pair = PairOfPoints(points, pixel.From, pixel.To);
        screen.Spot(screen, plot.X(pair.ToDistance), plot.Y(pair.DeltaS), radius, look.Colours.Point,
                    look.NamePairs ? PairInWords(points, pixel.From, pixel.To) : "");
    }
}

// Neighbours in a line of pixels are one row of marks.
void PaintCloud(Surface& screen, const DistancePoints& points, const TrumpetRaster& raster, Colour colour) {
    const double radius = MarkRadius(points.Pairs());
    std::vector<SpotRow> rows;
    for (int y = 0; y < raster.Height; ++y) {
        rows.clear();
        for (int x = 0; x < raster.Width; ++x) {
            if (raster.At(x, y).From == 0) continue;
            const int begin = x;
            while (x + 1 < raster.Width && raster.At(x + 1, y).From != 0) ++x;
            rows.push_back({raster.Left + (begin + 0.5) / raster.Scale, raster.Top + (y + 0.5) / raster.Scale,
                            (x - begin) / raster.Scale});
        }
        if (!rows.empty()) screen.Spots(screen, rows, radius, colour);
    }
}

}  // namespace

void PaintTrumpet(Surface& screen, const DistancePoints& points, const TrumpetPlot& plot,
                  const TrumpetRaster& raster, const TrumpetLook& look) {
    if (screen.Clear == nullptr || screen.Rule == nullptr || screen.Frame == nullptr ||
        screen.LineText == nullptr || screen.Spot == nullptr || screen.Spots == nullptr)
        return;
    screen.Clear(screen, look.Colours.Ground);
    PaintAxes(screen, plot, look);
    if (points.Pairs() <= kMostTrumpetSpots)
        PaintSpots(screen, points, plot, raster, look);
    else
        PaintCloud(screen, points, raster, look.Colours.Point);
    if (screen.Refresh != nullptr) screen.Refresh(screen);
}

}  // namespace corvinade::graphics
