// Pictures at a size and resolution of their own.
#include "paint/picture_file.h"

#include <QBuffer>
#include <QImage>
#include <algorithm>
#include <cmath>

#include "analysis/form_distance_scale.h"
#include "analysis/form_trompete.h"
#include "core/form_main.h"
#include "core/job.h"
#include "core/platform.h"
#include "core/settings.h"
#include "graphics/still_picture.h"
#include "paint/image.h"
#include "paint/page_surface.h"
#include "paint/picture.h"
#include "paint/svg_surface.h"
#include "paint/trumpet_file.h"
#include "paint/trumpet_svg.h"

namespace corvinade::paint {

namespace {

constexpr double kInch_mm = 25.4, kInch_m = 0.0254;
constexpr double kScreenDots = 96;  // a logical pixel is the 96th part of an inch

// As many as the length needs; what is too much of the last one is cut off.
int Pixels(double length_mm) {
    constexpr double kRounding = 1e-9;
    return static_cast<int>(std::ceil(length_mm / kInch_mm * kScreenDots - kRounding));
}

// The image in the size that was asked for, to the pixel of the file.
QImage Cut(const QImage& image, const PictureOrder& order) {
    const auto dots = [&order](double length_mm) {
        return static_cast<int>(std::lround(length_mm / kInch_mm * order.Dots));
    };
    return image.copy(0, 0, dots(order.Width_mm), dots(order.Height_mm));
}

std::string PngOf(QImage image, int dots) {
    const int perMetre = static_cast<int>(std::lround(dots / kInch_m));
    image.setDotsPerMeterX(perMetre);
    image.setDotsPerMeterY(perMetre);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    if (image.isNull() || !buffer.open(QIODevice::WriteOnly) || !image.save(&buffer, "PNG")) return "";
    return bytes.toStdString();
}

const ScreenWindow& WindowOf(std::uint64_t id) {
    for (const auto& window : Screens().Open)
        if (window->Id == id) return *window;
    throw PlatformError{"The graphics window of this picture has been closed"};
}

std::string SceneFile(const PictureOrder& order, PictureFormat format) {
    const bool ofWindow = order.Of == PictureSource::Screen;
    const ScreenWindow* const shown = ofWindow ? &WindowOf(order.Screen) : nullptr;
    if (!ofWindow && (order.View < 1 || order.View > Job.nSavedViews))
        throw PlatformError{"The saved view of this picture has been deleted"};
    StillSetup setup{.Width = Pixels(order.Width_mm), .Height = Pixels(order.Height_mm)};
    setup.Scale = format == PictureFormat::Png ? order.Dots / kScreenDots : 1;
    setup.BackColor = order.White ? QbColor(15) : ofWindow ? shown->BackColor : Settings.ScreenBackColor;
    setup.Look = ofWindow ? LookOf(*shown) : LookOf(ScreenWindow{});
    setup.Look.ColorBar = order.Bar;
    setup.Look.Axes = order.Axes;
    setup.Fill = format == PictureFormat::Png   ? FillSurfaceWithPicture
                 : format == PictureFormat::Svg ? FillSurfaceWithSvg
                                                : FillSurfaceWithPage;
    StillPicture picture(setup);
    if (ofWindow)
        PaintWindow(picture, *shown);
    else
        PaintSavedView(picture, order.View);
    const std::string title = ofWindow ? shown->Caption : "Saved view";
    if (format == PictureFormat::Svg) return SvgOfWindow(picture.Window, title, false);
    if (format == PictureFormat::Pdf)
        return PageOfWindow(picture.Window, order.Width_mm, order.Height_mm, title);
    return PngOf(Cut(PictureOf(picture.Window), order), order.Dots);
}

std::string TrumpetPictureFile(const PictureOrder& order, PictureFormat format) {
    const DistancePoints points = Trumpet.Window.Loaded ? *DistanceScale.Points : TakeDistancePoints(true);
    const bool withResult = Trumpet.Window.Loaded ? IsTrue(DistanceScale.WithCal) : true;
    const std::string title = TrumpetTitle(points, withResult);
    const TrumpetPlot plot = SizedTrumpetPlot(points, Pixels(order.Width_mm), Pixels(order.Height_mm));
    if (format == PictureFormat::Svg) return TrumpetSvg(points, title, plot);
    if (format == PictureFormat::Pdf)
        return TrumpetPage(points, title, plot, order.Width_mm, order.Height_mm);
    const std::string png = TrumpetPng(points, title, plot, false, order.Dots / kScreenDots);
    QImage image;
    image.loadFromData(reinterpret_cast<const uchar*>(png.data()), static_cast<int>(png.size()), "PNG");
    return PngOf(Cut(image, order), order.Dots);
}

}  // namespace

std::string PictureFileOf(const PictureOrder& order, PictureFormat format) {
    if (order.Of == PictureSource::Chart) return "";
    return order.Of == PictureSource::Trumpet ? TrumpetPictureFile(order, format) : SceneFile(order, format);
}

bool CopyPicture(const std::string& png) {
    QImage image;
    image.loadFromData(reinterpret_cast<const uchar*>(png.data()), static_cast<int>(png.size()), "PNG");
    image.convertTo(QImage::Format_RGB32);
    if (image.isNull()) return false;
    return SetClipboardPicture(image.width(), image.height(),
                               reinterpret_cast<const std::uint32_t*>(image.constBits()),
                               image.bytesPerLine() / static_cast<std::ptrdiff_t>(sizeof(std::uint32_t)));
}

}  // namespace corvinade::paint
