// Pictures at a size and resolution of their own, read again as what they are.
#include "paint/picture_file.h"

#include <QImage>
#include <cmath>
#include <regex>

#include "core/form_main.h"
#include "core/job.h"
#include "core/job_file.h"
#include "core/platform.h"
#include "core/window.h"
#include "engine/undo.h"
#include "graphics/drawing.h"
#include "graphics/scene.h"
#include "graphics/screen_window.h"
#include "graphics/views.h"
#include "paint/picture.h"
#include "support/fixture.h"

using namespace corvinade;

namespace {

class PictureFile : public Program {
protected:
    PictureFile() {
        FillSurface = FillSurfaceWithPicture;
        OpenFile(CORVINADE_SOURCE_DIR "/examples/robot_cell.cvn");
        ScreenWindow& window = OpenScreenWindow();
        FillSurface = nullptr;
        IsoView(window);
        GrafikAnpassen(window);
    }
    static ScreenWindow& Window() { return *Screens().Open.front(); }
    static PictureOrder Order() {
        return {.Screen = Window().Id, .Width_mm = 127, .Height_mm = 101.6, .Dots = 150};
    }
    static QImage Png(const PictureOrder& order) {
        const std::string bytes = PictureFileOf(order, PictureFormat::Png);
        QImage image;
        image.loadFromData(reinterpret_cast<const uchar*>(bytes.data()), static_cast<int>(bytes.size()),
                           "PNG");
        return image;
    }
    // Pixels that are neither black, grey nor white.
    static int Coloured(const QImage& image, const QRect& rect) {
        int count = 0;
        for (int y = rect.top(); y <= rect.bottom(); ++y)
            for (int x = rect.left(); x <= rect.right(); ++x) {
                const QRgb pixel = image.pixel(x, y);
                const int low = std::min({qRed(pixel), qGreen(pixel), qBlue(pixel)}),
                          high = std::max({qRed(pixel), qGreen(pixel), qBlue(pixel)});
                count += high - low > 60 ? 1 : 0;
            }
        return count;
    }
};

}  // namespace

TEST_F(PictureFile, APngHasTheSizeAndTheResolutionThatWereAsked) {
    const QImage image = Png(Order());  // 5 by 4 inches of 150 dots
    EXPECT_EQ(image.size(), QSize(750, 600));
    EXPECT_NEAR(image.dotsPerMeterX() * 0.0254, 150, 0.1);
    PictureOrder odd = Order();
    odd.Width_mm = 160;
    odd.Dots = 300;
    EXPECT_EQ(Png(odd).width(), 1890) << "160 mm are 1889.8 dots";
}

TEST_F(PictureFile, TheBarAndTheAxesAreThereOnlyWhereTheyAreWanted) {
    // All points in the left half, so that the right edge has the bar alone.
    Window().State.BildFaktor /= 4;
    Window().State.BildOffsetX = 60;
    Stelle_Grafik_dar(Window());
    PictureOrder order = Order();
    const QRect right(600, 40, 150, 450);
    const QImage with = Png(order);
    order.Bar = false;
    const QImage without = Png(order);
    EXPECT_GT(Coloured(with, right), 2000);
    EXPECT_EQ(Coloured(without, right), 0);
    order.Axes = false;
    EXPECT_NE(Png(order), without);
    EXPECT_EQ(without.pixel(749, 300), qRgb(255, 255, 255));
    order.White = false;
    Window().BackColor = 0x402010;
    EXPECT_EQ(Png(order).pixel(749, 300), qRgb(0x10, 0x20, 0x40));
}

TEST_F(PictureFile, SvgAndPdfHaveTheirTextAsText) {
    Job.LengthUnitName = "millimeter";
    const std::string svg = PictureFileOf(Order(), PictureFormat::Svg);
    EXPECT_NE(svg.find("width=\"480\""), std::string::npos) << "5 inches of 96 pixels";
    EXPECT_NE(svg.find("height=\"384\""), std::string::npos);
    EXPECT_NE(svg.find("<text"), std::string::npos);
    const std::string pdf = PictureFileOf(Order(), PictureFormat::Pdf);
    ASSERT_TRUE(pdf.starts_with("%PDF-"));
    // 5 by 4 inches are 360 by 288 points.
    EXPECT_TRUE(std::regex_search(pdf, std::regex(R"(/MediaBox \[0 0 360(\.0+)? 288(\.0+)?)")))
        << pdf.substr(0, 400);
    EXPECT_NE(pdf.find("/Type /Font"), std::string::npos) << "letters are letters and not curves";
}

TEST_F(PictureFile, TheWindowItIsOfStaysAsItWas) {
    const std::string before = PictureBytes(Window());
    const auto paints = Window().PaintCount;
    const float factor = Window().State.BildFaktor;
    for (const PictureFormat format : {PictureFormat::Png, PictureFormat::Svg, PictureFormat::Pdf})
        PictureFileOf(Order(), format);
    EXPECT_EQ(Screens().Open.size(), 1U);
    EXPECT_EQ(Window().PaintCount, paints);
    EXPECT_EQ(Window().State.BildFaktor, factor);
    EXPECT_TRUE(Undo.Steps.empty());
    Stelle_Grafik_dar(Window());
    EXPECT_TRUE(PictureBytes(Window()) == before);
}

TEST_F(PictureFile, ASavedViewIsThatOfItsWindow) {
    ASSERT_LT(Job.nSavedViews, 50);
    ScreenRecord view = Window().State;
    view.WindowWidth = 800;
    view.WindowHeight = 600;
    ++Job.nSavedViews;
    Job.SavedView[static_cast<std::size_t>(Job.nSavedViews)] = view;
    // In the size of the window a picture of either shows the same.
    PictureOrder order = Order();
    order.Width_mm = 800 / 96.0 * 25.4;
    order.Height_mm = 600 / 96.0 * 25.4;
    order.Dots = 96;
    const QImage ofWindow = Png(order);
    order.Of = PictureSource::SavedView;
    order.View = Job.nSavedViews;
    EXPECT_EQ(Png(order), ofWindow);
}

TEST_F(PictureFile, ATrumpetPlotHasItsSizeInEachForm) {
    PictureOrder order = Order();
    order.Of = PictureSource::Trumpet;
    EXPECT_EQ(Png(order).size(), QSize(750, 600));
    EXPECT_NE(PictureFileOf(order, PictureFormat::Svg).find("<svg"), std::string::npos);
    EXPECT_TRUE(PictureFileOf(order, PictureFormat::Pdf).starts_with("%PDF-"));
}

TEST_F(PictureFile, AWindowThatHasBeenClosedIsToldByAnError) {
    const PictureOrder order = Order();
    CloseScreenWindow(Window());
    EXPECT_THROW(PictureFileOf(order, PictureFormat::Png), PlatformError);
}
