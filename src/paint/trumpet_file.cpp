// The trumpet plot as a file of its own, SVG or PNG.
#include "paint/trumpet_file.h"

#include <algorithm>
#include <cmath>

#include "core/files.h"
#include "core/job.h"
#include "core/platform.h"
#include "core/text.h"
#include "graphics/trumpet_paint.h"
#include "paint/page_surface.h"
#include "paint/picture.h"
#include "paint/trumpet_svg.h"

namespace corvinade::paint {

namespace {

constexpr int kWidth = 1100, kHeight = 700;
constexpr int kLeastSide = 160;           // of a plot that has room for its numbers
constexpr double kSharp = 2;              // pixels of the file for one of the plot
constexpr double kMostFine_pixels = 2e7;  // coarser in a picture larger than any screen

bool EndsIn(const std::string& path, const char* ending) {
    return UpperAscii(path).ends_with(ending);
}

// The colours of the SVG in light.
TrumpetLook LightLook() {
    TrumpetLook look;
    look.Colours = {.Ground = Rgb(255, 255, 255),
                    .Text = Rgb(0x20, 0x26, 0x2d),
                    .Grid = Rgb(0xe3, 0xe6, 0xea),
                    .Zero = Rgb(0x98, 0xa1, 0xab),
                    .Frame = Rgb(0x66, 0x71, 0x7d),
                    .Point = Rgb(0x28, 0x70, 0xbb)};
    look.Letters.Font.Name = "DejaVu Sans";
    look.Letters.Font.Size = 9.75F;  // 13 pixels
    return look;
}

// A surface with a picture behind it, closed at the end.
struct Sheet {
    Surface Screen;
    ~Sheet() {
        if (Screen.Close != nullptr) Screen.Close(Screen);
    }
};

}  // namespace

std::string CheckTrumpetFile(const std::string& path) {
    return EndsIn(path, ".SVG") || EndsIn(path, ".PNG")
               ? ""
               : "\"" + Printable(path) + "\" does not end in .svg or .png";
}

std::string TrumpetTitle(const DistancePoints& points, bool withResult) {
    return "Differences of " + std::to_string(points.Pairs()) + " distances, " + Job.NameMCS +
           (withResult ? " after the transformation" : "") + " and " + Job.NameOCS;
}

TrumpetPlot WholeTrumpetPlot(const DistancePoints& points) {
    return SizedTrumpetPlot(points, kWidth, kHeight);
}

TrumpetPlot SizedTrumpetPlot(const DistancePoints& points, int width, int height) {
    TrumpetRange range;
    RangeOfPairs(points, range);
    TrumpetPlace place{std::max(width, kLeastSide), std::max(height, kLeastSide), 90, 44, 24, 60};
    std::size_t longest = 0;
    for (const TrumpetTick& tick : PlotOf(range, place).YTicks) longest = std::max(longest, tick.Text.size());
    constexpr int kDigit_pixels = 9, kAir_pixels = 18;
    place.Left = std::max(60, static_cast<int>(longest) * kDigit_pixels + kAir_pixels);
    return PlotOf(range, place);
}

std::string TrumpetPng(const DistancePoints& points, const std::string& title, const TrumpetPlot& plot,
                       bool notAllPairs, double scale) {
    TrumpetPlot sharp = plot;
    const double area = static_cast<double>(plot.Place.Width) * plot.Place.Height;
    sharp.Place.Scale = scale > 0 ? scale : std::min(kSharp, std::sqrt(kMostFine_pixels / area));
    Sheet sheet;
    sheet.Screen.Width = plot.Place.Width;
    sheet.Screen.Height = plot.Place.Height;
    sheet.Screen.Scale = sharp.Place.Scale;
    FillSurfaceWithPicture(sheet.Screen);
    TrumpetLook look = LightLook();
    look.NotAllPairs = notAllPairs;
    PaintTrumpet(sheet.Screen, points, plot, RasterOf(points, sharp), look);
    const std::string bytes = PictureBytes(sheet.Screen, title);
    if (bytes.empty()) throw PlatformError{"There is no memory for the picture of the plot"};
    return bytes;
}

std::string TrumpetPage(const DistancePoints& points, const std::string& title, const TrumpetPlot& plot,
                        double width_mm, double height_mm) {
    constexpr double kFine = 4;  // points that fall on one place of the page are drawn once
    TrumpetPlot fine = plot;
    fine.Place.Scale = kFine;
    Sheet sheet;
    sheet.Screen.Width = plot.Place.Width;
    sheet.Screen.Height = plot.Place.Height;
    FillSurfaceWithPage(sheet.Screen);
    PaintTrumpet(sheet.Screen, points, plot, RasterOf(points, fine), LightLook());
    return PageOfPlot(sheet.Screen, width_mm, height_mm, title);
}

void WriteTrumpetPicture(const std::string& path, const DistancePoints& points, const std::string& title,
                         const TrumpetPlot& plot, bool notAllPairs) {
    WriteFile(path, EndsIn(path, ".PNG") ? TrumpetPng(points, title, plot, notAllPairs)
                                         : TrumpetSvg(points, title, plot, notAllPairs));
}

}  // namespace corvinade::paint
