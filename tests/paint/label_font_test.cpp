// The font of the labels in a picture.
#include <QImage>
#include <algorithm>
#include <limits>
#include <string>

#include "core/window.h"
#include "graphics/drawing.h"
#include "paint/image.h"
#include "paint/picture.h"
#include "support/fixture.h"

using namespace corvinade;

namespace {

struct Box {
    int Width = 0, Height = 0, Bright = 0;
};

// What the bright pixels of a picture cover.
Box BrightBox(const QImage& picture) {
    int left = picture.width(), right = -1, top = picture.height(), bottom = -1, bright = 0;
    for (int row = 0; row < picture.height(); ++row)
        for (int column = 0; column < picture.width(); ++column) {
            if (qGreen(picture.pixel(column, row)) <= 0x60) continue;
            left = std::min(left, column);
            right = std::max(right, column);
            top = std::min(top, row);
            bottom = std::max(bottom, row);
            ++bright;
        }
    return {right - left + 1, bottom - top + 1, bright};
}

class LabelFont : public Program {
protected:
    LabelFont() {
        FillSurface = FillSurfaceWithPicture;
        window_ = &OpenScreenWindow();
        FillSurface = nullptr;
        window_->Labels = {{"HHH", 100, 100, QbColor(7), true}};
        window_->LabelScale.Visible = window_->LabelVectorScale.Visible = false;
        window_->Screen.Clear(window_->Screen, QbColor(0));
    }
    Box With(const TextFont& font) {
        window_->LabelFont = font;
        return BrightBox(PictureOf(*window_));
    }

    ScreenWindow* window_ = nullptr;
};

}  // namespace

TEST_F(LabelFont, OfTwiceTheSizeIsTwiceAsBig) {
    const Box nine = With({}), eighteen = With({.Size = 18}), thirtySix = With({.Size = 36});
    EXPECT_NEAR(nine.Height, 9, 1);  // capitals of 12 pixels
    EXPECT_NEAR(eighteen.Height, 2 * nine.Height, 2);
    EXPECT_NEAR(thirtySix.Height, 2 * eighteen.Height, 3);
    EXPECT_NEAR(thirtySix.Width, 4 * nine.Width, 8);
}

TEST_F(LabelFont, BoldHasMoreInkAndLinesGoUnderAndThrough) {
    const Box plain = With({.Size = 24}), bold = With({.Size = 24, .Bold = true}),
              underlined = With({.Size = 24, .Underline = true}),
              struckOut = With({.Size = 24, .Strikethrough = true});
    EXPECT_GT(bold.Bright, plain.Bright * 5 / 4);
    EXPECT_GT(underlined.Height, plain.Height);
    EXPECT_EQ(struckOut.Height, plain.Height);
    EXPECT_GT(struckOut.Width, plain.Width);
}

TEST_F(LabelFont, OfAnyNameAndSizeIsPaintedAndTheUsualOneStaysAsItWas) {
    const Box usual = With({});
    for (int i = 0; i < 40; ++i)
        EXPECT_GT(With({.Name = "No such family " + std::to_string(i), .Size = 9.0F + static_cast<float>(i)})
                      .Bright,
                  20);
    for (const float size : {-5.0F, 0.0F, 1e30F, std::numeric_limits<float>::quiet_NaN()})
        With({.Size = size});
    const Box again = With({});
    EXPECT_EQ(again.Width, usual.Width);
    EXPECT_EQ(again.Height, usual.Height);
    EXPECT_EQ(again.Bright, usual.Bright);
}

TEST_F(LabelFont, IsThatOfTheTextsWrittenIntoThePicture) {
    const auto written = [this](const TextFont& font) {
        Surface& screen = window_->Screen;
        screen.Clear(screen, QbColor(0));
        screen.Font = font;
        screen.Text(screen, 100, 100, "HHH", QbColor(7));
        return BrightBox(BarePictureOf(*window_)).Height;
    };
    EXPECT_NEAR(written({.Size = 18}), 2 * written({}), 2);
}
