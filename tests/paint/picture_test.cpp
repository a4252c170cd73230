// Surfaces of windows as pictures in memory.
#include "paint/picture.h"

#include <QImage>
#include <algorithm>
#include <cmath>

#include "core/window.h"
#include "paint/image.h"
#include "support/fixture.h"

using namespace corvinade;

namespace {

// A surface of its own, without a window.
struct OwnSurface {
    Surface Screen;
    OwnSurface(int width, int height, double scale = 1) {
        Screen.Width = width;
        Screen.Height = height;
        Screen.Scale = scale;
        FillSurfaceWithPicture(Screen);
        Screen.Clear(Screen, 0);
    }
    ~OwnSurface() { Screen.Close(Screen); }
    OwnSurface(const OwnSurface&) = delete;
    OwnSurface& operator=(const OwnSurface&) = delete;

    std::uint32_t At(int column, int row) const { return Screen.Pixels[row * Screen.Stride + column]; }
    // Pixels that are not black.
    int Painted() const {
        int count = 0;
        for (int row = 0; row < Screen.PixelHeight; ++row)
            for (int column = 0; column < Screen.PixelWidth; ++column)
                if (At(column, row) != 0xff000000U) ++count;
        return count;
    }
};

constexpr Colour kRed = 0x0000ff, kWhite = 0xffffff;
constexpr std::uint32_t kRedPixel = 0xffff0000U;

}  // namespace

TEST(Picture, HasThePixelsOfItsLogicalSizeTimesItsScale) {
    const OwnSurface plain(40, 30), fine(40, 30, 2), half(40, 30, 1.5);
    EXPECT_EQ(plain.Screen.PixelWidth, 40);
    EXPECT_EQ(plain.Screen.PixelHeight, 30);
    EXPECT_EQ(fine.Screen.PixelWidth, 80);
    EXPECT_EQ(half.Screen.PixelHeight, 45);
}

TEST(Picture, IsClearedToTheBackground) {
    const OwnSurface own(4, 3);
    Surface screen = own.Screen;
    screen.Clear(screen, 0x030201);
    EXPECT_EQ(own.At(0, 0), 0xff010203U);
    EXPECT_EQ(own.At(3, 2), 0xff010203U);
}

TEST(Picture, ALineOfWidthOneCoversThePixelsFromEndToEnd) {
    OwnSurface own(40, 30);
    own.Screen.Line(own.Screen, 5, 7, 12, 7, kRed, 1);
    own.Screen.Refresh(own.Screen);
    EXPECT_EQ(own.Painted(), 8);
    for (int column = 5; column <= 12; ++column) EXPECT_EQ(own.At(column, 7), kRedPixel) << column;
}

// The bar of colours is made of such lines.
TEST(Picture, ThinLinesSideBySideLeaveNoGapsAtABrokenScale) {
    for (const double scale : {1.25, 1.5, 1.75, 2.0}) {
        OwnSurface own(40, 30, scale);
        for (int line = 4; line <= 20; ++line) {
            const auto place = static_cast<float>(line);
            own.Screen.Line(own.Screen, 10, place, 30, place, kRed, 1);
        }
        own.Screen.Refresh(own.Screen);
        const auto edge = [scale](int logical) { return static_cast<int>(std::lround(logical * scale)); };
        for (int row = edge(4); row < edge(21); ++row)
            for (int column = edge(10); column < edge(31); ++column)
                ASSERT_EQ(own.At(column, row), kRedPixel) << scale << ": " << column << ", " << row;
        EXPECT_EQ(own.Painted(), (edge(21) - edge(4)) * (edge(31) - edge(10))) << scale;
    }
}

TEST(Picture, AThinLineBeyondTheEdgesEndsAtThemAtABrokenScale) {
    OwnSurface own(40, 30, 1.5);
    own.Screen.Line(own.Screen, -1e9F, 29, 1e9F, 29, kRed, 1);
    own.Screen.Line(own.Screen, 39, -5, 39, 100, kRed, 1);
    own.Screen.Line(own.Screen, 3, 500, 30, 500, kRed, 1);
    own.Screen.Refresh(own.Screen);
    // Two rows of 60 pixels below (28.5 .. 45 is from 44 on), two columns of 45 at the right.
    int below = 0, right = 0;
    for (int column = 0; column < 60; ++column) below += own.At(column, 44) == kRedPixel ? 1 : 0;
    for (int row = 0; row < 45; ++row) right += own.At(59, row) == kRedPixel ? 1 : 0;
    EXPECT_EQ(below, 60);
    EXPECT_EQ(right, 45);
}

TEST(Picture, ALineEndsAtTheNearestWholePixels) {
    OwnSurface own(40, 30);
    own.Screen.Line(own.Screen, 5.4F, 6.6F, 5.4F, 9.4F, kRed, 1);
    own.Screen.Refresh(own.Screen);
    EXPECT_EQ(own.Painted(), 3);
    EXPECT_EQ(own.At(5, 7), kRedPixel);
    EXPECT_EQ(own.At(5, 9), kRedPixel);
}

TEST(Picture, AWideLineIsAsWideAsAsked) {
    OwnSurface own(40, 30);
    own.Screen.Line(own.Screen, 5, 15, 35, 15, kRed, 5);
    own.Screen.Refresh(own.Screen);
    int rows = 0;
    for (int row = 0; row < 30; ++row) rows += own.At(20, row) == kRedPixel ? 1 : 0;
    EXPECT_EQ(rows, 5);
}

TEST(Picture, ALineToFarOutsideKeepsItsDirection) {
    OwnSurface own(40, 30);
    own.Screen.Line(own.Screen, 0, 0, 1e30F, 1e30F, kRed, 1);
    own.Screen.Refresh(own.Screen);
    for (int i = 0; i < 30; ++i) EXPECT_EQ(own.At(i, i), kRedPixel) << i;
}

TEST(Picture, ALineFromFarOutsideToFarOutsideCrossesThePicture) {
    OwnSurface own(40, 30);
    own.Screen.Line(own.Screen, -1e20F, 12, 1e20F, 12, kRed, 1);
    own.Screen.Line(own.Screen, 17, 1e20F, 17, -1e20F, kRed, 1);
    own.Screen.Line(own.Screen, -1000, 500, 500, -1000, kRed, 1);  // passes it by
    own.Screen.Refresh(own.Screen);
    EXPECT_EQ(own.Painted(), 40 + 30 - 1);
    for (int column = 0; column < 40; ++column) EXPECT_EQ(own.At(column, 12), kRedPixel);
    for (int row = 0; row < 30; ++row) EXPECT_EQ(own.At(17, row), kRedPixel);
}

TEST(Picture, LinesWithoutAPlaceAreNotDrawn) {
    OwnSurface own(40, 30);
    const float none = std::nanf(""), far = HUGE_VALF;
    own.Screen.Line(own.Screen, none, 0, 20, 20, kRed, 1);
    own.Screen.Line(own.Screen, 0, 0, far, far, kRed, 1);
    own.Screen.Line(own.Screen, -50, 0, -50, 30, kRed, 1);
    own.Screen.Circle(own.Screen, none, 5, 3, kRed, kRed, 1);
    own.Screen.Circle(own.Screen, 5, 5, none, kRed, kRed, 1);
    own.Screen.Circle(own.Screen, 5, 5, 1e30F, kRed, kRed, 1);
    own.Screen.Text(own.Screen, none, 5, "A", kRed);
    own.Screen.Refresh(own.Screen);
    EXPECT_EQ(own.Painted(), 0);
}

TEST(Picture, ADiscIsFilledRoundAndWholeAboutItsMiddle) {
    OwnSurface own(41, 41);
    own.Screen.Circle(own.Screen, 20, 20, 10, kRed, kRed, 1);
    own.Screen.Refresh(own.Screen);
    EXPECT_NEAR(own.Painted(), 3.14159 * 10.5 * 10.5, 25);
    for (int row = 0; row < 41; ++row)
        for (int column = 0; column < 41; ++column) {
            const double distance = std::hypot(column - 20, row - 20);
            const bool red = own.At(column, row) == kRedPixel;
            EXPECT_TRUE(distance > 12 ? !red : red || distance >= 9) << column << ' ' << row;
        }
}

TEST(Picture, ADiscAtTheBorderIsCutOff) {
    OwnSurface own(41, 41), whole(81, 81);
    for (const float place : {-3.0F, 0.0F, 38.0F, 43.0F}) {
        own.Screen.Clear(own.Screen, 0);
        whole.Screen.Clear(whole.Screen, 0);
        own.Screen.Circle(own.Screen, place, 20, 6, kRed, kRed, 1);
        whole.Screen.Circle(whole.Screen, place + 20, 40, 6, kRed, kRed, 1);
        for (int row = 0; row < 41; ++row)
            for (int column = 0; column < 41; ++column)
                ASSERT_EQ(own.At(column, row), whole.At(column + 20, row + 20)) << place;
    }
}

TEST(Picture, ADiscOfAStampIsTheToolkitsOwn) {
    // An outline of another width is drawn by the toolkit itself; that of the same width is not.
    for (const float radius : {1.0F, 2.0F, 2.5F, 4.0F, 7.5F, 20.0F}) {
        OwnSurface own(61, 61);
        own.Screen.Circle(own.Screen, 30, 30, radius, kRed, kRed, 1);
        own.Screen.Refresh(own.Screen);
        OwnSurface other(61, 61);
        other.Screen.Circle(other.Screen, 30, 30, radius, kRed, kRed - 1, 1);
        other.Screen.Refresh(other.Screen);
        for (int row = 0; row < 61; ++row)
            for (int column = 0; column < 61; ++column)
                ASSERT_EQ(own.At(column, row) != 0xff000000U, other.At(column, row) != 0xff000000U)
                    << radius << ": " << column << ' ' << row;
    }
}

TEST(Picture, AnUnfilledCircleLeavesItsMiddle) {
    OwnSurface own(41, 41);
    own.Screen.Circle(own.Screen, 20, 20, 10, kRed, kNoFill, 3);
    own.Screen.Refresh(own.Screen);
    EXPECT_EQ(own.At(20, 20), 0xff000000U);
    EXPECT_EQ(own.At(30, 20), kRedPixel);
    EXPECT_EQ(own.At(20, 10), kRedPixel);
}

TEST(Picture, TextBeginsAtItsTopLeftCorner) {
    OwnSurface own(200, 60);
    own.Screen.Text(own.Screen, 50, 20, "Hg", kWhite);
    int left = 200, right = -1, top = 60, bottom = -1;
    for (int row = 0; row < 60; ++row)
        for (int column = 0; column < 200; ++column)
            if (own.At(column, row) != 0xff000000U) {
                left = std::min(left, column);
                right = std::max(right, column);
                top = std::min(top, row);
                bottom = std::max(bottom, row);
            }
    EXPECT_GE(left, 49);
    EXPECT_LE(left, 54);
    EXPECT_GE(top, 19);
    EXPECT_LE(bottom, 20 + 18);
    EXPECT_GE(right, 60);
    EXPECT_LE(right, 75);
}

TEST(Picture, TextOfAnyKindIsWrittenAndCutAtTheBorder) {
    OwnSurface own(60, 20);
    for (const char* text : {"äöü", "点の名前", "\xff\xfe", "", "\n\t"})
        own.Screen.Text(own.Screen, 1, 1, text, kWhite);
    EXPECT_GT(own.Painted(), 0);
    own.Screen.Clear(own.Screen, 0);
    own.Screen.Text(own.Screen, -20, -5, std::string(100000, 'W'), kWhite);
    EXPECT_GT(own.Painted(), 0);
}

TEST(Picture, TheEdgeOfATextHasTheColourOfTheBackground) {
    OwnSurface own(80, 30);
    own.Screen.Clear(own.Screen, kWhite);
    own.Screen.Text(own.Screen, 5, 5, "HHHHH", kRed);
    // From white to red alone: all of it is as red as can be.
    int letters = 0, dark = 0;
    for (int row = 0; row < 30; ++row)
        for (int column = 0; column < 80; ++column) {
            letters += own.At(column, row) == kRedPixel ? 1 : 0;
            dark += (own.At(column, row) >> 16U & 0xffU) != 0xff ? 1 : 0;
        }
    EXPECT_GT(letters, 20);
    EXPECT_EQ(dark, 0);
    // What lies behind the letters does not show through their edge.
    own.Screen.Clear(own.Screen, kWhite);
    own.Screen.Line(own.Screen, 0, 12, 79, 12, 0, 5);
    own.Screen.Text(own.Screen, 5, 5, "HHHHH", kRed);
    int bright = 0;
    for (int column = 5; column < 50; ++column) bright += (own.At(column, 12) >> 16U & 0xffU) > 0x80 ? 1 : 0;
    EXPECT_GT(bright, 20);
}

TEST(Picture, AtTwicePixelsLinesAndDiscsHaveTwiceTheSize) {
    OwnSurface own(40, 30, 2);
    own.Screen.Line(own.Screen, 5, 7, 30, 7, kRed, 1);
    own.Screen.Refresh(own.Screen);
    EXPECT_EQ(own.At(30, 14), kRedPixel);
    EXPECT_EQ(own.At(30, 15), kRedPixel);
    EXPECT_EQ(own.At(30, 13), 0xff000000U);
    EXPECT_EQ(own.At(30, 16), 0xff000000U);
    own.Screen.Clear(own.Screen, 0);
    own.Screen.Circle(own.Screen, 20, 15, 5, kRed, kRed, 1);
    EXPECT_EQ(own.At(40, 30), kRedPixel);
    EXPECT_EQ(own.At(31, 30), kRedPixel);
    EXPECT_EQ(own.At(40, 21), kRedPixel);
    EXPECT_EQ(own.At(40, 16), 0xff000000U);
}

using PictureOfWindow = Program;

namespace {

// Windows opened in its life keep pictures.
struct WithPictures {
    WithPictures() { FillSurface = FillSurfaceWithPicture; }
    ~WithPictures() { FillSurface = nullptr; }
    WithPictures(const WithPictures&) = delete;
    WithPictures& operator=(const WithPictures&) = delete;
};

}  // namespace

TEST_F(PictureOfWindow, HasTheLabelsThatTheBarePictureHasNot) {
    const WithPictures pictures;
    ScreenWindow& window = OpenScreenWindow();
    window.Labels.clear();
    window.LabelScale.Visible = window.LabelVectorScale.Visible = false;
    EXPECT_EQ(PictureOf(window), BarePictureOf(window));
    window.Labels.push_back({"P1", 100, 100, QbColor(7), true});
    EXPECT_NE(PictureOf(window), BarePictureOf(window));
    window.Labels.back().Visible = false;
    EXPECT_EQ(PictureOf(window), BarePictureOf(window));
    EXPECT_EQ(PictureOf(window).size(), QSize(800, 600));
}

TEST_F(PictureOfWindow, LabelsStandOutFromWhatLiesBehindThem) {
    const WithPictures pictures;
    ScreenWindow& window = OpenScreenWindow();
    window.Labels = {{"HHH", 100, 100, QbColor(7), true}};
    window.BackColor = QbColor(0);
    window.Screen.Clear(window.Screen, QbColor(7));  // as bright as the letters
    const QImage picture = PictureOf(window);
    int dark = 0, bright = 0;
    for (int row = 98; row < 118; ++row)
        for (int column = 98; column < 130; ++column) {
            dark += qGreen(picture.pixel(column, row)) < 0x80 ? 1 : 0;
            bright += picture.pixel(column, row) == PixelOf(QbColor(7)) ? 1 : 0;
        }
    EXPECT_GT(dark, 40);
    EXPECT_GT(bright, 40);
}

TEST_F(PictureOfWindow, AtTwicePixelsItsLabelsAreTwiceAsBig) {
    FillSurface = [](Surface& screen) {
        screen.Scale = 2;
        FillSurfaceWithPicture(screen);
    };
    ScreenWindow& window = OpenScreenWindow();
    FillSurface = nullptr;
    window.Labels = {{"HHH", 100, 100, QbColor(7), true}};
    window.LabelScale.Visible = window.LabelVectorScale.Visible = false;
    window.Screen.Clear(window.Screen, QbColor(0));
    const QImage picture = PictureOf(window);
    EXPECT_EQ(picture.size(), QSize(1600, 1200));
    EXPECT_EQ(picture.devicePixelRatio(), 2);
    int top = 10000, bottom = -1;
    for (int row = 0; row < 1200; ++row)
        for (int column = 0; column < 1600; ++column)
            if (qGreen(picture.pixel(column, row)) > 0x60) {
                top = std::min(top, row);
                bottom = std::max(bottom, row);
            }
    // Capitals of a 24 pixel font are about 18 high.
    EXPECT_GE(top, 200);
    EXPECT_NEAR(bottom - top + 1, 18, 2);
}

TEST_F(PictureOfWindow, IsWrittenAsPng) {
    const WithPictures pictures;
    const ScreenWindow& window = OpenScreenWindow();
    ASSERT_TRUE(WritePicture(window, PathOf("picture.png")));
    const QImage read(QString::fromStdString(PathOf("picture.png")));
    EXPECT_EQ(read.convertToFormat(QImage::Format_RGB32), PictureOf(window));
}

TEST_F(PictureOfWindow, IsNoneWhereTheWindowKeepsNone) {
    const ScreenWindow& window = OpenScreenWindow();
    EXPECT_TRUE(PictureOf(window).isNull());
    EXPECT_FALSE(WritePicture(window, PathOf("picture.png")));
    EXPECT_NE(ErrorOf([&] {
                  const WithPictures pictures;
                  WritePicture(OpenScreenWindow(), PathOf("none") + "/picture.png");
              }),
              "");
}
