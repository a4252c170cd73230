// The trumpet plot: axes, places in the picture, and the pair at a place.
#include "analysis/trumpet_plot.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "core/job.h"
#include "core/numbers.h"
#include "core/units.h"

namespace corvinade::analysis {

namespace {

constexpr double kMargin = 0.05;            // of what an axis spans, at each end that is not 0
constexpr int kBetweenTicks_pixels = 90;    // along the axis of distances, for the numbers
constexpr int kBetweenLines_pixels = 48;    // along the other one
constexpr int kLargestSide_pixels = 16384;  // fine pixels; a raster larger than any screen is no use

// The least distance of round values, 1, 2 or 5 times a power of ten, that puts at most `most` of them on a
// length.
double RoundStep(double length, int most) {
    const double least = length / most;
    const double power = std::pow(10.0, std::floor(std::log10(least)));
    for (const double factor : {1.0, 2.0, 5.0})
        if (factor * power >= least * (1 - 1e-9)) return factor * power;
    return 10 * power;
}

// Digits behind the point that tell values of such a step apart.
int DecimalsOf(double step) {
    const double digits = std::ceil(-std::log10(step) - 1e-9);
    return static_cast<int>(std::clamp(digits, 0.0, 15.0));
}

int Inside(int whole, int before, int behind, double scale) {
    const double fine = (whole - before - behind) * scale;
    return static_cast<int>(std::clamp(fine, 1.0, static_cast<double>(kLargestSide_pixels)));
}

double InnerWidth(const TrumpetPlace& p) {
    return std::max(1, p.Width - p.Left - p.Right);
}
double InnerHeight(const TrumpetPlace& p) {
    return std::max(1, p.Height - p.Top - p.Bottom);
}

}  // namespace

TrumpetAxes AxesOf(const TrumpetRange& range) {
    TrumpetAxes axes;
    if (range.Pairs == 0) return axes;
    // All pairs as long as each other, or as wrong: a span that shows the value in its middle.
    constexpr double kLeast_mm = 1e-6;
    axes.XHigh = range.XMax > 0 ? range.XMax * (1 + kMargin) : 1;
    const double low = range.YMin, high = range.YMax, span = high - low;
    const double size = std::max(std::fabs(low), std::fabs(high));
    const double air = std::max({kMargin * span, span > 1e-6 * size ? 0 : kMargin * size, kLeast_mm});
    axes.YLow = low - air;
    axes.YHigh = high + air;
    return axes;
}

std::vector<TrumpetTick> TicksOf(double low, double high, int most) {
    std::vector<TrumpetTick> ticks;
    const double from = low * Units.LengthFactor, to = high * Units.LengthFactor;
    if (!(to > from) || !std::isfinite(to - from)) return ticks;
    for (int wanted = std::max(most, 2); ticks.size() < 2 && wanted <= 8 * std::max(most, 2); wanted *= 2) {
        ticks.clear();
        const double step = RoundStep(to - from, wanted);
        const int decimals = DecimalsOf(step);
        const std::string picture =
            decimals == 0 ? "0" : "0." + std::string(static_cast<std::size_t>(decimals), '0');
        const double first = std::ceil(from / step - 1e-9), last = std::floor(to / step + 1e-9);
        for (double k = first; k <= last && ticks.size() < 1000; ++k)
            ticks.push_back({k * step / Units.LengthFactor, FormatNumber(k * step, picture)});
    }
    return ticks;
}

double TrumpetPlot::X(double distance_mm) const {
    return Place.Left + (distance_mm - Axes.XLow) / (Axes.XHigh - Axes.XLow) * InnerWidth(Place);
}
double TrumpetPlot::Y(double delta_mm) const {
    return Place.Top + (Axes.YHigh - delta_mm) / (Axes.YHigh - Axes.YLow) * InnerHeight(Place);
}

TrumpetPlot PlotOf(const TrumpetRange& range, const TrumpetPlace& place) {
    TrumpetPlot plot;
    plot.Place = place;
    plot.Axes = AxesOf(range);
    const auto most = [](double length, int between) { return static_cast<int>(length) / between; };
    plot.XTicks = TicksOf(plot.Axes.XLow, plot.Axes.XHigh, most(InnerWidth(place), kBetweenTicks_pixels));
    plot.YTicks = TicksOf(plot.Axes.YLow, plot.Axes.YHigh, most(InnerHeight(place), kBetweenLines_pixels));
    return plot;
}

TrumpetRaster RasterOf(const DistancePoints& points, const TrumpetPlot& plot, const WorkGoesOn& goOn) {
    TrumpetRaster raster;
    const TrumpetPlace& place = plot.Place;
    raster.Width = Inside(place.Width, place.Left, place.Right, place.Scale);
    raster.Height = Inside(place.Height, place.Top, place.Bottom, place.Scale);
    raster.Scale = place.Scale;
    raster.Left = place.Left;
    raster.Top = place.Top;
    raster.Pixels.resize(static_cast<std::size_t>(raster.Width) * static_cast<std::size_t>(raster.Height));
    const TrumpetAxes& axes = plot.Axes;
    const double byX = raster.Width / (axes.XHigh - axes.XLow),
                 byY = raster.Height / (axes.YHigh - axes.YLow);
    const double width = raster.Width, height = raster.Height;
    const int n = points.Count();
    std::vector<double> from(static_cast<std::size_t>(n)), to(static_cast<std::size_t>(n));
    for (int i = 1; i < n; ++i) {
        const double share =
            1 - static_cast<double>(n - i + 1) * (n - i) / (static_cast<double>(n) * (n - 1));
        if (goOn && !goOn(share)) return raster;
        DistancesOfPoint(points, i, i + 1, from.data(), to.data());
        for (int j = i + 1; j <= n; ++j) {
            const auto k = static_cast<std::size_t>(j - i - 1);
            const double x = (static_cast<double>(static_cast<float>(to[k])) - axes.XLow) * byX;
            const double y = (axes.YHigh - static_cast<double>(static_cast<float>(to[k] - from[k]))) * byY;
            // Distances that are no numbers have no place.
            if (!(x >= 0 && x < width && y >= 0 && y < height)) continue;
            TrumpetRaster::PairAt& pixel =
                raster.Pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(raster.Width) +
                              static_cast<std::size_t>(x)];
            if (pixel.From == 0) pixel = {i, j};
        }
    }
    raster.Whole = true;
    return raster;
}

TrumpetRaster::PairAt PairNear(const TrumpetRaster& raster, double x, double y, double reach) {
    TrumpetRaster::PairAt nearest;
    if (raster.Pixels.empty() || !std::isfinite(x) || !std::isfinite(y)) return nearest;
    const double fineX = (x - raster.Left) * raster.Scale, fineY = (y - raster.Top) * raster.Scale;
    const double fineReach = reach * raster.Scale;
    const auto edge = [](double value, int size) {
        return static_cast<int>(std::clamp(std::floor(value), 0.0, static_cast<double>(size)));
    };
    const int left = edge(fineX - fineReach, raster.Width), right = edge(fineX + fineReach + 1, raster.Width);
    const int top = edge(fineY - fineReach, raster.Height),
              bottom = edge(fineY + fineReach + 1, raster.Height);
    double least = std::numeric_limits<double>::infinity();
    for (int row = top; row < bottom; ++row)
        for (int col = left; col < right; ++col) {
            const TrumpetRaster::PairAt& pair = raster.At(col, row);
            if (pair.From == 0) continue;
            const double distance = std::hypot(col + 0.5 - fineX, row + 0.5 - fineY);
            if (distance > fineReach || distance >= least) continue;
            least = distance;
            nearest = pair;
        }
    return nearest;
}

double MarkRadius(std::int64_t pairs) {
    constexpr std::int64_t kFew = 500, kSome = 20'000;
    return pairs <= kFew ? 3 : pairs <= kSome ? 2 : 1;
}

std::string TrumpetXTitle() {
    return "Distance in " + Job.NameOCS + " [" + Job.LengthUnitName + "]";
}

std::string TrumpetYTitle() {
    return "delta s [" + Job.LengthUnitName + "]";
}

std::string PairInWords(const DistancePoints& points, int i, int j) {
    const TrumpetPair pair = PairOfPoints(points, i, j);
    const auto shown = [](float length_mm) {
        return FormatNumber(static_cast<double>(length_mm) * Units.LengthFactor, Units.FmtLength);
    };
    return points.Names[static_cast<std::size_t>(i)] + " - " + points.Names[static_cast<std::size_t>(j)] +
           ": distance " + shown(pair.ToDistance) + ", delta s " + shown(pair.DeltaS) + " " +
           Job.LengthUnitName;
}

}  // namespace corvinade::analysis
