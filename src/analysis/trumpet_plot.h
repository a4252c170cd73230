// The trumpet plot: the difference of each pair of points against its distance. Where its axes run, where a
// pair lies in the picture, and which pair lies at a place of it. Who paints it asks here.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "analysis/distance_pairs.h"
#include "core/rooms.h"

namespace corvinade::analysis {

// Where the picture stands and how large it is, in pixels as the window counts them. On a screen of finer
// pixels there are Scale of them to one on each side.
struct TrumpetPlace {
    int Width = 800, Height = 600;
    int Left = 80, Top = 24, Right = 20, Bottom = 52;  // beside the axes, for their numbers and units
    double Scale = 1;
    bool operator==(const TrumpetPlace&) const = default;
};

// What the axes span, mm: what the pairs span, and a margin, so that no point lies on the frame. Never
// empty, whatever the pairs are.
struct TrumpetAxes {
    double XLow = 0, XHigh = 1, YLow = -1, YHigh = 1;
};
TrumpetAxes AxesOf(const TrumpetRange& range);

// A mark at an axis.
struct TrumpetTick {
    double Place = 0;  // mm
    std::string Text;  // in the shown unit
};
// Round values of the shown unit from `low` to `high`, mm: at most `most` of them, and no less than two.
std::vector<TrumpetTick> TicksOf(double low, double high, int most);

// The axes in a picture.
struct TrumpetPlot {
    TrumpetPlace Place;
    TrumpetAxes Axes;
    std::vector<TrumpetTick> XTicks, YTicks;

    double X(double distance_mm) const;  // pixels from the left and upper edge of the picture
    double Y(double delta_mm) const;
};
TrumpetPlot PlotOf(const TrumpetRange& range, const TrumpetPlace& place);

// The pairs by the pixels that they fall on, each with the first one of them. It is the picture of the
// points, thinned to what can be seen, and the grid by which a pair is found; its size is that of the picture
// and not that of the pairs.
struct TrumpetRaster {
    struct PairAt {
        std::int32_t From = 0, To = 0;  // numbers of points, 0: no pair
    };
    int Width = 0, Height = 0;  // fine pixels between the axes
    double Scale = 1;
    int Left = 0, Top = 0;  // of the place
    std::vector<PairAt> Pixels;
    bool Whole = false;  // all pairs are in it

    const PairAt& At(int x, int y) const {
        return Pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(Width) +
                      static_cast<std::size_t>(x)];
    }
};
// Fills the raster; not Whole when `goOn` ended it.
TrumpetRaster RasterOf(const DistancePoints& points, const TrumpetPlot& plot, const WorkGoesOn& goOn = {});

// The pair nearest to a place of the picture, no more than `reach` pixels away; of several as near the first
// in the order of the lines of the picture. From 0: none.
TrumpetRaster::PairAt PairNear(const TrumpetRaster& raster, double x, double y, double reach);

// The radius of a point's mark, pixels: the more there are the smaller.
double MarkRadius(std::int64_t pairs);

// The titles of the axes, with their unit.
std::string TrumpetXTitle();
std::string TrumpetYTitle();
// A pair in words: names, distance and difference in the shown unit.
std::string PairInWords(const DistancePoints& points, int i, int j);

}  // namespace corvinade::analysis
